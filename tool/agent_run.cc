#include "agent_run.h"

#include <net/if.h>

#include <string.h>
#include <algorithm>
#include <memory>
#include <set>

#include "access/tables.h"
#include "cfqlquery.h"
#include "database.h"
#include "store/interfaces.h"
#include "text.h"

// ---- what the tables call: the store, the system, and Net-SNMP for a SET, which never happens here

namespace {

using cfql::tool::AgentRun;
using cfql::tool::Attributes;
using cfql::tool::Object;

AgentRun* running = nullptr;

// A node of an answer with the texts that it points to. The node comes first, so that its address is that of the whole.
struct Node {
    cfqlquery_node node;
    std::string tag, value;
};

cfqlquery_node* chained(const std::string& tag, const std::string& value, cfqlquery_node* rest) {
    auto made = std::make_unique<Node>(Node{{}, tag, value});
    made->node = {made->tag.c_str(), made->value.c_str(), rest, 0};
    return &made.release()->node;
}

}  // namespace

extern "C" {

cfqlquery_node* cfqlquery_get_pv(const char* table, const char* object, const char* key) {
    const std::string* value = running->answer(table, object ? object : "", key);
    return value ? chained(key, *value, nullptr) : nullptr;
}

cfqlquery_node* cfqlquery_get_grid(const char* table, const char*, const char*, const cfqlquery_node* filter, int) {
    Attributes wanted;
    for (const cfqlquery_node* pair = filter; pair; pair = pair->next)
        wanted[pair->name] = pair->value;
    cfqlquery_node* list = nullptr;
    const std::vector<const Object*> chosen = running->choose(table, wanted);
    for (auto object = chosen.rbegin(); object != chosen.rend(); ++object) {
        for (auto pair = wanted.rbegin(); pair != wanted.rend(); ++pair)
            list = chained(pair->first, pair->second, list);
        list = chained(std::string(cfql::name_key), (*object)->name, list);
    }
    return list;
}

int32_t cfqlquery_set_pv(const char*, const char*, const cfqlquery_node*, int) {
    return 0;
}

void cfqlquery_destroy_pv(cfqlquery_node* list) {
    while (list) {
        const std::unique_ptr<Node> node(reinterpret_cast<Node*>(list));
        list = list->next;
    }
}

char check_rowstatus_transition(int, int) {
    return 0;
}

// The linker (--wrap) sends calls of if_nametoindex to __wrap_, and those of __real_ to the C library.
unsigned __real_if_nametoindex(const char* name);
unsigned __wrap_if_nametoindex(const char* name) {
    return running ? running->number_of(name) : __real_if_nametoindex(name);
}
}

namespace cfql::tool {

namespace {

// Tables whose objects' names the agent takes for interfaces.
bool holds_interfaces(std::string_view table) {
    return table == "interface" || table == "supported-rate";
}

const dot11::StoreKey* key_of(const dot11::Column& column, const std::vector<uint32_t>& index) {
    if (column.keys.empty()) return nullptr;
    return &column.keys[column.keys.size() == 1 ? 0 : index.back() - 1];
}

std::vector<uint32_t> index_of(const dot11::Table& table, const std::string& row) {
    std::vector<uint32_t> index(table.indexes);
    memcpy(index.data(), row.data(), index.size() * sizeof index[0]);
    return index;
}

std::string value_of(const dot11::Column& column, std::string& row) {
    size_t length = 0;
    const void* octets = column.get(row.data(), &length);
    return {static_cast<const char*>(octets), length};
}

}  // namespace

int64_t Instance::number() const {
    int32_t value = 0;
    memcpy(&value, octets.data(), std::min(octets.size(), sizeof value));
    if (column->type == dot11::Type::integer) return value;
    return static_cast<uint32_t>(value);
}

std::optional<std::string_view> Instance::stored() const {
    if (!question || !question->answer || question->answer->empty()) return std::nullopt;
    return *question->answer;
}

std::string Instance::served_text() const {
    if (is_number()) return std::to_string(number());
    if (!octets.empty() && printable_line(octets) == octets) return quoted(octets);
    std::string digits;
    for (const char octet : octets)
        digits += (digits.empty() ? "" : " ") + to_hex({&octet, 1});
    return digits;
}

std::string Instance::name() const {
    std::string text = column->name;
    for (const uint32_t number : index)
        text += '.' + std::to_string(number);
    return text;
}

Numbering numbers_of_system() {
    return __real_if_nametoindex;
}

Numbering numbers_of_contents(const Contents& contents) {
    std::map<std::string, unsigned, std::less<>> numbers;
    for (const Object& object : contents) {
        if (holds_interfaces(object.table)) numbers.try_emplace(object.name, static_cast<unsigned>(numbers.size() + 1));
    }
    return [numbers](const char* interface) {
        const auto entry = numbers.find(interface);
        return entry == numbers.end() ? 0 : entry->second;
    };
}

AgentRun::AgentRun(const Contents& contents, Numbering numbering)
    : contents_(contents), numbering_(std::move(numbering)) {
    for (const Object& object : contents_)
        first_.try_emplace({object.table, object.name}, &object);
    running = this;
    for (const dot11::Table* table : dot11::tables)
        run(*table);
    running = nullptr;
    std::map<std::string, size_t> ranks;
    for (const Instance& instance : instances_)
        ranks.try_emplace(instance.interface, ranks.size());
    std::ranges::stable_sort(instances_, {}, [&](const Instance& instance) { return ranks[instance.interface]; });
}

void AgentRun::run(const dot11::Table& table) {
    first_question_ = questions_.size();
    if (table.entries) read_as_a_whole(table);
    if (table.row_by_index) read_one_by_one(table);
}

void AgentRun::read_as_a_whole(const dot11::Table& table) {
    if (table.entries() == 0 || table.table_data() == 0) return;
    std::string row(table.row_size, '\0');
    for (uint32_t i = 0; i < table.index_count() * table.rows_per_interface; ++i) {
        if (table.entry_by_index(i, row.data()) != 0) add_row(table, row);
    }
}

void AgentRun::read_one_by_one(const dot11::Table& table) {
    constexpr int last_of_group = 2;
    std::string row(table.row_size, '\0');
    int32_t value_index = 1;
    uint32_t group = 0;
    for (int result = 0; (result = table.row_by_index(group, &value_index, row.data())) > 0;) {
        add_row(table, row);
        if (result != last_of_group) continue;
        value_index = 1;
        ++group;
    }
}

void AgentRun::add_row(const dot11::Table& table, std::string& row) {
    const std::vector<uint32_t> index = index_of(table, row);
    const auto interface = std::ranges::find(numbers_, index.front(), [](const auto& entry) { return entry.second; });
    for (const dot11::Column& column : table.columns) {
        const dot11::StoreKey* key = key_of(column, index);
        instances_.push_back({&table, &column, index, interface->first, value_of(column, row), key,
                              key ? question_for(interface->first, *key) : nullptr});
    }
}

const Question* AgentRun::question_for(const std::string& interface, const dot11::StoreKey& key) const {
    for (size_t i = questions_.size(); i > first_question_; --i) {
        const Question& question = questions_[i - 1];
        if (question.interface == interface && question.table == key.table && question.key == key.name)
            return &question;
    }
    return nullptr;
}

std::string AgentRun::obstacle(const std::string& interface) const {
    if (interface.size() > dot11::longest_interface_name)
        return "the name has more than " + std::to_string(dot11::longest_interface_name) + " characters";
    const auto number = numbers_.find(interface);
    if (number != numbers_.end() && number->second == 0) return "the system has no such interface";
    return {};
}

const Object* AgentRun::find(const std::string& table, const std::string& name) const {
    const auto entry = first_.find({table, name});
    return entry == first_.end() ? nullptr : entry->second;
}

const std::string* AgentRun::answer(const std::string& table, const std::string& object, const std::string& key) {
    const std::string* value = nullptr;
    if (const Object* found = find(table, object)) {
        const auto attribute = found->attributes.find(key);
        if (attribute != found->attributes.end()) value = &attribute->second;
    }
    questions_.push_back({interface_, table, object, key, {}});
    if (value) questions_.back().answer = *value;
    return value;
}

std::vector<const Object*> AgentRun::choose(const std::string& table, const Attributes& filter) {
    if (!filter.empty()) {
        chosen_by_ = filter.begin()->first;
        chosen_value_ = filter.begin()->second;
    }
    std::vector<const Object*> chosen;
    for (const Object& object : contents_) {
        const bool fits = std::ranges::all_of(filter, [&](const auto& pair) {
            const auto attribute = object.attributes.find(pair.first);
            return attribute != object.attributes.end() && attribute->second == pair.second;
        });
        if (object.table == table && fits) chosen.push_back(&object);
    }
    return chosen;
}

unsigned AgentRun::number_of(const char* interface) {
    interface_ = interface;
    const unsigned number = numbering_(interface);
    numbers_[interface_] = number;
    return number;
}

}  // namespace cfql::tool
