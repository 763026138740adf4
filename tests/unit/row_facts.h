// Facts about one key of the store and the number that a row makes of it, for the tests of the backends.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "scripted.h"

using Nodes = std::vector<ScriptedDevice::Pair>;

// What the store answers for a key counts as absent.
inline std::vector<Nodes> absent_answers(const std::string& key) {
    return {
        {},                            // the null answer
        {{key, ""}},                   //
        {{key, std::nullopt}},         //
        {{std::nullopt, "3"}},         //
        {{"other", "3"}},              //
        {{"other", "3"}, {key, "3"}},  // only the first node counts
    };
}

// Texts, and the number that a key without bounds makes of them.
struct NumberText {
    std::string text;
    int32_t number;
};

inline const std::vector<NumberText>& number_texts() {
    static const std::vector<NumberText> texts = {
        {"0", 0},
        {"3", 3},
        {"+3", 3},
        {"003", 3},
        {"-", 0},
        {"-1", -1},
        {"-5", -5},
        {"2147483647", 2147483647},
        {"2147483648", INT32_MIN},
        {"4294967299", 3},
        {std::string(10'000, '9'), -1},
        {"x", -1},
        {"3x", -1},
        {" 3", -1},
        {"0x3", -1},
        {"\x80\xff", -1},
        {std::string(10'000, '\xff'), -1},
    };
    return texts;
}

// A key of an object, the field that it fills, the value that stands for an absent one, and what becomes of a number.
template <class Row>
struct NumberKey {
    const char* table;
    const char* key;
    int32_t Row::*field;
    int32_t absent;
    int32_t (*bounded)(int32_t number);
    const char* object = "wlan0";
};

// Fills the row with each answer that a key may have; the last one is taken back. `fill` returns the row.
template <class Row, class Fill>
void expect_numbers(ScriptedDevice& device, const std::vector<NumberKey<Row>>& keys, Fill fill) {
    for (const NumberKey<Row>& key : keys) {
        SCOPED_TRACE(key.key);
        for (const Nodes& nodes : absent_answers(key.key)) {
            device.answer(key.table, key.object, key.key, nodes);
            EXPECT_EQ(fill().*key.field, key.absent) << testing::PrintToString(nodes);
        }
        for (const NumberText& value : number_texts()) {
            device.answer(key.table, key.object, key.key, {{key.key, value.text}, {key.key, "77"}});
            EXPECT_EQ(fill().*key.field, key.bounded(value.number)) << value.text.substr(0, 20);
        }
        device.unset(key.table, key.object, key.key);
    }
}

// As above, on a device with nothing but the interface wlan0.
template <class Row>
void expect_numbers(const std::vector<NumberKey<Row>>& keys, const Row& (*fill)()) {
    ScriptedDevice device;
    device.add_interface("wlan0", 3);
    expect_numbers<Row>(device, keys, fill);
}

inline int32_t as_it_is(int32_t number) {
    return number;
}

inline int32_t zero_when_negative(int32_t number) {
    return number < 0 ? 0 : number;
}

// A writer of a number into the interface's own object, whose result without memory is 0.
inline void expect_number_written(int32_t (*write)(const uint32_t*, const uint32_t*, uint32_t),
                                  const std::string& key) {
    const struct {
        uint32_t index, value;
        int32_t status, result;
        std::string call;
    } facts[] = {
        {3, 16, 1, 0, "set interface wlan0 " + key + "=16"},
        {4, 0, 1, 0, "set interface wlan1 " + key + "=0"},
        {4, UINT32_MAX, 0, 1, "set interface wlan1 " + key + "=4294967295"},
        {3, 16, 2, 1, "set interface wlan0 " + key + "=16"},
        {3, 16, -1, 1, "set interface wlan0 " + key + "=16"},
        {5, 16, 0, 1, "set interface  " + key + "=16"},  // no such interface: the empty name, which the store refuses
        {5, 16, 1, 0, "set interface  " + key + "=16"},
    };
    for (const auto& fact : facts) {
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        device.add_interface("wlan1", 4);
        device.set_status = fact.status;
        EXPECT_EQ(write(&fact.index, &fact.value, 4), fact.result) << fact.call;
        EXPECT_EQ(device.calls, std::vector<std::string>{fact.call});
    }
    for (int failing = 1; failing < 100; ++failing) {
        ScriptedDevice device;
        device.add_interface("wlan0", 3);
        device.set_status = 1;
        device.fail_allocation(failing);
        const uint32_t index = 3;
        const uint32_t value = 7;
        EXPECT_EQ(write(&index, &value, 4), 0) << "allocation " << failing;
        if (!device.allocation_failed()) return;
        EXPECT_LE(device.calls.size(), failing == 1 ? 0U : 1U);
    }
    ADD_FAILURE() << "allocates without end";
}
