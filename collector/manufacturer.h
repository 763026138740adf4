// Who made the device, from its firmware: DMI, or the device tree.
#pragma once

#include <string>

#include "observed.h"

namespace collector {

// `root` is "/sys", or a directory like it. What is unknown is empty.
Manufacturer read_manufacturer(const std::string& root);

}  // namespace collector
