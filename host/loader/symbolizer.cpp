#include "loader/symbolizer.h"

#include <elf.h>

#include <cstdio>

namespace kvrun {
namespace {

std::string offset_text(uint32_t off) {
  char b[16];
  snprintf(b, sizeof b, "+0x%x", off);
  return b;
}

// The symbol with the highest start at or below addr (Thumb bit cleared), preferring one
// whose extent covers it.
const Symbol *nearest(const std::vector<Symbol> &symbols, const LoadedObject &o, uint32_t addr,
                      uint32_t &start) {
  const Symbol *best = nullptr;
  bool best_covers = false;
  for (auto &s : symbols) {
    if (!s.defined() || s.shndx == SHN_ABS || s.name.empty() || s.name[0] == '$')
      continue;
    if (s.type != STT_FUNC && s.type != STT_OBJECT && s.type != STT_NOTYPE)
      continue;
    uint32_t at = o.address(s.value & ~1u);
    if (at > addr)
      continue;
    bool covers = addr - at < s.size;
    if (!best || (covers && !best_covers) || (covers == best_covers && at > start)) {
      best = &s;
      start = at;
      best_covers = covers;
    }
  }
  return best;
}

std::string name_address(const std::vector<LoadedObject> &objects, uint32_t addr,
                         bool with_offset) {
  for (auto &o : objects) {
    if (!o.contains(addr))
      continue;
    uint32_t start = 0;
    const Symbol *sym = nearest(o.elf.static_symbols(), o, addr, start);
    if (!sym && o.elf.dynamic())
      sym = nearest(o.elf.dynamic()->symbols, o, addr, start);
    if (!sym)
      return o.name + (with_offset ? offset_text(addr - o.lo) : "");
    return sym->name + (with_offset ? offset_text(addr - start) : "") + " in " + o.name;
  }
  return "unknown";
}

} // namespace

std::string describe_address(const std::vector<LoadedObject> &objects, uint32_t addr) {
  return name_address(objects, addr, true);
}

std::string function_at(const std::vector<LoadedObject> &objects, uint32_t addr) {
  return name_address(objects, addr, false);
}

} // namespace kvrun
