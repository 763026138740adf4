#include "scripted.h"

#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/time.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

ScriptedDevice* device;

const char* copy(const std::optional<std::string>& text) {
    return text ? strdup(text->c_str()) : nullptr;
}

std::string shown(const char* text) {
    return text ? text : "-";
}

}  // namespace

ScriptedDevice::ScriptedDevice() {
    device = this;
}

ScriptedDevice::~ScriptedDevice() {
    EXPECT_TRUE(live_.empty()) << live_.size() << " answers of the store were not handed back";
    device = nullptr;
}

void ScriptedDevice::add(const std::string& table, const std::string& object) {
    objects_.push_back({table, object});
}

void ScriptedDevice::add_interface(const std::string& name, unsigned index) {
    interfaces[name] = index;
    add("interface", name);
}

void ScriptedDevice::set(const std::string& table, const std::string& object, const std::string& key,
                         const std::string& value) {
    answers_[{table, object, key}] = {{key, value}};
}

void ScriptedDevice::unset(const std::string& table, const std::string& object, const std::string& key) {
    answers_.erase({table, object, key});
}

void ScriptedDevice::answer(const std::string& table, const std::string& object, const std::string& key,
                            std::vector<Pair> nodes) {
    answers_[{table, object, key}] = std::move(nodes);
}

void ScriptedDevice::answer_grid(const std::string& table, std::vector<Pair> nodes) {
    grids_[table] = std::move(nodes);
}

void ScriptedDevice::clear_store() {
    objects_.clear();
    answers_.clear();
    grids_.clear();
}

std::vector<std::string> ScriptedDevice::calls_of(const std::string& kind) const {
    std::vector<std::string> found;
    for (const std::string& call : calls)
        if (call.starts_with(kind + " ")) found.push_back(call.substr(kind.size() + 1));
    return found;
}

void ScriptedDevice::fail_allocation(int n) {
    allocations_left_ = n;
    allocation_failed_ = later_ones_fail_ = false;
}

void ScriptedDevice::fail_allocations_from(int n) {
    fail_allocation(n);
    later_ones_fail_ = true;
}

cfqlquery_node* ScriptedDevice::make(const std::string& question, const std::vector<Pair>& nodes) {
    cfqlquery_node* list = nullptr;
    for (auto node = nodes.rbegin(); node != nodes.rend(); ++node)
        list = new cfqlquery_node{copy(node->first), copy(node->second), list, 0};
    if (list) live_[list] = question;
    return list;
}

cfqlquery_node* ScriptedDevice::grid(const char* table, const cfqlquery_node* filter) {
    std::string call = "grid " + shown(table);
    std::vector<Pair> pairs;
    for (const cfqlquery_node* node = filter; node; node = node->next) {
        EXPECT_EQ(node->reserved, 0U);
        call += " " + shown(node->name) + "=" + shown(node->value);
        pairs.emplace_back(shown(node->name), shown(node->value));
    }
    calls.push_back(call);
    if (grids_.contains(table)) return make(shown(table), grids_[table]);
    std::vector<Pair> nodes;
    for (const Object& object : objects_) {
        if (object.table != table) continue;
        nodes.emplace_back("name", object.name);
        nodes.insert(nodes.end(), pairs.begin(), pairs.end());
    }
    if (listings_before_loss > 0 && --listings_before_loss == 0) lose_objects();
    return make(shown(table), nodes);
}

void ScriptedDevice::lose_objects() {
    std::set<std::string> seen;
    std::erase_if(objects_, [&](const Object& object) { return !seen.insert(object.table).second; });
}

cfqlquery_node* ScriptedDevice::get(const char* table, const char* object, const char* key) {
    const std::string question = shown(table) + " " + shown(object) + " " + shown(key);
    calls.push_back("get " + question);
    const auto found = answers_.find({table, object ? object : "", key});
    return found == answers_.end() ? nullptr : make(question, found->second);
}

int32_t ScriptedDevice::write(const char* table, const char* object, const cfqlquery_node* pair) {
    calls.push_back("set " + shown(table) + " " + shown(object) + " " + shown(pair->name) + "=" + shown(pair->value));
    EXPECT_EQ(pair->next, nullptr);
    EXPECT_EQ(pair->reserved, 0U);
    return set_status;
}

void ScriptedDevice::destroy(cfqlquery_node* list) {
    if (!list) return;
    const auto answer = live_.find(list);
    ASSERT_NE(answer, live_.end()) << "an answer was handed back twice, or is no answer";
    if (shows_releases) calls.push_back("release " + answer->second);
    live_.erase(answer);
    while (list) {
        cfqlquery_node* next = list->next;
        free(const_cast<char*>(list->name));
        free(const_cast<char*>(list->value));
        delete list;
        list = next;
    }
}

const std::string* ScriptedDevice::open(const std::string& path) {
    opened.push_back(path);
    if (shows_releases) calls.push_back("open " + path);
    const auto file = files.find(path);
    return file == files.end() ? nullptr : &file->second;
}

bool ScriptedDevice::allocation_fails() {
    if (allocations_left_ == 0) return allocation_failed_ && later_ones_fail_;
    if (--allocations_left_ > 0) return false;
    allocation_failed_ = true;
    return true;
}

extern "C" {

cfqlquery_node* cfqlquery_get_grid(const char* table, const char* object, const char* key, const cfqlquery_node* filter,
                                   int filter_count) {
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(filter_count, 1);
    return device->grid(table, filter);
}

cfqlquery_node* cfqlquery_get_pv(const char* table, const char* object, const char* key) {
    return device->get(table, object, key);
}

int32_t cfqlquery_set_pv(const char* table, const char* object, const cfqlquery_node* pair, int flags) {
    EXPECT_EQ(flags, 0);
    return device->write(table, object, pair);
}

void cfqlquery_destroy_pv(cfqlquery_node* list) {
    device->destroy(list);
}

unsigned __wrap_if_nametoindex(const char* name) {
    const auto found = device->interfaces.find(name);
    return found == device->interfaces.end() ? 0 : found->second;
}

char* __wrap_if_indextoname(unsigned index, char* name) {
    for (const auto& [known, number] : device->interfaces)
        if (number == index) return strcpy(name, known.c_str());
    return nullptr;
}

int __wrap_gettimeofday(timeval* time, void*) {
    if (device->clock_fails) return -1;
    *time = {static_cast<time_t>(device->now), 0};
    if (device->ticks > 0) {
        --device->ticks;
        device->now += device->tick;
    }
    return 0;
}

int __real_clock_gettime(clockid_t clock, timespec* time);
int __wrap_clock_gettime(clockid_t clock, timespec* time) {
    if (!device || clock != CLOCK_MONOTONIC) return __real_clock_gettime(clock, time);
    *time = {static_cast<time_t>(device->monotonic_milliseconds / 1000),
             static_cast<long>(device->monotonic_milliseconds % 1000 * 1'000'000)};
    return 0;
}

void* __real_calloc(size_t count, size_t size);
void* __wrap_calloc(size_t count, size_t size) {
    return device && device->allocation_fails() ? nullptr : __real_calloc(count, size);
}

FILE* __real_fopen(const char* path, const char* mode);
FILE* __wrap_fopen(const char* path, const char* mode) {
    if (!device || !std::string(path).starts_with("/proc/net")) return __real_fopen(path, mode);
    const std::string* content = device->open(path);
    if (!content) return nullptr;
    FILE* stream = tmpfile();
    fwrite(content->data(), 1, content->size(), stream);
    rewind(stream);
    return stream;
}
}
