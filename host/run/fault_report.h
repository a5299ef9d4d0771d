// The one line kvrun prints when a program stops on a fault.
#pragma once

#include <string>
#include <vector>

#include "cpu/fault.h"
#include "loader/loaded_object.h"

namespace kvrun {

// "kvrun: fault: read from unmapped address 0x00000000 at pc 0x4001a2c4 (crash_here+0x8 in crash)\n"
std::string fault_report(const Fault &fault, const std::vector<LoadedObject> &objects);

} // namespace kvrun
