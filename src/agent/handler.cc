#include "agent/handler.h"

#include <stdlib.h>
#include <string.h>

#include "agent/set_records.h"
#include "util/error_status.h"

namespace dot11 {

bool complete_answers = false;

namespace {

// One phase of a request, and what it works on.
struct Phase {
    const AgentTable& table;
    netsnmp_agent_request_info* info;
    Keys keys;
};

// What comes after a request: nothing, if the handler ends, or the next request of the list.
enum class Next : bool { nothing, request };

void fail(const Phase& phase, netsnmp_request_info* request, int status) {
    netsnmp_set_request_error(phase.info, request, status);
}

// The value of a varbind as checks and accessors take it: an INTEGER, which the agent keeps in a long, as 32 bits; a
// short OCTET STRING padded with zeroes, because an accessor reads its fixed number of octets whatever the length. (A
// master agent may go on to ACTION after a failed check.)
class RequestValue {
  public:
    explicit RequestValue(const netsnmp_variable_list& varbind) : value_(varbind.val.string), length_(varbind.val_len) {
        if (!value_) return;
        const auto integer = varbind.type == ASN_INTEGER ? static_cast<int32_t>(*varbind.val.integer) : 0;
        if (varbind.type == ASN_INTEGER)
            copy(&integer, sizeof integer);
        else if (length_ < sizeof copy_)
            copy(value_, length_);
    }
    RequestValue(const RequestValue&) = delete;
    RequestValue& operator=(const RequestValue&) = delete;

    const void* value() const { return value_; }
    size_t length() const { return length_; }

  private:
    void copy(const void* value, size_t length) {
        memcpy(copy_, value, length);
        value_ = copy_;
        length_ = length;
    }

    alignas(int32_t) uint8_t copy_[max_octets_read] = {};
    const void* value_;
    size_t length_;
};

// Null for a number that no column has.
const Column* find_column(const Table& table, uint32_t number) {
    const uint32_t position = number - table.columns.front().number;
    return position < table.columns.size() ? &table.columns[position] : nullptr;
}

void log_problem(const AgentTable& table, const char* what) {
    snmp_log(LOG_ERR, "problem encountered in %s_handler: %s\n", table.facts.name, what);
}

Next get(const Phase& phase, netsnmp_request_info* request, void* row, const Column* column) {
    if (!column) {
        log_problem(phase.table, "unknown column");
        return Next::request;
    }
    if (!is_answered(*column, complete_answers)) {
        if (!complete_answers) return Next::nothing;
        fail(phase, request, SNMP_NOSUCHINSTANCE);
        return Next::request;
    }
    size_t length = 0;
    const void* value = column->get(row, &length);
    if (value || column->answered == Answered::always)
        snmp_set_var_typed_value(request->requestvb, static_cast<u_char>(column->type), value, length);
    return Next::request;
}

// Makes the commit record of a SET's row: the row that the iterator found, or a new one. A refused row gets a record,
// too, with a throwaway row.
void reserve(const Phase& phase, netsnmp_request_info* request, void* row, netsnmp_variable_list* indexes) {
    if (!begin_set(phase.info)) return fail(phase, request, SNMP_ERR_RESOURCEUNAVAILABLE);
    if (find_commit_record(phase.keys.row)) return;
    void* made = nullptr;
    if (!row) {
        made = phase.table.hooks.create_row(indexes);
        if (!made && phase.table.missing_row != MissingRow::created) made = calloc(1, phase.table.facts.row_size);
        row = made;
    }
    if (!row || !add_commit_record(phase.keys.row, row, made, made != nullptr))
        fail(phase, request, SNMP_ERR_RESOURCEUNAVAILABLE);
}

// Checks the new value and keeps the old one.
void check(const Phase& phase, netsnmp_request_info* request, const CommitRecord* record, const Column* column) {
    if (!column || !column->set) return fail(phase, request, SNMP_ERR_NOTWRITABLE);
    if (!record) return fail(phase, request, SNMP_ERR_RESOURCEUNAVAILABLE);
    size_t old_length = 0;
    const void* old_value = column->get(record->row, &old_length);
    UndoRecord* undo = old_value ? make_undo_record(old_value, old_length) : nullptr;
    if (old_value && !undo) return fail(phase, request, SNMP_ERR_RESOURCEUNAVAILABLE);
    const RequestValue value(*request->requestvb);
    const int status = column->check(request->requestvb->type, value.value(), value.length(), old_value, old_length);
    if (status != SNMP_ERR_NOERROR) {
        fail(phase, request, status);
        ieee802dot11_free_undoInfo(undo);
    } else if (undo) {
        add_undo_record(phase.keys.request, undo);
    }
}

// Nothing is written without a row or without a value.
int write_value(const CommitRecord* record, const Column& column, const netsnmp_variable_list& varbind) {
    const RequestValue value(varbind);
    if (!record) return SNMP_ERR_RESOURCEUNAVAILABLE;
    return value.value() ? column.set(record->row, value.value(), value.length()) : SNMP_ERR_GENERR;
}

Next write(const Phase& phase, netsnmp_request_info* request, const CommitRecord* record, const Column* column) {
    if (!column || !column->set) return Next::request;
    if (column->write_ends_handler) return Next::nothing;
    const int status = write_value(record, *column, *request->requestvb);
    if (status != SNMP_ERR_NOERROR) fail(phase, request, status);
    return Next::request;
}

// Commits a row once, however many of its columns the request sets. Does nothing if another table of the PDU has
// emptied the stores.
void commit(const Phase& phase, CommitRecord* record) {
    if (!record || record->committed) return;
    phase.table.hooks.commit_row(&record->row, record->is_new);
    record->committed = 1;
}

// Writes the old value back and returns the status to report. Fails if nothing was saved, or if another table of the
// PDU has emptied the stores. Only tables that refuse missing rows report the write accessor's own status.
int restore_value(const Phase& phase, const CommitRecord* record, const Column& column) {
    const UndoRecord* undo = find_undo_record(phase.keys.request);
    if (!record || !undo || !undo->value) return SNMP_ERR_UNDOFAILED;
    const int status = column.set(record->row, undo->value, undo->length);
    const bool tells_why = phase.table.missing_row == MissingRow::refused;
    return status == SNMP_ERR_NOERROR || tells_why ? status : SNMP_ERR_UNDOFAILED;
}

Next undo(const Phase& phase, netsnmp_request_info* request, const CommitRecord* record, const Column* column) {
    if (!column || !column->set) return Next::request;
    if (column->write_ends_handler) return Next::nothing;
    const int status = restore_value(phase, record, *column);
    if (status != SNMP_ERR_NOERROR) fail(phase, request, status);
    return Next::request;
}

// The row of a GET or of a SET's first phase, as the iterator found it. False when the request ends here.
bool find_row(const Phase& phase, netsnmp_request_info* request, void*& row) {
    row = netsnmp_extract_iterator_context(request);
    if (row) return true;
    if (phase.info->mode == MODE_GET) {
        fail(phase, request, SNMP_NOSUCHINSTANCE);
        return false;
    }
    // A commit record is made all the same.
    if (phase.table.missing_row == MissingRow::refused) fail(phase, request, SNMP_ERR_NOCREATION);
    return true;
}

// The phases that work on the row which the iterator found.
Next handle_found_row(const Phase& phase, netsnmp_request_info* request) {
    void* row = nullptr;
    if (!find_row(phase, request, row)) return Next::request;
    netsnmp_table_request_info* table_info = netsnmp_extract_table_info(request);
    if (!table_info) return Next::request;
    if (phase.info->mode == MODE_GET)
        return get(phase, request, row, find_column(phase.table.facts, table_info->colnum));
    reserve(phase, request, row, table_info->indexes);
    return Next::request;
}

// The later phases of a SET, which work on the row's commit record.
Next handle_reserved_row(const Phase& phase, netsnmp_request_info* request) {
    CommitRecord* record = find_commit_record(phase.keys.row);
    const netsnmp_table_request_info* table_info = netsnmp_extract_table_info(request);
    if (!table_info) return Next::request;
    const Column* column = find_column(phase.table.facts, table_info->colnum);
    switch (phase.info->mode) {
        case MODE_SET_RESERVE2:
            check(phase, request, record, column);
            break;
        case MODE_SET_ACTION:
            return write(phase, request, record, column);
        case MODE_SET_COMMIT:
            commit(phase, record);
            break;
        case MODE_SET_FREE:
            break;
        case MODE_SET_UNDO:
            return undo(phase, request, record, column);
        default:
            log_problem(phase.table, "unsupported mode");
    }
    return Next::request;
}

Next handle(const Phase& phase, netsnmp_request_info* request) {
    const int mode = phase.info->mode;
    const bool found_row = mode == MODE_GET || mode == MODE_SET_RESERVE1;
    return found_row ? handle_found_row(phase, request) : handle_reserved_row(phase, request);
}

bool ends_set(int mode) {
    return mode == MODE_SET_COMMIT || mode == MODE_SET_FREE || mode == MODE_SET_UNDO;
}

}  // namespace

// Quirk: both keys come from the first request of the list and are used for all of them, whatever rows and columns they
// name.
int handle_requests(const AgentTable& table, netsnmp_agent_request_info* info, netsnmp_request_info* requests) {
    Phase phase = {table, info, {}};
    if (!requests) return SNMP_ERR_NOERROR;
    make_keys(table.root, *requests->requestvb, phase.keys);
    for (netsnmp_request_info* request = requests; request; request = request->next)
        if (!request->processed && handle(phase, request) == Next::nothing) return SNMP_ERR_NOERROR;
    if (ends_set(info->mode)) empty_stores();
    return SNMP_ERR_NOERROR;
}

}  // namespace dot11
