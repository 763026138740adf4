// bench-floor.so, a second module beside the one that is measured. Its tables show the least that Net-SNMP's table
// iterator costs: they have as many rows and columns, and records as large, as tables of ours, but every hook copies
// the same row, and no clock is read. Under valgrind, a SET of its scalar to a text records how many instructions the
// agent has executed since the last such SET; an empty text only starts the count.
//
// The environment variable FLOOR_ROWS says how many rows the tables have.
#include <valgrind/callgrind.h>

#include <cstdlib>
#include <cstring>

#include "backend/mac/counters.h"
#include "backend/mac/operation.h"
#include "backend/smt/station_config.h"
#include "util/net_snmp.h"

namespace {

constexpr size_t largest_row = 1024;
static_assert(sizeof(dot11::StationConfigRow) <= largest_row && sizeof(dot11::OperationRow) <= largest_row);

struct Shape {
    const char* name;
    oid number;
    unsigned columns;
    size_t row_size;
};

constexpr Shape shapes[] = {
    {"floorOfCounters", 2, 14, sizeof(dot11::CountersRow)},
    {"floorOfOperation", 3, 9, sizeof(dot11::OperationRow)},
    {"floorOfStationConfig", 4, 10, sizeof(dot11::StationConfigRow)},
};

// The present row of a walk; it begins with its index.
struct Loop {
    int position;
    char row[largest_row];
};

Loop loop;
const char constant_row[largest_row] = {};
int rows;

const Shape& shape_of(const netsnmp_iterator_info* info) {
    return *static_cast<const Shape*>(info->myvoid);
}

netsnmp_variable_list* next_row(void** loop_context, void**, netsnmp_variable_list* index,
                                netsnmp_iterator_info* info) {
    auto* at = static_cast<Loop*>(*loop_context);
    if (at->position == rows) return nullptr;
    memcpy(at->row, constant_row, shape_of(info).row_size);
    const int number = ++at->position;
    snmp_set_var_value(index, &number, sizeof number);
    return index;
}

netsnmp_variable_list* first_row(void** loop_context, void** data, netsnmp_variable_list* index,
                                 netsnmp_iterator_info* info) {
    loop.position = 0;
    *loop_context = &loop;
    return next_row(loop_context, data, index, info);
}

void* copy_of_row(void* loop_context, netsnmp_iterator_info* info) {
    void* copy = calloc(1, shape_of(info).row_size);
    if (copy) memcpy(copy, static_cast<const Loop*>(loop_context)->row, shape_of(info).row_size);
    return copy;
}

void free_row(void* row, netsnmp_iterator_info*) {
    free(row);
}

int answer(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info*,
           netsnmp_request_info* requests) {
    for (netsnmp_request_info* request = requests; request; request = request->next) {
        const void* row = netsnmp_extract_iterator_context(request);
        const netsnmp_table_request_info* table = netsnmp_extract_table_info(request);
        if (request->processed || !row || !table) continue;
        const char* value = static_cast<const char*>(row) + sizeof(uint32_t) * (table->colnum % 8);
        snmp_set_var_typed_value(request->requestvb, ASN_COUNTER, value, sizeof(uint32_t));
    }
    return SNMP_ERR_NOERROR;
}

int mark(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
         netsnmp_request_info* requests) {
    if (info->mode != MODE_SET_COMMIT) return SNMP_ERR_NOERROR;
    char text[128] = {};
    const netsnmp_variable_list& value = *requests->requestvb;
    memcpy(text, value.val.string, SNMP_MIN(value.val_len, sizeof text - 1));
    if (*text)
        CALLGRIND_DUMP_STATS_AT(text);
    else
        CALLGRIND_ZERO_STATS;
    return SNMP_ERR_NOERROR;
}

// Under netSnmpPlaypen, which is reserved for experiments.
template <size_t size>
netsnmp_handler_registration* registration(const char* name, Netsnmp_Node_Handler* handler, const oid (&number)[size],
                                           int modes) {
    return netsnmp_create_handler_registration(name, handler, number, size, modes);
}

void register_floor(const Shape& shape) {
    auto* info = static_cast<netsnmp_table_registration_info*>(calloc(1, sizeof(netsnmp_table_registration_info)));
    auto* iterator = static_cast<netsnmp_iterator_info*>(calloc(1, sizeof(netsnmp_iterator_info)));
    if (!info || !iterator) abort();
    netsnmp_table_helper_add_indexes(info, ASN_INTEGER, 0);
    info->min_column = 1;
    info->max_column = shape.columns;
    iterator->get_first_data_point = first_row;
    iterator->get_next_data_point = next_row;
    iterator->make_data_context = copy_of_row;
    iterator->free_data_context = free_row;
    iterator->table_reginfo = info;
    iterator->myvoid = const_cast<Shape*>(&shape);
    const oid number[] = {1, 3, 6, 1, 4, 1, 8072, 9999, 9999, shape.number};
    netsnmp_register_table_iterator(registration(shape.name, answer, number, HANDLER_CAN_RONLY), iterator);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void init_bench_floor() {
    const char* count = getenv("FLOOR_ROWS");
    rows = count ? atoi(count) : 0;
    for (const Shape& shape : shapes)
        register_floor(shape);
    const oid number[] = {1, 3, 6, 1, 4, 1, 8072, 9999, 9999, 1};
    netsnmp_register_scalar(registration("mark", mark, number, HANDLER_CAN_RWRITE));
}
