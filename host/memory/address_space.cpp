#include "memory/address_space.h"

#include <unicorn/unicorn.h>

#include "memory/file_pages.h"
#include "memory/layout.h"
#include "memory/protection.h"

namespace kvrun {
namespace {
constexpr uint64_t kTop = uint64_t{1} << 32;

bool page_aligned(uint64_t addr, uint64_t size) {
  return addr % layout::kPageSize == 0 && size % layout::kPageSize == 0;
}
} // namespace

bool AddressSpace::is_free(uint32_t addr, uint64_t size) const {
  uint64_t end = uint64_t{addr} + size;
  auto it = regions_.upper_bound(addr);
  if (it != regions_.begin()) {
    auto prev = std::prev(it);
    if (prev->second.end > addr)
      return false;
  }
  return it == regions_.end() || it->first >= end;
}

bool AddressSpace::accessible(uint32_t addr, uint64_t size, unsigned prot) const {
  if (size == 0)
    return true;
  uint64_t end = uint64_t{addr} + size;
  if (end > kTop)
    return false;
  auto it = regions_.upper_bound(addr);
  if (it == regions_.begin())
    return false;
  --it;
  uint64_t covered = addr;
  for (; it != regions_.end() && it->first <= covered; ++it) {
    if (it->second.end <= covered || (it->second.prot & prot) != prot)
      return false;
    covered = it->second.end;
    if (covered >= end)
      return true;
  }
  return false;
}

AddressSpace::~AddressSpace() {
  for (auto &[start, region] : regions_)
    if (region.host) {
      uc_mem_unmap(uc_, start, region.end - start);
      file_pages::unmap(region.host, region.end - start);
    }
}

bool AddressSpace::map(uint32_t addr, uint64_t size, unsigned prot) {
  if (size == 0 || !page_aligned(addr, size) || addr + size > kTop || !is_free(addr, size))
    return false;
  if (uc_mem_map(uc_, addr, size, prot) != UC_ERR_OK)
    return false;
  regions_[addr] = Region{addr + size, prot};
  return true;
}

bool AddressSpace::map_file_pages(uint32_t addr, uint64_t size, unsigned prot, void *host) {
  if (size == 0 || !page_aligned(addr, size) || addr + size > kTop || !is_free(addr, size))
    return false;
  if (uc_mem_map_ptr(uc_, addr, size, prot, host) != UC_ERR_OK)
    return false;
  regions_[addr] = Region{addr + size, prot, static_cast<uint8_t *>(host)};
  return true;
}

void AddressSpace::split_at(uint64_t addr) {
  if (addr >= kTop)
    return;
  auto it = regions_.upper_bound(static_cast<uint32_t>(addr));
  if (it == regions_.begin())
    return;
  --it;
  if (it->first == addr || it->second.end <= addr)
    return;
  Region tail = it->second;
  if (tail.host)
    tail.host += addr - it->first;
  it->second.end = addr;
  regions_[static_cast<uint32_t>(addr)] = tail;
}

void AddressSpace::unmap(uint32_t addr, uint64_t size) {
  uint64_t end = uint64_t{addr} + size;
  if (size == 0 || !page_aligned(addr, size) || end > kTop)
    return;
  split_at(addr);
  split_at(end);
  for (auto it = regions_.lower_bound(addr); it != regions_.end() && it->first < end;) {
    uc_mem_unmap(uc_, it->first, it->second.end - it->first);
    if (it->second.host)
      file_pages::unmap(it->second.host, it->second.end - it->first);
    it = regions_.erase(it);
  }
}

bool AddressSpace::protect(uint32_t addr, uint64_t size, unsigned prot) {
  uint64_t end = uint64_t{addr} + size;
  if (size == 0 || !page_aligned(addr, size) || !accessible(addr, size, kProtNone))
    return false;
  if (uc_mem_protect(uc_, addr, size, prot) != UC_ERR_OK)
    return false;
  split_at(addr);
  split_at(end);
  for (auto it = regions_.lower_bound(addr); it != regions_.end() && it->first < end; ++it)
    it->second.prot = prot;
  return true;
}

bool AddressSpace::poke(uint32_t addr, const void *data, uint32_t size) {
  if (!accessible(addr, size, kProtNone))
    return false;
  return size == 0 || uc_mem_write(uc_, addr, data, size) == UC_ERR_OK;
}

} // namespace kvrun
