// What a SET keeps between its phases: an undo store and a commit store, which all tables share.
//
// A record is found by the OID of the SET's first varbind. Keys begin with the table's OID, so that a table never finds
// another one's records.
//
// Quirk: emptying the stores empties them for all tables.
//
// Records live no longer than the PDU that made them: the agent may skip a PDU's last phase, and rows are released with
// their PDU.
#pragma once

#include <stdint.h>
#include <span>

#include "util/net_snmp.h"

namespace dot11 {

// A column's value before the SET.
struct UndoRecord {
    void* value;
    size_t length;  // octets
};

// A row that is being SET.
struct CommitRecord {
    void* row;
    int committed;
    int is_new;  // 1 if the row was created because the table did not have it
};

struct Key {
    oid subids[MAX_OID_LEN];
    size_t length;
};

// The keys of a list of requests, both from its first one: column and index values for a value, index values for a row.
struct Keys {
    Key request;
    Key row;
};

void make_keys(std::span<const oid> root, const netsnmp_variable_list& first, Keys& keys);

// Call it at each RESERVE1. The first call of a PDU empties both stores, and makes sure that whatever the PDU allocates
// is released at its end. False when out of memory.
bool begin_set(netsnmp_agent_request_info* info);

// The row's commit record, or null.
CommitRecord* find_commit_record(const Key& row);

// Adds a commit record for `row`. With `owned_row` the row is released together with the record. Null when out of
// memory, and then `owned_row` has been released.
CommitRecord* add_commit_record(const Key& key, void* row, void* owned_row, bool is_new);

// The undo record under that key, or null.
const UndoRecord* find_undo_record(const Key& request);

// A copy of a column's value, to be added or released with ieee802dot11_free_undoInfo. Null when out of memory.
UndoRecord* make_undo_record(const void* value, size_t length);

// Adds an undo record, which the store then owns. If the key already has one, the new one is released: the second
// column of a row shares the first one's record.
void add_undo_record(const Key& request, UndoRecord* record);

// Empties both stores. Undo records are released at once, commit records and rows at the end of the PDU.
void empty_stores();

#pragma GCC visibility push(default)
extern "C" void ieee802dot11_free_undoInfo(void* record);
#pragma GCC visibility pop

}  // namespace dot11
