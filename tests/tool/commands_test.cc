// Every command, every message and every exit status.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "database.h"
#include "tool.h"

namespace {

constexpr const char* contents =
    "[[system]]\ncountry = \"DE\"\n"
    "[[interface]]\nname = \"wlan0\"\nssid = \"Guests\"\nwep-key-1 = \"FAKE1\"\nwep-key-mapping-length = \"10\"\n"
    "[[interface]]\nname = \"wlan1\"\nssid = \"\"\n"
    "[[supported-rate]]\nname = \"wlan0\"\nrate = \"540\"\n"
    "[[supported-rate]]\nname = \"wlan0\"\nrate = \"240\"\n"
    "[[bss]]\nname = \"bare\"\n";

struct Case {
    Words words;
    int status;
    std::string out;
    std::string err;  // STORE stands for the store's path
    std::string input = {};
};

std::string replaced(std::string text, const std::string& store) {
    for (std::size_t at = 0; (at = text.find("STORE", at)) != std::string::npos; at += store.size())
        text.replace(at, 5, store);
    return text;
}

class Commands : public Tool {
  protected:
    void SetUp() override {
        done({"init"});
        refill();
    }

    void refill() { done({"import", "--replace", "-"}, {.input = contents}); }

    void expect(const Case& expected) {
        std::string command = "cfql";
        for (const std::string& word : expected.words)
            command += ' ' + word.substr(0, 40);
        SCOPED_TRACE(command);
        const Outcome outcome = run(expected.words, {.input = expected.input});
        EXPECT_EQ(outcome.status, expected.status);
        EXPECT_EQ(outcome.out, replaced(expected.out, store));
        EXPECT_EQ(outcome.err, replaced(expected.err, store));
    }

    // Commands that change nothing.
    void expect_each(const std::vector<Case>& cases) {
        for (const Case& expected : cases)
            expect(expected);
    }
};

// Also through the link that is at the default path if a collector fills the store.
TEST_F(Commands, SetUnderRunSaysThatItIsGoneAtTheNextBoot) {
    char place[] = "/run/cfql-test-XXXXXX";
    if (mkdtemp(place) == nullptr) GTEST_SKIP() << "/run is root's";
    const std::string file = std::string(place) + "/store.db", link = directory + "/link.db";
    std::filesystem::create_symlink(file, link);
    done({"init"}, {.path = file});
    const std::string note = "cfql: note: " + file +
                             " is lost at the next boot, and this value with it; a permanent value belongs in "
                             "/etc/cfql/collector.toml, see \"man cfql-collector\"\n";
    for (const std::string& path : {file, link}) {
        const Outcome set = run({"set", "system", "country", "DE"}, {.path = path});
        EXPECT_EQ(set.status, 0);
        EXPECT_EQ(set.err, note);
        EXPECT_EQ(run({"get", "system", "country"}, {.path = path}).err, "");
    }
    EXPECT_EQ(run({"set", "system", "country", "DE"}).err, "");
    std::filesystem::remove_all(place);
}

// Each on a store of its own.
struct Effect {
    Words words;
    Words then;
    std::string out;  // of THEN
    std::string input = {};
};

TEST_F(Commands, Get) {
    expect_each({
        {{"get", "interface", "wlan0", "ssid"}, 0, "Guests\n", ""},
        {{"get", "interface", "wlan1", "ssid"}, 0, "\n", ""},
        {{"get", "interface", "wlan0", "wep-key-1"}, 0, "FAKE1\n", ""},
        {{"get", "system", "country"}, 0, "DE\n", ""},
        {{"get", "supported-rate", "wlan0", "rate"}, 0, "540\n", ""},
        {{"get", "supported-rate", "wlan0", "rate", "--nth", "2"}, 0, "240\n", ""},
        {{"get", "interface", "wlan0", "mac"},
         1,
         "",
         "cfql: STORE: interface \"wlan0\": key \"mac\" is not set; see \"cfql list\"\n"},
        {{"get", "interface", "wlan9", "ssid"},
         1,
         "",
         "cfql: STORE: there is no interface \"wlan9\"; see \"cfql list\"\n"},
        {{"get", "supported-rate", "wlan0", "rate", "--nth", "3"},
         1,
         "",
         "cfql: STORE: there are only 2 of supported-rate \"wlan0\"; see \"cfql list\"\n"},
        {{"get", "interface", "wlan1", "ssid", "--nth", "9"},
         1,
         "",
         "cfql: STORE: there is only one interface \"wlan1\"; see \"cfql list\"\n"},
        {{"get", "interface", "wlan9", "ssid", "--nth", "9"},
         1,
         "",
         "cfql: STORE: there is no interface \"wlan9\" number 9; see \"cfql list\"\n"},
        {{"get"}, 2, "", "cfql: TABLE, OBJECT and KEY are missing; see \"cfql get --help\"\n"},
        {{"get", "interface"}, 2, "", "cfql: OBJECT and KEY are missing; see \"cfql get --help\"\n"},
        {{"get", "interface", "wlan0"}, 2, "", "cfql: KEY is missing; see \"cfql get --help\"\n"},
        {{"get", "system"}, 2, "", "cfql: KEY is missing; see \"cfql get --help\"\n"},
        {{"get", "system", "", "country"},
         2,
         "",
         "cfql: one argument too many: the object of the table \"system\" has no name, leave OBJECT out; see \"cfql "
         "get --help\"\n"},
        {{"get", "interface", "", "ssid"}, 2, "", "cfql: an argument is empty; see \"cfql get --help\"\n"},
        {{"get", "interface", "wlan0", "ssid", "--nth", "two"},
         2,
         "",
         "cfql: --nth takes a number, from 1; see \"cfql get --help\"\n"},
        {{"get", "interface", "wlan0", "ssid", "--nth"},
         2,
         "",
         "cfql: --nth must be followed by N; see \"cfql get --help\"\n"},
    });
}

TEST_F(Commands, SetStores) {
    const Effect effects[] = {
        {{"set", "interface", "wlan0", "ssid", "new"}, {"get", "interface", "wlan0", "ssid"}, "new\n"},
        {{"set", "interface", "wlan0", "ssid", ""}, {"get", "interface", "wlan0", "ssid"}, "\n"},
        {{"set", "interface", "wlan0", "ssid", "[a,b]"}, {"get", "interface", "wlan0", "ssid"}, "[a,b]\n"},
        {{"set", "interface", "wlan0", "ssid", "list"},
         {"get", "interface", "wlan0", "ssid"},
         "list\n"},  // the name of a command
        {{"set", "interface", "wlan0", "tx-power", "-3"}, {"get", "interface", "wlan0", "tx-power"}, "-3\n"},
        {{"set", "interface", "wlan0", "ssid", "--", "-x"}, {"get", "interface", "wlan0", "ssid"}, "-x\n"},
        {{"set", "interface", "wlan0", "ssid", "--", "--"}, {"get", "interface", "wlan0", "ssid"}, "--\n"},
        {{"set", "interface", "wlan0", "ssid", "-"},
         {"get", "interface", "wlan0", "ssid"},
         "from input\n\n",
         "from input\n\n"},
        {{"set", "interface", "wlan0", "ssid", "-"},
         {"get", "interface", "wlan0", "ssid"},
         "no newline\n",
         "no newline"},
        {{"set", "radio", "new", "channel", "11"}, {"get", "radio", "new", "channel"}, "11\n"},
        {{"set", "system", "country", "FR"}, {"get", "system", "country"}, "FR\n"},
        {{"set", "supported-rate", "wlan0", "rate", "110", "--nth", "3"},
         {"get", "supported-rate", "wlan0", "rate", "--nth", "3"},
         "110\n"},
    };
    for (const Effect& effect : effects) {
        SCOPED_TRACE(testing::PrintToString(effect.words));
        refill();
        EXPECT_EQ(done(effect.words, {.input = effect.input}), "");
        EXPECT_EQ(done(effect.then), effect.out);
    }
}

TEST_F(Commands, SetRefuses) {
    expect_each({
        {{"set", "supported-rate", "wlan0", "rate", "55", "--nth", "5"},
         1,
         "",
         "cfql: STORE: there are only 2 of supported-rate \"wlan0\"; see \"cfql list\"\n"},
        {{"set", "interface", "wlan0", "ssid"}, 2, "", "cfql: VALUE is missing; see \"cfql set --help\"\n"},
        {{"set", "interface", "wlan0", "wep-key-1", "two", "words"},
         2,
         "",
         "cfql: one argument too many; put what has blanks in quotes; see \"cfql set --help\"\n"},
        {{"set", "interface", "wlan0", "ssid", "-x"},
         2,
         "",
         "cfql: unknown option \"-x\"; -- goes before values that begin with a dash; see \"cfql set --help\"\n"},
        {{"set", "interface", "wlan0", "wep-key-1", "********"},
         4,
         "",
         "cfql: the value of \"wep-key-1\" is the mask that stands for a hidden one: give the value itself; nothing "
         "has "
         "changed\n"},
        {{"set", "interface", "wlan0", "wep-key-1", "-"},
         4,
         "",
         "cfql: the value of \"wep-key-1\" is the mask that stands for a hidden one: give the value itself; nothing "
         "has "
         "changed\n",
         "********\n"},
        {{"set", "system", "country", "X", "--nth", "2"},
         2,
         "",
         "cfql: the table \"system\" has one object: leave --nth out; see \"cfql set --help\"\n"},
        {{"set", "interface", "wlan0", "ssid", "x", "--nth", "0"},
         2,
         "",
         "cfql: --nth takes a number, from 1; see \"cfql set --help\"\n"},
        {{"set", "interface", "wlan0", "ssid", "x", "--nth", "-1"},
         2,
         "",
         "cfql: --nth takes a number, from 1; see \"cfql set --help\"\n"},
        {{"set", "interface", "wlan0", "name", "x"},
         4,
         "",
         "cfql: \"name\" is the object's name, not a key; nothing has changed\n"},
    });
}

TEST_F(Commands, SetRefusesWhatTheStoreCannotHold) {
    const std::string long_name(256, 'n');
    const std::string long_value(4097, 'v');
    expect_each({
        {{"set", "interface", long_name, "ssid", "x"},
         4,
         "",
         "cfql: the object's name is longer than 255 octets; nothing has changed\n"},
        {{"set", long_name, "wlan0", "ssid", "x"},
         4,
         "",
         "cfql: the table is longer than 255 octets; nothing has changed\n"},
        {{"set", "interface", "wlan0", long_name, "x"},
         4,
         "",
         "cfql: the key is longer than 255 octets; nothing has changed\n"},
        {{"set", "interface", "wlan0", "ssid", long_value},
         4,
         "",
         "cfql: the value is longer than 4096 octets; nothing has changed\n"},
        {{"set", "interface", "wlan0", "ssid", "-"},
         4,
         "",
         "cfql: the value is longer than 4096 octets; nothing has changed\n",
         long_value},
        {{"set", "interface", "wlan0", "ssid", "-"},
         4,
         "",
         "cfql: the value contains a NUL; nothing has changed\n",
         {"a\0b", 3}},
    });
}

TEST_F(Commands, UnsetRemoves) {
    const Effect effects[] = {
        {{"unset", "interface", "wlan0", "ssid"},
         {"list", "interface", "wlan0"},
         "interface\twlan0\twep-key-1\tFAKE1\ninterface\twlan0\twep-key-mapping-length\t10\n"},
        {{"unset", "interface", "wlan0"}, {"list", "interface"}, "interface\twlan1\tssid\t\n"},
        {{"unset", "supported-rate", "wlan0"}, {"list", "supported-rate"}, "supported-rate\twlan0\trate\t240\n"},
        {{"unset", "supported-rate", "wlan0", "--nth", "2"},
         {"list", "supported-rate"},
         "supported-rate\twlan0\trate\t540\n"},
        {{"unset", "system", "country"}, {"list", "system"}, "system\t\n"},
    };
    for (const Effect& effect : effects) {
        SCOPED_TRACE(testing::PrintToString(effect.words));
        refill();
        EXPECT_EQ(done(effect.words), "");
        EXPECT_EQ(done(effect.then), effect.out);
    }
}

TEST_F(Commands, UnsetFindsNothing) {
    expect_each({
        {{"unset", "interface", "wlan0", ""}, 2, "", "cfql: an argument is empty; see \"cfql unset --help\"\n"},
        {{"unset", "interface", "wlan1", "mac"},
         1,
         "",
         "cfql: STORE: interface \"wlan1\": key \"mac\" is not set; see \"cfql list\"\n"},
        {{"unset", "interface", "wlan9"}, 1, "", "cfql: STORE: there is no interface \"wlan9\"; see \"cfql list\"\n"},
        {{"unset", "radio"}, 2, "", "cfql: OBJECT is missing; see \"cfql unset --help\"\n"},
    });
}

TEST_F(Commands, UnsetOfAllIsAnEnd) {
    done({"unset", "system"});
    expect({{"unset", "system"}, 1, "", "cfql: STORE: there is no system; see \"cfql list\"\n"});
    expect({{"get", "system", "country"}, 1, "", "cfql: STORE: there is no system; see \"cfql list\"\n"});
}

TEST_F(Commands, List) {
    expect_each({
        {{"list"},
         0,
         "system\t\tcountry\tDE\n"
         "interface\twlan0\tssid\tGuests\n"
         "interface\twlan0\twep-key-1\tFAKE1\n"
         "interface\twlan0\twep-key-mapping-length\t10\n"
         "interface\twlan1\tssid\t\n"
         "supported-rate\twlan0\trate\t540\n"
         "supported-rate\twlan0\trate\t240\t2\n"
         "bss\tbare\n",
         ""},
        {{"list", "supported-rate"}, 0, "supported-rate\twlan0\trate\t540\nsupported-rate\twlan0\trate\t240\t2\n", ""},
        {{"list", "bss", "bare"}, 0, "bss\tbare\n", ""},
        {{"list", "bss", "none"}, 1, "", "cfql: STORE: there is no bss \"none\"; see \"cfql list\"\n"},
        {{"list", "none"}, 1, "", "cfql: STORE: there is no none; see \"cfql list\"\n"},
        {{"list", "bss", "first", "floor", "east"},
         2,
         "",
         "cfql: 2 arguments too many: \"floor\"; put what has blanks in quotes; see \"cfql list --help\"\n"},
    });
}

TEST_F(Commands, Usage) {
    expect_each({
        {{"check"}, 0, "STORE: no faults\n", ""},
        {{}, 2, "", "cfql: a command is missing; see \"cfql --help\"\n"},
        {{"drop"}, 2, "", "cfql: unknown command \"drop\"; see \"cfql --help\"\n"},
        {{"exprot"}, 2, "", "cfql: unknown command \"exprot\"; did you mean \"export\"?; see \"cfql --help\"\n"},
        {{"import", "-", "--relpace"},
         2,
         "",
         "cfql: unknown option \"--relpace\"; did you mean \"--replace\"?; see \"cfql import --help\"\n"},
        {{"--versoin"},
         2,
         "",
         "cfql: unknown option \"--versoin\"; did you mean \"--version\"?; see \"cfql --help\"\n"},
        {{"check", "it"}, 2, "", "cfql: one argument too many: \"it\"; see \"cfql check --help\"\n"},
        {{"a\x1b[2J\xc2\x9b"}, 2, "", "cfql: unknown command \"a\\x1b[2J\\xc2\\x9b\"; see \"cfql --help\"\n"},
        {{"import"}, 2, "", "cfql: FILE is required; see \"cfql import --help\"\n"},
        {{"import", "/nowhere"},
         4,
         "",
         "cfql: /nowhere: No such file or directory; name a file that can be read, or \"-\"\n"},
        {{"import", "/"}, 4, "", "cfql: /: Is a directory; nothing has changed\n"},
        {{"init"},
         3,
         "",
         "cfql: STORE: there is a store already; it is left as it is; \"cfql import --replace FILE\" replaces its "
         "contents\n"},
    });
}

TEST_F(Commands, HelpAndVersionEverywhere) {
    const Words names = {"",       "init",  "get",     "set",  "unset", "list",  "import",
                         "export", "check", "preview", "lint", "watch", "doctor"};
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        Words words;
        if (!name.empty()) words.push_back(name);
        words.emplace_back("--version");
        EXPECT_EQ(done(words), "cfql " CFQL_VERSION "\n");
        words.back() = "--help";
        const std::string help = done(words);
        EXPECT_NE(help.find("--store"), std::string::npos);
        EXPECT_NE(help.find("Exit status: 0 done; 1 the answer is no"), std::string::npos);
    }
}

TEST_F(Commands, ListEscapesWhatWouldBreakALine) {
    done({"set", "interface", "wlan1", "ssid", "a\tb\nc\\d\x1b[2J\xff\xc2\x9b\xc3\xa9"});
    EXPECT_EQ(done({"list", "interface", "wlan1"}),
              "interface\twlan1\tssid\ta\\tb\\nc\\\\d\\x1b[2J\\xff\\xc2\\x9b\xc3\xa9\n");
}

TEST_F(Commands, SecretsAreMaskedOnATerminal) {
    struct {
        Words words;
        std::string shown, hidden;
    } const cases[] = {
        {{"get", "interface", "wlan0", "wep-key-1"}, "********\n", "FAKE1"},
        {{"list", "interface", "wlan0"}, "interface\twlan0\twep-key-1\t********\n", "FAKE1"},
        {{"export"}, "wep-key-1 = \"********\"\n", "FAKE1"},
        {{"get", "interface", "wlan0", "wep-key-1", "--reveal"}, "FAKE1\n", "********"},
        {{"list", "interface", "wlan0", "--reveal"}, "interface\twlan0\twep-key-1\tFAKE1\n", "********"},
        {{"export", "--reveal"}, "wep-key-1 = \"FAKE1\"\n", "********"},
        {{"list", "interface", "wlan0"}, "wep-key-mapping-length\t10\n", "FAKE1"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.words.front());
        const Outcome outcome = run_on_terminal(expected.words);
        EXPECT_EQ(outcome.status, 0);
        std::string out = outcome.out;
        // The terminal spells tabs as they are.
        EXPECT_NE(out.find(expected.shown), std::string::npos) << out;
        EXPECT_EQ(out.find(expected.hidden), std::string::npos) << out;
    }
}

TEST_F(Commands, ATerminalIsNotSteered) {
    done({"set", "interface", "wlan1", "ssid", "\x1b[2J"});
    EXPECT_EQ(run_on_terminal({"get", "interface", "wlan1", "ssid"}).out, "\\x1b[2J\n");
    EXPECT_EQ(done({"get", "interface", "wlan1", "ssid"}), "\x1b[2J\n");
}

// No octet of a name, a path or a text steers the terminal that shows the message about it.
TEST_F(Commands, MessagesDoNotSteerATerminal) {
    const std::string steering =  // NOLINTNEXTLINE(misc-misleading-bidirectional)
        "\x1b[2J\xc2\x9b"
        "2J\xff\r\x7f\xe2\x80\xae";
    const std::string shown = R"(\x1b[2J\xc2\x9b2J\xff\r\x7f\xe2\x80\xae)";
    const std::string file = write("a" + steering, "k = \x1b\n");
    const Case cases[] = {
        {{"get", steering, steering, steering}, 1, "", shown},
        {{"unset", "interface", "wlan0", steering}, 1, "", shown},
        {{"list", "--store", directory + '/' + steering}, 3, "", shown},
        {{"init", "--store", directory + '/' + steering + "/a/b"}, 3, "", shown},
        {{"import", directory + "/b" + steering}, 4, "", shown},
        {{"import", file}, 4, "", shown},
        {{"import", "-"}, 4, "", "1:5: ", "k = \x1b[2J\n"},
        {{"import", "-"}, 4, "", R"(k\xc2\x9b2J)", "\"k\xc2\x9b\x32J\"='1'\n\"k\xc2\x9b\x32J\"='2'\n"},
        {{"import", "-"}, 4, "", R"([["a\u009b"]])", "[\"a\xc2\x9b\"]\n"},
        {{"import", "-"}, 4, "", "1:3: ", "[[a\xff]]\n"},
        {{"export", "--output", directory + '/' + steering + "/x"}, 5, "", shown},
        {{"get", "--" + steering}, 2, "", shown},
    };
    for (const Case& expected : cases) {
        SCOPED_TRACE(expected.words.front() + ' ' + expected.input);
        const Outcome outcome = run(expected.words, {.input = expected.input});
        EXPECT_EQ(outcome.status, expected.status);
        EXPECT_EQ(outcome.err.find_first_of("\x1b\xc2\xff\r\x7f\xe2"), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find(expected.err), std::string::npos) << outcome.err;
    }
}

TEST_F(Commands, OutputThatCannotBeWritten) {
    for (const Words& words : {Words{"list"}, Words{"export"}, Words{"--help"}}) {
        const Outcome outcome = run(words, {.output = "/dev/full"});
        EXPECT_EQ(outcome.status, 5);
        EXPECT_EQ(outcome.err, "cfql: standard output: No space left on device; what was printed is not complete\n");
    }
}

// ---- stores that cannot be used

TEST_F(Tool, MissingStore) {
    const std::string message =
        "cfql: " + store + ": there is no store; make one with \"cfql init\", or name another with --store\n";
    const Words commands[] = {{"get", "system", "country"},
                              {"set", "system", "country", "DE"},
                              {"unset", "system"},
                              {"list"},
                              {"import", "-"},
                              {"export"},
                              {"check"},
                              {"lint"},
                              {"watch"}};
    for (const Words& words : commands) {
        SCOPED_TRACE(words.front());
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, message);
    }
    EXPECT_FALSE(std::filesystem::exists(store));
}

TEST_F(Tool, StoreOptionGoesBeforeTheVariable) {
    const std::string other = directory + "/other.db";
    done({"init", "--store", other});
    EXPECT_TRUE(std::filesystem::exists(other));
    EXPECT_FALSE(std::filesystem::exists(store));
    done({"--store", other, "set", "system", "country", "DE"});
    EXPECT_EQ(done({"get", "system", "country"}, {.path = other}), "DE\n");
}

TEST_F(Tool, NotAStore) {
    write("store.db",
          "This is a letter to a friend, long enough to be taken for a header of a file, if one looked badly.\n");
    for (const Words& words : {Words{"list"}, Words{"check"}, Words{"init"}, Words{"set", "system", "country", "DE"}}) {
        SCOPED_TRACE(words.front());
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.err,
                  "cfql: " + store + ": the file is not a configuration store; name another file with --store\n");
    }
}

TEST_F(Commands, ReadOnlyForOthers) {
    if (getuid() != 0) GTEST_SKIP() << "only root can become another user";
    constexpr unsigned nobody = 65534;
    ASSERT_EQ(chmod(directory.c_str(), 0755), 0);
    ASSERT_EQ(chmod(store.c_str(), 0644), 0);
    EXPECT_EQ(done({"get", "system", "country"}, {.user = nobody}), "DE\n");
    const Outcome refused = run({"set", "system", "country", "FR"}, {.user = nobody});
    EXPECT_EQ(refused.status, 3);
    EXPECT_EQ(refused.err, "cfql: " + store +
                               ": the store may not be written; only root writes to it: ask root to run this "
                               "command\n");
    ASSERT_EQ(chmod(store.c_str(), 0600), 0);
    const Outcome denied = run({"get", "system", "country"}, {.user = nobody});
    EXPECT_EQ(denied.status, 3);
    EXPECT_EQ(denied.err,
              "cfql: " + store +
                  ": the store may not be opened; ask root to put you into the group \"cfql\", whose members read the "
                  "store; only root writes to it\n");
    const Outcome not_made = run({"init"}, {.path = directory + "/other.db", .user = nobody});
    EXPECT_EQ(not_made.status, 3);
    EXPECT_EQ(not_made.err, "cfql: " + directory + "/other.db: Permission denied; ask root to run this command\n");
}

TEST_F(Commands, AnotherWriterHoldsTheStore) {
    cfql::Database writer;
    ASSERT_EQ(writer.open(store.c_str(), cfql::Access::write), cfql::Status::ok);
    ASSERT_EQ(writer.begin_write(), cfql::Status::ok);
    const Outcome outcome = run({"set", "system", "country", "FR"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.err, "cfql: " + store +
                               ": another process holds the store locked; try again; \"fuser\" tells which process "
                               "holds it\n");
    EXPECT_EQ(done({"get", "system", "country"}), "DE\n");
}

std::string text_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Changes one octet of every value "Guests" in the file, behind SQLite's back. Its structure stays sound.
void spoil(const std::string& path, const std::string& text) {
    std::string octets;
    {
        std::ifstream file(path, std::ios::binary);
        octets.assign(std::istreambuf_iterator<char>(file), {});
    }
    const std::size_t at = octets.find(text);
    ASSERT_NE(at, std::string::npos);
    octets[at] = 'X';
    std::ofstream(path, std::ios::binary) << octets;
}

TEST_F(Commands, AValueWithAWrongChecksum) {
    spoil(store, "Guests");

    const Outcome got = run({"get", "interface", "wlan0", "ssid"});
    EXPECT_EQ(got.status, 3);
    EXPECT_EQ(got.out, "");
    EXPECT_EQ(got.err, "cfql: " + store + ": interface \"wlan0\": key \"ssid\": checksum is wrong; set it again\n");

    const std::string left_out =
        "cfql: " + store + ": interface \"wlan0\": key \"ssid\": checksum is wrong; left out\n";
    for (const Words& words : {Words{"list", "interface"}, Words{"export"}, Words{"lint", "--offline"}}) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 3);
        EXPECT_NE(outcome.out.find("wlan0"), std::string::npos);
        EXPECT_EQ(outcome.err, left_out);
    }
    const Outcome checked = run({"check"});
    EXPECT_EQ(checked.status, 1);
    EXPECT_NE(checked.out.find("ssid"), std::string::npos) << checked.out;
    EXPECT_TRUE(checked.out.ends_with(store + ": 1 fault\n")) << checked.out;

    done({"set", "interface", "wlan0", "ssid", "Guests"});
    EXPECT_EQ(done({"check"}), store + ": no faults\n");
}

TEST_F(Commands, ADamagedFile) {
    std::filesystem::resize_file(store, std::filesystem::file_size(store) / 2);
    for (const Words& words : {Words{"list"}, Words{"get", "system", "country"}, Words{"export"}}) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 3) << words.front();
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(outcome.err.starts_with("cfql: " + store + ": ")) << outcome.err;
    }
}

// ---- init

mode_t mode_of(const std::string& path) {
    struct stat entry = {};
    EXPECT_EQ(stat(path.c_str(), &entry), 0) << path;
    return entry.st_mode & 07777U;
}

TEST_F(Tool, InitMakesDirectoryAndFile) {
    const std::string path = directory + "/deep/store.db";
    const std::string said = done({"init", "--store", path});
    EXPECT_TRUE(said.starts_with("created the directory " + directory + "/deep, mode 2750")) << said;
    EXPECT_NE(said.find("created the store " + path + ", mode 0640"), std::string::npos) << said;
    EXPECT_EQ(mode_of(directory + "/deep"), 02750U);
    EXPECT_EQ(mode_of(path), 0640U);
}

TEST_F(Tool, InitSaysWhoseTheFilesAreWhenNotRoot) {
    if (getuid() != 0) GTEST_SKIP() << "only root can become another user";
    ASSERT_EQ(chmod(directory.c_str(), 0777), 0);
    const std::string said = done({"init"}, {.user = 65534});
    EXPECT_EQ(said, "created the store " + store +
                        ", mode 0640\n"
                        "not run as root: the files belong to you, and the group stays as it is\n");
}

// In a mount namespace of its own, which gives the system a group "cfql" for the time of the command.
TEST_F(Tool, InitGivesTheStoreToTheGroup) {
    if (getuid() != 0) GTEST_SKIP() << "only root can give files to a group";
    const std::string groups = write("group", "root:x:0:\ncfql:x:4321:\n");
    const std::string path = directory + "/deep/store.db";
    const std::string said = write("said", "");
    const std::string command = "unshare -m sh -c 'mount --bind " + groups +
                                " /etc/group && exec " CFQL_TOOL " init --store " + path + "' > " + said;
    ASSERT_EQ(system(command.c_str()), 0);
    std::string text;
    std::getline(std::ifstream(said), text, '\0');
    EXPECT_EQ(text, "created the directory " + directory + "/deep, mode 2750, root:cfql\ncreated the store " + path +
                        ", mode 0640, root:cfql\n");
    for (const std::string& made : {directory + "/deep", path}) {
        struct stat entry = {};
        ASSERT_EQ(stat(made.c_str(), &entry), 0);
        EXPECT_EQ(entry.st_uid, 0U);
        EXPECT_EQ(entry.st_gid, 4321U);
    }
    EXPECT_EQ(mode_of(directory + "/deep"), 02750U);
    EXPECT_EQ(mode_of(path), 0640U);
}

// As in the user namespace that `unshare -r` makes, which has no other group than the user's. A chroot cannot make one,
// so only the map is exchanged.
TEST_F(Tool, InitWhereTheGroupIsNotMapped) {
    if (getuid() != 0) GTEST_SKIP() << "only root can mount";
    const std::string groups = write("group", "root:x:0:\ncfql:x:4321:\n");
    const std::string map = write("map", "         0          0          1\n");
    const std::string said = write("said", "");
    const std::string command = "unshare -m sh -c 'mount --bind " + groups + " /etc/group && mount --bind " + map +
                                " /proc/$$/gid_map && exec " CFQL_TOOL " init --store " + store + "' > " + said;
    ASSERT_EQ(system(command.c_str()), 0);
    std::string text;
    std::getline(std::ifstream(said), text, '\0');
    EXPECT_EQ(text,
              "created the store " + store +
                  ", mode 0640\n"
                  "there is no group \"cfql\": create it with \"addgroup --system cfql\", then \"chgrp -R cfql\" the "
                  "directory\n");
}

TEST_F(Tool, InitRefuses) {
    const Outcome no_parent = run({"init", "--store", directory + "/a/b/store.db"});
    EXPECT_EQ(no_parent.status, 3);
    EXPECT_EQ(no_parent.err,
              "cfql: " + directory + "/a/b: No such file or directory; create its parent directory first\n");
}

// In a directory where others may write, too, somebody else was faster.
TEST_F(Tool, InitFollowsNoLink) {
    if (getuid() != 0) GTEST_SKIP() << "only root can own files of another user";
    const std::string empty = write("empty", "");
    ASSERT_EQ(chmod(empty.c_str(), 0600), 0);
    const std::string theirs = write("theirs", "");
    ASSERT_EQ(chown(theirs.c_str(), 65534, 65534), 0);
    const std::string pipe = directory + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_symlink(empty, directory + "/link");
    std::filesystem::create_symlink(directory + "/new", directory + "/dangling");
    std::filesystem::create_hard_link(empty, directory + "/hard");
    const std::string link =
        "is a link, perhaps to the store of cfql-collector; remove the link to create a store here";
    const std::string foreign = "belongs to another user, or is not a plain file; name another with --store";
    const std::pair<std::string, std::string> refused[] = {
        {"link", link}, {"dangling", link}, {"hard", foreign}, {"theirs", foreign}, {"pipe", foreign}};
    for (const auto& [name, reason] : refused) {
        SCOPED_TRACE(name);
        const std::string path = directory + '/' + name;
        const Outcome outcome = run({"init", "--store", path});
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.err, "cfql: " + path + ": " + reason + '\n');
    }
    EXPECT_EQ(std::filesystem::file_size(empty), 0U);
    EXPECT_EQ(mode_of(empty), 0600U);
    EXPECT_EQ(std::filesystem::file_size(theirs), 0U);
    EXPECT_FALSE(std::filesystem::exists(directory + "/new"));
}

// ---- import and export

TEST_F(Commands, ImportUpdatesByNameAndPosition) {
    done({"import", "-"}, {.input = "[[supported-rate]]\nname = \"wlan0\"\nrate = \"1\"\n"
                                    "[[interface]]\nname = \"wlan0\"\nmac = \"m\"\n"
                                    "[[supported-rate]]\nname = \"wlan0\"\n"
                                    "[[supported-rate]]\nname = \"wlan0\"\nrate = \"3\"\n"
                                    "[[system]]\ncountry = \"US\"\n"});
    EXPECT_EQ(done({"list"}),
              "system\t\tcountry\tUS\n"
              "interface\twlan0\tmac\tm\n"
              "interface\twlan0\tssid\tGuests\n"
              "interface\twlan0\twep-key-1\tFAKE1\n"
              "interface\twlan0\twep-key-mapping-length\t10\n"
              "interface\twlan1\tssid\t\n"
              "supported-rate\twlan0\trate\t1\n"
              "supported-rate\twlan0\trate\t240\t2\n"
              "bss\tbare\n"
              "supported-rate\twlan0\trate\t3\t3\n");
}

TEST_F(Commands, ImportReplaces) {
    EXPECT_EQ(done({"import", "--replace", "-"}, {.input = "[[radio]]\nname = \"r\"\nchannel = \"1\"\n"}),
              "imported 1 object with 1 value\n");
    EXPECT_EQ(done({"list"}), "radio\tr\tchannel\t1\n");
}

// What an export that failed upstream leaves behind.
TEST_F(Commands, ReplacingByNothingIsAskedFor) {
    const std::string before = done({"export"});
    const std::string empty = write("empty.toml", "# nothing\n");
    const struct {
        Words words;
        std::string source;
    } cases[] = {{{"import", "--replace", "-"}, "standard input"}, {{"import", "--replace", empty}, empty}};
    for (const auto& expected : cases) {
        const Outcome outcome = run(expected.words);
        EXPECT_EQ(outcome.status, 4);
        EXPECT_EQ(outcome.err, "cfql: " + expected.source +
                                   ": there is no object in it; nothing has changed. To empty the store, add "
                                   "--allow-empty\n");
        EXPECT_EQ(done({"export"}), before);
    }
    EXPECT_EQ(done({"import", "-"}), "imported 0 objects with 0 values\n");
    EXPECT_EQ(done({"export"}), before);
    EXPECT_EQ(done({"import", "--replace", "--allow-empty", "-"}), "imported 0 objects with 0 values\n");
    EXPECT_EQ(done({"list"}), "");
}

TEST_F(Commands, ADeepTextIsRefusedAndNotFatal) {
    std::string deep = "a";
    for (int i = 0; i < 100'000; ++i)
        deep += ".a";
    for (const std::string& text : {deep + "='v'\n", "[[" + deep + "]]\n", "[" + deep + "]\n"}) {
        const Outcome outcome = run({"import", "-"}, {.input = text});
        EXPECT_EQ(outcome.status, 4);
        EXPECT_NE(outcome.err.find(": more than 8 names joined by dots; nothing has been imported\n"),
                  std::string::npos)
            << outcome.err;
    }
}

TEST_F(Commands, AFailedImportChangesNothing) {
    const std::string before = done({"export"});
    std::string text = "[[interface]]\nname = \"wlan0\"\nssid = \"changed\"\n";
    for (int i = 0; i < 500; ++i)
        text += "[[bss]]\nname = \"b" + std::to_string(i) + "\"\nradio = \"r\"\n";
    text += "[[bss]]\nname = \"last\"\nradio = 1\n";
    const std::string file = write("text.toml", text);
    for (const Words& words : {Words{"import", file}, Words{"import", "--replace", file}}) {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.status, 4);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err,
                  "cfql: " + file +
                      ":1506:9: the value of \"radio\" is not a string: put it in quotes, or write { hex = "
                      "\"c328\" }; nothing has been imported\n");
        EXPECT_EQ(done({"export"}), before);
    }
}

TEST_F(Commands, ExportIsReadBackAndStable) {
    const std::string exported = done({"export"});
    EXPECT_EQ(exported,
              "# Contents of a configuration store. To read them back: cfql import --replace FILE\n"
              "\n[[system]]\ncountry = \"DE\"\n"
              "\n[[interface]]\nname = \"wlan0\"\nssid = \"Guests\"\nwep-key-1 = \"FAKE1\"\nwep-key-mapping-length = "
              "\"10\"\n"
              "\n[[interface]]\nname = \"wlan1\"\nssid = \"\"\n"
              "\n[[supported-rate]]\nname = \"wlan0\"\nrate = \"540\"\n"
              "\n[[supported-rate]]\nname = \"wlan0\"\nrate = \"240\"\n"
              "\n[[bss]]\nname = \"bare\"\n");
    const std::string other = directory + "/other.db";
    done({"init", "--store", other});
    done({"import", "--store", other, "-"}, {.input = exported});
    EXPECT_EQ(done({"export", "--store", other}), exported);
    done({"import", "--replace", "-"}, {.input = exported});
    EXPECT_EQ(done({"export"}), exported);
    done({"import", "-"}, {.input = exported});
    EXPECT_EQ(done({"export"}), exported);
}

TEST_F(Commands, ExportToAFile) {
    const std::string exported = done({"export"});
    const std::string file = directory + "/backup.toml";
    const mode_t before = umask(0);
    EXPECT_EQ(done({"export", "--output", file}), "exported 6 objects to " + file + '\n');
    umask(before);
    EXPECT_EQ(mode_of(file), 0600U);
    EXPECT_EQ(text_of(file), exported);
    ASSERT_EQ(chmod(file.c_str(), 0644), 0);
    done({"unset", "system"});
    done({"export", "--output", file});
    EXPECT_EQ(mode_of(file), 0600U);
    EXPECT_EQ(text_of(file), done({"export"}));
}

// Keys are masked on a terminal, not in the file that is written from one.
TEST_F(Commands, ExportToAFileFromATerminal) {
    const std::string file = directory + "/backup.toml";
    EXPECT_EQ(run_on_terminal({"export", "--output", file}).out, "exported 6 objects to " + file + '\n');
    EXPECT_NE(text_of(file).find("FAKE1"), std::string::npos);
}

TEST_F(Commands, ExportThatCannotBeWritten) {
    std::filesystem::create_symlink(directory + "/target", directory + "/link");
    const struct {
        std::string file, message;
    } cases[] = {
        {directory + "/none/backup.toml",
         ": No such file or directory; name a file in a directory that you may write\n"},
        {directory, ": is not a regular file; name another one\n"},
        {directory + "/link", ": is not a regular file; name another one\n"},
        {"/dev/null", ": is not a regular file; name another one\n"},
    };
    for (const auto& expected : cases) {
        const Outcome outcome = run({"export", "--output", expected.file});
        EXPECT_EQ(outcome.status, 5);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "cfql: " + expected.file + expected.message);
    }
    EXPECT_FALSE(std::filesystem::exists(directory + "/target"));
}

// ---- watch

TEST_F(Commands, WatchPrintsChangesAsTheyCome) {
    Background watch(store, {"watch"});
    EXPECT_EQ(watch.wait_for("\n"), "cfql: watching " + store + "; end with Ctrl-C\n");
    struct {
        Words words;
        std::string line;
    } const steps[] = {
        {{"set", "interface", "wlan0", "ssid", "new"}, "set\tinterface\twlan0\tssid\tnew\n"},
        {{"set", "radio", "r", "channel", "6"}, "set\tradio\tr\tchannel\t6\n"},
        {{"unset", "interface", "wlan0", "ssid"}, "unset\tinterface\twlan0\tssid\t\n"},
        {{"set", "supported-rate", "wlan0", "rate", "1", "--nth", "2"}, "set\tsupported-rate\twlan0\trate\t1\t2\n"},
        {{"unset", "radio", "r"}, "unset\tradio\tr\n"},
        {{"set", "system", "country", "FR"}, "set\tsystem\t\tcountry\tFR\n"},
    };
    for (const auto& step : steps) {
        done(step.words);
        EXPECT_EQ(watch.wait_for("\n"), step.line);
    }
    done({"import", "--replace", "-"}, {.input = "[[bss]]\nname = \"x\"\n[[bss]]\nname = \"y\"\n"});
    watch.wait_for("set\tbss\tx\nset\tbss\ty\n");
    done({"import", "--replace", "-"}, {.input = "[[bss]]\nname = \"y\"\n[[bss]]\nname = \"x\"\n"});
    EXPECT_EQ(watch.wait_for("\n"), "order\n");
}

TEST_F(Commands, WatchFollowsAStoreThatIsReplaced) {
    Background watch(store, {"watch"});
    watch.wait_for("Ctrl-C\n");
    const std::string other = directory + "/other.db";
    done({"init", "--store", other});
    std::string exported = done({"export"});
    exported.replace(exported.find("Guests"), 6, "Others");
    done({"import", "--store", other, "-"}, {.input = exported});
    ASSERT_EQ(rename(other.c_str(), store.c_str()), 0);
    EXPECT_EQ(watch.wait_for("\n"), "set\tinterface\twlan0\tssid\tOthers\n");
}

}  // namespace
