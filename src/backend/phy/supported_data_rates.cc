#include "backend/phy/supported_data_rates.h"

#include <net/if.h>
#include <sys/time.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <algorithm>

#include "store/answer.h"
#include "util/convert.h"

namespace dot11 {

uint32_t SUPPDATARATESRXLastLoad;
RateGroupName* rx_tag;
RateText* suppRx_info;
int32_t rxval_index;
int32_t rx_row_index;
SupportedDataRatesRxRow suppRxInfo;

uint32_t SUPPDATARATESTXLastLoad;
RateGroupName* tx_tag;
RateText* suppTx_info;
int32_t txval_index;
int32_t a_index;
SupportedDataRatesTxRow suppTxInfo;

namespace {

constexpr int64_t seconds_kept = 50;
constexpr int32_t rates_per_group = 8;
constexpr uint32_t max_names = max_interfaces + 1;  // as many as lcl_get_tags_pv finds

// One table's names and rates.
//
// Quirk: each group's rate is fetched once, when the group is first visited. Its text is stored in the next free
// element, in the order of the visits, but each row reads the text at its own position among all rows. So a group of
// one object serves its rate, and the other rows of larger groups serve empty texts. A reload clears less than the
// reset at the end of a walk.
struct RateCache {
    uint32_t& last_load;
    RateGroupName*& names;
    RateText*& texts;
    int32_t& next_text;
    int32_t& stored_now;
    int32_t group_sizes[max_names] = {};  // objects, not rows
    uint32_t group_count = 0;
    uint32_t loaded_rows = 0;  // visits to a group's first row since the reset
    uint32_t call_count = 0;   // since the reset
};

RateCache rx = {SUPPDATARATESRXLastLoad, rx_tag, suppRx_info, rxval_index, rx_row_index};
RateCache tx = {SUPPDATARATESTXLastLoad, tx_tag, suppTx_info, txval_index, a_index};

// A row of either table.
struct Rate {
    uint32_t ifIndex;
    int32_t index;
    int32_t value;
};
static_assert(sizeof(Rate) == sizeof(SupportedDataRatesRxRow) && sizeof(Rate) == sizeof(SupportedDataRatesTxRow));

uint32_t loaded_groups(const RateCache& cache) {
    return cache.names ? cache.group_count : 0;
}

uint32_t rows_before(const RateCache& cache, uint32_t group) {
    uint32_t rows = 0;
    for (uint32_t i = 0; i < group; ++i)
        rows += static_cast<uint32_t>(std::min(cache.group_sizes[i], rates_per_group));
    return rows;
}

uint32_t all_rows(const RateCache& cache) {
    return rows_before(cache, loaded_groups(cache));
}

// Null outside the array.
RateText* text_at(const RateCache& cache, int64_t position) {
    return cache.texts && position >= 0 && position < all_rows(cache) ? &cache.texts[position] : nullptr;
}

void release(RateCache& cache) {
    free(cache.names);
    free(cache.texts);
    cache.names = nullptr;
    cache.texts = nullptr;
}

// A group is a run of equal names.
void find_groups(RateCache& cache, int32_t name_count) {
    cache.group_count = 0;
    for (int32_t i = 0; i < name_count; ++i) {
        if (i == 0 || strcmp(iface_tags[i], iface_tags[i - 1]) != 0) cache.group_sizes[cache.group_count++] = 0;
        ++cache.group_sizes[cache.group_count - 1];
    }
}

// If there is no memory for the texts, they all count as empty. False if there is none for the names.
bool allocate(RateCache& cache) {
    release(cache);
    cache.names = static_cast<RateGroupName*>(calloc(cache.group_count, sizeof(RateGroupName)));
    if (!cache.names) return false;
    const RateGroupName* name = iface_tags;
    for (uint32_t group = 0; group < cache.group_count; ++group) {
        memcpy(cache.names[group], name, sizeof *name);
        name += cache.group_sizes[group];
    }
    cache.texts = static_cast<RateText*>(calloc(all_rows(cache), sizeof(RateText)));
    return true;
}

// Returns 1, or what the caller is to return if there are no names.
int reload(RateCache& cache, int64_t now) {
    cfqlquery_node* list = cfqlquery_get_grid(key::rate.table, nullptr, nullptr, nullptr, 1);
    if (!list) return 0;
    int32_t name_count = 0;
    lcl_get_tags_pv(list, key::rate.table, &name_count);
    cfqlquery_destroy_pv(list);
    if (name_count <= 0) {
        cache.last_load = 0;
        return -1;
    }
    find_groups(cache, name_count);
    if (!allocate(cache)) return 0;
    cache.last_load = static_cast<uint32_t>(std::clamp<int64_t>(now, 0, UINT32_MAX));
    return 1;
}

int reload_when_old(RateCache& cache) {
    timeval now = {};
    gettimeofday(&now, nullptr);
    const bool is_fresh = cache.last_load != 0 && cache.last_load + seconds_kept >= now.tv_sec;
    return is_fresh ? 1 : reload(cache, now.tv_sec);
}

void store_rate(RateCache& cache, const cfqlquery_node* list) {
    if (cache.stored_now >= rates_per_group) return;
    if (!list || !list->name || strcmp(list->name, key::rate.name) != 0) return;
    RateText* text = text_at(cache, cache.next_text);
    if (!text) return;
    snprintf(*text, sizeof *text, "%.5s", list->value ? list->value : "");
    ++cache.next_text;
    ++cache.stored_now;
}

// Quirk: only the first visits fetch, as many as there are groups: those of the first walk. False if the store has no
// answer.
bool fetch_rate(RateCache& cache, const char* group_name) {
    if (++cache.loaded_rows > loaded_groups(cache)) return true;
    const Answer answer(key::rate, group_name);
    if (!answer.list()) return false;
    store_rate(cache, answer.list());
    return true;
}

// From units of 100 kbit/s to units of 500 kbit/s; 1 Mbit/s is the least.
int32_t rate_value(const RateText* text) {
    const int32_t value = text && **text ? AlphabeticToNumeric(*text) * 2 / 10 : 0;
    return std::max(value, 2);
}

// A walk of n rows by GETNEXT requests, each of which scans the table from its first row past its last, takes
// (n + 1) squared calls.
//
// Quirk: the cache is emptied after that many calls, and thus only by a walk that no other request disturbs.
void end_walk(RateCache& cache) {
    const uint64_t scan = uint64_t{all_rows(cache)} + 1;
    if (scan * scan != cache.call_count) return;
    cache.last_load = 0;
    cache.next_text = 0;
    cache.loaded_rows = 0;
    cache.call_count = 0;
    release(cache);
}

int next_rate(RateCache& cache, uint32_t row, int32_t& value_index, Rate& rate) {
    cache.stored_now = 0;
    ++cache.call_count;
    if (const int loaded = reload_when_old(cache); loaded != 1) return loaded;
    if (row >= loaded_groups(cache)) {
        end_walk(cache);
        return 0;
    }
    rate.ifIndex = if_nametoindex(cache.names[row]);
    rate.index = value_index;
    if (value_index == 1 && !fetch_rate(cache, cache.names[row])) return 0;
    rate.value = rate_value(text_at(cache, int64_t{rows_before(cache, row)} + value_index - 1));
    if (value_index < INT32_MAX) ++value_index;
    return cache.group_sizes[row] < value_index || value_index > rates_per_group ? 2 : 1;
}

int next_record(RateCache& cache, uint32_t row, int32_t& value_index, void* record) {
    Rate rate;
    memcpy(&rate, record, sizeof rate);
    const int result = next_rate(cache, row, value_index, rate);
    memcpy(record, &rate, sizeof rate);
    return result;
}

}  // namespace

int GetSuppDataRatesRxTableByIndex(uint32_t row, int32_t* value_index, void* record) {
    return next_record(rx, row, *value_index, record);
}

int GetSuppDataRatesTxTableByIndex(uint32_t row, int32_t* value_index, void* record) {
    return next_record(tx, row, *value_index, record);
}

void lcl_suppRx(const cfqlquery_node* list) {
    store_rate(rx, list);
}

void lcl_suppTx(const cfqlquery_node* list) {
    store_rate(tx, list);
}

}  // namespace dot11
