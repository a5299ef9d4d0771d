#include "loader/image_mapper.h"

#include <elf.h>

#include <algorithm>
#include <cstdio>
#include <map>

#include "loader/load_error.h"
#include "memory/layout.h"
#include "memory/protection.h"

namespace kvrun {
namespace {

constexpr uint64_t kLargestImage = 256u << 20;

unsigned segment_prot(uint32_t flags) {
  return (flags & PF_R ? kProtRead : 0) | (flags & PF_W ? kProtWrite : 0) |
         (flags & PF_X ? kProtExec : 0);
}

std::string hex(uint64_t v) {
  char b[24];
  snprintf(b, sizeof b, "0x%08llx", static_cast<unsigned long long>(v));
  return b;
}

// Page address -> protection, for every page a loadable segment touches.
std::map<uint32_t, unsigned> page_protections(const LoadedObject &object) {
  std::map<uint32_t, unsigned> pages;
  for (auto &s : object.elf.segments()) {
    if (s.type != PT_LOAD || s.memsz == 0)
      continue;
    uint64_t from = layout::page_down(object.address(s.vaddr));
    uint64_t to = layout::page_up(uint64_t{object.address(s.vaddr)} + s.memsz);
    for (uint64_t p = from; p < to; p += layout::kPageSize)
      pages[static_cast<uint32_t>(p)] |= segment_prot(s.flags);
  }
  return pages;
}

// Calls fn(start, size, prot) for each run of consecutive pages with one protection.
template <typename Fn> void for_each_run(const std::map<uint32_t, unsigned> &pages, Fn fn) {
  for (auto it = pages.begin(); it != pages.end();) {
    uint32_t start = it->first;
    unsigned prot = it->second;
    uint64_t end = uint64_t{start} + layout::kPageSize;
    for (++it; it != pages.end() && it->first == end && it->second == prot; ++it)
      end += layout::kPageSize;
    fn(start, end - start, prot);
  }
}

} // namespace

uint32_t map_image(LoadedObject &object, AddressSpace &memory, uint32_t next_base) {
  uint64_t lo = UINT64_MAX, hi = 0;
  for (auto &s : object.elf.segments()) {
    if (s.type != PT_LOAD || s.memsz == 0)
      continue;
    lo = std::min<uint64_t>(lo, s.vaddr);
    hi = std::max<uint64_t>(hi, uint64_t{s.vaddr} + s.memsz);
  }
  lo = layout::page_down(static_cast<uint32_t>(lo));
  hi = layout::page_up(hi);
  if (hi - lo > kLargestImage)
    throw LoadError(kStatusCannotLoad, object.name + ": its segments span " + hex(hi - lo) +
                                           " bytes, more than an image may");
  if (object.elf.is_shared()) {
    object.bias = static_cast<uint32_t>(next_base - lo);
    if (uint64_t{next_base} + (hi - lo) > layout::kImageEnd)
      throw LoadError(kStatusCannotLoad, object.name + ": no room for " + hex(hi - lo) +
                                             " bytes of image");
  } else {
    object.bias = 0;
    if (lo < layout::kLowestMapped)
      throw LoadError(kStatusCannotLoad, object.name + ": segment at " + hex(lo) +
                                             " lies in the reserved low pages");
  }
  object.lo = static_cast<uint32_t>(lo + object.bias);
  object.hi = static_cast<uint32_t>(hi + object.bias);

  auto pages = page_protections(object);
  bool ok = true;
  for_each_run(pages, [&](uint32_t start, uint64_t size, unsigned) {
    if (ok && !memory.map(start, size, kProtRead | kProtWrite))
      ok = false;
  });
  if (!ok)
    throw LoadError(kStatusCannotLoad, object.name + ": its pages " + hex(object.lo) + ".." +
                                           hex(object.hi) + " overlap memory already in use");
  for (auto &s : object.elf.segments()) {
    if (s.type != PT_LOAD || s.filesz == 0)
      continue;
    memory.poke(object.address(s.vaddr), object.elf.bytes().data() + s.offset, s.filesz);
  }
  return static_cast<uint32_t>(layout::page_up(uint64_t{object.hi}) + layout::kPageSize);
}

void protect_image(const LoadedObject &object, AddressSpace &memory) {
  for_each_run(page_protections(object), [&](uint32_t start, uint64_t size, unsigned prot) {
    memory.protect(start, size, prot);
  });
  for (auto &s : object.elf.segments()) {
    if (s.type != PT_GNU_RELRO)
      continue;
    uint32_t from = layout::page_down(object.address(s.vaddr));
    uint32_t to = layout::page_down(object.address(s.vaddr) + s.memsz);
    if (to > from && memory.accessible(from, to - from, kProtNone))
      memory.protect(from, to - from, kProtRead);
  }
}

} // namespace kvrun
