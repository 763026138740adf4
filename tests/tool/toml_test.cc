// The text that import reads and export writes.
#include "toml_text.h"

#include <gtest/gtest.h>

#include <random>

#include "failure.h"
#include "nearest.h"
#include "text.h"
#include "tool.h"

namespace {

using cfql::tool::Contents;
using cfql::tool::Object;

TEST(FromToml, Reads) {
    const struct {
        const char* text;
        Contents contents;
    } cases[] = {
        {"", {}},
        {"# nothing\n", {}},
        {"[[system]]\n", {{"system", "", {}}}},
        {"[[system]]\nname = \"\"\ncountry = 'DE'", {{"system", "", {{"country", "DE"}}}}},
        {"[[interface]]\nname = \"wlan0\"\nssid = \"\"\n", {{"interface", "wlan0", {{"ssid", ""}}}}},
        {"[[a]]\nname=\"1\"\n[[b]]\nname=\"2\"\n[[a]]\nname=\"1\"\n", {{"a", "1", {}}, {"b", "2", {}}, {"a", "1", {}}}},
        {"z = [{name='1'}, {name='2', k='v'}]\na = [{name='3'}]",
         {{"z", "1", {}}, {"z", "2", {{"k", "v"}}}, {"a", "3", {}}}},
        {"[[a]]\nname={hex='ff'}\nk={hex='C328'}\nl.hex=''", {{"a", "\xff", {{"k", "\xc3\x28"}, {"l", ""}}}}},
        {"[['hex:ff']]\nname='n'\n'hex:6bff'='v'", {{"\xff", "n", {{"k\xff", "v"}}}}},
        {"[[a]]\nname='n'\nk='''\nfirst\nsecond'''\n", {{"a", "n", {{"k", "first\nsecond"}}}}},
        {"[[a]]\nname='n'\nk=\"\\u00e9\\n\\\"\"\n", {{"a", "n", {{"k", "\xc3\xa9\n\""}}}}},
        {"a = []", {}},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.text);
        EXPECT_EQ(cfql::tool::from_toml(expected.text, "t"), expected.contents);
    }
}

const std::string long_text(256, 'x');
const std::string long_value(4097, 'x');
const struct {
    std::string text;
    std::string message;
} refusals[] = {
    {"[[a]]\nname='n'\nk=1",
     "t:3:3: the value of \"k\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\nname='n'\nk=true",
     "t:3:3: the value of \"k\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\nname='n'\nk=['v']",
     "t:3:3: the value of \"k\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\nname='n'\nk={hex=1}",
     "t:3:3: the value of \"k\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\nname='n'\nk={hex='',x=''}",
     "t:3:3: the value of \"k\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\nname='n'\nssid = Guests\n",
     "t:3:8: the value of \"ssid\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\nname='n'\nssid = Free WiFi\nmac = 'x'\n",
     "t:3:8: the value of \"ssid\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\r\nname='n'\r\n  mac=00:00:5e:00:53:10\r\n",
     "t:3:7: the value of \"mac\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\nname = wlan0",
     "t:2:8: the value of \"name\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\nname=1", "t:2:6: the value of \"name\" is not a string: put it in quotes, or write { hex = \"c328\" }"},
    {"[[a]]\nname='n'\nk={hex='0'}", "t:3:8: expected pairs of hexadecimal digits"},
    {"[[a]]\nname='n'\nk={hex='0g'}", "t:3:8: expected pairs of hexadecimal digits"},
    {"[[a]]\nname='n'\nk={hex='6100'}", "t:3:3: the value contains a NUL"},
    {"[[a]]\nname='n'\nk=\"\\u0000\"", "t:3:3: the value contains a NUL"},
    {"[[a]]\nname='n'\nk='" + long_value + "'", "t:3:3: the value is longer than 4096 octets"},
    {"[[a]]\nname='n'\n" + long_text + "=''", "t:3:1: the key is longer than 255 octets"},
    {"[[a]]\nname='n'\n''=''", "t:3:1: the key is empty"},
    {"[[a]]\nname='n'\n'hex:zz'=''", "t:3:1: expected pairs of hexadecimal digits"},
    {"[[a]]\nname='n'\n'hex:6b'=''\nk=''", "t:4:1: \"k\" is given twice in this block"},
    {"[[a]]\nname='n'\n'hex:6e616d65'=''", "t:3:1: \"name\" is the object's name, not a key"},
    {"\n[[a]]\nk='v'", "t:2:1: this block has no name: add a line such as name = \"wlan0\""},
    {"[[a]]\nname=''", "t:1:1: the object's name is empty"},
    {"[[a]]\nname='" + long_text + "'", "t:1:1: the object's name is longer than 255 octets"},
    {"[[system]]\nname='n'", "t:1:1: the object of the table \"system\" has no name"},
    {"[[" + long_text + "]]\nname='n'", "t:1:3: the table is longer than 255 octets"},
    {"[['']]\nname='n'", "t:1:3: the table is empty"},
    {"[a]\nname='n'", "t:1:2: a block is headed by two brackets: write [[a]]"},
    {"k='v'", "t:1:1: \"k\" belongs to no object: put it below a heading such as [[interface]]"},
    {"a=[1]", "t:1:4: expected a block such as [[a]]"},
    {"[[system]]\na='1'\n[[b]]\nname='n'\n[[system]]\nc='2'",
     "t:5:1: the table \"system\" has one object: put its keys into one block"},
    {"system=[{a='1'},{b='2'}]", "t:1:17: the table \"system\" has one object: put its keys into one block"},
    {"[[system]]\n[['hex:73797374656d']]", "t:2:1: the table \"system\" has one object: put its keys into one block"},
    {"[[a]]\nname='n'\nwep-key-2='********'",
     "t:3:11: the value of \"wep-key-2\" is the mask that stands for a hidden one: give the value itself"},
    {"[[a]]\nname='n'\nwep-key-2={hex='2a2a2a2a2a2a2a2a'}",
     "t:3:11: the value of \"wep-key-2\" is the mask that stands for a hidden one: give the value itself"},
    {"[\"a\\u001b[2J\"]\nname='n'", "t:1:2: a block is headed by two brackets: write [[\"a\\u001b[2J\"]]"},
    {"\"a\\u009b\"=[1]", "t:1:12: expected a block such as [[\"a\\u009b\"]]"},
};

TEST(FromToml, RefusesWithLineAndColumn) {
    for (const auto& expected : refusals) {
        SCOPED_TRACE(expected.text.substr(0, 60));
        try {
            cfql::tool::from_toml(expected.text, "t");
            ADD_FAILURE() << "was accepted";
        } catch (const cfql::tool::Failure& failure) {
            EXPECT_EQ(failure.exit(), cfql::tool::Exit::input);
            EXPECT_EQ(failure.what(), expected.message);
        }
    }
}

// What the parser itself refuses: its own words, our place.
TEST(FromToml, RefusesWhatIsNotToml) {
    const struct {
        std::string text;
        std::string place;
    } cases[] = {
        {"[[", "t:1:3: "},
        {"[[a]]\nname='n'\nssid =\n", "t:3:7: "},
        {"[[a]]\nname='n'\nssid = 'Guests\n", "t:3:15: "},
        {"[[\n", "t:1:3: "},
        {"[[a\n", "t:1:4: "},
        {"[[a]]\nk=", "t:2:3: "},
        {"[[a]]\nk='v", "t:2:5: "},
        {"[[a]]\nk='v'\nk='w'", "t:3:"},
        {"[[a]]\nk=\"\xff\"", "t:2:"},
        {"\xff", "t:1:"},
        {"[[a]]\nk=\"\\q\"", "t:2:"},
        {"[[a]]\nname\u00e9 = 'n'", "t:2:5: "},
        {"[[a]]\nname\ufefb = 'n'", "t:2:5: "},
        {std::string(1000, '['), "t:1:"},
        {"a=" + std::string(100000, '['), "t:1:"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.text.substr(0, 60));
        try {
            cfql::tool::from_toml(expected.text, "t");
            ADD_FAILURE() << "was accepted";
        } catch (const cfql::tool::Failure& failure) {
            EXPECT_TRUE(std::string(failure.what()).starts_with(expected.place)) << failure.what();
        }
    }
}

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST(FromToml, BoundsTheNesting) {
    const struct {
        std::string text;
        std::string message;
    } cases[] = {
        {repeated("a.", 100'000) + "a='v'", "t:1:16: more than 8 names joined by dots"},
        {"[[" + repeated("a.", 100'000) + "a]]", "t:1:18: more than 8 names joined by dots"},
        {"[" + repeated("a . ", 100'000) + "a]", "t:1:32: more than 8 names joined by dots"},
        {repeated("'x'.", 100'000) + "a='v'", "t:1:32: more than 8 names joined by dots"},
        {"x = {" + repeated("\"\\\"\".", 100'000) + "a='v'}", "t:1:45: more than 8 names joined by dots"},
        {"x = " + repeated("[", 100'000), "t:1:13: brackets are nested more than 8 deep"},
        {"x = " + repeated("{a=", 100'000), "t:1:29: brackets are nested more than 8 deep"},
        {"x = " + repeated("[{a=", 200), "t:1:21: brackets are nested more than 8 deep"},
        {"\nx = " + repeated("[\n", 200), "t:10:1: brackets are nested more than 8 deep"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.text.substr(0, 60));
        try {
            cfql::tool::from_toml(expected.text, "t");
            ADD_FAILURE() << "was accepted";
        } catch (const cfql::tool::Failure& failure) {
            EXPECT_EQ(failure.what(), expected.message);
        }
    }
}

// What looks like nesting, in texts and comments.
TEST(FromToml, NestingIsNotInTextsAndComments) {
    const std::string deep = "a.a.a.a.a.a.a.a.a.a.a.a [[[[[[[[[[[[ {{{{{{{{{{{{";
    const struct {
        std::string text;
        std::string value;
    } cases[] = {
        {"k='" + deep + "'", deep},
        {"k=\"\\\"" + deep + "\"", '"' + deep},
        {"k='''" + deep + "'\n''" + deep + "'''", deep + "'\n''" + deep},
        {"k=\"\"\"" + deep + "\"\n\\\"\"\"" + deep + "\"\"\"\"\"", deep + "\"\n\"\"\"" + deep + "\"\""},
        {"#" + deep + "\nk='v' # '" + deep, "v"},
        {"k='v'\n" + repeated("#.\n", 20), "v"},
        {repeated("l.hex=''\n", 1) + "k='v'\n" + repeated("[[b]]\nname='1.2.3'\nl.hex=''\n", 20), "v"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.text);
        const Contents contents = cfql::tool::from_toml("[[a]]\nname='n'\n" + expected.text, "t");
        ASSERT_FALSE(contents.empty());
        EXPECT_EQ(contents[0].attributes.at("k"), expected.value);
    }
}

TEST(Printable, EscapesWhatATerminalObeys) {
    const struct {
        const char* octets;
        const char* shown;
    } cases[] = {
        {"plain \xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80", "plain \xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80"},
        {"\n\t\r\x01\x1b\x7f", R"(\n\t\r\x01\x1b\x7f)"},
        {"\xc2\x80\xc2\x9f\xc2\xa0", "\\xc2\\x80\\xc2\\x9f\xc2\xa0"},
        {"\xff\xc3(", R"(\xff\xc3()"},
        // NOLINTNEXTLINE(misc-misleading-bidirectional)
        {"\xd8\x9c\xe2\x80\x8e\xe2\x80\xa8\xe2\x80\xae\xe2\x81\xa6",
         R"(\xd8\x9c\xe2\x80\x8e\xe2\x80\xa8\xe2\x80\xae\xe2\x81\xa6)"},  // marks of direction and of lines
        {"\xe2\x80\x8d\xe2\x80\xa7\xe2\x80\xaf\xe2\x81\xa5\xe2\x81\xaa",
         "\xe2\x80\x8d\xe2\x80\xa7\xe2\x80\xaf\xe2\x81\xa5\xe2\x81\xaa"},  // their neighbours
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(cfql::tool::printable(expected.octets), expected.shown);
        EXPECT_EQ(cfql::tool::printable_line(expected.octets), expected.shown);
        EXPECT_EQ(cfql::tool::printable_line(expected.shown), expected.shown);
    }
    EXPECT_EQ(cfql::tool::printable("\\n"), "\\\\n");
    EXPECT_EQ(cfql::tool::printable_line("\\n"), "\\n");
}

TEST(Nearest, OfKnownNames) {
    const struct {
        const char* text;
        const char* nearest;
    } cases[] = {
        {"export", "export"},
        {"exprot", "export"},
        {"exort", "export"},
        {"exxport", "export"},
        {"imporx", "import"},
        {"lst", "list"},
        {"x", ""},
        {"something", ""},
        {"", ""},
        {"chekc", "check"},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(cfql::tool::nearest(expected.text, {"export", "import", "list", "check"}), expected.nearest)
            << expected.text;
    }
    EXPECT_EQ(cfql::tool::nearest(std::string(100'000, 'x'), {"export"}), "");
}

TEST(ToToml, Writes) {
    const struct {
        const char* value;
        const char* text;
    } cases[] = {
        {"", "\"\""},
        {"plain", "\"plain\""},
        {"\"\\", R"("\"\\")"},
        {"\n\t\r\x01\x7f", R"("\n\t\u000d\u0001\u007f")"},
        {"\xc3\xa9", "\"\xc3\xa9\""},
        {"\xc2\x9b", R"("\u009b")"},
        {"\xc2\xa0", "\"\xc2\xa0\""},
        // NOLINTNEXTLINE(misc-misleading-bidirectional)
        {"\xe2\x80\xae", R"("\u202e")"},  // turns the direction of writing
        {"\xc3\x28", R"({ hex = "c328" })"},
        {"\xed\xa0\x80", R"({ hex = "eda080" })"},        // a surrogate
        {"\xc0\x80", R"({ hex = "c080" })"},              // an overlong form
        {"\xf4\x90\x80\x80", R"({ hex = "f4908080" })"},  // above U+10FFFF
        {"\xe2\x82", R"({ hex = "e282" })"},              // cut short
    };
    for (const auto& expected : cases) {
        const std::string text = cfql::tool::to_toml({{"a", "n", {{"k", expected.value}}}});
        EXPECT_TRUE(text.ends_with("\n[[a]]\nname = \"n\"\nk = " + std::string(expected.text) + '\n')) << text;
    }
}

TEST(ToToml, KeysThatNeedQuotesOrHex) {
    const Object object = {"a b", "n", {{"a.b", ""}, {"a-b_9", ""}, {"hex:", ""}, {"\xff", ""}, {"\"", ""}}};
    const std::string text = cfql::tool::to_toml({object});
    EXPECT_TRUE(
        text.ends_with("\n[[\"a b\"]]\nname = \"n\"\n"
                       "\"\\\"\" = \"\"\na-b_9 = \"\"\n\"a.b\" = \"\"\n"
                       "\"hex:6865783a\" = \"\"\n\"hex:ff\" = \"\"\n"))
        << text;
}

// ---- any contents

class Contrived {
  public:
    explicit Contrived(unsigned seed) : random_(seed) {}

    Contents contents() {
        Contents made(number(0, 12));
        for (Object& object : made) {
            object.table = one_of({"interface", "bss", "supported-rate", "t\xff", "hex:", "a b", "\xc3\xa9"});
            if (&object == &made.front() && number(0, 3) == 0) object.table = "system";
            if (object.table != "system") object.name = one_of({"wlan0", "wlan1", text(1, 255)});
            for (unsigned left = number(0, 6); left > 0; --left)
                object.attributes[key()] = text(0, 300);
        }
        return made;
    }

  private:
    unsigned number(unsigned from, unsigned to) { return std::uniform_int_distribution<unsigned>(from, to)(random_); }

    std::string one_of(const std::vector<std::string>& choices) {
        return choices[number(0, static_cast<unsigned>(choices.size()) - 1)];
    }

    std::string key() {
        const std::string made = one_of({"ssid", "wep-key-1", "hex:41", text(1, 20), text(1, 255)});
        return made == "name" ? "ssid" : made;
    }

    // Octets of three kinds: plain, awkward, any; never a NUL.
    std::string text(unsigned least, unsigned most) {
        static const std::string awkward = "\"'\\\n\r\t #=[]{}.,:\x01\x1b\x7f\x80\xc2\xa0\xc3\xe2\xed\xf0\xff";
        std::string made(number(least, number(least, most)), 'x');
        const unsigned kind = number(0, 2);
        for (char& octet : made) {
            if (kind == 1) octet = awkward[number(0, static_cast<unsigned>(awkward.size()) - 1)];
            if (kind == 2) octet = static_cast<char>(number(1, 255));
        }
        return made;
    }

    std::mt19937 random_;
};

TEST(Toml, AnyContentsComeBack) {
    for (unsigned seed = 0; seed < 1000; ++seed) {
        const Contents contents = Contrived(seed).contents();
        ASSERT_EQ(cfql::tool::from_toml(cfql::tool::to_toml(contents), "t"), contents) << "seed " << seed;
    }
}

TEST_F(Tool, AnyStoreComesBack) {
    const std::string other = directory + "/other.db";
    done({"init"});
    done({"init", "--store", other});
    for (unsigned seed = 2000; seed < 2010; ++seed) {
        SCOPED_TRACE(seed);
        const std::string text = cfql::tool::to_toml(Contrived(seed).contents());
        done({"import", "--replace", "--allow-empty", "-"}, {.input = text});
        const std::string exported = done({"export"});
        EXPECT_EQ(exported, text);
        done({"import", "--replace", "--allow-empty", "--store", other, "-"}, {.input = exported});
        EXPECT_EQ(done({"export", "--store", other}), text);
        EXPECT_EQ(done({"list"}), done({"list", "--store", other}));
        EXPECT_EQ(done({"check"}), store + ": no faults\n");
    }
}

}  // namespace
