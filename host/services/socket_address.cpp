#include "services/socket_address.h"

#include <kv/abi.h>
#include <netinet/in.h>

#include <algorithm>
#include <cstring>

#include "memory/protection.h"

namespace kvrun {

int host_family(int32_t family) {
  switch (family) {
  case KV_AF_UNSPEC: return AF_UNSPEC;
  case KV_AF_INET: return AF_INET;
  case KV_AF_INET6: return AF_INET6;
  default: return -1;
  }
}

int32_t guest_family(int family) {
  switch (family) {
  case AF_UNSPEC: return KV_AF_UNSPEC;
  case AF_INET: return KV_AF_INET;
  case AF_INET6: return KV_AF_INET6;
  default: return -1;
  }
}

int to_host_address(const uint8_t *guest, uint32_t length, HostAddress &out) {
  out = {};
  if (length < 2)
    return KV_EINVAL;
  uint16_t family;
  std::memcpy(&family, guest, 2);
  if (family == KV_AF_INET) {
    if (length < sizeof(kv_sockaddr_in))
      return KV_EINVAL;
    kv_sockaddr_in g;
    std::memcpy(&g, guest, sizeof g);
    auto *h = reinterpret_cast<sockaddr_in *>(&out.storage);
    h->sin_family = AF_INET;
    h->sin_port = g.sin_port;
    h->sin_addr.s_addr = g.sin_addr.s_addr;
    out.length = sizeof *h;
    return 0;
  }
  if (family == KV_AF_INET6) {
    if (length < sizeof(kv_sockaddr_in6))
      return KV_EINVAL;
    kv_sockaddr_in6 g;
    std::memcpy(&g, guest, sizeof g);
    auto *h = reinterpret_cast<sockaddr_in6 *>(&out.storage);
    h->sin6_family = AF_INET6;
    h->sin6_port = g.sin6_port;
    h->sin6_flowinfo = g.sin6_flowinfo;
    std::memcpy(&h->sin6_addr, g.sin6_addr.bytes, 16);
    h->sin6_scope_id = g.sin6_scope_id;
    out.length = sizeof *h;
    return 0;
  }
  return KV_EAFNOSUPPORT;
}

uint32_t to_guest_address(const sockaddr *host, uint8_t out[28]) {
  if (host->sa_family == AF_INET) {
    sockaddr_in h;
    std::memcpy(&h, host, sizeof h);
    kv_sockaddr_in g{};
    g.sin_family = KV_AF_INET;
    g.sin_port = h.sin_port;
    g.sin_addr.s_addr = h.sin_addr.s_addr;
    std::memcpy(out, &g, sizeof g);
    return sizeof g;
  }
  if (host->sa_family == AF_INET6) {
    sockaddr_in6 h;
    std::memcpy(&h, host, sizeof h);
    kv_sockaddr_in6 g{};
    g.sin6_family = KV_AF_INET6;
    g.sin6_port = h.sin6_port;
    g.sin6_flowinfo = h.sin6_flowinfo;
    std::memcpy(g.sin6_addr.bytes, &h.sin6_addr, 16);
    g.sin6_scope_id = h.sin6_scope_id;
    std::memcpy(out, &g, sizeof g);
    return sizeof g;
  }
  return 0;
}

int read_guest_address(const Process &p, uint32_t addr, uint32_t length, HostAddress &out) {
  if (addr == 0)
    return KV_EFAULT;
  uint8_t bytes[sizeof(kv_sockaddr_storage)] = {};
  // Longer records are fine; only the family's own bytes are read.
  uint32_t n = std::min<uint32_t>(length, sizeof bytes);
  if (p.memory.read(addr, bytes, n) != 0)
    return KV_EFAULT;
  return to_host_address(bytes, n, out);
}

int check_guest_address_room(const Process &p, uint32_t addr, uint32_t length_ptr) {
  if (addr == 0)
    return 0;
  uint32_t room;
  if (length_ptr == 0 || p.memory.read_u32(length_ptr, room) != 0 ||
      !p.memory.accessible(length_ptr, 4, kProtWrite))
    return KV_EFAULT;
  if (static_cast<int32_t>(room) < 0)
    return KV_EINVAL;
  uint32_t most = std::min<uint32_t>(room, sizeof(kv_sockaddr_storage));
  return p.memory.accessible(addr, most, kProtWrite) ? 0 : KV_EFAULT;
}

int store_guest_address(Process &p, uint32_t addr, uint32_t length_ptr, const sockaddr *host) {
  if (addr == 0)
    return 0;
  uint32_t room;
  if (length_ptr == 0 || p.memory.read_u32(length_ptr, room) != 0)
    return KV_EFAULT;
  if (static_cast<int32_t>(room) < 0)
    return KV_EINVAL;
  uint8_t bytes[sizeof(kv_sockaddr_storage)] = {};
  uint32_t full = to_guest_address(host, bytes);
  if (p.memory.write(addr, bytes, std::min(room, full)) != 0 ||
      p.memory.write_u32(length_ptr, full) != 0)
    return KV_EFAULT;
  return 0;
}

} // namespace kvrun
