// The completion for bash, in a bash of its own.
#include <cstdlib>
#include <filesystem>

#include "tool.h"

namespace {

class Completion : public Tool {
  protected:
    void SetUp() override {
        done({"init"});
        done({"import", "-"},
             {.input = "[[interface]]\nname = \"wlan0\"\nssid = \"s\"\nmac = \"m\"\n[[system]]\ncountry = \"DE\"\n"
                       "[[own]]\nname = \"o\"\nk = \"v\"\n"});
    }

    // What is offered for the last word of LINE, in alphabetical order, separated by blanks.
    std::string offered(const std::string& line) const {
        const std::string tool = CFQL_TOOL;
        const std::string script =
            write("complete.sh", "source " CFQL_COMPLETION "\nCOMP_WORDS=(" + line +
                                     ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_cfql\n"
                                     "printf '%s\\n' \"${COMPREPLY[@]}\" | sort -u | paste -sd' '\n");
        const std::string path = tool.substr(0, tool.rfind('/'));
        const std::string command =
            "cd " + directory + " && CFQL_STORE=" + store + " PATH=" + path + ":$PATH bash " + script;
        FILE* pipe = popen(command.c_str(), "r");
        std::string text;
        for (int octet = 0; (octet = fgetc(pipe)) != EOF;)
            text += static_cast<char>(octet);
        EXPECT_EQ(pclose(pipe), 0);
        return text;
    }
};

TEST_F(Completion, Offers) {
    const struct {
        const char* line;
        const char* offered;
    } cases[] = {
        {"cfql ex", "export\n"},
        {"cfql --st", "--store\n"},
        {"cfql get ''", "bss interface own radio supported-rate system\n"},
        {"cfql get interface ''", "wlan0\n"},
        {"cfql get interface wlan0 ''", "mac ssid\n"},
        {"cfql unset system ''", "country\n"},
        {"cfql get system country ''", "\n"},
        {"cfql --store x list o", "own\n"},
        {"cfql list own ''", "o\n"},
        {"cfql set --nth 2 interface w", "wlan0\n"},
        {"cfql lint --", "--defaults --help --offline --store --version\n"},
        {"cfql import --r", "--replace\n"},
        {"cfql import comp", "complete.sh\n"},
        {"cfql --store sto", "store.db store.db-shm store.db-wal\n"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.line);
        EXPECT_EQ(offered(expected.line), expected.offered);
    }
}

}  // namespace
