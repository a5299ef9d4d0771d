// The global scope: each name bound to its first definition in load order (the program first),
// so a program's definition interposes a library's and an earlier library beats a later one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "loader/loaded_object.h"

namespace kvrun {

class SymbolScope {
public:
  explicit SymbolScope(const std::vector<LoadedObject> &objects);
  // The guest address of the name's definition (Thumb bit included), if any object exports it.
  std::optional<uint32_t> lookup(const std::string &name) const;

private:
  std::unordered_map<std::string, uint32_t> addresses_;
};

} // namespace kvrun
