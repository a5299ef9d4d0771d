// Places mappings in a fixed window of the address space, page by page, under an optional cap
// on the bytes mapped at once. A mapping is zero-filled, or backed by file pages.
#pragma once

#include <cstdint>
#include <map>

#include "memory/address_space.h"

namespace kvrun {

class RegionAllocator {
public:
  struct Result {
    uint32_t addr;
    int error; // library errno; 0 on success
  };

  RegionAllocator(AddressSpace &memory, uint32_t lo, uint32_t hi, uint64_t limit)
      : memory_(memory), lo_(lo), hi_(hi), limit_(limit) {}

  // A new mapping of `length` bytes rounded up to pages, lowest fit first: zero-filled, or onto
  // `host` (as many bytes from file_pages::map, owned by the address space once this succeeds).
  Result allocate(uint32_t length, unsigned prot, void *host = nullptr);
  // A mapping at exactly `addr`, replacing whatever this allocator had mapped there.
  Result allocate_at(uint32_t addr, uint32_t length, unsigned prot, void *host = nullptr);
  // Unmaps every page in the range; pages not mapped are skipped. Heads, tails and middles of
  // mappings may be released. 0 or EINVAL.
  int release(uint32_t addr, uint32_t length);

  uint64_t in_use() const { return in_use_; }
  bool owns(uint32_t addr, uint64_t length) const;

private:
  uint64_t mapped_in(uint64_t from, uint64_t to) const;
  void forget(uint64_t from, uint64_t to);
  bool map(uint32_t addr, uint64_t size, unsigned prot, void *host);

  AddressSpace &memory_;
  uint32_t lo_, hi_;
  uint64_t limit_;
  uint64_t in_use_ = 0;
  std::map<uint32_t, uint64_t> used_; // start -> end, disjoint and never adjacent-merged
};

} // namespace kvrun
