#include "services/host_entry.h"

#include <kv/abi.h>

#include <cstring>

namespace kvrun {

std::optional<std::vector<uint8_t>> lay_out_host_entry(const HostEntry &e, uint32_t base,
                                                       uint32_t size) {
  uint32_t length = e.family == KV_AF_INET6 ? 16 : 4;
  // Pointers and addresses first, so that everything stays word-aligned; strings at the end.
  uint64_t aliases_at = sizeof(kv_hostent);
  uint64_t list_at = aliases_at + 4 * (e.aliases.size() + 1);
  uint64_t addrs_at = list_at + 4 * (e.addresses.size() + 1);
  uint64_t strings_at = addrs_at + uint64_t{length} * e.addresses.size();
  uint64_t total = strings_at + e.name.size() + 1;
  for (auto &a : e.aliases)
    total += a.size() + 1;
  if (total > size || base + total > 0x100000000ull)
    return std::nullopt;

  std::vector<uint8_t> out(total, 0);
  auto put_word = [&](uint64_t at, uint32_t v) { std::memcpy(&out[at], &v, 4); };
  uint64_t at = strings_at;
  auto put_string = [&](const std::string &s) {
    std::memcpy(&out[at], s.data(), s.size());
    uint32_t where = static_cast<uint32_t>(base + at);
    at += s.size() + 1;
    return where;
  };
  kv_hostent h{};
  h.h_name = put_string(e.name);
  h.h_aliases = static_cast<uint32_t>(base + aliases_at);
  h.h_addrtype = e.family;
  h.h_length = static_cast<int32_t>(length);
  h.h_addr_list = static_cast<uint32_t>(base + list_at);
  std::memcpy(out.data(), &h, sizeof h);
  for (size_t i = 0; i < e.aliases.size(); ++i)
    put_word(aliases_at + 4 * i, put_string(e.aliases[i]));
  for (size_t i = 0; i < e.addresses.size(); ++i) {
    uint64_t where = addrs_at + uint64_t{length} * i;
    std::memcpy(&out[where], e.addresses[i].data(), std::min<size_t>(length, e.addresses[i].size()));
    put_word(list_at + 4 * i, static_cast<uint32_t>(base + where));
  }
  return out;
}

} // namespace kvrun
