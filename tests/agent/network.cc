#include "network.h"

#include <map>

#include "agent.h"

namespace {

using Address = std::pair<std::string, std::string>;  // table and object
using Objects = std::map<Address, std::map<std::string, std::string>>;

std::string line(const std::string& key, const std::string& value) {
    return key + " = \"" + value + "\"\n";
}

// With interface i's number for XX.
std::string numbered(std::string text, unsigned i) {
    char digits[3];
    snprintf(digits, sizeof digits, "%02x", i & 0xFF);
    if (const size_t place = text.find("XX"); place != std::string::npos) text.replace(place, 2, digits);
    return text;
}

// The object that has an interface's values of a table.
std::string object_of(const std::string& table, const std::string& key, const std::string& interface) {
    if (table == "system") return "";
    if (table == "bss") return "b" + interface;
    return table == "radio" && key != "channel" ? "r" + interface : interface;
}

void add_examples(Objects& objects, unsigned i) {
    for (const ColumnFact& column : column_facts())
        for (size_t k = 0; k < column.keys.size(); ++k) {
            const size_t slash = column.keys[k].find('/');
            const std::string table = column.keys[k].substr(0, slash), key = column.keys[k].substr(slash + 1);
            objects[{table, object_of(table, key, interface_name(i))}][key] = numbered(column.stored[k], i);
        }
}

// The links from an interface to the other objects, and the keys that are read for no column.
void add_links(Objects& objects, const std::string& name) {
    auto& interface = objects[{"interface", name}];
    interface["type"] = "service-set";
    interface["bss"] = "b" + name;
    interface["dot11-privacy-option-implemented"] = "1";
    objects[{"bss", "b" + name}]["radio"] = "r" + name;
    objects[{"radio", "r" + name}]["manufacturer-id"] = "Example Radios";
}

}  // namespace

std::string interface_name(unsigned i) {
    return "w" + std::to_string(i);
}

unsigned interface_index(unsigned i) {
    return 11 + i;
}

void add_interfaces(unsigned count) {
    for (unsigned i = 0; i < count; ++i)
        add_interface(interface_name(i), interface_index(i));
}

std::string full_configuration(unsigned count) {
    Objects objects;
    for (unsigned i = 0; i < count; ++i) {
        add_examples(objects, i);
        add_links(objects, interface_name(i));
    }
    std::string text;
    for (const auto& [address, values] : objects) {
        const auto& [table, name] = address;
        text += "[[" + table + "]]\n" + (name.empty() ? "" : line("name", name));
        for (const auto& [key, value] : values)
            text += line(key, value);
    }
    return text;
}

std::string empty_configuration(unsigned count) {
    std::string text;
    for (unsigned i = 0; i < count; ++i)
        text += "[[interface]]\n" + line("name", interface_name(i)) + line("type", "service-set");
    return text;
}

std::string example_answer(const ColumnFact& column, size_t row, unsigned i) {
    return numbered(column.answers[row], i);
}
