// The tables without an agent: this program, without Net-SNMP, reads their rows and their columns' values.
#include "access/tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "columns.h"
#include "scripted.h"

using namespace dot11;

// Net-SNMP's, for row-status columns. Nothing is written here.
extern "C" char check_rowstatus_transition(int, int) {
    return 0;
}

namespace {

using testing::IsEmpty;

using Octets = std::vector<uint8_t>;
using Rows = std::vector<Octets>;

Rows read_as_a_whole(const Table& table) {
    Rows rows;
    if (!table.entries() || !table.table_data()) return rows;
    for (uint32_t i = 0; i < table.index_count() * table.rows_per_interface; ++i) {
        Octets& row = rows.emplace_back(table.row_size);
        EXPECT_EQ(table.entry_by_index(i, row.data()), 1);
    }
    return rows;
}

Rows read_one_by_one(const Table& table) {
    Rows rows;
    Octets row(table.row_size);
    int32_t value_index = 1;
    uint32_t group = 0;
    for (int result; (result = table.row_by_index(group, &value_index, row.data())) > 0;) {
        rows.push_back(row);
        if (result != 2) continue;
        value_index = 1;
        ++group;
    }
    return rows;
}

Rows rows_of(const Table& table) {
    if (table.entries) return read_as_a_whole(table);
    return table.row_by_index ? read_one_by_one(table) : Rows{};
}

std::string value(const Column& column, Octets& row) {
    size_t length = 0;
    const void* octets = column.get(row.data(), &length);
    return {static_cast<const char*>(octets), length};
}

std::string address(const StoreKey& key) {
    return std::string(key.table) + "/" + key.name;
}

class Tables : public testing::Test {
  protected:
    // The rates' caches keep the time of their load: each test begins long after the one before.
    Tables() {
        device.now = era;
        device.add_interface("wlan0", 3);
        device.set("interface", "wlan0", "bss", "bss0");
        device.set("bss", "bss0", "radio", "radio0");
        device.add("supported-rate", "wlan0");
        device.set("supported-rate", "wlan0", "rate", "");
        device.set("radio", "radio0", "fragmentation-threshold",
                   "300");  // without it, there is no RTS threshold either
    }
    ~Tables() override { era = device.now + 1000; }
    // The two tables of rates keep theirs for 50 seconds, and forget them behind a second walk of the one row.
    Rows reread(const Table& table) {
        device.now += 51;
        const Rows rows = rows_of(table);
        if (table.row_by_index) rows_of(table);
        return rows;
    }
    // The name of the object where an interface's key stands: bss0, radio0, ...
    static std::string object_of(const StoreKey& key) {
        const std::string table = key.table;
        if (table == "system") return "";
        if (table == "bss") return "bss0";
        return table == "radio" && std::string(key.name) != "channel" ? "radio0" : "wlan0";
    }

    ScriptedDevice device;

  private:
    inline static int64_t era = 1'000'000'000;
};

// A text for a key with which its column's value is another one than without it.
const char* const texts[] = {"1", "3", "on", "up", "wpa", "AB", "00:11:22:33:44:55", "110"};

TEST_F(Tables, AColumnShowsWhatItsKeyHolds) {
    size_t shown = 0;
    for (const Table* table : tables) {
        for (const Column& column : table->columns) {
            for (size_t i = 0; i < column.keys.size(); ++i) {
                const StoreKey& key = column.keys[i];
                const std::string without = value(column, reread(*table).at(i));
                std::set<std::string> with;
                for (const char* text : texts) {
                    device.set(key.table, object_of(key), key.name, text);
                    with.insert(value(column, reread(*table).at(i)));
                }
                with.erase(without);
                EXPECT_FALSE(with.empty()) << column.name << " does not show " << address(key)
                                           << ": see the table's keys in src/backend/, its column in src/access/";
                device.set(key.table, object_of(key), key.name, "");
                ++shown;
            }
        }
    }
    size_t keys = 0;
    for (const ColumnFact& column : column_facts())
        keys += column.keys.size();
    EXPECT_EQ(shown, keys) << "keys of columns, in src/access/ and in tests/columns.tsv";
}

std::set<std::string> without(std::set<std::string> keys, const std::set<std::string>& others) {
    std::erase_if(keys, [&](const std::string& key) { return others.contains(key); });
    return keys;
}

// Read, and served by no column.
const std::set<std::string> links_and_others = {
    "interface/bss",
    "bss/radio",
    "interface/dot11-privacy-option-implemented",
    "radio/manufacturer-id",
};

TEST_F(Tables, EveryKeyThatIsReadIsSomeColumns) {
    std::set<std::string> known = links_and_others;
    for (const Table* table : tables)
        for (const Column& column : table->columns)
            for (const StoreKey& key : column.keys)
                known.insert(address(key));
    std::set<std::string> asked;
    for (const Table* table : tables)
        reread(*table);
    for (const std::string& call : device.calls_of("get")) {
        const size_t object = call.find(' ');
        asked.insert(call.substr(0, object) + "/" + call.substr(call.rfind(' ') + 1));
    }
    EXPECT_THAT(without(asked, known), IsEmpty()) << "read in src/backend/, and no column in src/access/ has it";
    EXPECT_THAT(without(known, asked), IsEmpty()) << "of a column in src/access/, and never read in src/backend/";
}

}  // namespace
