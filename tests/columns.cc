#include "columns.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace {

using Words = std::vector<std::string>;

constexpr char subtree[] = "1.2.840.10036.";

Words split(const std::string& text, const std::string& between) {
    Words parts;
    size_t begin = 0;
    for (size_t end; (end = text.find(between, begin)) != std::string::npos; begin = end + between.size())
        parts.push_back(text.substr(begin, end - begin));
    parts.push_back(text.substr(begin));
    return parts;
}

Words list(const std::string& field, const std::string& between) {
    return field == "-" ? Words{} : split(field, between);
}

void set_bounds(CheckFact& check, const std::string& bounds) {
    const Words ends = split(bounds, "..");
    check.lowest = std::stoll(ends.at(0));
    check.highest = std::stoll(ends.at(1));
}

CheckFact check_of(const std::string& field) {
    CheckFact check;
    const Words words = split(field, " ");
    if (field == "-") return check;
    if (field == "any") return {CheckFact::range, INT32_MIN, INT32_MAX, {}, 0};
    if (words[0] == "RowStatus") return {CheckFact::row_status, 0, 0, {}, std::stoll(words.at(1))};
    if (field.starts_with("one of ")) {
        check.kind = CheckFact::one_of;
        for (size_t i = 2; i < words.size(); ++i)
            check.members.insert(std::stoll(words[i]));
        check.lowest = *check.members.begin();
        check.highest = *check.members.rbegin();
        return check;
    }
    check.kind = words[0] == "octets" ? CheckFact::octets : CheckFact::range;
    set_bounds(check, words.back());
    return check;
}

// "i.1 i.2", or "(i)".
void set_rows(ColumnFact& column, const std::string& field) {
    column.has_rows = !field.starts_with('(');
    for (const std::string& row : split(column.has_rows ? field : field.substr(1, field.size() - 2), " "))
        column.rows.push_back(row.substr(1));
}

Words answers(const std::string& type, const std::string& field) {
    Words values = list(field, " | ");
    for (std::string& value : values)
        value = (type == "OCTET STRING" ? "STRING" : type) + " " + value;
    return values;
}

ColumnFact column_of(const std::string& line) {
    const Words field = split(line, "\t");
    if (field.size() != 13 || !field[0].starts_with(subtree)) throw std::runtime_error("tests/columns.tsv: " + line);
    ColumnFact column;
    column.oid = field[0].substr(sizeof subtree - 1);
    column.name = field[1];
    column.type = field[2];
    column.access = field[3];
    column.get = field[4];
    column.set = field[5];
    column.check = check_of(field[6]);
    set_rows(column, field[7]);
    column.keys = list(field[8], " ");
    column.defaults = answers(column.type, field[9]);
    column.stored = list(field[10], " | ");
    column.answers = answers(column.type, field[11]);
    return column;
}

std::vector<ColumnFact> read_columns() {
    std::vector<ColumnFact> columns;
    std::ifstream file(COLUMNS);
    for (std::string line; std::getline(file, line);)
        if (!line.starts_with('#')) columns.push_back(column_of(line));
    return columns;
}

}  // namespace

std::string ColumnFact::table() const {
    return oid.substr(0, oid.rfind('.') - 2);
}

uint32_t ColumnFact::number() const {
    return static_cast<uint32_t>(std::stoul(oid.substr(oid.rfind('.') + 1)));
}

const std::vector<ColumnFact>& column_facts() {
    static const std::vector<ColumnFact> columns = read_columns();
    return columns;
}

size_t answered_cells(bool completely) {
    size_t cells = 0;
    for (const ColumnFact& column : column_facts()) {
        const bool has_value = completely ? column.is_answered_completely() : column.is_answered();
        if (has_value && column.has_rows) cells += column.rows.size();
    }
    return cells;
}

size_t stored_cells() {
    size_t cells = 0;
    for (const ColumnFact& column : column_facts())
        if (column.is_answered() && column.has_rows && !column.keys.empty()) cells += column.rows.size();
    return cells;
}

uint32_t last_column(const std::string& table) {
    uint32_t last = 0;
    for (const ColumnFact& column : column_facts())
        if (column.table() == table) last = std::max(last, column.number());
    return last;
}
