// The tables as the agent gets them.
#pragma once

#include <cstdint>
#include <span>

#include "access/hooks.h"
#include "access/table.h"

namespace dot11 {

// What a SET of a row that the table does not hold meets. Refused: 11 (noCreation). Made: the row that the table
// creates. Stood in: a private row of zeroes; what is written there goes nowhere.
enum class MissingRow : uint8_t { refused, made, stood_in };

struct AgentTable {
    const Table& facts;
    const Hooks& hooks;
    std::span<const oid> root;
    MissingRow missing_row;
    void (*initialize)(void);
    Netsnmp_Node_Handler* handler;
};

// All of them, in the order in which they are registered.
extern const std::span<const AgentTable* const> catalogue;

}  // namespace dot11
