#include "agent/module.h"

#include <stdlib.h>

#include "agent/options.h"

namespace dot11 {

namespace {

// Whether the agent has taken a table. It takes none of a second copy of the module.
bool serves = false;

void add_indexes(netsnmp_table_registration_info* info, uint32_t indexes) {
    if (indexes == 1)
        netsnmp_table_helper_add_indexes(info, ASN_INTEGER, 0);
    else
        netsnmp_table_helper_add_indexes(info, ASN_INTEGER, ASN_INTEGER, 0);
}

void describe(const AgentTable& table, netsnmp_table_registration_info* info, netsnmp_iterator_info* iterator) {
    add_indexes(info, table.facts.indexes);
    info->min_column = table.facts.columns.front().number;
    info->max_column = table.facts.columns.back().number;
    iterator->get_first_data_point = table.hooks.get_first_data_point;
    iterator->get_next_data_point = table.hooks.get_next_data_point;
    iterator->make_data_context = table.hooks.make_data_context;
    iterator->free_data_context = table.hooks.free_data_context;
    iterator->table_reginfo = info;
#ifdef NETSNMP_HANDLER_OWNS_IINFO
    iterator->flags |= NETSNMP_HANDLER_OWNS_IINFO;
#endif
}

}  // namespace

void register_table(const AgentTable& table) {
    auto* info = static_cast<netsnmp_table_registration_info*>(calloc(1, sizeof(netsnmp_table_registration_info)));
    auto* iterator = static_cast<netsnmp_iterator_info*>(calloc(1, sizeof(netsnmp_iterator_info)));
    netsnmp_handler_registration* registration = netsnmp_create_handler_registration(
        table.facts.name, table.handler, table.root.data(), table.root.size(), HANDLER_CAN_RWRITE);
    if (info && iterator && registration) {
        describe(table, info, iterator);
        // From here on the agent owns all three, even if it refuses a table that is already registered.
        if (netsnmp_register_table_iterator(registration, iterator) == MIB_REGISTERED_OK) serves = true;
        return;
    }
    snmp_log(LOG_ERR, "malloc failed in initialize_table_%s", table.facts.name);
    free(info);
    free(iterator);
    free(registration);
}

void init_ieee802dot11(void) {
    for (const AgentTable* table : catalogue)
        table->initialize();
    // The agent gives a token's lines to the last who registered it.
    if (serves) register_options();
}

}  // namespace dot11
