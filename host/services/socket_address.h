// Socket addresses between the guest's records (kv/abi.h: families 2 and 3, no length byte) and
// the host's sockaddr_in/sockaddr_in6.
#pragma once

#include <sys/socket.h>

#include <cstdint>

#include "services/process.h"

namespace kvrun {

struct HostAddress {
  sockaddr_storage storage{};
  socklen_t length = 0;
  const sockaddr *get() const { return reinterpret_cast<const sockaddr *>(&storage); }
};

// Guest record bytes to a host address: 0, or the library's EAFNOSUPPORT for a family other
// than 2 and 3, EINVAL for a length too short for its family.
int to_host_address(const uint8_t *guest, uint32_t length, HostAddress &out);
// A host address as the guest's record; returns the record's full length (16 or 28), 0 for a
// family the guest has no record for.
uint32_t to_guest_address(const sockaddr *host, uint8_t out[28]);

int host_family(int32_t guest_family);  // -1 if unknown
int32_t guest_family(int host_family);  // -1 if unknown

// Reads (address, length) from guest memory and translates it: 0 or a library errno.
int read_guest_address(const Process &, uint32_t addr, uint32_t length, HostAddress &out);
// Stores a host address through (addr, length pointer) as the calls of the accept family do:
// cut to the guest's length, which then receives the full one. Null addr stores nothing.
int store_guest_address(Process &, uint32_t addr, uint32_t length_ptr, const sockaddr *host);
// What store_guest_address would refuse, checked before a call that cannot be undone (a
// connection accepted, a datagram taken): 0 or a library errno.
int check_guest_address_room(const Process &, uint32_t addr, uint32_t length_ptr);

} // namespace kvrun
