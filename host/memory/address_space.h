// The guest's address space: every mapping with its protection, kept in step with Unicorn, and
// the checked accessors through which services touch guest memory.
#pragma once

#include <cstdint>
#include <map>
#include <string>

struct uc_struct;

namespace kvrun {

struct Region {
  uint64_t end; // exclusive; 64-bit so that a region may end at 4 GiB
  unsigned prot;
  uint8_t *host = nullptr; // file pages behind the region (map_file_pages), else Unicorn's own
};

enum class StringStatus { ok, fault, too_long };

class AddressSpace {
public:
  explicit AddressSpace(uc_struct *uc) : uc_(uc) {}
  ~AddressSpace(); // gives back file pages; the engine must still be open
  AddressSpace(const AddressSpace &) = delete;
  AddressSpace &operator=(const AddressSpace &) = delete;

  // Maps [addr, addr + size), zero-filled. Page-aligned; fails if any page is already mapped.
  bool map(uint32_t addr, uint64_t size, unsigned prot);
  // Maps the range onto `size` bytes from file_pages::map, which the address space then owns:
  // unmapping any part of the range gives those pages back. On failure the caller keeps them.
  bool map_file_pages(uint32_t addr, uint64_t size, unsigned prot, void *host);
  // Unmaps whatever is mapped in the range; gaps are fine.
  void unmap(uint32_t addr, uint64_t size);
  // Changes the protection of a fully mapped range.
  bool protect(uint32_t addr, uint64_t size, unsigned prot);
  // Whether nothing is mapped in the range.
  bool is_free(uint32_t addr, uint64_t size) const;
  // Whether every byte of the range is mapped with at least `prot`. Empty ranges are
  // accessible; ranges that wrap past 4 GiB are not.
  bool accessible(uint32_t addr, uint64_t size, unsigned prot) const;

  // Checked accessors: 0, or the library's EFAULT for unmapped, wrapping, unreadable or (for
  // writes) non-writable ranges. Nothing is copied when they fail.
  int read(uint32_t addr, void *out, uint32_t size) const;
  int write(uint32_t addr, const void *data, uint32_t size);
  int read_u32(uint32_t addr, uint32_t &value) const;
  int write_u32(uint32_t addr, uint32_t value);
  // Reads a NUL-terminated string of at most `max` characters (the NUL not counted).
  StringStatus read_string(uint32_t addr, uint32_t max, std::string &out) const;

  // For the loader: writes into mapped memory whatever its protection.
  bool poke(uint32_t addr, const void *data, uint32_t size);

  const std::map<uint32_t, Region> &regions() const { return regions_; }
  uc_struct *engine() const { return uc_; }

private:
  // Splits the region containing `addr` so that a region starts there.
  void split_at(uint64_t addr);

  uc_struct *uc_;
  std::map<uint32_t, Region> regions_; // by start address
};

} // namespace kvrun
