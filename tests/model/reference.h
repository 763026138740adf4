// A second computation of what the agent with the module answers: how Net-SNMP's agent takes a PDU through its tables
// and phases, and what each table's handler does in them. It keeps nothing between PDUs, because no SET leaves anything
// behind. Written to be read, and shares no code with the module.
#pragma once

#include <map>
#include <set>
#include <utility>
#include <vector>

#include "message.h"

// The rows of the device: values by object identifier, and which rows stand behind them.
struct Device {
    std::map<Oid, Value> values;                             // of every column that a GET is expected to answer
    std::map<Oid, std::vector<std::vector<uint32_t>>> rows;  // index values of a table's rows, by the table's OID
};

struct Expected {
    int status = 0;
    int index = 0;
    std::vector<Varbind> varbinds;
    int key_mappings_made = 0;  // rows made for SETs of key mappings
};

Expected expected_set(const Device& device, const std::vector<Varbind>& varbinds);

// Names that a GET of the device must be able to answer and that `device.values` lacks go to `unknown`.
Expected expected_get(const Device& device, const std::vector<Varbind>& varbinds, std::set<Oid>& unknown,
                      bool complete);
