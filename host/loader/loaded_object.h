// One program or library as it sits in guest memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "loader/elf_file.h"

namespace kvrun {

struct LoadedObject {
  std::string name; // how it was asked for: the program's file name, or the DT_NEEDED entry
  std::string path; // where it was found
  ElfFile elf;
  uint32_t bias = 0;     // added to every address in the file (0 for ET_EXEC)
  uint32_t lo = 0, hi = 0; // the pages it occupies
  std::vector<size_t> needs; // indices of its DT_NEEDED objects, in order

  uint32_t address(uint32_t vaddr) const { return vaddr + bias; }
  bool contains(uint32_t addr) const { return addr >= lo && addr < hi; }
};

} // namespace kvrun
