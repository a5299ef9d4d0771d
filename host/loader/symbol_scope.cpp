#include "loader/symbol_scope.h"

#include <elf.h>

namespace kvrun {

SymbolScope::SymbolScope(const std::vector<LoadedObject> &objects) {
  for (auto &object : objects) {
    if (!object.elf.dynamic())
      continue;
    for (auto &sym : object.elf.dynamic()->symbols) {
      if (!sym.defined() || sym.name.empty() || sym.bind == STB_LOCAL)
        continue;
      if (sym.visibility == STV_HIDDEN || sym.visibility == STV_INTERNAL)
        continue;
      uint32_t addr = sym.shndx == SHN_ABS ? sym.value : object.address(sym.value);
      addresses_.emplace(sym.name, addr); // keeps the first
    }
  }
}

std::optional<uint32_t> SymbolScope::lookup(const std::string &name) const {
  auto it = addresses_.find(name);
  if (it == addresses_.end())
    return std::nullopt;
  return it->second;
}

} // namespace kvrun
