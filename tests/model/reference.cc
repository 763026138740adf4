#include "reference.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <sstream>
#include <string>

#include "columns.h"

namespace {

enum Status {
    no_error = 0,
    gen_err = 5,
    wrong_type = 7,
    wrong_value = 10,
    no_creation = 11,
    inconsistent_value = 12,
    undo_failed = 15,
    not_writable = 17,
};

// -- The tables -------------------------------------------------------------------------------------------------------

struct Table {
    Oid root;
    uint32_t indexes, first_column, last_column;
    bool creates = true;                  // a SET of a missing row is taken
    bool stores = false;                  // a write succeeds, into a row that nobody sees
    std::map<uint32_t, CheckFact> rules;  // of the columns that accept a SET
    std::set<uint32_t> silent;            // columns at which a GET ends, also for the varbinds behind; see on_request
    std::set<uint32_t> ends_writes;       // columns at which ACTION and UNDO end
    bool on_request = false;              // the silent columns are answered when answers are to be complete
};

Oid oid_of(const std::string& table) {
    Oid root = {1, 2, 840, 10036};
    std::istringstream in(table);
    for (std::string part; std::getline(in, part, '.');)
        root.push_back(static_cast<uint32_t>(std::stoul(part)));
    return root;
}

void add_column(Table& table, const ColumnFact& column) {
    const uint32_t number = column.number();
    table.last_column = number;
    if (column.is_writable()) table.rules[number] = column.check;
    if (!column.is_answered()) table.silent.insert(number);
    if (column.get == "complete") table.on_request = true;
    if (column.set == "dropped") table.ends_writes.insert(number);
    if (column.set == "refused" || column.set == "dropped") table.creates = false;
    if (column.set == "accepted") table.stores = true;
}

// In the order of their OIDs.
std::vector<Table> read_tables() {
    std::vector<Table> tables;
    std::string last;
    for (const ColumnFact& column : column_facts()) {
        if (column.table() != last)
            tables.push_back({oid_of(column.table()),
                              column.has_second_index() ? 2U : 1U,
                              column.number(),
                              0,
                              true,
                              false,
                              {},
                              {},
                              {}});
        last = column.table();
        add_column(tables.back(), column);
    }
    return tables;
}

const std::vector<Table>& all_tables() {
    static const std::vector<Table> tables = read_tables();
    return tables;
}

const Oid key_mappings = {1, 2, 840, 10036, 1, 4};

const Table* table_of(const Oid& name) {
    const auto begins_name = [&](const Table& table) {
        return name.size() >= table.root.size() && std::equal(table.root.begin(), table.root.end(), name.begin());
    };
    const auto found = std::ranges::find_if(all_tables(), begins_name);
    return found == all_tables().end() ? nullptr : &*found;
}

// -- Checks of a new value --------------------------------------------------------------------------------------------

// RowStatus (RFC 2579) as Net-SNMP takes it.
int row_status_change(int64_t from, int64_t to) {
    const bool exists = from == 1 || from == 2;
    if (to == 1 || to == 2) return exists ? no_error : inconsistent_value;
    if (to == 3) return wrong_value;
    if (to == 4 || to == 5) return from == 0 ? no_error : inconsistent_value;
    return no_error;
}

int check_number(const CheckFact& rule, int64_t number) {
    switch (rule.kind) {
        case CheckFact::one_of:
            return rule.members.contains(number) ? no_error : inconsistent_value;
        case CheckFact::row_status:
            return number >= 1 && number <= 6 ? row_status_change(rule.old_status, number) : inconsistent_value;
        default:
            return number >= rule.lowest && number <= rule.highest ? no_error : wrong_value;
    }
}

int check(const CheckFact& rule, const Value& value) {
    if (value.type == null_value || value.type >= no_such_object) return gen_err;
    if (value.type != (rule.kind == CheckFact::octets ? octet_string : integer)) return wrong_type;
    if (rule.kind != CheckFact::octets) return check_number(rule, static_cast<int32_t>(number_of(value.octets)));
    const auto length = static_cast<int64_t>(value.octets.size());
    return length >= rule.lowest && length <= rule.highest ? no_error : wrong_value;
}

// -- A PDU ------------------------------------------------------------------------------------------------------------

struct Request {
    Varbind& varbind;
    int index;
    int status = 0;
    bool processed = false;  // in this phase

    const Oid& name() const { return varbind.name; }
    void fail(int with) {
        processed = true;
        status = with;
    }
};

// The varbinds of a PDU that belong to one table, which the agent hands to its handler together.
struct List {
    const Table* table;  // null for what no table holds
    std::vector<Request*> requests;
    bool reserved = false;  // a commit record is in the store
    bool saved = false;     // an undo record is in the store

    uint32_t column(const Request& request) const { return request.name()[table->root.size() + 1]; }
};

class Exchange {
  public:
    Exchange(const Device& device, const std::vector<Varbind>& varbinds) : device_(device) {
        answer_.varbinds = varbinds;
        for (Varbind& varbind : answer_.varbinds) {
            requests_.push_back(std::make_unique<Request>(Request{varbind, static_cast<int>(requests_.size()) + 1}));
            list_of(table_of(varbind.name)).requests.push_back(requests_.back().get());
        }
    }

    Expected set();
    Expected get(std::set<Oid>& unknown, bool complete);

  private:
    // Tables come in the order of their first varbinds.
    List& list_of(const Table* table) {
        for (List& list : lists_)
            if (list.table == table) return list;
        return lists_.emplace_back(List{table, {}});
    }

    bool row_exists(const List& list, const Request& request) const {
        const auto rows = device_.rows.find(list.table->root);
        if (rows == device_.rows.end()) return false;
        const std::vector<uint32_t> indexes(request.name().begin() + static_cast<long>(list.table->root.size()) + 2,
                                            request.name().end());
        return std::find(rows->second.begin(), rows->second.end(), indexes) != rows->second.end();
    }

    // What the table helper says of a name: a column of the table with index values for it, and nothing else.
    enum class Name { good, no_column, no_index };
    static Name judge(const Table& table, const Oid& name) {
        const size_t depth = table.root.size();
        if (name.size() < depth + 2 || name[depth] != 1) return Name::no_column;
        if (name[depth + 1] < table.first_column || name[depth + 1] > table.last_column) return Name::no_column;
        return name.size() == depth + 2 + table.indexes ? Name::good : Name::no_index;
    }

    template <class Phase>
    void each_list(Phase phase, int only = 0) {
        for (List& list : lists_) {
            for (Request* request : list.requests)
                request->processed = false;
            phase(list);
            note_errors(list, only);
        }
    }

    // The lowest varbind's error is the answer's, except for those of COMMIT and UNDO: there it is the last one seen.
    void note_errors(const List& list, int only) {
        for (const Request* request : list.requests) {
            if (!request->status || (only && request->status != only)) continue;
            if (!only && answer_.index && request->index > answer_.index) continue;
            answer_.index = request->index;
            answer_.status = request->status;
        }
    }

    // True when the list goes on to the handler.
    static bool table_helper_reserves(List& list);
    void reserve1(List& list);
    void reserve2(List& list);
    void action(List& list);
    void undo(List& list);
    void empty_stores() {
        for (List& list : lists_)
            list.reserved = list.saved = false;
    }
    static bool table_helper_finds(List& list);
    void get(List& list, std::set<Oid>& unknown, bool complete);

    const Device& device_;
    std::vector<std::unique_ptr<Request>> requests_;
    std::vector<List> lists_;
    Expected answer_;
};

// An index of the wrong length ends the helper's work on the list: what follows is not looked at, and the handler is
// not called. (The later phases then leave out this list. None of them shows in the answer: after an error in RESERVE1
// only FREE comes.)
bool Exchange::table_helper_reserves(List& list) {
    bool any_good = false;
    for (Request* request : list.requests) {
        switch (judge(*list.table, request->name())) {
            case Name::no_column:
                request->fail(not_writable);
                break;
            case Name::no_index:
                request->fail(no_creation);
                return false;
            case Name::good:
                any_good = true;
        }
    }
    return any_good;
}

void Exchange::reserve1(List& list) {
    if (!list.table) {
        for (Request* request : list.requests)
            request->fail(not_writable);
        return;
    }
    if (!table_helper_reserves(list)) return;
    for (Request* request : list.requests) {
        if (request->processed) continue;
        const bool exists = row_exists(list, *request);
        if (!exists && !list.table->creates) request->fail(no_creation);
        if (!list.reserved && !exists && list.table->root == key_mappings) ++answer_.key_mappings_made;
        list.reserved = true;
    }
}

void Exchange::reserve2(List& list) {
    for (Request* request : list.requests) {
        const auto rule = list.table->rules.find(list.column(*request));
        const int status = rule == list.table->rules.end() ? not_writable : check(rule->second, request->varbind.value);
        if (status)
            request->fail(status);
        else
            list.saved = true;
    }
}

void Exchange::action(List& list) {
    for (Request* request : list.requests) {
        if (list.table->ends_writes.contains(list.column(*request))) return;
        if (!list.table->stores) request->fail(not_writable);
    }
}

// The first list to end its work empties both stores for all that follow.
void Exchange::undo(List& list) {
    for (Request* request : list.requests) {
        if (list.table->ends_writes.contains(list.column(*request))) return;
        if (!list.reserved || !list.saved)
            request->fail(undo_failed);
        else if (!list.table->stores)
            request->fail(not_writable);
    }
    empty_stores();
}

// Phase by phase, as the agent goes on after an error: FREE after the first two, UNDO after ACTION. An error's answer
// shows the request's varbinds; so does success.
Expected Exchange::set() {
    each_list([this](List& list) { reserve1(list); });
    if (answer_.status) return answer_;
    each_list([this](List& list) { reserve2(list); });
    if (answer_.status) return answer_;
    each_list([this](List& list) { action(list); });
    if (!answer_.status) return answer_;
    each_list([this](List& list) { undo(list); }, undo_failed);
    return answer_;
}

bool Exchange::table_helper_finds(List& list) {
    bool any_good = false;
    for (Request* request : list.requests) {
        const Name name = judge(*list.table, request->name());
        if (name == Name::good) {
            any_good = true;
            continue;
        }
        request->varbind.value.type = name == Name::no_column ? no_such_object : no_such_instance;
        request->processed = true;
    }
    return any_good;
}

void Exchange::get(List& list, std::set<Oid>& unknown, bool complete) {
    if (!list.table) {
        for (Request* request : list.requests)
            request->varbind.value.type = no_such_object;
        return;
    }
    if (!table_helper_finds(list)) return;
    for (Request* request : list.requests) {
        if (request->processed || !row_exists(list, *request)) continue;
        if (list.table->silent.contains(list.column(*request))) {
            if (!complete) return;
            if (!list.table->on_request) continue;
        }
        const auto value = device_.values.find(request->name());
        if (value == device_.values.end())
            unknown.insert(request->name());
        else
            request->varbind.value = value->second;
    }
}

// What no handler has answered is noSuchInstance.
Expected Exchange::get(std::set<Oid>& unknown, bool complete) {
    for (Varbind& varbind : answer_.varbinds)
        varbind.value = {};
    each_list([&](List& list) { get(list, unknown, complete); });
    for (Varbind& varbind : answer_.varbinds)
        if (varbind.value.type == null_value) varbind.value.type = no_such_instance;
    return answer_;
}

}  // namespace

Expected expected_set(const Device& device, const std::vector<Varbind>& varbinds) {
    return Exchange(device, varbinds).set();
}

Expected expected_get(const Device& device, const std::vector<Varbind>& varbinds, std::set<Oid>& unknown,
                      bool complete) {
    return Exchange(device, varbinds).get(unknown, complete);
}
