// The host entry as the guest reads it: a kv_hostent at the start of the guest's buffer, then
// the alias and address pointer lists, the addresses and the strings, all with guest pointers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kvrun {

struct HostEntry {
  std::string name;
  std::vector<std::string> aliases;
  int32_t family = 0;                        // guest family: 2 or 3
  std::vector<std::vector<uint8_t>> addresses; // 4 or 16 bytes each, network order
};

// The bytes to copy to guest address `base`, or nothing when they need more than `size`.
std::optional<std::vector<uint8_t>> lay_out_host_entry(const HostEntry &, uint32_t base,
                                                       uint32_t size);

} // namespace kvrun
