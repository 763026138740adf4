// The bash completion: what it offers, and what a shell makes of it if names in the store are hostile.
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "text.h"
#include "tool.h"

namespace {

std::string environment(const std::string& directory, const std::string& store) {
    const std::string tool = CFQL_TOOL;
    return "cd " + directory + " && export CFQL_STORE=" + store + " PATH=" + tool.substr(0, tool.rfind('/')) +
           ":$PATH LC_ALL=C.UTF-8 && source " CFQL_COMPLETION;
}

class Completion : public Tool {
  protected:
    void SetUp() override { done({"init"}); }

    // What is offered at the end of `line`, in alphabetical order, separated by blanks.
    std::string offered(const std::string& line) const {
        const std::string script =
            write("complete.sh", environment(directory, store) + "\nCOMP_LINE=" + line +
                                     "\nCOMP_POINT=${#COMP_LINE}\n_cfql\n"
                                     "printf '%s\\n' \"${COMPREPLY[@]}\" | sort -u | paste -sd' '\n");
        FILE* pipe = popen(("bash " + script + " 2>&1").c_str(), "r");
        std::string text;
        for (int octet = 0; (octet = fgetc(pipe)) != EOF;)
            text += static_cast<char>(octet);
        EXPECT_EQ(pclose(pipe), 0);
        return text;
    }
};

TEST_F(Completion, Offers) {
    done({"import", "-"},
         {.input = "[[interface]]\nname = \"wlan0\"\nssid = \"s\"\nmac = \"m\"\n[[system]]\ncountry = \"DE\"\n"
                   "[[own]]\nname = \"o\"\nk = \"v\"\n[[own]]\nname = \"-dash\"\n[[own]]\nname = \"00:11\"\n"});
    const std::string other = directory + "/other.db";
    done({"init", "--store", other});
    done({"set", "--store", other, "interface", "wifi7", "ssid", "s"});
    const struct {
        const char* line;
        const char* offered;
    } cases[] = {
        {"'cfql ex'", "export\n"},
        {"'cfql --st'", "--store\n"},
        {"'cfql get '", "bss interface own radio supported-rate system\n"},
        {"'cfql get interface '", "wlan0\n"},
        {"'cfql get interface wlan0 '", "mac ssid\n"},
        {"'cfql unset system '", "country\n"},
        {"'cfql get system country '", "\n"},
        {"'cfql --nth 2 list o'", "own\n"},
        {"'cfql list own '", "00:11 o\n"},
        {"'cfql list own -- '", "-dash 00:11 o\n"},
        {"'cfql list own 00:'", "11\n"},  // the part behind the colon: it is all that readline replaces
        {"'cfql list \"own\" '", "00:11 o\n"},
        {"'cfql set --nth 2 interface w'", "wlan0\n"},
        {"'cfql --store other.db get interface '", "wifi7\n"},
        {"'cfql lint --'", "--defaults --help --offline --store --version\n"},
        {"'cfql import --r'", "--replace\n"},
        {"'cfql do'", "doctor\n"},
        {"'cfql doctor --'", "--as --community --help --host --module --store --user --version\n"},
        {"'cfql doctor --as nobod'", "nobody\n"},
        {"'cfql doctor --user x --m'", "--module\n"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.line);
        EXPECT_EQ(offered(expected.line), expected.offered);
    }
}

// A bash on a terminal of its own.
class Shell {
  public:
    explicit Shell(const std::string& begin) {
        pid_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
        if (pid_ == 0) {
            setenv("TERM", "dumb", 1);
            setenv("INPUTRC", "/dev/null", 1);
            setenv("HISTFILE", "/dev/null", 1);
            execlp("bash", "bash", "--norc", "--noprofile", "-i", nullptr);
            _exit(127);
        }
        type(begin + " && PS1='READ''Y> '\r");
        wait_for("READY> ");
    }
    ~Shell() {
        kill(-pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
        close(terminal_);
    }
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;

    void type(const std::string& keys) const {
        EXPECT_EQ(write(terminal_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    // What the terminal shows up to the next prompt.
    std::string wait_for(const std::string& text) {
        constexpr int patience_ms = 20'000;
        std::string shown;
        while (shown.find(text) == std::string::npos) {
            pollfd waiting = {terminal_, POLLIN, 0};
            char block[4096];
            const ssize_t count = poll(&waiting, 1, patience_ms) == 1 ? read(terminal_, block, sizeof block) : -1;
            if (count <= 0) {
                ADD_FAILURE() << "the terminal never showed " << text << " but:\n" << shown;
                break;
            }
            shown.append(block, static_cast<std::size_t>(count));
        }
        return shown;
    }

    // What it shows from the line `keys`, which holds no line's end, to the next prompt.
    std::string run(const std::string& keys) {
        type(keys + '\r');
        return wait_for("READY> ");
    }

  private:
    int terminal_ = -1;
    pid_t pid_;
};

const std::string hostile_names[] = {
    "$(touch pwned)",
    "`touch pwned`",
    "${IFS}x",
    "a;touch pwned",
    "a&touch pwned",
    "a|touch pwned",
    "a>pwned",
    "two words",
    " blank first",
    "it's",
    "say \"hi\"",
    "'\"\\",
    "back\\slash",
    "\\n",
    "star*",
    "?",
    "[a]",
    "{a,b}",
    "~root",
    "#not a comment",
    "!!",
    "00:11:22",
    "a=b",
    "@home",
    "Caf\xc3\xa9 \xe2\x82\xac",
    "tab\tand\nnewline",
    "\x1b]0;title\x07",
    "\x1b[2J",
    "\xc2\x9b"
    "2J",
    "\xff\xfe",
};

// TAB must put the one name in, so that the line reads its value; nothing else may run.
TEST_F(Completion, HostileNamesAreData) {
    for (const std::string& name : hostile_names) {
        SCOPED_TRACE(cfql::tool::printable(name));
        done({"import", "--replace", "-"}, {.input = "[[interface]]\nname = {hex='" + cfql::tool::to_hex(name) +
                                                     "'}\nssid = 'the value'\n[[system]]\ncountry = 'DE'\n"});
        Shell shell(environment(directory, store));
        const std::string shown = shell.run("cfql get interface \t ssid");
        EXPECT_NE(shown.find("the value"), std::string::npos) << shown;
        for (const char* steering : {"\x1b]", "\x1b[2J", "\xc2\x9b"})
            EXPECT_EQ(shown.find(steering), std::string::npos) << shown;
        EXPECT_FALSE(std::filesystem::exists(directory + "/pwned"));
    }
}

TEST_F(Completion, HostileTablesAndKeysAreData) {
    done({"import", "-"},
         {.input = "[['$(touch pwned)']]\nname = '`touch pwned`'\n'a$(touch pwned)b' = 'the value'\n"});
    Shell shell(environment(directory, store));
    const std::string shown = shell.run("cfql get \\$\t\t\t");
    EXPECT_NE(shown.find("the value"), std::string::npos) << shown;
    EXPECT_FALSE(std::filesystem::exists(directory + "/pwned"));
}

// What is typed already stays, with whatever quotes it has.
TEST_F(Completion, InsideQuotes) {
    done({"import", "-"}, {.input = "[[interface]]\nname = \"it's `a` \\\"$trap\\\" \\\\ !!\"\nssid = 'the value'\n"
                                    "[[interface]]\nname = 'aa:bb cc:dd'\nssid = 'the other'\n"});
    const struct {
        const char* keys;
        const char* value;
    } cases[] = {
        {"cfql get interface it\t ssid", "the value"},
        {"cfql get interface it\\'s\\ \t ssid", "the value"},
        {"cfql get interface 'it\t ssid", "the value"},
        {"cfql get interface \"it\t ssid", "the value"},
        {"cfql get interface \"it's \\`a\t ssid", "the value"},
        {"cfql get interface aa:b\t ssid", "the other"},
        {"cfql get interface aa:bb\\ cc:\t ssid", "the other"},
        {"cfql get interface 'aa:b\t ssid", "the other"},
        {"cfql get interface \"aa:bb cc:\t ssid", "the other"},
        {"cfql get 'interface' \"aa:bb\"\\ 'cc:dd' ss\t", "the other"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.keys);
        Shell shell(environment(directory, store));
        const std::string shown = shell.run(expected.keys);
        EXPECT_NE(shown.find(expected.value), std::string::npos) << shown;
    }
}

TEST_F(Completion, Files) {
    write("a text.toml", "[[interface]]\nname = 'wlan0'\nssid = 'the value'\n");
    done({"init", "--store", directory + "/other place.db"});
    Shell shell(environment(directory, store));
    EXPECT_NE(shell.run("cfql import a\t").find("imported 1 object with 1 value"), std::string::npos);
    EXPECT_NE(shell.run("cfql --store oth\t check").find("no faults"), std::string::npos);
}

}  // namespace
