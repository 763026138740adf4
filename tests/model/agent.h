// Net-SNMP's agent in the test's own process with the module in it, asked through a transport that exists in memory
// only. Everything between the octets of a message and the module's handlers is Net-SNMP's own: decoding, the registry
// of subtrees, the phases of a SET, the table helper and the table iterator. Access control is left out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// Starts the agent and calls init_ieee802dot11; to be called once in a process.
void start_agent();

// The agent's answer to a message, empty when it gives none; good until the next call. What the exchange left allocated
// can be told from `live_octets` before and after it.
std::span<const uint8_t> answer_to(std::span<const uint8_t> message);

// Octets that the process holds on the heap. Exact with the address sanitizer, otherwise as good as the C library's
// own count, in which freed blocks linger.
size_t live_octets();

bool live_octets_are_exact();
