// Prints what the module serves, one line for each column, in the order of their OIDs. Fields, separated by tabs:
//
//   OID of the column   1.2.840.10036.1.1.1.1
//   table               dot11StationConfigTable
//   indexes             1 or 2, the number of the table's index values
//   column              1, its number
//   name                dot11StationID
//   type of an answer   INTEGER, OCTET STRING, Counter32, Gauge32
//   access              read-only, read-write
//   a GET is answered   yes, always (whatever the accessor returns), complete (with dot11Answers complete only), no
//   a SET is written    yes, no; - for a read-only column. No: it is checked and then dropped
//   keys of the store   interface/mac; several, separated by blanks, for one row each of an interface; - for none
#include <cstdio>
#include <string>

#include "access/tables.h"
#include "agent/catalogue.h"

using namespace dot11;

namespace {

const AgentTable& of_agent(const Table& table) {
    for (const AgentTable* entry : catalogue)
        if (&entry->facts == &table) return *entry;
    abort();
}

std::string oid_of(const AgentTable& table, const Column& column) {
    std::string text;
    for (const oid subid : table.root)
        text += std::to_string(subid) + ".";
    return text + "1." + std::to_string(column.number);
}

const char* name_of(Type type) {
    switch (type) {
        case Type::integer:
            return "INTEGER";
        case Type::octet_string:
            return "OCTET STRING";
        case Type::counter:
            return "Counter32";
        case Type::gauge:
            return "Gauge32";
    }
    abort();
}

const char* answered(const Column& column) {
    if (column.answered == Answered::never) return "no";
    if (column.answered == Answered::complete_only) return "complete";
    return column.answered == Answered::always ? "always" : "yes";
}

const char* accepts_set(const Column& column) {
    if (!column.set) return "-";
    return column.write_ends_handler ? "no" : "yes";
}

std::string keys_of(const Column& column) {
    std::string text;
    for (const StoreKey& key : column.keys)
        text += (text.empty() ? "" : " ") + std::string(key.table) + "/" + key.name;
    return text.empty() ? "-" : text;
}

}  // namespace

int main() {
    for (const Table* table : tables)
        for (const Column& column : table->columns)
            printf("%s\t%s\t%u\t%u\t%s\t%s\t%s\t%s\t%s\t%s\n", oid_of(of_agent(*table), column).c_str(), table->name,
                   table->indexes, column.number, column.name, name_of(column.type),
                   column.set ? "read-write" : "read-only", answered(column), accepts_set(column),
                   keys_of(column).c_str());
}
