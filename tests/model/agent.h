// Net-SNMP's agent with the module, in the test's own process, queried through a transport that exists only in memory.
// Everything between the octets of a message and the module's handlers is Net-SNMP's own: decoding, the registry of
// subtrees, the phases of a SET, the table helper and the table iterator. Access control is left out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "message.h"

// Starts the agent and calls init_ieee802dot11. Call it once in a process.
void start_agent();

// Whether the environment has DOT11_OPTIONS: then the agent's configuration is taken to hold dot11Answers complete and
// dot11MaxAge 1.
bool has_options();

// The agent's answer to a message, empty when it gives none; good until the next call.
std::span<const uint8_t> answer_to(std::span<const uint8_t> message);

// The same for a request; nothing when there is no answer that can be read.
std::optional<Pdu> answer_to(const Pdu& request);

// The phases of a SET as a subagent takes them one by one from its master, which leads them.
enum class Phase { reserve1, reserve2, action, commit, free, undo };

// The answer to one phase. Those of one SET have its transaction in common. The first one brings the varbinds, which
// the agent keeps for the others until COMMIT, FREE or UNDO.
std::optional<Pdu> answer_to(Phase phase, long transaction, const std::vector<Varbind>& varbinds);

// How many octets the process has on the heap. Exact with the address sanitizer; otherwise the C library's own count,
// in which freed blocks linger.
size_t live_octets();

bool live_octets_are_exact();
