// No octet of another row, another table, an earlier request or a key of another interface gets into an answer. The
// store holds only marks: each text of each interface repeats an octet that occurs nowhere else, and each number is
// unique.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <sstream>

#include "agent.h"
#include "columns.h"
#include "network.h"

namespace {

constexpr unsigned interfaces = 3;

enum class Kind { text, mac, number };

// A key of an interface, and the column that answers it, if any does.
struct Mark {
    const char* key;
    Kind kind;
    const char* column;
    int second_index = 0;
};

constexpr Mark marks[] = {
    {"mac", Kind::mac, "1.1.1.1"},
    {"ssid", Kind::text, "1.1.1.9"},
    {"dot11-disassociate-station", Kind::mac, "1.1.1.16"},
    {"dot11-deauthenticate-station", Kind::mac, "1.1.1.18"},
    {"dot11-authenticate-fail-station", Kind::mac, "1.1.1.20"},
    {"wep-key-1", Kind::text, "1.3.1.2", 1},
    {"wep-key-2", Kind::text, "1.3.1.2", 2},
    {"wep-key-3", Kind::text, "1.3.1.2", 3},
    {"wep-key-4", Kind::text, "1.3.1.2", 4},
    {"passphrase", Kind::text, nullptr},
    {"dot11-authentication-response-time-out", Kind::number, "1.1.1.6"},
    {"dot11-association-response-time-out", Kind::number, "1.1.1.14"},
    {"dot11-disassociate-reason", Kind::number, "1.1.1.15"},
    {"dot11-deauthenticate-reason", Kind::number, "1.1.1.17"},
    {"dot11-authenticate-fail-status", Kind::number, "1.1.1.19"},
    {"wep-key-mapping-length", Kind::number, "1.5.1.3"},
    {"transmitted-fragment-count", Kind::number, "2.2.1.1"},
    {"fcs-error-count", Kind::number, "2.2.1.12"},
    {"wep-undecryptable-count", Kind::number, "2.2.1.14"},
    {"number-of-nothing", Kind::number, nullptr},
};

constexpr unsigned first_octet = 0x80, octets_each = 24;  // of an interface
constexpr int64_t first_number = 1'000'000;               // of interface 0, and so on
constexpr char sent_octet = '\xfe';                       // of a SET
constexpr int64_t sent_number = 900'000'000;
static_assert(std::size(marks) < octets_each && first_octet + interfaces * octets_each < 0xfe);

unsigned octet_of(unsigned interface, const Mark& mark) {
    return first_octet + interface * octets_each + static_cast<unsigned>(&mark - marks);
}

int64_t number_of(unsigned interface, const Mark& mark) {
    return first_number * (interface + 1) + (&mark - marks);
}

// Each interface's texts are shorter than those of the one before, which hides nothing that was in their place.
unsigned length_of(unsigned interface) {
    return 26 - 8 * interface;
}

std::string stored(unsigned interface, const Mark& mark) {
    if (mark.kind == Kind::number) return "\"" + std::to_string(number_of(interface, mark)) + "\"";
    char octet[3];
    snprintf(octet, sizeof octet, "%02x", octet_of(interface, mark));
    std::string text;
    if (mark.kind == Kind::mac) {
        for (int i = 0; i < 6; ++i)
            text += (i ? ":" : "") + std::string(octet);
        return "\"" + text + "\"";
    }
    for (unsigned i = 0; i < length_of(interface); ++i)
        text += octet;
    return "{ hex = \"" + text + "\" }";
}

std::string answered(unsigned interface, const Mark& mark, const char* number_type) {
    if (mark.kind == Kind::number) return number_type + std::to_string(number_of(interface, mark));
    return shown_octets(
        std::string(mark.kind == Kind::mac ? 6 : length_of(interface), static_cast<char>(octet_of(interface, mark))));
}

std::string configuration() {
    std::string text;
    for (unsigned i = 0; i < interfaces; ++i) {
        const std::string name = interface_name(i);
        text += "[[interface]]\nname = \"" + name + "\"\ntype = \"service-set\"\nbss = \"" + name + "\"\n";
        for (const Mark& mark : marks)
            text += std::string(mark.key) + " = " + stored(i, mark) + "\n";
        text += "[[bss]]\nname = \"" + name + "\"\nradio = \"" + name + "\"\n[[radio]]\nname = \"" + name + "\"\n";
        for (const char* key : {"manufacturer-id", "manufacturer-oui", "manufacturer-name", "manufacturer-product-name",
                                "manufacturer-product-version"})
            text += std::string(key) + " = { hex = \"fdfdfdfdfdfdfdfdfd\" }\n";  // of no column that is answered
    }
    return text;
}

// The cell that an OID names, or nothing if it is not in our tables.
struct Cell {
    std::string column;
    unsigned interface;
    int second_index;
};

std::optional<Cell> cell_of(const std::string& oid) {
    for (const ColumnFact& column : column_facts()) {
        const std::string prefix = column.oid + ".";
        if (!oid.starts_with(prefix)) continue;
        Cell cell = {prefix.substr(0, prefix.size() - 1), 0, 0};
        unsigned index = 0;
        char dot = 0;
        std::istringstream(oid.substr(prefix.size())) >> index >> dot >> cell.second_index;
        cell.interface = index - interface_index(0);
        return cell;
    }
    return std::nullopt;
}

// The mark that the cell's answer may show.
const Mark* mark_of(const Cell& cell) {
    const std::string column = cell.column == "2.1.1.1" ? "1.1.1.1" : cell.column;  // one key for both
    for (const Mark& mark : marks)
        if (mark.column && column == mark.column && cell.second_index == mark.second_index) return &mark;
    return nullptr;
}

bool is_mark(unsigned octet) {
    return octet >= first_octet;
}

void expect_own_octets(const Varbind& varbind, const Mark* own, unsigned interface) {
    std::istringstream octets(varbind.value.substr(strlen("STRING")));
    for (unsigned octet = 0; octets >> std::hex >> octet;)
        if (is_mark(octet)) {
            EXPECT_TRUE(own && octet == octet_of(interface, *own)) << varbind.oid << " = " << varbind.value;
        }
}

void expect_own_number(const Varbind& varbind, const Mark* own, unsigned interface) {
    const int64_t number = std::stoll(varbind.value.substr(varbind.value.find(' ')));
    if (number >= first_number) {
        EXPECT_TRUE(own && number == number_of(interface, *own)) << varbind.oid << " = " << varbind.value;
    }
}

// An answer that is not from our tables, or has no value, shows nothing.
void expect_own(const Varbind& varbind) {
    const std::optional<Cell> cell = cell_of(varbind.oid);
    if (!cell || varbind.value.find(' ') == std::string::npos) return;
    if (varbind.value.starts_with("STRING"))
        expect_own_octets(varbind, mark_of(*cell), cell->interface);
    else
        expect_own_number(varbind, mark_of(*cell), cell->interface);
}

void expect_own(const std::vector<Varbind>& varbinds) {
    for (const Varbind& varbind : varbinds)
        expect_own(varbind);
}

class Secrets : public testing::TestWithParam<Role> {
  protected:
    Secrets() {
        add_interfaces(interfaces);
        agent = std::make_unique<Agent>(configuration(), GetParam());
        agent->control().now = 2'000'000'000;
    }

    static std::vector<std::string> columns() {
        std::vector<std::string> oids;
        for (const ColumnFact& column : column_facts())
            oids.push_back(column.oid);
        return oids;
    }

    // Indexes of rows: those there are and some that there are not.
    static std::vector<std::string> indexes() {
        std::vector<std::string> all;
        for (unsigned i = 0; i <= interfaces; ++i)
            for (const char* second : {"", ".0", ".1", ".2", ".3", ".4", ".5"})
                all.push_back("." + std::to_string(interface_index(i)) + second);
        return all;
    }

    // By GETs of single cells, GETs of a cell of every column, GETNEXT and GETBULK.
    void expect_own_answers() {
        for (const std::string& index : indexes()) {
            std::vector<std::string> cells;
            for (const std::string& column : columns()) {
                cells.push_back(column + index);
                expect_own(agent->get({cells.back()}).varbinds);
            }
            expect_own(agent->get(cells).varbinds);
            expect_own(agent->get_next(cells).varbinds);
        }
        for (const std::string& column : columns()) {
            expect_own(agent->walk(column));
            expect_own(agent->get_bulk({column}, 10).varbinds);
        }
    }

    // SETs of every column and index, accepted ones among them. What comes back is what was sent.
    void set_everything() {
        const Value values[] = {Value::integer(sent_number), Value::integer(1),
                                Value::string(std::string(5, sent_octet)), Value::string(std::string(6, sent_octet))};
        for (const std::string& column : columns())
            for (const std::string& index : indexes())
                for (const Value& value : values) {
                    const Response response = agent->set({{column + index, value}});
                    ASSERT_EQ(response.varbinds.size(), 1U);
                    EXPECT_EQ(response.varbinds[0].value, shown_value(value)) << column << index;
                }
    }

    static std::string shown_value(const Value& value) {
        if (value.type == ASN_OCTET_STR) return shown_octets(value.octets);
        long number = 0;
        memcpy(&number, value.octets.data(), sizeof number);
        return "INTEGER " + std::to_string(number);
    }

    std::unique_ptr<Agent> agent;
};

INSTANTIATE_TEST_SUITE_P(Roles, Secrets, testing::Values(Role::agent, Role::subagent),
                         [](const auto& role) { return role.param == Role::agent ? "Agent" : "Subagent"; });

// Makes sure that the other tests could find what they search for.
TEST_P(Secrets, AreInTheStore) {
    for (unsigned i = 0; i < interfaces; ++i)
        for (const Mark& mark : marks) {
            if (!mark.column) continue;
            std::string oid = mark.column + std::string(".") + std::to_string(interface_index(i));
            if (mark.second_index) oid += "." + std::to_string(mark.second_index);
            const std::string value = agent->get({oid}).varbinds.at(0).value;
            EXPECT_EQ(value, answered(i, mark, value.substr(0, value.find(' ') + 1).c_str())) << mark.key;
        }
}

TEST_P(Secrets, OfOneCellAreInNoOther) {
    expect_own_answers();
}

TEST_P(Secrets, OfOneRequestAreInNoLaterOne) {
    set_everything();
    expect_own_answers();
}

// Rows take the places of others, with shorter texts.
TEST_P(Secrets, OfAnInterfaceThatIsGoneAreInNoOthers) {
    expect_own_answers();
    for (unsigned gone = 0; gone + 1 < interfaces; ++gone) {
        remove_interface(interface_name(gone));
        agent->control().now = agent->control().now + 60;
        expect_own_answers();
    }
}

// Quirk: if a default key is missing, the octets that its row held before stay, except the first.
TEST_P(Secrets, OfADefaultKeyStayInItsPlace) {
    const std::string oid = "1.3.1.2.11.2";
    EXPECT_EQ(agent->get({oid}).varbinds.at(0).value.substr(0, 12), "STRING 86 86");
    agent->configure("unset interface w0 wep-key-2");
    agent->control().now = agent->control().now + 60;
    EXPECT_EQ(agent->get({oid}).varbinds.at(0).value, "STRING 00 86 86 86 86");
}

}  // namespace
