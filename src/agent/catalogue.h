// The tables as they are registered with the agent.
#pragma once

#include <stdint.h>
#include <span>

#include "access/hooks.h"
#include "access/table.h"

namespace dot11 {

// What happens to a SET of a row that the table does not have. Refused: 11 (noCreation). Created: by the table's hook.
// Throwaway: it gets a row of zeroes for this SET alone.
enum class MissingRow : uint8_t { refused, created, throwaway };

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
