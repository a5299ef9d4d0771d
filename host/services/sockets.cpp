// Sockets: real host sockets behind guest descriptors, addresses and options translated.
#include <kv/abi.h>
#include <netinet/in.h>
#include <poll.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "memory/protection.h"
#include "services/errno_names.h"
#include "services/handlers.h"
#include "services/socket_address.h"
#include "services/socket_descriptors.h"

namespace kvrun::handlers {
namespace {

// One request moves at most this much; streams report a short count, datagrams must fit.
constexpr uint32_t kMostBytes = 256 * 1024;

Outcome host_failure() { return failure(from_host_errno(errno)); }

int host_flags(uint32_t flags, int &out) {
  constexpr struct {
    uint32_t guest;
    int host;
  } kFlags[] = {{KV_MSG_OOB, MSG_OOB},
                {KV_MSG_PEEK, MSG_PEEK},
                {KV_MSG_DONTROUTE, MSG_DONTROUTE},
                {KV_MSG_WAITALL, MSG_WAITALL},
                {KV_MSG_DONTWAIT, MSG_DONTWAIT}};
  out = 0;
  for (auto &f : kFlags)
    if (flags & f.guest) {
      out |= f.host;
      flags &= ~f.guest;
    }
  return flags ? KV_EINVAL : 0;
}

// Resolves the descriptor; on failure `fail` holds the outcome.
bool socket_of(const Process &p, uint32_t word, int &host, Outcome &fail) {
  host = host_socket(p, static_cast<int32_t>(word));
  if (host >= 0)
    return true;
  fail = failure(-host);
  return false;
}

int socket_type(int host) {
  int type = 0;
  socklen_t n = sizeof type;
  ::getsockopt(host, SOL_SOCKET, SO_TYPE, &type, &n);
  return type;
}

// The socket (word 0) and the flags (word 3) of a send or receive request, in the host's terms.
bool transfer_socket(Process &p, const Request &r, int &host, int &flags, Outcome &fail) {
  if (!socket_of(p, r.w[0], host, fail))
    return false;
  if (int e = host_flags(r.w[3], flags)) {
    fail = failure(e);
    return false;
  }
  return true;
}

Outcome send_common(Process &p, const Request &r, uint32_t dest, uint32_t dest_len) {
  int host, flags;
  Outcome fail;
  if (!transfer_socket(p, r, host, flags, fail))
    return fail;
  uint32_t length = r.w[2];
  if (!p.memory.accessible(r.w[1], length, kProtRead))
    return failure(KV_EFAULT);
  if (length > kMostBytes) {
    if (socket_type(host) != SOCK_STREAM)
      return failure(KV_EMSGSIZE);
    length = kMostBytes;
  }
  HostAddress to;
  if (dest != 0)
    if (int e = read_guest_address(p, dest, dest_len, to))
      return failure(e);
  std::vector<uint8_t> data(length);
  if (p.memory.read(r.w[1], data.data(), length) != 0)
    return failure(KV_EFAULT);
  if (int e = wait_until_ready(p, host, POLLOUT, flags & MSG_DONTWAIT))
    return failure(e);
  ssize_t n = dest ? ::sendto(host, data.data(), length, flags | MSG_NOSIGNAL, to.get(), to.length)
                   : ::send(host, data.data(), length, flags | MSG_NOSIGNAL);
  return n < 0 ? host_failure() : success(static_cast<uint32_t>(n));
}

Outcome receive_common(Process &p, const Request &r, uint32_t from, uint32_t from_len) {
  int host, flags;
  Outcome fail;
  if (!transfer_socket(p, r, host, flags, fail))
    return fail;
  uint32_t length = std::min(r.w[2], kMostBytes);
  if (!p.memory.accessible(r.w[1], length, kProtWrite))
    return failure(KV_EFAULT);
  if (int e = check_guest_address_room(p, from, from_len))
    return failure(e);
  if (int e = wait_until_ready(p, host, POLLIN, flags & MSG_DONTWAIT))
    return failure(e);
  std::vector<uint8_t> data(length);
  sockaddr_storage source{};
  socklen_t source_len = sizeof source;
  ssize_t n = ::recvfrom(host, data.data(), length, flags, reinterpret_cast<sockaddr *>(&source),
                         &source_len);
  if (n < 0)
    return host_failure();
  if (p.memory.write(r.w[1], data.data(), static_cast<uint32_t>(n)) != 0)
    return failure(KV_EFAULT);
  // A connected stream reports no source; the guest's length then says 0.
  if (from != 0) {
    if (source_len == 0 || source.ss_family == AF_UNSPEC) {
      if (p.memory.write_u32(from_len, 0) != 0)
        return failure(KV_EFAULT);
    } else if (int e = store_guest_address(p, from, from_len,
                                           reinterpret_cast<sockaddr *>(&source))) {
      return failure(e);
    }
  }
  return success(static_cast<uint32_t>(n));
}

Outcome add_socket(Process &p, int host) {
  Descriptor d{host, false, true};
  d.socket = true;
  int32_t fd = p.descriptors.add(std::move(d));
  if (fd < 0) {
    ::close(host);
    return failure(KV_EMFILE);
  }
  return success(static_cast<uint32_t>(fd));
}

using NameFn = int (*)(int, sockaddr *, socklen_t *);

Outcome name_common(Process &p, const Request &r, NameFn fn) {
  int host;
  Outcome fail;
  if (!socket_of(p, r.w[0], host, fail))
    return fail;
  if (r.w[1] == 0 || r.w[2] == 0)
    return failure(KV_EFAULT);
  sockaddr_storage a{};
  socklen_t n = sizeof a;
  if (fn(host, reinterpret_cast<sockaddr *>(&a), &n) != 0)
    return host_failure();
  if (int e = store_guest_address(p, r.w[1], r.w[2], reinterpret_cast<sockaddr *>(&a)))
    return failure(e);
  return success(0);
}

enum class OptionKind { integer, linger, time };
struct OptionMap {
  int32_t level, name;
  int host_level, host_name;
  OptionKind kind;
};
constexpr OptionMap kOptions[] = {
    {KV_SOL_SOCKET, KV_SO_REUSEADDR, SOL_SOCKET, SO_REUSEADDR, OptionKind::integer},
    {KV_SOL_SOCKET, KV_SO_KEEPALIVE, SOL_SOCKET, SO_KEEPALIVE, OptionKind::integer},
    {KV_SOL_SOCKET, KV_SO_BROADCAST, SOL_SOCKET, SO_BROADCAST, OptionKind::integer},
    {KV_SOL_SOCKET, KV_SO_LINGER, SOL_SOCKET, SO_LINGER, OptionKind::linger},
    {KV_SOL_SOCKET, KV_SO_SNDBUF, SOL_SOCKET, SO_SNDBUF, OptionKind::integer},
    {KV_SOL_SOCKET, KV_SO_RCVBUF, SOL_SOCKET, SO_RCVBUF, OptionKind::integer},
    {KV_SOL_SOCKET, KV_SO_SNDTIMEO, SOL_SOCKET, SO_SNDTIMEO, OptionKind::time},
    {KV_SOL_SOCKET, KV_SO_RCVTIMEO, SOL_SOCKET, SO_RCVTIMEO, OptionKind::time},
    {KV_SOL_SOCKET, KV_SO_ERROR, SOL_SOCKET, SO_ERROR, OptionKind::integer},
    {KV_SOL_SOCKET, KV_SO_TYPE, SOL_SOCKET, SO_TYPE, OptionKind::integer},
    {KV_IPPROTO_TCP, KV_TCP_NODELAY, IPPROTO_TCP, TCP_NODELAY, OptionKind::integer},
    {KV_IPPROTO_IPV6, KV_IPV6_V6ONLY, IPPROTO_IPV6, IPV6_V6ONLY, OptionKind::integer},
};

const OptionMap *find_option(uint32_t level, uint32_t name) {
  for (auto &o : kOptions)
    if (o.level == static_cast<int32_t>(level) && o.name == static_cast<int32_t>(name))
      return &o;
  return nullptr;
}

// The guest's size of an option's value: words for integers, two words for linger and time.
uint32_t guest_size(OptionKind k) { return k == OptionKind::integer ? 4 : 8; }

} // namespace

Outcome socket(Process &p, const Request &r) {
  int family = host_family(static_cast<int32_t>(r.w[0]));
  if (family <= 0)
    return failure(KV_EAFNOSUPPORT);
  int type;
  switch (r.w[1]) {
  case KV_SOCK_STREAM: type = SOCK_STREAM; break;
  case KV_SOCK_DGRAM: type = SOCK_DGRAM; break;
  case KV_SOCK_RAW: type = SOCK_RAW; break;
  default: return failure(KV_EPROTOTYPE);
  }
  int host = ::socket(family, type | SOCK_CLOEXEC, static_cast<int>(r.w[2]));
  if (host < 0)
    return host_failure();
  return add_socket(p, host);
}

namespace {

// bind and connect: (socket, address, length) with the address translated for the host.
Outcome with_address(Process &p, const Request &r, int (*call)(int, const sockaddr *, socklen_t)) {
  int host;
  Outcome fail;
  if (!socket_of(p, r.w[0], host, fail))
    return fail;
  HostAddress a;
  if (int e = read_guest_address(p, r.w[1], r.w[2], a))
    return failure(e);
  return call(host, a.get(), a.length) == 0 ? success(0) : host_failure();
}

} // namespace

Outcome bind(Process &p, const Request &r) { return with_address(p, r, ::bind); }
Outcome connect(Process &p, const Request &r) { return with_address(p, r, ::connect); }

Outcome listen(Process &p, const Request &r) {
  int host;
  Outcome fail;
  if (!socket_of(p, r.w[0], host, fail))
    return fail;
  return ::listen(host, static_cast<int>(r.w[1])) == 0 ? success(0) : host_failure();
}

Outcome accept(Process &p, const Request &r) {
  int host;
  Outcome fail;
  if (!socket_of(p, r.w[0], host, fail))
    return fail;
  if (int e = check_guest_address_room(p, r.w[1], r.w[2]))
    return failure(e);
  if (int e = wait_until_ready(p, host, POLLIN, false))
    return failure(e);
  sockaddr_storage a{};
  socklen_t n = sizeof a;
  int conn = ::accept4(host, reinterpret_cast<sockaddr *>(&a), &n, SOCK_CLOEXEC);
  if (conn < 0)
    return host_failure();
  if (int e = store_guest_address(p, r.w[1], r.w[2], reinterpret_cast<sockaddr *>(&a))) {
    ::close(conn);
    return failure(e);
  }
  return add_socket(p, conn);
}

Outcome sendto(Process &p, const Request &r) { return send_common(p, r, r.w[4], r.w[5]); }
Outcome send(Process &p, const Request &r) { return send_common(p, r, 0, 0); }
Outcome recvfrom(Process &p, const Request &r) { return receive_common(p, r, r.w[4], r.w[5]); }
Outcome recv(Process &p, const Request &r) { return receive_common(p, r, 0, 0); }

Outcome getsockname(Process &p, const Request &r) { return name_common(p, r, ::getsockname); }
Outcome getpeername(Process &p, const Request &r) { return name_common(p, r, ::getpeername); }

// getsockopt(fd, level, name, value, length pointer)
Outcome getsockopt(Process &p, const Request &r) {
  int host;
  Outcome fail;
  if (!socket_of(p, r.w[0], host, fail))
    return fail;
  const OptionMap *o = find_option(r.w[1], r.w[2]);
  if (!o)
    return failure(KV_ENOPROTOOPT);
  uint32_t room;
  if (r.w[3] == 0 || r.w[4] == 0 || p.memory.read_u32(r.w[4], room) != 0)
    return failure(KV_EFAULT);
  uint32_t size = guest_size(o->kind);
  if (room < size)
    return failure(KV_EINVAL);
  uint32_t out[2] = {};
  if (o->kind == OptionKind::time) {
    timeval tv{};
    socklen_t n = sizeof tv;
    if (::getsockopt(host, o->host_level, o->host_name, &tv, &n) != 0)
      return host_failure();
    out[0] = static_cast<uint32_t>(tv.tv_sec);
    out[1] = static_cast<uint32_t>(tv.tv_usec);
  } else {
    int v[2] = {};
    socklen_t n = sizeof v;
    if (::getsockopt(host, o->host_level, o->host_name, v, &n) != 0)
      return host_failure();
    if (o->host_name == SO_ERROR && o->host_level == SOL_SOCKET && v[0] != 0)
      v[0] = from_host_errno(v[0]);
    if (o->host_name == SO_TYPE && o->host_level == SOL_SOCKET)
      v[0] = v[0] == SOCK_STREAM ? KV_SOCK_STREAM : v[0] == SOCK_DGRAM ? KV_SOCK_DGRAM : KV_SOCK_RAW;
    out[0] = static_cast<uint32_t>(v[0]);
    out[1] = static_cast<uint32_t>(v[1]);
  }
  if (p.memory.write(r.w[3], out, size) != 0 || p.memory.write_u32(r.w[4], size) != 0)
    return failure(KV_EFAULT);
  return success(0);
}

// setsockopt(fd, level, name, value, length)
Outcome setsockopt(Process &p, const Request &r) {
  int host;
  Outcome fail;
  if (!socket_of(p, r.w[0], host, fail))
    return fail;
  const OptionMap *o = find_option(r.w[1], r.w[2]);
  if (!o)
    return failure(KV_ENOPROTOOPT);
  uint32_t size = guest_size(o->kind);
  if (r.w[4] < size)
    return failure(KV_EINVAL);
  int32_t in[2];
  if (r.w[3] == 0 || p.memory.read(r.w[3], in, size) != 0)
    return failure(KV_EFAULT);
  int rc;
  if (o->kind == OptionKind::time) {
    if (in[0] < 0 || in[1] < 0 || in[1] >= 1000000)
      return failure(KV_EINVAL);
    timeval tv{in[0], in[1]};
    rc = ::setsockopt(host, o->host_level, o->host_name, &tv, sizeof tv);
  } else if (o->kind == OptionKind::linger) {
    linger l{in[0], in[1]};
    rc = ::setsockopt(host, o->host_level, o->host_name, &l, sizeof l);
  } else {
    rc = ::setsockopt(host, o->host_level, o->host_name, &in[0], sizeof in[0]);
  }
  return rc == 0 ? success(0) : host_failure();
}

} // namespace kvrun::handlers
