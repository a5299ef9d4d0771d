// Names a guest address for reports: "crash_here+0x8 in crash".
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "loader/loaded_object.h"

namespace kvrun {

// "symbol+0xoff in object", "object+0xoff" when no symbol precedes it, "unknown" outside
// every object. Uses .symtab when the file has one, else .dynsym.
std::string describe_address(const std::vector<LoadedObject> &objects, uint32_t addr);
// The same without the offset: "symbol in object", "object", or "unknown".
std::string function_at(const std::vector<LoadedObject> &objects, uint32_t addr);

} // namespace kvrun
