// The device for the tests of whole PDUs, and the varbinds that their SETs are made of.
#pragma once

#include <string>
#include <vector>

#include "message.h"
#include "reference.h"
#include "scripted.h"

// What follows 1.2.840.10036.
Oid name(const std::vector<uint32_t>& suffix);

Value number(int64_t value, uint8_t type = integer);
Value text(const std::string& octets);

// Two interfaces, wlan0 with index 3 and wlan1 with index 7.
void set_up(ScriptedDevice& device);

// The same device as a manager sees it.
const Device& device_seen();

// Every table, with columns that accept a SET and columns that do not, rows that exist and rows that do not, names that
// are too short or too long, columns and entries that no table has, and values that are wrong in every way.
const std::vector<Varbind>& representative_varbinds();
