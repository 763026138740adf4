// Requests to the agent with the module in it, while the device changes. The input is a sequence of steps, each a byte
// that chooses what to do, followed by its parameters; after its end, zeroes follow.
//
// A step is a request of a few varbinds (mostly names from the tables, partly distorted), octets given to the agent as
// a message, a value of the store that is set or removed, an interface that comes, goes or changes its index, the same
// for a rate group, a jump of the clock, or an allocation of the module that will fail.
//
// An answer must be well formed, bear the request's number, keep the names of a GET or a SET in their order, and lead
// onward for a GETNEXT. A request that has not made the module read its store leaves as much on the heap as it found.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "agent.h"
#include "demand.h"
#include "message.h"
#include "scripted.h"
#include "varbinds.h"

namespace {

class Input {
  public:
    Input(const uint8_t* data, size_t size) : rest_(data, size) {}

    bool empty() const { return rest_.empty(); }
    uint8_t octet() {
        if (rest_.empty()) return 0;
        const uint8_t first = rest_.front();
        rest_ = rest_.subspan(1);
        return first;
    }
    uint32_t word() {
        uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | octet();
        return value;
    }
    // As many octets as the next one says, fewer at the end.
    std::string octets() {
        const size_t count = std::min<size_t>(octet(), rest_.size());
        const std::string taken(rest_.begin(), rest_.begin() + static_cast<std::ptrdiff_t>(count));
        rest_ = rest_.subspan(count);
        return taken;
    }
    template <class Choices>
    const auto& one_of(const Choices& choices) {
        return choices[octet() % std::size(choices)];
    }

  private:
    std::span<const uint8_t> rest_;
};

// -- Requests ---------------------------------------------------------------------------------------------------------

Oid bent_name(Input& input) {
    Oid bent = input.one_of(representative_varbinds()).name;
    const uint8_t how = input.octet();
    if (how & 1) bent.push_back(input.octet());
    if (how & 2) bent.resize(std::max<size_t>(bent.size() - how % 5, 2));
    if (how & 4 && bent.size() > 2) bent[2 + input.octet() % (bent.size() - 2)] = input.octet();
    if (how & 8 && bent.size() > 2) bent.back() = input.word();
    if (how & 16) bent.insert(bent.end(), input.octet() % 130, 1);
    return bent;
}

Value some_value(Input& input) {
    static constexpr uint8_t types[] = {
        integer, octet_string, object_id,  0x40,         counter32,      gauge32,          0x43,
        0x44,    0x46,         null_value, octet_string, no_such_object, no_such_instance, end_of_mib_view};
    const uint8_t how = input.octet();
    if (how < 128) return input.one_of(representative_varbinds()).value;
    if (how < 192) return number(static_cast<int32_t>(input.word()));
    return {input.one_of(types), input.octets()};
}

Pdu some_request(Input& input, int32_t number) {
    static constexpr uint8_t commands[] = {get_request, get_next_request, set_request, set_request, get_bulk_request};
    Pdu pdu = {input.one_of(commands), number, 0, 0, {}};
    if (pdu.command == get_bulk_request) {
        pdu.status = input.octet() % 4;
        pdu.index = input.octet() % 32;
    }
    for (int count = 1 + input.octet() % 6; count > 0; --count) {
        const Oid name = bent_name(input);
        pdu.varbinds.push_back({name, pdu.command == set_request ? some_value(input) : Value{}});
    }
    return pdu;
}

void demand_answer(const Pdu& request, const Pdu& answer) {
    DEMAND(answer.command == response_pdu);
    DEMAND(answer.request_id == request.request_id);
    DEMAND(answer.status >= 0 && answer.status <= 18);
    DEMAND(answer.index >= 0 && static_cast<size_t>(answer.index) <= request.varbinds.size());
    if (request.command == get_bulk_request) return;
    DEMAND(answer.varbinds.size() == request.varbinds.size());
    for (size_t i = 0; i < answer.varbinds.size(); ++i) {
        const Varbind& answered = answer.varbinds[i];
        const Oid& requested = request.varbinds[i].name;
        const bool onward = request.command == get_next_request && !answer.status;
        DEMAND(onward && answered.value.type != end_of_mib_view ? answered.name > requested
                                                                : answered.name == requested);
    }
}

std::optional<Pdu> asked(ScriptedDevice& device, const std::string& message) {
    device.calls = {};
    device.opened = {};
    const size_t before = live_octets();
    const std::span<const uint8_t> answer = answer_to(octets_of(message));
    if (device.calls.empty()) DEMAND(live_octets() == before);
    if (answer.empty()) return std::nullopt;
    std::optional<Pdu> pdu = decoded(answer);
    DEMAND(pdu);
    return pdu;
}

void request(ScriptedDevice& device, Input& input) {
    static int32_t number;
    const Pdu pdu = some_request(input, ++number);
    const std::optional<Pdu> answer = asked(device, encoded(pdu));
    if (answer) demand_answer(pdu, *answer);
    device.fail_allocation(0);
}

// -- The device -------------------------------------------------------------------------------------------------------

struct Key {
    const char *table, *object, *key;
};
constexpr Key keys[] = {
    {"interface", "wlan0", "ssid"},
    {"interface", "wlan0", "mac"},
    {"interface", "wlan0", "bss"},
    {"interface", "wlan0", "security"},
    {"interface", "wlan0", "wep-key-1"},
    {"interface", "wlan1", "wep-key-4"},
    {"interface", "wlan0", "dot11-privacy-invoked"},
    {"interface", "wlan0", "wep-key-mapping-length"},
    {"interface", "wlan0", "dot11-disassociate-station"},
    {"interface", "wlan0", "dot11-phy-type"},
    {"interface", "wlan0", "dot11-current-reg-domain"},
    {"interface", "wlan0", "tx-power"},
    {"interface", "wlan0", "transmitted-fragment-count"},
    {"bss", "b0", "radio"},
    {"bss", "b0", "dtim-period"},
    {"bss", "b0", "open-system-authentication"},
    {"radio", "r0", "beacon-interval"},
    {"radio", "r0", "rts-threshold"},
    {"radio", "r0", "manufacturer-id"},
    {"radio", "wlan0", "channel"},
    {"supported-rate", "wlan0", "rate"},
    {"supported-rate", "wlan1", "rate"},
    {"system", "", "country"},
};

void change_store(ScriptedDevice& device, Input& input) {
    const Key& key = input.one_of(keys);
    const std::string value = input.octets();
    if (value.empty())
        device.unset(key.table, key.object, key.key);
    else
        device.set(key.table, key.object, key.key, value);
}

std::string some_interface(Input& input) {
    return "wlan" + std::to_string(input.octet() % 8);
}

// What the grids list, which the system may not know, or know under another index.
void change_interfaces(ScriptedDevice& device, Input& input) {
    const std::string interface = some_interface(input);
    switch (input.octet() % 7) {
        case 0:
            device.add_interface(interface, input.octet());
            break;
        case 1:
            device.interfaces[interface] = input.word();
            break;
        case 2:
            device.interfaces.erase(interface);
            break;
        case 3:
            for (int count = input.octet() % 140; count > 0; --count)
                device.add("interface", interface);
            break;
        case 4:
            device.add("supported-rate", interface);
            break;
        case 5:
            device.listings_before_loss = input.octet();
            break;
        default:
            device.answer_grid(input.octet() & 1 ? "interface" : "supported-rate", {{"name", input.octets()}});
    }
}

// A clock that leaps at every read has every row reload all tables: a few such reads show what many would.
void leap(ScriptedDevice& device, int64_t seconds) {
    device.tick = seconds;
    device.ticks = 50;
}

void move_clock(ScriptedDevice& device, Input& input) {
    static constexpr int64_t moments[] = {0, 15, 1LL << 31, (1LL << 31) - 20, 1LL << 32, 1'000'000'000};
    const uint8_t how = input.octet();
    device.monotonic_milliseconds += how * 1000;
    if (how < 96)
        device.now += how;
    else if (how < 128)
        leap(device, how - 96);
    else if (how < 192)
        device.now += static_cast<int32_t>(input.word());
    else
        device.now = input.one_of(moments);
}

void step(ScriptedDevice& device, Input& input) {
    switch (input.octet() % 16) {
        case 0:
            asked(device, input.octets());
            break;
        case 1:
            return change_store(device, input);
        case 2:
            return change_interfaces(device, input);
        case 3:
            return move_clock(device, input);
        case 4:
            return input.octet() & 1 ? device.fail_allocation(input.octet())
                                     : device.fail_allocations_from(input.octet());
        case 5:
            device.files["/proc/net/mura/wlan0.11/info"] = input.octets();
            break;
        default:
            request(device, input);
    }
}

// The agent makes what it keeps for good at the first messages, so that inputs find it made.
bool prepare() {
    GTEST_FLAG_SET(break_on_failure, true);
    start_agent();
    ScriptedDevice device;
    set_up(device);
    answer_to(std::span<const uint8_t>());
    for (const Varbind& varbind : representative_varbinds())
        for (const uint8_t command : {get_request, get_next_request, set_request})
            answer_to(Pdu{command, 0, 0, 0, {varbind}});
    return true;
}

}  // namespace

// Every input finds tables that are due to be read: the clock of each begins behind all that an earlier one reached.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool prepared = prepare();
    static int64_t beginning;
    (void)prepared;
    ScriptedDevice device;
    set_up(device);
    device.add("supported-rate", "wlan0");
    device.set("supported-rate", "wlan0", "rate", "110");
    device.now = beginning += 1LL << 34;
    for (Input input(data, size); !input.empty();)
        step(device, input);
    return 0;
}
