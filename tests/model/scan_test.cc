// The answers to GETNEXT and GETBULK do not depend on how many rows the agent's table iterator scans for them. The same
// messages are sent for tables that were just reloaded, for the same tables later, whose order is then known, and with
// a clock that makes every row reload its table, so that the order never is. The answers must be the same octets.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "agent.h"
#include "message.h"
#include "scripted.h"
#include "varbinds.h"

namespace {

struct Order {
    const char* what;
    std::vector<unsigned> indexes;  // of the interfaces, in the store's order
};
void PrintTo(const Order& order, std::ostream* out) {
    *out << order.what;
}

constexpr char table_without_rates[][4] = {{1, 1}, {1, 2}, {1, 3}, {1, 4}, {1, 5}, {2, 1},  {2, 2},
                                           {2, 3}, {4, 1}, {4, 3}, {4, 5}, {4, 7}, {4, 12}, {4, 14}};

class Scan : public testing::TestWithParam<Order> {
  protected:
    // Once in a process, for both suites: the clock never goes back.
    static void SetUpTestSuite() {
        if (device) return;
        device = std::make_unique<ScriptedDevice>();
        start_agent();
    }

    void SetUp() override {
        device->clear_store();
        device->interfaces.clear();
        int number = 0;
        for (const unsigned index : GetParam().indexes) {
            const std::string name = "w" + std::to_string(number);
            device->add_interface(name, index);
            device->set("interface", name, "ssid", name);
            device->set("interface", name, "tx-power", std::to_string(++number));
        }
        device->now += 100;
    }

    static std::string answer(const Pdu& request) {
        const std::string message = encoded(request);
        const std::span<const uint8_t> octets = answer_to(octets_of(message));
        device->calls.clear();
        return {octets.begin(), octets.end()};
    }

    static std::string answer_without_order(const Pdu& request) {
        device->tick = 16;
        const std::string octets = answer(request);
        device->tick = 0;
        return octets;
    }

    // How often the clock is read: once for each row and once at the end.
    static int64_t clock_reads(const Pdu& request) {
        device->tick = 1;
        const int64_t before = device->now;
        answer(request);
        device->tick = 0;
        return device->now - before;
    }

    uint32_t any(uint32_t below) { return static_cast<uint32_t>(random_() % below); }

    // Columns, rows and ends that are there and that are not.
    Oid any_name() {
        const auto& table = table_without_rates[any(std::size(table_without_rates))];
        std::vector<uint32_t> suffix = {
            static_cast<uint32_t>(table[0]), static_cast<uint32_t>(table[1]), 1, any(26), any(9), any(6)};
        const std::vector<unsigned>& indexes = GetParam().indexes;
        if (!indexes.empty() && any(2) == 0) suffix[4] = indexes[any(static_cast<uint32_t>(indexes.size()))];
        suffix.resize(2 + any(5));
        return name(suffix);
    }

    Pdu any_request() {
        Pdu request = {get_next_request, ++id_, 0, 0, {}};
        if (any(3) == 0)
            request = {get_bulk_request, id_, static_cast<int32_t>(any(2)), 1 + static_cast<int32_t>(any(9)), {}};
        for (uint32_t left = 1 + any(4); left > 0; --left)
            request.varbinds.push_back({any_name(), {}});
        // Often of one table, whose scans they then share.
        for (Varbind& varbind : request.varbinds)
            if (any(2) == 0 && varbind.name.size() > 7)
                std::copy_n(request.varbinds[0].name.begin(), 7, varbind.name.begin());
        return request;
    }

    static std::unique_ptr<ScriptedDevice> device;

  private:
    std::mt19937 random_{4711};  // NOLINT: the same requests each time
    int32_t id_ = 0;
};
std::unique_ptr<ScriptedDevice> Scan::device;

TEST_P(Scan, AnswersAreTheSameOctets) {
    for (int i = 0; i < 150 && !HasFailure(); ++i) {
        const Pdu request = any_request();
        if (i % 7 == 0) device->now += 100;
        const std::string first = answer(request);
        ASSERT_FALSE(first.empty());
        EXPECT_EQ(answer(request), first);
        EXPECT_EQ(answer_without_order(request), first);
        if (HasFailure())
            for (const Varbind& varbind : request.varbinds)
                ADD_FAILURE() << "command " << int{request.command} << ": " << shown(varbind);
    }
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Orders, Scan, testing::Values(
    Order{"Ascending", {1, 2, 3, 5, 6, 8}},
    Order{"Falling", {8, 6, 5, 3, 2, 1}},
    Order{"Equal", {1, 1, 2, 2, 3, 3}},
    Order{"AllEqual", {4, 4, 4}},
    Order{"Mixed", {3, 1, 2, 2, 8, 4}},
    Order{"TheLastFalls", {1, 2, 3, 5, 6, 4}},
    Order{"Large", {1, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF}},
    Order{"LargeAndFalling", {0x80000000, 1, 0xFFFFFFFF, 2}},
    Order{"One", {5}},
    Order{"None", {}}), testing::PrintToStringParamName());
// clang-format on

// dot11OperationTable has rows 1 to 6; those asked for are the first, one in the middle, and the second column's first.
using Ascending = Scan;
TEST_P(Ascending, AScanEndsWithTheRowThatIsAskedFor) {
    const Pdu first = {get_next_request, 1, 0, 0, {{name({2, 1, 1, 2}), {}}}};
    const Pdu third = {get_next_request, 2, 0, 0, {{name({2, 1, 1, 2, 2}), {}}}};
    const Pdu two = {get_next_request, 3, 0, 0, {{name({2, 1, 1, 2}), {}}, {name({2, 1, 1, 2, 3}), {}}}};
    const Pdu next_column = {get_next_request, 4, 0, 0, {{name({2, 1, 1, 2, 6}), {}}}};
    EXPECT_EQ(clock_reads(first), 7) << "after a reload";
    EXPECT_EQ(clock_reads(first), 1);
    EXPECT_EQ(clock_reads(third), 3);
    EXPECT_EQ(clock_reads(two), 4);
    EXPECT_EQ(clock_reads(next_column), 7 + 1);
    device->now += 16;
    EXPECT_EQ(clock_reads(third), 7) << "after a reload";
    EXPECT_EQ(clock_reads(third), 3);
}
INSTANTIATE_TEST_SUITE_P(Orders, Ascending, testing::Values(Order{"WithoutGaps", {1, 2, 3, 4, 5, 6}}),
                         testing::PrintToStringParamName());

}  // namespace
