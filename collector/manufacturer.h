// Who made the device, as firmware tells: DMI, or the device tree.
#pragma once

#include <string>

#include "observed.h"

namespace collector {

// `root` stands for "/sys". What is not told is empty.
Manufacturer read_manufacturer(const std::string& root);

}  // namespace collector
