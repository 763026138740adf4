// What "cfql preview" prints for a store is what the agent answers from it, column by column. Each store gets an agent
// that has just started, because preview shows what such an agent answers.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include "agent.h"
#include "columns.h"
#include "network.h"

namespace {

using Answers = std::map<std::string, std::string>;  // by OID, dotted and below 1.2.840.10036

std::map<std::string, std::string> oids_of_columns() {
    std::map<std::string, std::string> oids;
    for (const ColumnFact& column : column_facts())
        oids[column.name] = column.oid;
    return oids;
}

std::vector<std::string> fields_of(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, '\t');)
        fields.push_back(field);
    return fields;
}

// A value as preview prints it, as the agent's is shown: numbers and octets as they are, a text by its octets.
std::string by_octets(const std::string& value) {
    if (!value.starts_with('"')) return value;
    std::string text;
    for (std::size_t i = 1; i + 1 < value.size(); ++i) {
        if (value[i] == '\\') ++i;
        text += value[i];
    }
    return shown_octets(text).substr(sizeof "STRING " - 1);
}

// "INTEGER 5" without its type.
std::string without_type(const std::string& shown) {
    return shown.substr(std::min(shown.find(' '), shown.size() - 1) + 1);
}

// "dot11StationID.2"; the interface's number comes first in every index.
struct Name {
    std::string column;
    std::string index;
    unsigned interface;
};

Name name_of(const std::string& instance) {
    const std::size_t dot = instance.find('.');
    return {instance.substr(0, dot), instance.substr(dot), static_cast<unsigned>(std::stoul(instance.substr(dot + 1)))};
}

Answers previewed(const Agent& agent, const std::string& options, const std::vector<unsigned>& interfaces) {
    static const std::map<std::string, std::string> oids = oids_of_columns();
    Answers answers;
    std::istringstream lines(agent.printed("preview --reveal" + options));
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> fields = fields_of(line);
        if (fields.size() < 4 || fields[3] == "unanswered") continue;
        const Name name = name_of(fields[0]);
        if (std::ranges::find(interfaces, name.interface) == interfaces.end()) continue;
        // Of two rows with one index, the agent answers the last.
        answers[oids.at(name.column) + name.index] = by_octets(fields[2]);
    }
    return answers;
}

// Tables of two indexes, of which the second is 1 to 8.
constexpr const char* of_two_indexes[] = {"1.2.", "1.3.", "1.4.", "2.3.", "4.7.", "4.9.", "4.10."};

std::vector<std::string> instances_of(const ColumnFact& column, unsigned interface) {
    const std::string first = column.oid + '.' + std::to_string(interface);
    const bool has_two =
        std::ranges::any_of(of_two_indexes, [&](const char* table) { return first.starts_with(table); });
    if (!has_two) return {first};
    std::vector<std::string> instances;
    for (unsigned second = 1; second <= 8; ++second)
        instances.push_back(first + '.' + std::to_string(second));
    return instances;
}

// Each instance with a GET of its own: one that a column leaves without answer keeps others of its PDU from theirs.
Answers answered(Agent& agent, const std::vector<unsigned>& interfaces) {
    Answers answers;
    for (const ColumnFact& column : column_facts()) {
        for (const unsigned interface : interfaces) {
            for (const std::string& oid : instances_of(column, interface)) {
                const Response response = agent.get({oid});
                if (response.status != 0 || response.varbinds.size() != 1) continue;
                const std::string& value = response.varbinds[0].value;
                if (value != "noSuchInstance" && value != "noSuchObject" && value != "NULL")
                    answers[oid] = without_type(value);
            }
        }
    }
    return answers;
}

std::string said(const Answers& answers, const std::string& oid) {
    const auto answer = answers.find(oid);
    return answer == answers.end() ? "nothing" : answer->second;
}

std::vector<std::string> differences(const Answers& found, const Answers& expected) {
    std::set<std::string> oids;
    for (const Answers* answers : {&found, &expected})
        for (const auto& [oid, value] : *answers)
            oids.insert(oid);
    std::vector<std::string> lines;
    for (const std::string& oid : oids) {
        const std::string answer = said(expected, oid);
        const std::string preview = said(found, oid);
        if (answer != preview)
            lines.push_back(
                (testing::Message() << oid << ": answered " << answer << ", previewed " << preview).GetString());
    }
    return lines;
}

// How many cells were compared.
std::size_t compare(const std::string& configuration, const std::vector<unsigned>& interfaces, bool complete = false) {
    Agent agent(configuration, Role::agent, complete ? "dot11Answers complete\n" : "");
    const Answers expected = answered(agent, interfaces);
    const Answers found = previewed(agent, complete ? " --complete" : "", interfaces);
    EXPECT_EQ(differences(found, expected), std::vector<std::string>{});
    if (testing::Test::HasFailure()) ADD_FAILURE() << agent.exported();
    return expected.size();
}

std::vector<unsigned> first_interfaces(unsigned count) {
    std::vector<unsigned> indexes;
    for (unsigned i = 0; i < count; ++i)
        indexes.push_back(interface_index(i));
    return indexes;
}

std::string contents_of(const char* path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(Preview, OfTheExample) {
    add_interface("wlan0", 7);
    add_interface("wlan1", 3);
    EXPECT_EQ(compare(contents_of(EXAMPLE), {3, 7}), 2 * answered_cells());
}

TEST(Preview, OfAnEmptyStore) {
    add_interfaces(2);
    EXPECT_EQ(compare("", {11, 12}), 0U);
    EXPECT_EQ(compare(empty_configuration(2), {11, 12}), 2 * answered_cells());
}

TEST(Preview, OfCompleteAnswers) {
    add_interface("wlan0", 7);
    add_interface("wlan1", 3);
    EXPECT_EQ(compare(contents_of(EXAMPLE), {3, 7}, true), 2 * answered_cells(true));
}

// A GET takes long where there are many rows: a few interfaces here, all of them in the long form.
TEST(Preview, OfManyInterfaces) {
    add_interfaces(129);
    EXPECT_EQ(compare(full_configuration(128), {11, 74, 138, 139}), 3 * answered_cells());
    EXPECT_EQ(compare(full_configuration(129), {11, 74, 138, 139}), 0U);
}

TEST(PreviewLong, OfManyInterfaces) {
    add_interfaces(129);
    EXPECT_EQ(compare(full_configuration(128), first_interfaces(129)), 128 * answered_cells());
}

// ---- stores at random

const std::vector<std::string> texts = {
    "",
    "0",
    "1",
    "2",
    "3",
    "4",
    "7",
    "-1",
    "-5",
    "+9",
    "007",
    " 1",
    "1 ",
    "abc",
    "-",
    "on",
    "off",
    "up",
    "down",
    "open",
    "plain-text",
    "wpa2",
    "2147483647",
    "2147483648",
    "-2147483648",
    "4294967296",
    "99999999999999999999",
    "00:11:22:33:44:55",
    "001122334455",
    "AA-BB-CC-DD-EE-FF",
    "0:1:2",
    "zz:zz:zz:zz:zz:zz",
    "00:11:22:33:44:55:66:77",
    "DE",
    "D",
    "CHE",
    "540",
    "10",
    "5",
    "w0",
    "w1",
    "bw0",
    "bw2",
    "rw1",
    "rw3",
    "\xc3\xa9",
    "a\\\\b\\\"c",
    "tab\\t",
    std::string(33, 's'),
    std::string(70, 'k'),
    std::string(300, 'm'),
};

// A full configuration whose values, lines and blocks have been changed at random.
class Garbled {
  public:
    explicit Garbled(unsigned seed) : random_(seed) {}

    std::string configuration() {
        std::vector<std::string> blocks = blocks_of(full_configuration(number(1, 4)));
        if (number(0, 2) == 0) std::ranges::shuffle(blocks, random_);
        std::string text;
        for (const std::string& block : blocks) {
            if (number(0, 15) == 0) continue;
            text += garbled(block);
            if (block.find("[[system]]") == std::string::npos && number(0, 15) == 0) text += garbled(block);
        }
        return text;
    }

  private:
    unsigned number(unsigned from, unsigned to) { return std::uniform_int_distribution<unsigned>(from, to)(random_); }

    static std::vector<std::string> blocks_of(const std::string& text) {
        std::vector<std::string> blocks;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("[[")) blocks.emplace_back();
            blocks.back() += line + '\n';
        }
        return blocks;
    }

    std::string garbled(const std::string& block) {
        std::string text;
        std::istringstream lines(block);
        for (std::string line; std::getline(lines, line);) {
            const std::size_t equals = line.find(" = ");
            const bool is_name = line.starts_with("name") || line.starts_with("[[");
            const unsigned lot = number(0, is_name || line.starts_with("type") ? 19 : 4);
            if (lot == 1 && !is_name) continue;
            if (lot == 0 && equals != std::string::npos) line = line.substr(0, equals) + " = \"" + value(is_name) + '"';
            text += line + '\n';
        }
        return text;
    }

    std::string value(bool is_name) {
        if (is_name) return std::vector<std::string>{"w0", "w1", "w9", "wlan100", "bw1", "rw0", "lo"}[number(0, 6)];
        return texts[number(0, static_cast<unsigned>(texts.size()) - 1)];
    }

    std::mt19937 random_;
};

std::size_t compare_garbled(unsigned first, unsigned count) {
    add_interfaces(5);
    std::size_t compared = 0;
    for (unsigned seed = first; seed < first + count && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        compared += compare(Garbled(seed).configuration(), first_interfaces(5));
    }
    return compared;
}

TEST(Preview, OfAFewStoresAtRandom) {
    EXPECT_GT(compare_garbled(0, 12), 12 * answered_cells());
}

TEST(PreviewLong, OfAFewHundredStoresAtRandom) {
    EXPECT_GT(compare_garbled(1000, 300), 300 * answered_cells());
}

}  // namespace
