// Every table that the module serves, under the subtree 1.2.840.10036 (IEEE802dot11-MIB, IEEE Std 802.11).
#pragma once

#include "agent/table.h"

namespace catalogue {

extern const Table dot11StationConfigTable;

}  // namespace catalogue
