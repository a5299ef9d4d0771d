// The checked accessors: the only way services read or write guest memory.
#include <kv/abi.h>
#include <unicorn/unicorn.h>

#include "memory/address_space.h"
#include "memory/layout.h"
#include "memory/protection.h"

namespace kvrun {

int AddressSpace::read(uint32_t addr, void *out, uint32_t size) const {
  if (size == 0)
    return 0;
  if (!accessible(addr, size, kProtRead) || uc_mem_read(uc_, addr, out, size) != UC_ERR_OK)
    return KV_EFAULT;
  return 0;
}

int AddressSpace::write(uint32_t addr, const void *data, uint32_t size) {
  if (size == 0)
    return 0;
  if (!accessible(addr, size, kProtWrite) || uc_mem_write(uc_, addr, data, size) != UC_ERR_OK)
    return KV_EFAULT;
  return 0;
}

int AddressSpace::read_u32(uint32_t addr, uint32_t &value) const {
  uint8_t b[4];
  if (int e = read(addr, b, 4))
    return e;
  value = b[0] | b[1] << 8 | b[2] << 16 | static_cast<uint32_t>(b[3]) << 24;
  return 0;
}

int AddressSpace::write_u32(uint32_t addr, uint32_t value) {
  const uint8_t b[4] = {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8),
                        static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 24)};
  return write(addr, b, 4);
}

StringStatus AddressSpace::read_string(uint32_t addr, uint32_t max, std::string &out) const {
  out.clear();
  uint64_t at = addr;
  // Page by page, so that a string ending just before an unmapped page is still read and
  // nothing past the terminator is ever touched.
  while (true) {
    uint64_t page_end = (at | (layout::kPageSize - 1)) + 1;
    uint64_t chunk = page_end - at;
    if (chunk > uint64_t{max} + 1 - out.size())
      chunk = uint64_t{max} + 1 - out.size();
    char buf[layout::kPageSize];
    if (at + chunk > (uint64_t{1} << 32) || read(static_cast<uint32_t>(at), buf, static_cast<uint32_t>(chunk)))
      return StringStatus::fault;
    for (uint64_t i = 0; i < chunk; ++i) {
      if (buf[i] == 0)
        return StringStatus::ok;
      if (out.size() == max)
        return StringStatus::too_long;
      out.push_back(buf[i]);
    }
    at += chunk;
  }
}

} // namespace kvrun
