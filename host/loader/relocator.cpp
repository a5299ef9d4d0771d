#include "loader/relocator.h"

#include <elf.h>

#include <cstdio>

#include "loader/load_error.h"

namespace kvrun {
namespace {

std::string hex(uint32_t v) {
  char b[16];
  snprintf(b, sizeof b, "0x%08x", v);
  return b;
}

// The value a relocation's symbol stands for: its own definition when it cannot be
// interposed, else the scope's; 0 for a weak symbol nobody defines.
uint32_t symbol_value(const LoadedObject &object, const SymbolScope &scope, uint32_t index) {
  if (index == 0)
    return 0;
  const Symbol &sym = object.elf.dynamic()->symbols[index];
  if (sym.defined() && (sym.bind == STB_LOCAL || sym.visibility == STV_PROTECTED))
    return sym.shndx == SHN_ABS ? sym.value : object.address(sym.value);
  if (auto addr = scope.lookup(sym.name))
    return *addr;
  if (sym.bind == STB_WEAK)
    return 0;
  throw LoadError(kStatusCannotLoad,
                  object.name + ": undefined symbol " + sym.name + " (no loaded object defines it)");
}

} // namespace

void relocate(const LoadedObject &object, const SymbolScope &scope, AddressSpace &memory) {
  if (!object.elf.dynamic())
    return;
  for (const Relocation &r : object.elf.dynamic()->relocations) {
    if (r.type == R_ARM_NONE)
      continue;
    uint32_t where = object.address(r.offset);
    uint32_t word = 0;
    // Images stay writable until every relocation is done.
    if (!object.contains(where) || object.hi - where < 4 || memory.read(where, &word, 4) != 0)
      throw LoadError(kStatusCannotLoad, object.name + ": relocation at " + hex(r.offset) +
                                             " lies outside the object");
    switch (r.type) {
    case R_ARM_RELATIVE:
      word += object.bias;
      break;
    case R_ARM_ABS32:
      word += symbol_value(object, scope, r.symbol);
      break;
    case R_ARM_GLOB_DAT:
    case R_ARM_JUMP_SLOT:
      word = symbol_value(object, scope, r.symbol);
      break;
    default: {
      std::string name(relocation_name(r.type));
      throw LoadError(kStatusCannotLoad, object.name + ": unsupported relocation type " +
                                             std::to_string(r.type) +
                                             (name.empty() ? "" : " (" + name + ")") + " at " +
                                             hex(r.offset));
    }
    }
    memory.poke(where, &word, 4);
  }
}

} // namespace kvrun
