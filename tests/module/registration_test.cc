// The module's entry, in an agent without any other module. This program sees every registration before the agent does,
// and can let any of the module's allocations fail.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "columns.h"
#include "module.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Registered {
    std::string name, root, index_types;
    unsigned min_column;
    int modes;
    bool converts, frees;
    unsigned max_column = 0;
    bool operator==(const Registered&) const = default;
};
void PrintTo(const Registered& table, std::ostream* out) {
    *out << table.name << " " << table.root << " " << table.index_types << " " << table.min_column << "-"
         << table.max_column << " mode " << table.modes << " " << table.converts << table.frees;
}

std::vector<Registered> registered;
std::vector<std::string> wrong_routines;
int results_of_the_agent = 0;  // sum

int allocations_left = 0;    // until one of the module's fails; 0: none does
int registrations_left = 0;  // the same for netsnmp_create_handler_registration

bool fails(int& left) {
    return left > 0 && --left == 0;
}

const void* base_of(const void* address) {
    Dl_info info = {};
    return dladdr(address, &info) ? info.dli_fbase : nullptr;
}

const void* module_base = nullptr;

// What the module has obtained while it registers its tables, and released itself, in order.
bool is_registering = false;
std::vector<void*> obtained, released;
int agents_releases = 0;  // of a handler registration, which leave nothing of it

[[maybe_unused]] bool is_held(void* block) {
    return std::count(obtained.begin(), obtained.end(), block) > std::count(released.begin(), released.end(), block);
}

std::string dotted(const oid* subids, size_t length) {
    std::string text;
    for (size_t i = 0; i < length; ++i)
        text += (i ? "." : "") + std::to_string(subids[i]);
    return text;
}

template <class Routine>
void expect_routine(Routine* routine, const std::string& name) {
    if (reinterpret_cast<void*>(routine) != find_symbol(name.c_str())) wrong_routines.push_back(name);
}

void record(const netsnmp_handler_registration& registration, const netsnmp_iterator_info& iterator) {
    const std::string name = registration.handlerName;
    std::string types;
    for (auto* index = iterator.table_reginfo->indexes; index; index = index->next_variable)
        types += std::to_string(index->type);
    registered.push_back({name, dotted(registration.rootoid, registration.rootoid_len), types,
                          iterator.table_reginfo->min_column, registration.modes, iterator.make_data_context != nullptr,
                          iterator.free_data_context != nullptr, iterator.table_reginfo->max_column});
    expect_routine(registration.handler->access_method, name + "_handler");
    expect_routine(iterator.get_first_data_point, name + "_get_first_data_point");
    expect_routine(iterator.get_next_data_point, name + "_get_next_data_point");
    if (iterator.make_data_context) expect_routine(iterator.make_data_context, name + "_context_convert_function");
    if (iterator.free_data_context) expect_routine(iterator.free_data_context, name + "_data_free");
}

template <class Function>
Function* next_definition(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" int netsnmp_register_table_iterator(netsnmp_handler_registration* registration,
                                               netsnmp_iterator_info* iterator) {
    record(*registration, *iterator);
    const int result = next_definition<decltype(netsnmp_register_table_iterator)>("netsnmp_register_table_iterator")(
        registration, iterator);
    results_of_the_agent += result;
    return result;
}

extern "C" netsnmp_handler_registration* netsnmp_create_handler_registration(const char* name,
                                                                             Netsnmp_Node_Handler* handler,
                                                                             const oid* root, size_t root_length,
                                                                             int modes) {
    if (fails(registrations_left)) return nullptr;
    auto* registration = next_definition<decltype(netsnmp_create_handler_registration)>(
        "netsnmp_create_handler_registration")(name, handler, root, root_length, modes);
    obtained.push_back(registration);
    return registration;
}

extern "C" void netsnmp_handler_registration_free(netsnmp_handler_registration* registration) {
    if (is_registering) ++agents_releases;
    next_definition<decltype(netsnmp_handler_registration_free)>("netsnmp_handler_registration_free")(registration);
}

#if !defined(ADDRESS_SANITIZER)
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void __libc_free(void* block);
extern "C" void* calloc(size_t count, size_t size) noexcept {
    if (!is_registering || base_of(__builtin_return_address(0)) != module_base) return __libc_calloc(count, size);
    if (fails(allocations_left)) return nullptr;
    void* const block = __libc_calloc(count, size);
    obtained.push_back(block);
    return block;
}
extern "C" void free(void* block) noexcept {
    if (is_registering && is_held(block)) released.push_back(block);
    __libc_free(block);
}
#endif

namespace {

std::vector<Registered> with_last_columns(std::vector<Registered> list) {
    for (Registered& table : list)
        table.max_column = last_column(table.root.substr(sizeof "1.2.840.10036." - 1));
    return list;
}

// clang-format off
const std::vector<Registered> tables = with_last_columns({
    {"dot11WEPKeyMappingsTable",           "1.2.840.10036.1.4",   "22", 2, 3, false, false},
    {"dot11PhyDSSSTable",                  "1.2.840.10036.4.5",   "2",  1, 3, true,  true},
    {"dot11ResourceInfoTable",             "1.2.840.10036.3.1.2", "2",  1, 3, true,  true},
    {"dot11PhyOperationTable",             "1.2.840.10036.4.1",   "2",  1, 3, true,  true},
    {"dot11PhyHRDSSSTable",                "1.2.840.10036.4.12",  "2",  1, 3, false, false},
    {"dot11StationConfigTable",            "1.2.840.10036.1.1",   "2",  1, 3, true,  true},
    {"dot11CountersTable",                 "1.2.840.10036.2.2",   "2",  1, 3, true,  true},
    {"dot11PhyTxPowerTable",               "1.2.840.10036.4.3",   "2",  1, 3, true,  true},
    {"dot11GroupAddressesTable",           "1.2.840.10036.2.3",   "22", 2, 3, false, false},
    {"dot11SupportedDataRatesRxTable",     "1.2.840.10036.4.10",  "22", 2, 3, true,  true},
    {"dot11AuthenticationAlgorithmsTable", "1.2.840.10036.1.2",   "22", 2, 3, true,  true},
    {"dot11PrivacyTable",                  "1.2.840.10036.1.5",   "2",  1, 3, true,  true},
    {"dot11PhyERPTable",                   "1.2.840.10036.4.14",  "2",  1, 3, false, false},
    {"dot11WEPDefaultKeysTable",           "1.2.840.10036.1.3",   "22", 2, 3, true,  true},
    {"dot11SupportedDataRatesTxTable",     "1.2.840.10036.4.9",   "22", 2, 3, true,  true},
    {"dot11OperationTable",                "1.2.840.10036.2.1",   "2",  1, 3, true,  true},
    {"dot11RegDomainsSupportedTable",      "1.2.840.10036.4.7",   "22", 2, 3, true,  true},
});
// clang-format on

class Registration : public testing::Test {
  protected:
    Registration() {
        static const bool started = [] {
            setenv("MIBS", "", 1);
            netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
            netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
            init_agent("registration_test");
            return true;
        }();
        (void)started;
        module_base = base_of(find_symbol("init_ieee802dot11"));
        forget();
    }
    ~Registration() override { unregister_all(); }

    static void forget() {
        registered.clear();
        wrong_routines.clear();
        obtained.clear();
        released.clear();
        agents_releases = results_of_the_agent = allocations_left = registrations_left = 0;
    }

    static void initialize() {
        auto* entry = symbol<void()>("init_ieee802dot11");
        is_registering = true;
        entry();
        is_registering = false;
    }
    static void initialize_table(const std::string& table) { symbol<void()>("initialize_table_" + table)(); }

    // A table that has two of its three records releases them itself, in the order in which they came, each with a
    // plain free.
    static void expect_released([[maybe_unused]] size_t table) {
#ifndef ADDRESS_SANITIZER  // which has calloc and free for itself
        ASSERT_EQ(obtained.size(), 3 * 17 - 1U);
        EXPECT_THAT(released, ElementsAre(obtained[3 * table], obtained[3 * table + 1]));
#endif
        EXPECT_EQ(agents_releases, 0);
    }

    // The tables that the agent has, in the order of their OIDs.
    static std::vector<netsnmp_handler_registration*> tables_in_agent() {
        std::vector<netsnmp_handler_registration*> found;
        const oid root[] = {1, 2, 840, 10036};
        for (netsnmp_subtree* tree = netsnmp_subtree_find_first(""); tree; tree = tree->next)
            if (tree->reginfo && tree->namelen > 4 && snmp_oid_compare(tree->name_a, 4, root, 4) == 0)
                found.push_back(tree->reginfo);
        return found;
    }
    static std::vector<std::string> in_agent() {
        std::vector<std::string> names;
        for (const netsnmp_handler_registration* table : tables_in_agent())
            names.emplace_back(table->handlerName);
        return names;
    }
    static void unregister_all() {
        for (netsnmp_handler_registration* table : tables_in_agent())
            EXPECT_EQ(netsnmp_unregister_handler(table), MIB_UNREGISTERED_OK);
    }
};

std::vector<std::string> names_of(const std::vector<Registered>& list) {
    std::vector<std::string> names;
    for (const Registered& table : list)
        names.push_back(table.name);
    return names;
}

TEST_F(Registration, RegistersSeventeenTablesInAFixedOrder) {
    const Log log;
    initialize();
    EXPECT_EQ(registered, tables);
    EXPECT_THAT(wrong_routines, IsEmpty());
    EXPECT_EQ(results_of_the_agent, 0);
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(Registration, TheAgentHasThemInTheOrderOfTheirOids) {
    initialize();
    EXPECT_THAT(in_agent(),
                ElementsAre("dot11StationConfigTable", "dot11AuthenticationAlgorithmsTable", "dot11WEPDefaultKeysTable",
                            "dot11WEPKeyMappingsTable", "dot11PrivacyTable", "dot11OperationTable",
                            "dot11CountersTable", "dot11GroupAddressesTable", "dot11ResourceInfoTable",
                            "dot11PhyOperationTable", "dot11PhyTxPowerTable", "dot11PhyDSSSTable",
                            "dot11RegDomainsSupportedTable", "dot11SupportedDataRatesTxTable",
                            "dot11SupportedDataRatesRxTable", "dot11PhyHRDSSSTable", "dot11PhyERPTable"));
}

TEST_F(Registration, EachTableHasAnEntryOfItsOwn) {
    for (const Registered& table : tables) {
        initialize_table(table.name);
        EXPECT_THAT(registered, ElementsAre(table));
        EXPECT_THAT(in_agent(), ElementsAre(table.name));
        unregister_all();
        forget();
    }
}

// The agent refuses each table, and releases what it was given.
TEST_F(Registration, ASecondRegistrationIsRefusedWithoutHarm) {
    initialize();
    const std::vector<std::string> before = in_agent();
    initialize();
    EXPECT_NE(results_of_the_agent, 0);
    EXPECT_EQ(in_agent(), before);
}

TEST_F(Registration, WithoutAHandlerRegistrationATableIsLeftOut) {
    for (size_t i = 0; i < tables.size(); ++i) {
        registrations_left = static_cast<int>(i) + 1;
        const Log log;
        initialize();
        EXPECT_THAT(log.lines, ElementsAre("3 malloc failed in initialize_table_" + tables[i].name));
        std::vector<Registered> others = tables;
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
        EXPECT_EQ(names_of(registered), names_of(others));
        expect_released(i);
        unregister_all();
        forget();
    }
}

#ifndef ADDRESS_SANITIZER  // which has calloc for itself
TEST_F(Registration, WithoutMemoryATableIsLeftOut) {
    for (size_t allocation = 0; allocation < 2 * tables.size(); ++allocation) {
        const std::string name = tables[allocation / 2].name;
        allocations_left = static_cast<int>(allocation) + 1;
        const Log log;
        initialize();
        EXPECT_EQ(allocations_left, 0);
        EXPECT_THAT(log.lines, ElementsAre("3 malloc failed in initialize_table_" + name));
        EXPECT_EQ(registered.size(), 16U);
        EXPECT_THAT(names_of(registered), testing::Not(testing::Contains(name)));
        expect_released(allocation / 2);
        unregister_all();
        forget();
    }
}
#endif

}  // namespace
