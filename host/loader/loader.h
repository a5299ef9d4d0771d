// Loads a program and the libraries it needs into guest memory, relocates them, and works out
// which guest functions to call before and after main.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "loader/loaded_object.h"
#include "memory/address_space.h"

namespace kvrun {

struct LoadedProgram {
  std::vector<LoadedObject> objects; // load order: the program, then libraries breadth-first
  uint32_t entry = 0;                // main, Thumb bit included
  std::vector<uint32_t> init_calls;  // in the order they run
  std::vector<uint32_t> fini_calls;
};

// Throws LoadError (status 126 or 127, message naming the file and the reason).
LoadedProgram load_program(const std::string &path, const std::vector<std::string> &library_path,
                           AddressSpace &memory);

} // namespace kvrun
