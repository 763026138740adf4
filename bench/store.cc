// bench-store: the store's calls and their yardsticks, for callgrind to count. The module's calls come here, and are
// passed on to one or the other.
//
//   bench-store reload MODULE STORE    reloads all of the module's tables: instructions
//   bench-store faults MODULE STORE    the same, not under callgrind: prints the page faults of one reload
//   bench-store calls MODULE STORE     single calls and a renewed snapshot: instructions
//   bench-store write MODULE STORE     a durable write: instructions
//   bench-store import MODULE STORE    the store's rows into a new file beside it: instructions
//   bench-store times MODULE STORE     a durable write, not under callgrind: prints the median time in microseconds of
//                                      ours and of SQLite
//   bench-store disturb MODULE STORE   writes ten times a second until it is killed
//
// bench/contents makes STORE. A measure is dumped as "NAME/DIVISOR" (see bench/run); of several dumps with the same
// name the least counts, because disturbances only add.
#include <cfqlquery.h>
#include <dlfcn.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "database.h"
#include "util/net_snmp.h"
#include "yardsticks.h"

namespace {

// What the module's calls are passed on to.
struct Calls {
    std::function<cfqlquery_node*(const char*, const cfqlquery_node*)> get_grid;
    std::function<cfqlquery_node*(const char*, const char*, const char*)> get_pv;
    void (*destroy)(cfqlquery_node*);
};

const Calls* calls;
time_t now = 1'000'000;  // the time on the module's clock

void free_list(cfqlquery_node* list) {
    free(list);
}

}  // namespace

// These take precedence over the libraries' functions of the same names.
extern "C" {

__attribute__((visibility("default"))) cfqlquery_node* cfqlquery_get_grid(const char* table, const char*, const char*,
                                                                          const cfqlquery_node* filter, int) {
    return calls->get_grid(table, filter);
}

__attribute__((visibility("default"))) cfqlquery_node* cfqlquery_get_pv(const char* table, const char* object,
                                                                        const char* key) {
    return calls->get_pv(table, object, key);
}

__attribute__((visibility("default"))) void cfqlquery_destroy_pv(cfqlquery_node* list) {
    calls->destroy(list);
}

__attribute__((visibility("default"))) int gettimeofday(timeval* time, void*) noexcept {
    *time = {now, 0};
    return 0;
}
}

namespace {

constexpr const char* tables[] = {
    "StationConfig",
    "AuthenticationAlgorithms",
    "WEPDefaultKeys",
    "Privacy",
    "Operation",
    "Counters",
    "ResourceInfo",
    "PhyOperation",
    "PhyTxPower",
    "PhyDSSS",
    "RegDomainsSupported",
    "SupportedDataRatesTx",
    "SupportedDataRatesRx",
};

[[noreturn]] void fail(const char* what) {
    fprintf(stderr, "bench-store: %s\n", what);
    exit(2);
}

template <class Function>
Function* symbol(void* library, const char* name) {
    auto* const found = reinterpret_cast<Function*>(dlsym(library, name));
    if (!found) fail(dlerror());
    return found;
}

// The module with the library that it needs, and the hooks that reload a table.
class Module {
  public:
    explicit Module(const char* path) : module_(dlopen(path, RTLD_NOW | RTLD_GLOBAL)) {
        if (!module_) fail(dlerror());
        for (const char* table : tables) {
            const std::string hook = std::string("dot11") + table + "Table_get_first_data_point";
            hooks_.push_back(symbol<Netsnmp_First_Data_Point>(module_, hook.c_str()));
        }
        auto* const grid = symbol<decltype(cfqlquery_get_grid)>(module_, "cfqlquery_get_grid");
        calls_.get_grid = [grid](const char* table, const cfqlquery_node* filter) {
            return grid(table, nullptr, nullptr, filter, 1);
        };
        calls_.get_pv = symbol<decltype(cfqlquery_get_pv)>(module_, "cfqlquery_get_pv");
        calls_.destroy = symbol<decltype(cfqlquery_destroy_pv)>(module_, "cfqlquery_destroy_pv");
        set_ = symbol<decltype(cfqlquery_set_pv)>(module_, "cfqlquery_set_pv");
    }

    const Calls& store() const { return calls_; }

    void set(const char* value) const {
        const cfqlquery_node pair = {"ssid", value, nullptr, 0};
        if (set_("interface", "w0", &pair, 0) != 1) fail("a write is refused");
    }

    // No table keeps its rows for a minute.
    void poll() const {
        now += 60;
        for (Netsnmp_First_Data_Point* hook : hooks_) {
            netsnmp_variable_list second = {};
            netsnmp_variable_list index = {};
            index.next_variable = &second;
            index.type = second.type = ASN_INTEGER;
            void *loop = nullptr, *data = nullptr;
            netsnmp_iterator_info info = {};
            if (!hook(&loop, &data, &index, &info)) fail("a table is empty");
            snmp_reset_var_buffers(&index);
        }
    }

  private:
    void* module_;
    Calls calls_;
    decltype(cfqlquery_set_pv)* set_ = nullptr;
    std::vector<Netsnmp_First_Data_Point*> hooks_;
};

// Each round does what is measured `divisor` times.
template <class Round>
void count(const std::string& name, int rounds, size_t divisor, Round round) {
    const std::string label = name + "/" + std::to_string(divisor);
    for (int i = 0; i < rounds; ++i) {
        CALLGRIND_ZERO_STATS;
        round();
        CALLGRIND_DUMP_STATS_AT(label.c_str());
    }
}

// The store, and the same contents in both yardsticks.
struct All {
    All(const char* module_path, const std::string& store)
        : module(module_path), objects(yardsticks::contents(store)), hash(objects), sqlite(store) {}

    template <class Yardstick>
    static Calls calls_to(const Yardstick& to) {
        return {[&to](auto... arguments) { return to.get_grid(arguments...); },
                [&to](auto... arguments) { return to.get_pv(arguments...); }, free_list};
    }

    Module module;
    std::vector<yardsticks::Object> objects;
    yardsticks::Hash hash;
    yardsticks::Sqlite sqlite;
    struct Named {
        const char* name;
        Calls calls;
    };
    std::vector<Named> stores = {{"store", module.store()}, {"hash", calls_to(hash)}, {"sqlite", calls_to(sqlite)}};
};

void reload(const All& all) {
    for (const auto& [name, to] : all.stores) {
        calls = &to;
        all.module.poll();
        count(std::string("reload-") + name, 3, 1, [&] { all.module.poll(); });
    }
}

void get_all(const yardsticks::Object& object) {
    for (const auto& [key, value] : object.attributes) {
        cfqlquery_node* const list = cfqlquery_get_pv(object.table.c_str(), object.name.c_str(), key.c_str());
        if (!list || value != list->value) fail("a wrong value");
        cfqlquery_destroy_pv(list);
    }
}

void get_grid() {
    const cfqlquery_node filter = {"type", "service-set", nullptr, 0};
    cfqlquery_node* const list = cfqlquery_get_grid("interface", nullptr, nullptr, &filter, 1);
    if (!list) fail("an empty grid");
    cfqlquery_destroy_pv(list);
}

void examine(const std::string& path) {
    cfql::Database database;
    if (database.open(path.c_str(), cfql::Access::read) != cfql::Status::ok) fail("the store cannot be opened");
}

void single_calls(const All& all, const std::string& store) {
    const yardsticks::Object& object = *std::find_if(all.objects.rbegin(), all.objects.rend(),
                                                     [](const auto& each) { return each.table == "interface"; });
    for (const auto& [name, to] : all.stores) {
        calls = &to;
        get_grid();
        count(std::string("get_pv-") + name, 20, object.attributes.size(), [&] { get_all(object); });
        count(std::string("get_grid-") + name, 5, 1, get_grid);
    }
    calls = &all.stores[0].calls;
    for (int i = 0; i < 3; ++i) {
        all.module.set(std::to_string(i).c_str());
        count("snapshot", 1, 1, get_grid);
    }
    count("examine", 3, 1, [&] { examine(store); });
    count("scan-sqlite", 3, 1, [&] { yardsticks::read_all(store); });
}

void write(const All& all, const std::string& store) {
    int value = 0;
    count("set_pv-store", 5, 1, [&] { all.module.set(std::to_string(++value).c_str()); });
    count("set_pv-sqlite", 5, 1,
          [&] { yardsticks::write_one(store, "interface", "w0", "ssid", std::to_string(++value).c_str()); });
}

double median_time(const std::function<void(const char*)>& write) {
    using Clock = std::chrono::steady_clock;
    std::vector<double> times;
    for (int i = 0; i < 101; ++i) {
        const Clock::time_point start = Clock::now();
        write(std::to_string(i).c_str());
        times.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + 50, times.end());
    return times[50];
}

void print_times(const All& all, const std::string& store) {
    const double ours = median_time([&](const char* value) { all.module.set(value); });
    const double bare =
        median_time([&](const char* value) { yardsticks::write_one(store, "interface", "w0", "ssid", value); });
    printf("%.0f %.0f\n", ours, bare);
}

// There is some time between polls, so the store checks for changes each time.
void print_faults(const All& all) {
    constexpr int polls = 20;
    calls = &all.stores[0].calls;
    all.module.poll();
    rusage before = {}, after = {};
    getrusage(RUSAGE_SELF, &before);
    for (int i = 0; i < polls; ++i)
        all.module.poll();
    getrusage(RUSAGE_SELF, &after);
    printf("%.1f\n", static_cast<double>(after.ru_minflt - before.ru_minflt) / polls);
}

[[noreturn]] void disturb(const All& all) {
    for (int i = 0;; ++i, usleep(100'000))
        all.module.set(std::to_string(i).c_str());
}

int run(const std::string& command, const All& all, const std::string& store) {
    if (command == "reload") {
        reload(all);
    } else if (command == "faults") {
        print_faults(all);
    } else if (command == "calls") {
        single_calls(all, store);
    } else if (command == "write") {
        write(all, store);
    } else if (command == "import") {
        count("import-sqlite", 1, 1, [&] { yardsticks::write_all(store + ".new", all.objects); });
    } else if (command == "times") {
        print_times(all, store);
    } else if (command == "disturb") {
        disturb(all);
    } else {
        fail("no such command");
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) fail("usage: bench-store COMMAND MODULE STORE    (see bench/store.cc)");
    setenv("CFQL_STORE", argv[3], 1);
    const All all(argv[2], argv[3]);
    return run(argv[1], all, argv[3]);
}
