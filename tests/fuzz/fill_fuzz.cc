// Fills all tables from a store and a driver's file whose content is the input.
//
// The input is lines, up to a line "---"; the driver's file is whatever follows it. A line
//
//     +NAME            adds an object to both grids, "interface" and "supported-rate"; NAME is an interface of the
//                      system unless it begins with '!'
//     *                doubles the objects
//     KEY=VALUE        answers every request for KEY with a node of that tag and value; without VALUE, a null value
//     KEY:TAG=VALUE    with a node of another tag; without TAG, a null tag
//     ?N               has the run's N-th allocation fail
//     @N               moves the clock by N seconds in each round
//     #N               begins every walk of the rates with the value index N
//
// A further line for the same KEY adds a node to its answer.
//
// Each of the two rounds fills every table and walks both rate tables as the agent's table iterator does; in the second
// the store has lost every other key. What comes out of a table must fit its fields; every answer must be handed back
// once.

#include <net/if.h>
#include <sys/time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "backend/mac/counters.h"
#include "backend/mac/operation.h"
#include "backend/mac/resource_info.h"
#include "backend/phy/dsss.h"
#include "backend/phy/phy_operation.h"
#include "backend/phy/reg_domains.h"
#include "backend/phy/supported_data_rates.h"
#include "backend/phy/tx_power.h"
#include "backend/smt/authentication_algorithms.h"
#include "backend/smt/privacy.h"
#include "backend/smt/station_config.h"
#include "backend/smt/wep_default_keys.h"
#include "demand.h"

using namespace dot11;

namespace {

using Text = std::optional<std::string>;  // nullopt is a null pointer

struct Node {
    Text tag, value;
};

// Heap blocks of exactly the texts' size, so that the address sanitizer sees each byte too many.
class AnswerList {
  public:
    explicit AnswerList(std::vector<Node> content) : content_(std::move(content)), nodes_(content_.size()) {
        for (size_t i = 0; i < nodes_.size(); ++i)
            nodes_[i] = {copy(content_[i].tag), copy(content_[i].value),
                         i + 1 < nodes_.size() ? &nodes_[i + 1] : nullptr, 0};
    }
    ~AnswerList() {
        for (const cfqlquery_node& node : nodes_) {
            free(const_cast<char*>(node.name));
            free(const_cast<char*>(node.value));
        }
    }
    AnswerList(const AnswerList&) = delete;
    AnswerList& operator=(const AnswerList&) = delete;

    cfqlquery_node* head() { return nodes_.data(); }

  private:
    static const char* copy(const Text& text) { return text ? strdup(text->c_str()) : nullptr; }

    std::vector<Node> content_;
    std::vector<cfqlquery_node> nodes_;
};

struct Device {
    std::vector<Node> objects;
    std::map<std::string, std::vector<Node>, std::less<>> answers;
    std::map<std::string, unsigned, std::less<>> interfaces;
    std::string driver_file;
    long failing_allocation = 0;
    int64_t step = 0;
    std::optional<int32_t> value_index;

    int64_t now = 1'000'000'000;
    std::map<cfqlquery_node*, std::unique_ptr<AnswerList>> lent;

    cfqlquery_node* lend(const std::vector<Node>& nodes) {
        if (nodes.empty()) return nullptr;
        auto list = std::make_unique<AnswerList>(nodes);
        cfqlquery_node* head = list->head();
        lent[head] = std::move(list);
        return head;
    }
};

Device* device;

// -- from the input to a device
// ------------------------------------------------------------------------------------------

constexpr size_t most_objects = 300;

void add_object(Device& parsed, std::string_view name) {
    if (parsed.objects.size() >= most_objects) return;
    const std::string text(name);
    if (!name.starts_with('!')) parsed.interfaces.emplace(text, 1 + parsed.interfaces.size());
    parsed.objects.push_back({"name", text});
}

void double_objects(Device& parsed) {
    for (size_t i = 0, count = parsed.objects.size(); i < count && parsed.objects.size() < most_objects; ++i)
        parsed.objects.push_back(Node(parsed.objects[i]));
}

void add_answer(Device& parsed, std::string_view line) {
    const size_t equals = std::min(line.find('='), line.size());
    const std::string_view key_and_tag = line.substr(0, equals);
    const std::string_view value = line.substr(std::min(equals + 1, line.size()));
    const size_t colon = std::min(key_and_tag.find(':'), key_and_tag.size());
    const std::string key(key_and_tag.substr(0, colon));
    Node node = {key, std::nullopt};
    if (colon < key_and_tag.size()) node.tag = std::string(key_and_tag.substr(colon + 1));
    if (node.tag->empty()) node.tag = std::nullopt;
    if (!value.empty()) node.value = std::string(value);
    parsed.answers[key].push_back(node);
}

void parse_line(Device& parsed, std::string_view line) {
    const std::string number(line.substr(std::min<size_t>(1, line.size())));
    switch (line.empty() ? '\0' : line[0]) {
        case '+':
            return add_object(parsed, line.substr(1));
        case '*':
            return double_objects(parsed);
        case '?':
            parsed.failing_allocation = atol(number.c_str());
            return;
        case '@':
            parsed.step = static_cast<int32_t>(atol(number.c_str()));
            return;
        case '#':
            parsed.value_index = static_cast<int32_t>(atol(number.c_str()));
            return;
        default:
            return add_answer(parsed, line);
    }
}

Device parse(std::string_view input) {
    Device parsed;
    while (!input.empty()) {
        const size_t end = std::min(input.find('\n'), input.size());
        const std::string_view line = input.substr(0, end);
        input.remove_prefix(std::min(end + 1, input.size()));
        if (line == "---") break;
        parse_line(parsed, line);
    }
    parsed.driver_file = input;
    return parsed;
}

void lose_every_other_key() {
    bool lose = false;
    for (auto answer = device->answers.begin(); answer != device->answers.end(); lose = !lose)
        answer = lose ? device->answers.erase(answer) : std::next(answer);
}

// -- the tables
// ----------------------------------------------------------------------------------------------------------

void fill(int (*entries)(void), uint32_t (*index_count)(void), int (*table_data)(void)) {
    const int found = entries();
    DEMAND(index_count() <= 129 && found == (index_count() >= 1 && index_count() <= 128));
    const int filled = table_data();
    DEMAND(filled == 1 || filled == -1);
    DEMAND(device->lent.empty());
}

template <size_t size>
void demand_terminated(const char (&text)[size], uint32_t length) {
    DEMAND(length <= size && memchr(text, '\0', size));
}

void demand_station_config() {
    for (const StationConfigRow& row : sinfo) {
        DEMAND(row.dot11DesiredSSIDLen <= sizeof row.dot11DesiredSSID);
        DEMAND(row.dot11OperationalRateSetLen <= sizeof row.dot11OperationalRateSet);
        for (const uint32_t length : {row.dot11StationIDLen, row.dot11DisassociateStationLen,
                                      row.dot11DeauthenticateStationLen, row.dot11AuthenticateFailStationLen})
            DEMAND(length == 0 || length == 6);
    }
}

void demand_lengths() {
    demand_station_config();
    for (const WEPDefaultKeysRow& row : winfo)
        DEMAND(row.dot11WEPDefaultKeyValueLen <= sizeof row.dot11WEPDefaultKeyValue);
    for (const OperationRow& row : opinfo) {
        DEMAND(row.dot11MACAddressLen == 0 || row.dot11MACAddressLen == 6);
        demand_terminated(row.dot11ManufacturerID, row.dot11ManufacturerIDLen);
        demand_terminated(row.dot11ProductID, row.dot11ProductIDLen);
    }
    for (const ResourceInfoRow& row : rinfo) {
        DEMAND(row.dot11manufacturerOUILen <= sizeof row.dot11manufacturerOUI);
        demand_terminated(row.dot11manufacturerName, row.dot11manufacturerNameLen);
        demand_terminated(row.dot11manufacturerProductName, row.dot11manufacturerProductNameLen);
        demand_terminated(row.dot11manufacturerProductVersion, row.dot11manufacturerProductVersionLen);
    }
}

void demand_ranges() {
    for (const PhyOperationRow& row : poinfo)
        DEMAND(row.dot11PHYType >= 0 && row.dot11PHYType <= 3 && row.dot11CurrentRegDomain >= 0 &&
               row.dot11TempType >= 0);
    for (const TxPowerRow& row : ptinfo)
        DEMAND(row.dot11TxPowerLevel1 >= 0 && row.dot11TxPowerLevel8 >= 0);
    for (const RegDomainsRow& row : rdinfo)
        DEMAND(row.dot11RegDomainsSupportValue >= 0);
}

void fill_tables() {
    fill(GetStationConfigEntries, GetStationConfigTableIndexCount, GetStationConfigTableData);
    fill(GetAuthAlgorithmEntries, GetAuthenticationAlgorithmTableIndexCount, GetAuthAlgorithmTableData);
    fill(GetPrivacyEntries, GetPrivacyTableIndexCount, GetPrivacyTableData);
    fill(GetDefaultWEPKeysEntries, GetWEPDefaultKeysTableIndexCount, GetDefaultWEPKeysTableData);
    fill(GetOperationsEntries, GetOperationTableIndexCount, GetOperationsTableData);
    fill(GetCountersEntries, GetCountersTableIndexCount, GetCountersTableData);
    fill(GetResourceInfoEntries, GetResourceInfoTableIndexCount, GetResourceInfoTableData);
    fill(GetPhyOperationsEntries, GetPhyOperationTableIndexCount, GetPhyOperationsTableData);
    fill(GetPhyTxPowerEntries, GetPhyTxPowerTableIndexCount, GetPhyTxPowerTableData);
    fill(GetPhyDsssEntries, GetPhyDsssTableIndexCount, GetPhyDsssTableData);
    fill(GetRegDomainSupportedEntries, GetRegDomainsSupportedTableIndexCount, GetRegDomainSupportedTableData);
    demand_lengths();
    demand_ranges();
}

// -- the rates
// -----------------------------------------------------------------------------------------------------------

using NextRate = int (*)(uint32_t row, int32_t* value_index, void* record);

struct RateWalk {
    NextRate next;
    uint32_t& last_load;
    uint32_t position = 0;
    int32_t value_index = 1;
    uint64_t calls = 0;

    int step() {
        SupportedDataRatesRxRow row = {};
        ++calls;
        const int result = next(position, &value_index, &row);
        DEMAND(result >= -1 && result <= 2);
        DEMAND(result < 1 || row.dot11SupportedDataRatesRxValue >= 2);
        DEMAND(device->lent.empty());
        if (result == 2) {
            value_index = 1;
            ++position;
        }
        return result;
    }

    // One scan. With a value index of the caller's a group may be long; otherwise there are as many rows as names at
    // most.
    void scan() {
        position = 0;
        if (device->value_index) value_index = *device->value_index;
        for (int rows = 0; rows < 200 && step() > 0; ++rows) {
        }
        value_index = 1;
    }

    // Empties the cache, so that one input leaves nothing to the next: calls as for the end of a table of so many rows
    // that a walk of it takes more calls than were made.
    void empty() {
        Device ending;
        for (uint64_t rows = 0; rows * rows <= calls + 1; ++rows)
            add_object(ending, std::to_string(rows));
        device = &ending;
        last_load = 0;
        position = UINT32_MAX;
        do
            step();
        while (last_load != 0 && calls < 100'000);
        DEMAND(last_load == 0);
    }
};

void run(Device& input) {
    device = &input;
    RateWalk rx = {GetSuppDataRatesRxTableByIndex, SUPPDATARATESRXLastLoad};
    RateWalk tx = {GetSuppDataRatesTxTableByIndex, SUPPDATARATESTXLastLoad};
    for (int round = 0; round < 2; ++round) {
        fill_tables();
        rx.scan();
        tx.scan();
        device->now += device->step;
        rx.step();
        lose_every_other_key();
    }
    device->failing_allocation = 0;
    rx.empty();
    tx.empty();
    device = nullptr;
}

}  // namespace

extern "C" {

cfqlquery_node* cfqlquery_get_grid(const char*, const char*, const char*, const cfqlquery_node*, int) {
    return device->lend(device->objects);
}

cfqlquery_node* cfqlquery_get_pv(const char*, const char*, const char* key) {
    const auto answer = device->answers.find(std::string_view(key));
    return answer == device->answers.end() ? nullptr : device->lend(answer->second);
}

int32_t cfqlquery_set_pv(const char*, const char*, const cfqlquery_node*, int) {
    return 1;
}

void cfqlquery_destroy_pv(cfqlquery_node* list) {
    DEMAND(!list || device->lent.erase(list) == 1);
}

unsigned __wrap_if_nametoindex(const char* name) {
    const auto found = device->interfaces.find(std::string_view(name));
    return found == device->interfaces.end() ? 0 : found->second;
}

int __wrap_gettimeofday(timeval* time, void*) {
    *time = {static_cast<time_t>(device->now), 0};
    return 0;
}

// The fuzzer itself opens files too.
FILE* __real_fopen(const char* path, const char* mode);
FILE* __wrap_fopen(const char* path, const char* mode) {
    if (!device) return __real_fopen(path, mode);
    std::string& file = device->driver_file;
    return file.empty() ? nullptr : fmemopen(file.data(), file.size(), mode);
}

void* __real_calloc(size_t count, size_t size);
void* __wrap_calloc(size_t count, size_t size) {
    if (device && device->failing_allocation > 0 && --device->failing_allocation == 0) return nullptr;
    return __real_calloc(count, size);
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Device input = parse({reinterpret_cast<const char*>(data), size});
    run(input);
    return 0;
}
}
