// What the agent serves from a store: runs the module's own tables in this process, on contents in memory.
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

// A look-up that the tables made in the store for an interface: a key of the first object of a name.
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
    std::string octets;          // the served value, as the row holds it
    const dot11::StoreKey* key;  // where the value comes from; null if it is not from the store
    const Question* question;    // the look-up that fetched it; null if no link led there

    bool is_number() const { return column->type != dot11::Type::octet_string; }
    int64_t number() const;  // in the range of its SNMP type; only if is_number()
    // Whether a GET answers the column; `complete`: of an agent with "dot11Answers complete".
    bool is_answered(bool complete = false) const {
        if (column->answered == dot11::Answered::complete_only) return complete;
        return column->answered != dot11::Answered::never;
    }
    // The stored text that the value was made from; none if it is missing or empty, so that a default is served.
    std::optional<std::string_view> stored() const;
    std::string name() const;         // "dot11StationID.2"
    std::string served_text() const;  // 100, "Guests", or 00 00 5e 00 53 01 if it is not printable
};

// The number (ifIndex) of an interface; 0: there is none of that name.
using Numbering = std::function<unsigned(const char* interface)>;
Numbering numbers_of_system();
// Numbers the names that the agent takes for interfaces in `contents`, from 1.
Numbering numbers_of_contents(const Contents& contents);

class AgentRun {
  public:
    // Runs every table once, like an agent that has just started. `contents` must outlive the run. A process can have
    // only one run in its life: the tables keep what they have read.
    AgentRun(const Contents& contents, Numbering numbering);
    AgentRun(const AgentRun&) = delete;
    AgentRun& operator=(const AgentRun&) = delete;

    // By interface in the order of the rows, then in the order of the OIDs.
    const std::vector<Instance>& instances() const { return instances_; }
    const std::deque<Question>& questions() const { return questions_; }

    // The names that the tables took for interfaces, and the numbers that they were given.
    const std::map<std::string, unsigned>& numbers() const { return numbers_; }

    // The attribute by which the tables chose their interfaces.
    const std::string& chosen_by() const { return chosen_by_; }
    const std::string& chosen_value() const { return chosen_value_; }

    // Why the agent skips an interface of that name; empty if it does not.
    std::string obstacle(const std::string& interface) const;

    // The first object of a name, which is the one that the tables see. Null if there is none.
    const Object* find(const std::string& table, const std::string& name) const;

    // What the tables' calls of the store and the system are answered with.
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
    std::string interface_;                                               // the one whose row is being filled
    size_t first_question_ = 0;                                           // of the table that is being run
    std::vector<Instance> instances_;
    std::deque<Question> questions_;  // a deque, because instances point to them
    std::map<std::string, unsigned> numbers_;
    std::string chosen_by_, chosen_value_;
};

}  // namespace cfql::tool
