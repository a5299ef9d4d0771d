// Small helpers shared by the network test programs: addresses, byte order, text.
#pragma once

#include <kv/abi.h>
#include <stddef.h>
#include <stdint.h>

#include "../../support/bytes.h"

namespace nettest {

using kvtest::length_of;
using kvtest::same_bytes;

inline uint16_t to_net16(uint16_t v) { return static_cast<uint16_t>(v << 8 | v >> 8); }

inline kv_sockaddr_in loopback4(uint16_t port) {
  kv_sockaddr_in a{};
  a.sin_family = KV_AF_INET;
  a.sin_port = to_net16(port);
  a.sin_addr.s_addr = 0x0100007Fu; // 127.0.0.1 in memory order
  return a;
}

inline kv_sockaddr_in6 loopback6(uint16_t port) {
  kv_sockaddr_in6 a{};
  a.sin6_family = KV_AF_INET6;
  a.sin6_port = to_net16(port);
  a.sin6_addr.bytes[15] = 1;
  return a;
}

inline uint32_t parse_decimal(const char *s) {
  uint32_t v = 0;
  while (*s >= '0' && *s <= '9')
    v = v * 10 + static_cast<uint32_t>(*s++ - '0');
  return v;
}

// Decimal text of v into out (at least 11 bytes).
inline void format_decimal(uint32_t v, char *out) {
  char digits[10];
  int n = 0;
  do {
    digits[n++] = static_cast<char>('0' + v % 10);
    v /= 10;
  } while (v);
  for (int i = 0; i < n; ++i)
    out[i] = digits[n - 1 - i];
  out[n] = 0;
}

} // namespace nettest
