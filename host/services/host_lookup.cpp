// gethostbyname and gethostbyaddr from the host's resolver (hosts file first, as configured),
// written into the guest's buffer; failures set h_errno.
#include <kv/abi.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <vector>

// The field of Outcome, not the host's resolver cell.
#undef h_errno

#include "memory/protection.h"
#include "services/handlers.h"
#include "services/host_entry.h"
#include "services/socket_address.h"

namespace kvrun::handlers {
namespace {

constexpr uint32_t kLongestName = 1024;

Outcome host_error(int library_h_errno) { return {0xFFFFFFFFu, 0, library_h_errno}; }

// Callers learn why a lookup failed from h_errno alone: a request that cannot be answered as
// asked (bad pointer, buffer too small) is an unrecoverable one, with errno saying more.
Outcome with_h_errno(Outcome o) {
  if (o.value != 0 && o.h_error == 0)
    o.h_error = KV_NO_RECOVERY;
  return o;
}

int library_h_errno(int host) {
  switch (host) {
  case TRY_AGAIN: return KV_TRY_AGAIN;
  case NO_RECOVERY: return KV_NO_RECOVERY;
  case NO_DATA: return KV_NO_DATA;
  default: return KV_HOST_NOT_FOUND;
  }
}

HostEntry from_host(const hostent &h) {
  HostEntry e;
  e.name = h.h_name ? h.h_name : "";
  for (char **a = h.h_aliases; a && *a; ++a)
    e.aliases.emplace_back(*a);
  e.family = guest_family(h.h_addrtype);
  for (char **a = h.h_addr_list; a && *a; ++a)
    e.addresses.emplace_back(reinterpret_cast<uint8_t *>(*a),
                             reinterpret_cast<uint8_t *>(*a) + h.h_length);
  return e;
}

// Writes the entry into the guest's (buffer, size).
Outcome deliver(Process &p, const HostEntry &e, uint32_t buffer, uint32_t size) {
  if (buffer == 0)
    return failure(KV_EFAULT);
  auto bytes = lay_out_host_entry(e, buffer, size);
  if (!bytes)
    return failure(KV_ERANGE);
  if (p.memory.write(buffer, bytes->data(), static_cast<uint32_t>(bytes->size())) != 0)
    return failure(KV_EFAULT);
  return success(0);
}

// The reentrant lookups want scratch space; grow it while they say it is too small.
template <typename Lookup> Outcome lookup(Process &p, uint32_t buffer, uint32_t size, Lookup fn) {
  std::vector<char> scratch(4096);
  for (;;) {
    hostent h{}, *result = nullptr;
    int herr = 0;
    int rc = fn(&h, scratch.data(), scratch.size(), &result, &herr);
    if (rc == ERANGE && scratch.size() < (1u << 20)) {
      scratch.resize(scratch.size() * 2);
      continue;
    }
    if (rc != 0 || !result)
      return host_error(library_h_errno(herr));
    return deliver(p, from_host(h), buffer, size);
  }
}

} // namespace

namespace {

// gethostbyname(name, name length, buffer, size)
Outcome by_name(Process &p, const Request &r) {
  if (r.w[0] == 0 || r.w[1] == 0)
    return host_error(KV_HOST_NOT_FOUND);
  if (r.w[1] > kLongestName)
    return host_error(KV_HOST_NOT_FOUND);
  std::string name(r.w[1], '\0');
  if (p.memory.read(r.w[0], name.data(), r.w[1]) != 0)
    return failure(KV_EFAULT);
  name.resize(name.find('\0') == std::string::npos ? name.size() : name.find('\0'));
  if (!p.memory.accessible(r.w[2], r.w[3], kProtWrite) || r.w[2] == 0)
    return failure(KV_EFAULT);
  Outcome o = lookup(p, r.w[2], r.w[3], [&](hostent *h, char *b, size_t n, hostent **res, int *e) {
    return gethostbyname2_r(name.c_str(), AF_INET, h, b, n, res, e);
  });
  if (o.h_error == KV_HOST_NOT_FOUND) // no IPv4 address: perhaps an IPv6 one
    o = lookup(p, r.w[2], r.w[3], [&](hostent *h, char *b, size_t n, hostent **res, int *e) {
      return gethostbyname2_r(name.c_str(), AF_INET6, h, b, n, res, e);
    });
  return o;
}

// gethostbyaddr(address, length, type, buffer, size)
Outcome by_address(Process &p, const Request &r) {
  int family = host_family(static_cast<int32_t>(r.w[2]));
  uint32_t expected = family == AF_INET ? 4 : family == AF_INET6 ? 16 : 0;
  if (expected == 0)
    return failure(KV_EAFNOSUPPORT);
  if (r.w[1] != expected)
    return failure(KV_EINVAL);
  uint8_t address[16];
  if (r.w[0] == 0 || p.memory.read(r.w[0], address, expected) != 0)
    return failure(KV_EFAULT);
  if (!p.memory.accessible(r.w[3], r.w[4], kProtWrite) || r.w[3] == 0)
    return failure(KV_EFAULT);
  return lookup(p, r.w[3], r.w[4], [&](hostent *h, char *b, size_t n, hostent **res, int *e) {
    return gethostbyaddr_r(address, expected, family, h, b, n, res, e);
  });
}

} // namespace

Outcome gethostbyname(Process &p, const Request &r) { return with_h_errno(by_name(p, r)); }
Outcome gethostbyaddr(Process &p, const Request &r) { return with_h_errno(by_address(p, r)); }

} // namespace kvrun::handlers
