#include "agent/set_records.h"

#include <stdlib.h>
#include <string.h>
#include <algorithm>

#include "access/table.h"

namespace dot11 {

namespace {

// A commit record, and the row that is released with it at the end of the PDU.
struct OwnedRecord {
    CommitRecord record;
    void* owned_row;
    OwnedRecord* next;
};

constexpr char pdu_data[] = "ieee802dot11";

netsnmp_oid_stash_node* undo_store;
netsnmp_oid_stash_node* commit_store;
OwnedRecord* owned_records;
void* current_pdu;

void append(Key& key, std::span<const oid> subids) {
    const size_t count = std::min(subids.size(), static_cast<size_t>(MAX_OID_LEN) - key.length);
    std::copy_n(subids.begin(), count, key.subids + key.length);
    key.length += count;
}

// What follows the first `count` sub-identifiers; nothing for a shorter OID.
std::span<const oid> without_first(std::span<const oid> name, size_t count) {
    return name.last(name.size() - std::min(count, name.size()));
}

void release_all() {
    empty_stores();
    while (owned_records) {
        OwnedRecord* next = owned_records->next;
        free(owned_records->owned_row);
        free(owned_records);
        owned_records = next;
    }
}

// The agent calls this at the end of a PDU. If another PDU has begun since, the records belong to that one.
void end_pdu(void* pdu) {
    if (pdu == current_pdu) {
        release_all();
        current_pdu = nullptr;
    }
    free(pdu);
}

}  // namespace

void make_keys(std::span<const oid> root, const netsnmp_variable_list& first, Keys& keys) {
    const std::span<const oid> name(first.name, first.name_length);
    const size_t column = root.size() + 1;
    keys.request.length = keys.row.length = 0;
    append(keys.request, root);
    append(keys.request, without_first(name, column));
    append(keys.row, root);
    append(keys.row, without_first(name, column + 1));
}

bool begin_set(netsnmp_agent_request_info* info) {
    if (netsnmp_agent_get_list_data(info, pdu_data)) return true;
    release_all();
    void* pdu = calloc(1, 1);
    netsnmp_data_list* node = pdu ? netsnmp_create_data_list(pdu_data, pdu, end_pdu) : nullptr;
    if (!node) {
        free(pdu);
        return false;
    }
    netsnmp_agent_add_list_data(info, node);
    current_pdu = pdu;
    return true;
}

CommitRecord* find_commit_record(const Key& row) {
    return static_cast<CommitRecord*>(netsnmp_oid_stash_get_data(commit_store, row.subids, row.length));
}

CommitRecord* add_commit_record(const Key& key, void* row, void* owned_row, bool is_new) {
    auto* owned = static_cast<OwnedRecord*>(calloc(1, sizeof(OwnedRecord)));
    if (!owned || netsnmp_oid_stash_add_data(&commit_store, key.subids, key.length, owned) != SNMPERR_SUCCESS) {
        free(owned);
        free(owned_row);
        return nullptr;
    }
    *owned = {{row, 0, is_new ? 1 : 0}, owned_row, owned_records};
    owned_records = owned;
    return &owned->record;
}

const UndoRecord* find_undo_record(const Key& request) {
    return static_cast<const UndoRecord*>(netsnmp_oid_stash_get_data(undo_store, request.subids, request.length));
}

UndoRecord* make_undo_record(const void* value, size_t length) {
    auto* record = static_cast<UndoRecord*>(calloc(1, sizeof(UndoRecord)));
    if (!record) return nullptr;
    // Padded, because any column's accessor may write it back, and reads its own number of octets.
    record->value = calloc(1, std::max(length, max_octets_read));
    if (!record->value) {
        ieee802dot11_free_undoInfo(record);
        return nullptr;
    }
    memcpy(record->value, value, length);
    record->length = length;
    return record;
}

void add_undo_record(const Key& request, UndoRecord* record) {
    if (netsnmp_oid_stash_add_data(&undo_store, request.subids, request.length, record) != SNMPERR_SUCCESS)
        ieee802dot11_free_undoInfo(record);
}

void empty_stores() {
    netsnmp_oid_stash_free(&undo_store, ieee802dot11_free_undoInfo);
    netsnmp_oid_stash_free(&commit_store, netsnmp_oid_stash_no_free);
}

void ieee802dot11_free_undoInfo(void* record) {
    auto* undo = static_cast<UndoRecord*>(record);
    if (!undo) return;
    free(undo->value);
    undo->value = nullptr;
    free(undo);
}

}  // namespace dot11
