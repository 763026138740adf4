// What a power cut leaves of the store: before each call that changes the disk, with none, all or some of the changes
// that were not synced. What was acknowledged is there, and a transaction is there as a whole or not at all.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>

#include "fixture.h"
#include "medium.h"

namespace {

using namespace store_test;
namespace fs = std::filesystem;

using Values = std::map<std::string, std::string>;  // table/object/key: value

struct Operation {
    bool (*run)(const std::vector<Value>& values);
    std::vector<Value> values;
};

bool create(const std::vector<Value>&) {
    return cfql::Database().create(cfql::store_path()) == cfql::Status::ok;
}

bool set_one(const std::vector<Value>& values) {
    const Value& v = values.front();
    return set(v.table.c_str(), v.object.c_str(), v.key.c_str(), v.value.c_str()) == 1;
}

bool set_all(const std::vector<Value>& values) {
    return put(cfql::store_path(), values), true;
}

std::vector<Value> many() {
    std::vector<Value> values;
    for (char name = 'a'; name < 'q'; ++name) {
        values.push_back({"many", {name}, "short", {name}});
        values.push_back({"many", {name}, "long", std::string(1500, name)});
    }
    return values;
}

const std::vector<Operation> all_operations = {
    {create, {}},
    {set_one, {{"interface", "wlan0", "ssid", "office"}}},
    {set_one, {{"interface", "wlan0", "ssid", "home"}}},
    {set_one, {{"interface", "wlan1", "ssid", std::string(4096, 'x')}}},
    {set_all, many()},
    {set_one, {{"interface", "wlan1", "ssid", "short again"}}},
    {set_one, {{"many", "c", "short", "other"}}},
};
Values values_of(cfql::Database& store) {
    Values found;
    cfql::Cursor cursor;
    cfql::Row row;
    require(store.list(cursor));
    while (cursor.next(row) == cfql::Status::ok)
        found[std::string(row.table).append("/").append(row.object).append("/").append(row.key)] = row.value;
    return found;
}

// 0, or the number of the first rule that does not hold. What is found stays so.
int examine(const std::string& path, cfql::Access access, std::vector<Values>& possible) {
    cfql::Database store;
    int faults = 0;
    const auto count = [](void* context, const char*) { ++*static_cast<int*>(context); };
    if (store.open(path.c_str(), access) != cfql::Status::ok) return 1;
    if (store.check(count, &faults) != cfql::Status::ok || faults != 0) return 2;
    const Values found = values_of(store);
    if (std::find(possible.begin(), possible.end(), found) == possible.end()) return 3;
    possible = {found};
    return 0;
}

class PowerCut : public testing::Test {
  protected:
    // Runs `operations` on a store with `contents`, then cuts before each of their calls and after the last.
    void cut_during(const std::vector<Operation>& operations, const Values& contents = {}) {
        Medium medium(read_all(place_.directory()));
        states_ = {contents};
        for (const Operation& operation : operations)
            record(operation);
        for (std::size_t done = 0; done < operations.size(); ++done) {
            for (const Step& step : calls_[done]) {
                ASSERT_NO_FATAL_FAILURE(cut(medium, done));
                medium.take(step);
            }
        }
        cut(medium, operations.size());
        EXPECT_EQ(medium.after(no_cut), read_all(place_.directory())) << "a change has passed unseen";
    }

    void record(const Operation& operation) {
        std::vector<Step>& calls = calls_.emplace_back();
        disk.witness = [&](Call call, const Change& change) { calls.emplace_back(call, change); };
        EXPECT_TRUE(operation.run(operation.values));
        disk.witness = nullptr;
        Values next = states_.back();
        for (const Value& v : operation.values)
            next[v.table + "/" + v.object + "/" + v.key] = v.value;
        states_.push_back(next);
    }

    void cut(const Medium& medium, std::size_t done) {
        for (std::size_t survivor = 0; survivor < std::size(survivors); ++survivor) {
            for (const bool torn : {false, true}) {
                for (const bool entries : {false, true}) {
                    const Image image = medium.after({survivors[survivor], torn, entries});
                    if (!examined_.insert({done, image}).second) continue;
                    SCOPED_TRACE(testing::Message() << done << " operations done, survivor " << survivor << ", torn "
                                                    << torn << ", entries " << entries);
                    write_all(cut_, image);
                    ASSERT_EQ(broken_rule(done), 0);
                }
            }
        }
    }

    int broken_rule(std::size_t done) const {
        using cfql::Access;
        using cfql::Status;
        const std::string path = cut_ / "store.db";
        std::vector<Values> possible = {states_[done], states_[std::min(done + 1, states_.size() - 1)]};
        const bool is_made = done > 0 || !states_.front().empty();
        const Status made = is_made ? Status::exists : cfql::Database().create(path.c_str());
        if (made != Status::ok && made != Status::exists) return 4;
        // Only a writer undoes what was left unfinished; until then a reader is told so, or reads what is whole.
        int rule = 0;
        if (cfql::Database().open(path.c_str(), Access::read) != Status::interrupted)
            rule = examine(path, Access::read, possible);
        if (rule == 0) rule = examine(path, Access::write, possible);
        return rule == 0 ? examine(path, Access::read, possible) : rule;
    }

    Place place_;
    const fs::path cut_ = place_.directory() + "/cut";
    std::vector<std::vector<Step>> calls_;  // of each operation
    std::vector<Values> states_;            // before each operation and after the last
    std::set<std::pair<std::size_t, Image>> examined_;
};

TEST_F(PowerCut, BeforeEachCallOfEachOperation) {
    cut_during(all_operations);
    EXPECT_FALSE(fs::exists(place_.path() + "-wal"));
}

}  // namespace
