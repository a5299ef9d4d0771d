// The instruction profile kvrun writes at exit: where the guest's instructions went, by function.
#pragma once

#include <string>
#include <vector>

#include "cpu/instruction_counter.h"
#include "loader/loaded_object.h"

namespace kvrun {

// One line per function, most instructions first: count, share of the total, "symbol in object".
std::string profile_report(const InstructionCounter &counter,
                           const std::vector<LoadedObject> &objects);

} // namespace kvrun
