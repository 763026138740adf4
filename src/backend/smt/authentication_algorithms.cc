#include "backend/smt/authentication_algorithms.h"

#include <net/if.h>

#include <string.h>
#include <iterator>

#include "backend/lookup.h"
#include "backend/radio.h"
#include "backend/rows.h"
#include "store/write.h"

namespace dot11 {

AuthenticationAlgorithmsRow ainfo[algorithms_per_interface * max_interfaces];
AuthenticationAlgorithmsScratch auth_info;

namespace {

using Row = AuthenticationAlgorithmsRow;

constexpr uint32_t open_system = 1;

static_assert(std::size(key::authentication_algorithms) == algorithms_per_interface);

const StoreKey& key_of(uint32_t algorithm) {
    return key::authentication_algorithms[algorithm == open_system ? 0 : 1];
}

int32_t interface_count;

int32_t parse_on_as_true(char* text) {
    return strcmp(text, "on") == 0 ? 1 : 2;
}

// Quirk: an answer with the other algorithm's key counts as this one's.
int32_t read_enable(const char* interface, uint32_t algorithm) {
    const Answer bss_answer(key::bss, interface);
    if (!find_value(bss_answer.list(), key::bss, auth_info.bss)) return 2;
    const Answer answer(key_of(algorithm), auth_info.bss.text);
    release(auth_info.bss);
    if (!find_value_of_any(answer.list(), key::authentication_algorithms, auth_info.algorithm)) return 2;
    return convert_and_release(auth_info.algorithm, parse_on_as_true);
}

void fill_row(Row& row, const char* interface, uint32_t algorithm) {
    row.ifIndex = if_nametoindex(interface);
    row.dot11AuthenticationAlgorithmsIndex = algorithm;
    row.dot11AuthenticationAlgorithm = algorithm == open_system ? 1 : 2;
    row.dot11AuthenticationAlgorithmsEnable = read_enable(interface, algorithm);
}

constexpr int32_t out_of_memory = -1;

}  // namespace

int GetAuthAlgorithmEntries(void) {
    return enumerate_interfaces(interface_count);
}

uint32_t GetAuthenticationAlgorithmTableIndexCount(void) {
    return static_cast<uint32_t>(interface_count);
}

int GetAuthAlgorithmTableData(void) {
    Row* row = ainfo;
    for (uint32_t i = 0; i < names_to_fill(interface_count); ++i)
        for (uint32_t algorithm = 1; algorithm <= algorithms_per_interface; ++algorithm)
            fill_row(*row++, iface_tags[i], algorithm);
    return 1;
}

int GetAuthAlgorithmEntryByIndex(uint32_t row, void* destination) {
    return copy_row(ainfo, row, destination);
}

// Quirk: the TruthValue is written as a number, "1" or "2", but reading takes only "on" as true, so whatever is written
// here reads back as false.
int32_t SetAuthAlgorithmEnable(const AuthenticationAlgorithmsRow* row, const uint32_t* value, uint32_t) {
    const InterfaceName name(row->ifIndex);
    if (!name.text()) return out_of_memory;
    ScratchText bss = {};
    if (!find_bss(name.text(), bss)) return 0;
    const StoreKey& key = key_of(row->dot11AuthenticationAlgorithmsIndex);
    const int32_t result = write_number(key, bss.text, *value, out_of_memory);
    release(bss);
    return result;
}

}  // namespace dot11
