// What the agent serves from a store, found out by running the module's own tables in this process, on contents in
// memory.
#pragma once

#include <stdint.h>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "access/table.h"
#include "contents.h"

namespace cfql::tool {

// A value that the tables asked of the store for an interface: a key of the first object of a name.
struct Question {
    std::string interface;
    std::string table;
    std::string object;
    std::string key;
    std::optional<std::string> answer;
};

// One cell of a table: a column in a row.
struct Instance {
    const dot11::Table* table;
    const dot11::Column* column;
    std::vector<uint32_t> index;  // one or two numbers, the interface's first
    std::string interface;
    std::string octets;          // the served value as it is in the row
    const dot11::StoreKey* key;  // where the value is from; null when it is not from the store
    const Question* question;    // that fetched it; null when no link led there

    bool is_number() const { return column->type != dot11::Type::octet_string; }
    int64_t number() const;  // of a number, in the range of its SNMP type
    // A GET answers the column, COMPLETE: of an agent that is told to answer completely.
    bool is_answered(bool complete = false) const {
        if (column->answered == dot11::Answered::complete_only) return complete;
        return column->answered != dot11::Answered::never;
    }
    // The text in the store, which a value was made from; none when it is missing or empty, and a default is served.
    std::optional<std::string_view> stored() const;
    std::string name() const;         // "dot11StationID.2"
    std::string served_text() const;  // 100, "Guests", or 00 00 5e 00 53 01 where that is no text
};

// Which number an interface has in the system; 0: there is none of that name.
using Numbering = std::function<unsigned(const char* interface)>;
Numbering numbers_of_system();
// A number for each name that is an interface's in the contents, from 1.
Numbering numbers_of_contents(const Contents& contents);

class AgentRun {
  public:
    // Runs every table once, as an agent does that has just begun. CONTENTS must outlive the run. There can be one in
    // the life of a process: tables keep what they have read.
    AgentRun(const Contents& contents, Numbering numbering);
    AgentRun(const AgentRun&) = delete;
    AgentRun& operator=(const AgentRun&) = delete;

    // By interface in the order of the rows, then in the order of the OIDs.
    const std::vector<Instance>& instances() const { return instances_; }
    const std::deque<Question>& questions() const { return questions_; }

    // What the tables took for names of interfaces, and the numbers that they got.
    const std::map<std::string, unsigned>& numbers() const { return numbers_; }

    // The attribute by which the tables chose their interfaces.
    const std::string& chosen_by() const { return chosen_by_; }
    const std::string& chosen_value() const { return chosen_value_; }

    // Why the agent passes over an interface of that name; empty when it does not.
    std::string obstacle(const std::string& interface) const;

    // The first object of a name in the contents: the one that the tables see. Null when there is none.
    const Object* find(const std::string& table, const std::string& name) const;

    // For the calls of the tables.
    const std::string* answer(const std::string& table, const std::string& object, const std::string& key);
    std::vector<const Object*> choose(const std::string& table, const Attributes& filter);
    unsigned number_of(const char* interface);

  private:
    void run(const dot11::Table& table);
    void read_as_a_whole(const dot11::Table& table);
    void read_one_by_one(const dot11::Table& table);
    void add_row(const dot11::Table& table, std::string& row);
    const Question* question_for(const std::string& interface, const dot11::StoreKey& key) const;

    const Contents& contents_;
    Numbering numbering_;
    std::map<std::pair<std::string, std::string>, const Object*> first_;  // by table and name
    std::string interface_;                                               // whose row is being filled
    size_t first_question_ = 0;                                           // of the table that is being run
    std::vector<Instance> instances_;
    std::deque<Question> questions_;  // stay where they are
    std::map<std::string, unsigned> numbers_;
    std::string chosen_by_, chosen_value_;
};

}  // namespace cfql::tool
