#include "memory/region_allocator.h"

#include <kv/abi.h>

#include <algorithm>

#include "memory/layout.h"

namespace kvrun {

bool RegionAllocator::owns(uint32_t addr, uint64_t length) const {
  return addr >= lo_ && uint64_t{addr} + length <= hi_;
}

uint64_t RegionAllocator::mapped_in(uint64_t from, uint64_t to) const {
  uint64_t total = 0;
  auto it = used_.upper_bound(static_cast<uint32_t>(from));
  if (it != used_.begin())
    --it;
  for (; it != used_.end() && it->first < to; ++it) {
    uint64_t a = std::max<uint64_t>(it->first, from), b = std::min(it->second, to);
    if (a < b)
      total += b - a;
  }
  return total;
}

// Drops [from, to) from the bookkeeping and from the address space.
void RegionAllocator::forget(uint64_t from, uint64_t to) {
  in_use_ -= mapped_in(from, to);
  auto it = used_.upper_bound(static_cast<uint32_t>(from));
  if (it != used_.begin())
    --it;
  while (it != used_.end() && it->first < to) {
    uint32_t start = it->first;
    uint64_t end = it->second;
    if (end <= from) {
      ++it;
      continue;
    }
    it = used_.erase(it);
    if (start < from)
      used_[start] = from;
    if (end > to) {
      it = used_.emplace(static_cast<uint32_t>(to), end).first;
      ++it;
    }
  }
  memory_.unmap(static_cast<uint32_t>(from), to - from);
}

bool RegionAllocator::map(uint32_t addr, uint64_t size, unsigned prot, void *host) {
  return host ? memory_.map_file_pages(addr, size, prot, host) : memory_.map(addr, size, prot);
}

RegionAllocator::Result RegionAllocator::allocate(uint32_t length, unsigned prot, void *host) {
  if (length == 0)
    return {KV_MAP_FAILED, KV_EINVAL};
  uint64_t size = layout::page_up(length);
  if (in_use_ + size > limit_ || size > hi_ - lo_)
    return {KV_MAP_FAILED, KV_ENOMEM};
  uint64_t candidate = lo_;
  for (auto &[start, end] : used_) {
    if (start >= candidate + size)
      break;
    candidate = std::max(candidate, end);
  }
  if (candidate + size > hi_ || !map(static_cast<uint32_t>(candidate), size, prot, host))
    return {KV_MAP_FAILED, KV_ENOMEM};
  used_[static_cast<uint32_t>(candidate)] = candidate + size;
  in_use_ += size;
  return {static_cast<uint32_t>(candidate), 0};
}

RegionAllocator::Result RegionAllocator::allocate_at(uint32_t addr, uint32_t length,
                                                     unsigned prot, void *host) {
  if (length == 0 || addr % layout::kPageSize)
    return {KV_MAP_FAILED, KV_EINVAL};
  uint64_t size = layout::page_up(length);
  if (!owns(addr, size))
    return {KV_MAP_FAILED, KV_EINVAL};
  if (in_use_ - mapped_in(addr, addr + size) + size > limit_)
    return {KV_MAP_FAILED, KV_ENOMEM};
  forget(addr, addr + size);
  if (!map(addr, size, prot, host))
    return {KV_MAP_FAILED, KV_ENOMEM};
  used_[addr] = addr + size;
  in_use_ += size;
  return {addr, 0};
}

int RegionAllocator::release(uint32_t addr, uint32_t length) {
  if (length == 0 || addr % layout::kPageSize)
    return KV_EINVAL;
  uint64_t size = layout::page_up(length);
  if (!owns(addr, size))
    return KV_EINVAL;
  forget(addr, addr + size);
  return 0;
}

} // namespace kvrun
