// Sockets, select, host lookup, processes and SHA-1 through the entry points, against kvrun's
// real host services. The TCP echo partner is a second guest program that this one spawns.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <kvtest.h>

#include "net_helpers.h"

extern "C" {
int __read_errno(void);
void __set_errno(int);
int *___h_errno_addr(void);
}

using namespace nettest;

namespace {

// Listens on the loopback address of the family with a port the host picks; returns the socket
// and stores the port.
int listen_loopback(bool v6, uint16_t &port) {
  int s = __syscall_socket(v6 ? KV_AF_INET6 : KV_AF_INET, KV_SOCK_STREAM, 0);
  if (s < 0)
    return -1;
  kv_sockaddr_in a4 = loopback4(0);
  kv_sockaddr_in6 a6 = loopback6(0);
  if ((v6 ? __syscall_bind(s, &a6, sizeof a6) : __syscall_bind(s, &a4, sizeof a4)) != 0 ||
      __syscall_listen(s, 4) != 0)
    return -1;
  kv_sockaddr_in6 bound{};
  uint32_t len = sizeof bound;
  if (__syscall_getsockname(s, &bound, &len) != 0)
    return -1;
  port = to_net16(bound.sin6_port); // the port sits at offset 2 in both records
  return s;
}

void echo_with_spawned_peer(bool v6) {
  uint16_t port = 0;
  int server = listen_loopback(v6, port);
  ASSERT_TRUE(server >= 0);
  ASSERT_NE(port, 0);

  char port_text[12];
  format_decimal(port, port_text);
  char family[] = {v6 ? '6' : '4', 0};
  char name[] = "echo_peer";
  char *argv[] = {name, family, port_text, nullptr};
  int pid = 0;
  ASSERT_EQ(__syscall_posix_spawn(&pid, "echo_peer", nullptr, nullptr, argv, nullptr), 0);
  EXPECT_TRUE(pid > 0);

  kv_sockaddr_in6 peer{};
  uint32_t peer_len = sizeof peer;
  int conn = __syscall_accept(server, &peer, &peer_len);
  ASSERT_TRUE(conn >= 0);
  EXPECT_EQ(peer.sin6_family, v6 ? KV_AF_INET6 : KV_AF_INET);
  EXPECT_EQ(peer_len, v6 ? sizeof(kv_sockaddr_in6) : sizeof(kv_sockaddr_in));

  // Echo what arrives until the greeting is complete, then read the peer's verdict.
  char buffer[64];
  int n = __syscall_recv(conn, buffer, 27, KV_MSG_WAITALL);
  ASSERT_EQ(n, 27);
  EXPECT_EQ(__syscall_send(conn, buffer, static_cast<size_t>(n), 0), n);
  char verdict[3] = {};
  EXPECT_EQ(__syscall_recv(conn, verdict, 2, KV_MSG_WAITALL), 2);
  EXPECT_STREQ(verdict, "ok");

  // The peer has gone: the next receive sees the end of the stream.
  EXPECT_EQ(__syscall_recv(conn, buffer, sizeof buffer, 0), 0);
  __syscall_close(conn);
  __syscall_close(server);
}

} // namespace

TEST(Tcp, EchoOverIpv4WithSpawnedPeer) { echo_with_spawned_peer(false); }
TEST(Tcp, EchoOverIpv6WithSpawnedPeer) { echo_with_spawned_peer(true); }

TEST(Udp, DatagramsBothWaysWithSourceAddresses) {
  int a = __syscall_socket(KV_AF_INET, KV_SOCK_DGRAM, 0);
  int b = __syscall_socket(KV_AF_INET, KV_SOCK_DGRAM, 0);
  ASSERT_TRUE(a >= 0 && b >= 0);
  kv_sockaddr_in any = loopback4(0);
  ASSERT_EQ(__syscall_bind(a, &any, sizeof any), 0);
  ASSERT_EQ(__syscall_bind(b, &any, sizeof any), 0);
  kv_sockaddr_in a_addr{}, b_addr{};
  uint32_t len = sizeof a_addr;
  ASSERT_EQ(__syscall_getsockname(a, &a_addr, &len), 0);
  EXPECT_EQ(len, sizeof(kv_sockaddr_in));
  len = sizeof b_addr;
  ASSERT_EQ(__syscall_getsockname(b, &b_addr, &len), 0);

  EXPECT_EQ(__syscall_sendto(a, "one", 3, 0, &b_addr, sizeof b_addr), 3);
  char buffer[16] = {};
  kv_sockaddr_in from{};
  uint32_t from_len = sizeof from;
  EXPECT_EQ(__syscall_recvfrom(b, buffer, sizeof buffer, 0, &from, &from_len), 3);
  EXPECT_STREQ(buffer, "one");
  EXPECT_EQ(from_len, sizeof(kv_sockaddr_in));
  EXPECT_EQ(from.sin_family, KV_AF_INET);
  EXPECT_EQ(from.sin_port, a_addr.sin_port);
  EXPECT_EQ(from.sin_addr.s_addr, 0x0100007Fu);

  // Reply to where it came from; a short length buffer gets a cut record and the full length.
  EXPECT_EQ(__syscall_sendto(b, "reply", 5, 0, &from, from_len), 5);
  uint8_t cut[4] = {0xEE, 0xEE, 0xEE, 0xEE};
  uint32_t cut_len = 2;
  char reply[8] = {};
  EXPECT_EQ(__syscall_recvfrom(a, reply, sizeof reply, 0, cut, &cut_len), 5);
  EXPECT_STREQ(reply, "reply");
  EXPECT_EQ(cut_len, sizeof(kv_sockaddr_in));
  EXPECT_EQ(cut[0], KV_AF_INET);
  EXPECT_EQ(cut[2], 0xEE);

  // Nothing waiting: a non-blocking receive fails at once.
  __set_errno(0);
  EXPECT_EQ(__syscall_recv(a, reply, sizeof reply, KV_MSG_DONTWAIT), -1);
  EXPECT_EQ(__read_errno(), KV_EAGAIN);
  __syscall_close(a);
  __syscall_close(b);
}

TEST(Select, ReportsReadableSocketAndClearsTheOthers) {
  int a = __syscall_socket(KV_AF_INET, KV_SOCK_DGRAM, 0);
  int b = __syscall_socket(KV_AF_INET, KV_SOCK_DGRAM, 0);
  ASSERT_TRUE(a >= 0 && b >= 0);
  kv_sockaddr_in any = loopback4(0);
  ASSERT_EQ(__syscall_bind(b, &any, sizeof any), 0);
  kv_sockaddr_in b_addr{};
  uint32_t len = sizeof b_addr;
  ASSERT_EQ(__syscall_getsockname(b, &b_addr, &len), 0);

  kv_fd_set read_set{};
  read_set.fds_bits[0] = 1u << b;
  kv_timeval zero{0, 0};
  EXPECT_EQ(__syscall_select(b + 1, &read_set, nullptr, nullptr, &zero), 0);
  EXPECT_EQ(read_set.fds_bits[0], 0u);

  EXPECT_EQ(__syscall_sendto(a, "x", 1, 0, &b_addr, sizeof b_addr), 1);
  kv_fd_set reads{}, writes{};
  reads.fds_bits[0] = 1u << a | 1u << b;
  writes.fds_bits[0] = 1u << a;
  kv_timeval second{1, 0};
  EXPECT_EQ(__syscall_select(b + 1, &reads, &writes, nullptr, &second), 2);
  EXPECT_EQ(reads.fds_bits[0], 1u << b);
  EXPECT_EQ(writes.fds_bits[0], 1u << a);
  __syscall_close(a);
  __syscall_close(b);
}

TEST(Select, SleepsWithoutDescriptors) {
  uint32_t before = 0, after = 0;
  ASSERT_EQ(__syscall_os_current_time_in_ms(&before), 0);
  kv_timeval wait{0, 150000};
  EXPECT_EQ(__syscall_select(0, nullptr, nullptr, nullptr, &wait), 0);
  ASSERT_EQ(__syscall_os_current_time_in_ms(&after), 0);
  EXPECT_TRUE(after - before >= 150);
}

TEST(Lookup, LocalhostIsLoopbackInsideTheBuffer) {
  alignas(4) static uint8_t buffer[2836];
  ASSERT_EQ(__syscall_gethostbyname("localhost", 9, buffer, sizeof buffer), 0);
  auto *h = reinterpret_cast<kv_hostent *>(buffer);
  auto inside = [&](uint32_t p) {
    return p >= reinterpret_cast<uintptr_t>(buffer) &&
           p < reinterpret_cast<uintptr_t>(buffer) + sizeof buffer;
  };
  EXPECT_TRUE(inside(h->h_name));
  EXPECT_TRUE(inside(h->h_aliases));
  EXPECT_TRUE(inside(h->h_addr_list));
  EXPECT_EQ(h->h_addrtype, KV_AF_INET);
  EXPECT_EQ(h->h_length, 4);
  auto *list = reinterpret_cast<uint8_t **>(h->h_addr_list);
  ASSERT_TRUE(list[0] != nullptr);
  EXPECT_EQ(list[0][0], 127);
}

TEST(Lookup, AddressBackToName) {
  alignas(4) static uint8_t buffer[2836];
  const uint8_t loopback[4] = {127, 0, 0, 1};
  ASSERT_EQ(__syscall_gethostbyaddr(loopback, 4, KV_AF_INET, buffer, sizeof buffer), 0);
  auto *h = reinterpret_cast<kv_hostent *>(buffer);
  EXPECT_TRUE(h->h_name != 0);
  EXPECT_TRUE(reinterpret_cast<const char *>(h->h_name)[0] != 0);
}

TEST(Lookup, FailuresSetHErrnoOrErrno) {
  alignas(4) static uint8_t buffer[64];
  *___h_errno_addr() = 0;
  EXPECT_NE(__syscall_gethostbyname("no-such-host.invalid", 20, buffer, sizeof buffer), 0);
  EXPECT_EQ(*___h_errno_addr(), KV_HOST_NOT_FOUND);
  // Found, but the entry does not fit in 24 bytes.
  __set_errno(0);
  EXPECT_NE(__syscall_gethostbyname("localhost", 9, buffer, 24), 0);
  EXPECT_EQ(__read_errno(), KV_ERANGE);
}

TEST(Sha, DigestOfAbc) {
  const uint8_t want[20] = {0xa9, 0x99, 0x3e, 0x36, 0x47, 0x06, 0x81, 0x6a, 0xba, 0x3e,
                            0x25, 0x71, 0x78, 0x50, 0xc2, 0x6c, 0x9c, 0xd0, 0xd8, 0x9d};
  uint8_t digest[20] = {};
  EXPECT_EQ(__syscall_sha("abc", 3, digest), reinterpret_cast<intptr_t>(digest));
  EXPECT_TRUE(same_bytes(digest, want, 20));
}

TEST(Kill, SignalZeroChecksOwnPidOthersAreRefused) {
  int self = __syscall_getpid();
  EXPECT_EQ(__syscall_kill(self, 0), 0);
  const struct {
    int pid, sig, error;
  } cases[] = {{1, 0, KV_EPERM}, {1, KV_SIGTERM, KV_EPERM}, {-1, KV_SIGKILL, KV_EPERM},
               {0, KV_SIGTERM, KV_EPERM}, {self, 32, KV_EINVAL}, {self, -1, KV_EINVAL}};
  for (auto &c : cases) {
    __set_errno(0);
    EXPECT_EQ(__syscall_kill(c.pid, c.sig), -1);
    EXPECT_EQ(__read_errno(), c.error);
  }
}

TEST(Shm, ObjectsAreSharedByNameAndRemoved) {
  int a = __syscall_shm_open("/kvtest-shm", KV_O_RDWR | KV_O_CREAT | KV_O_EXCL, 0600);
  ASSERT_TRUE(a >= 0);
  __set_errno(0);
  EXPECT_EQ(__syscall_shm_open("/kvtest-shm", KV_O_RDWR | KV_O_CREAT | KV_O_EXCL, 0600), -1);
  EXPECT_EQ(__read_errno(), KV_EEXIST);
  EXPECT_EQ(__syscall_shm_unlink("/kvtest-shm"), 0);
  __set_errno(0);
  EXPECT_EQ(__syscall_shm_unlink("/kvtest-shm"), -1);
  EXPECT_EQ(__read_errno(), KV_ENOENT);
  const char *bad[] = {"noslash", "/a/b", "/", ""};
  for (const char *name : bad) {
    __set_errno(0);
    EXPECT_EQ(__syscall_shm_open(name, KV_O_RDWR | KV_O_CREAT, 0600), -1);
    EXPECT_EQ(__read_errno(), KV_EINVAL);
  }
  __syscall_close(a);
}

// Wild pointers, bad descriptors and huge lengths: -1 and the errno, never a crash.
namespace bad {
int s;
kv_sockaddr_in here;
uint32_t len;
void *const wild = reinterpret_cast<void *>(0xFFFFF000u);
auto *const digest = reinterpret_cast<unsigned char *>(&here);
} // namespace bad

TEST(BadInput, FailsWithTheRightErrno) {
  using namespace bad;
  s = __syscall_socket(KV_AF_INET, KV_SOCK_DGRAM, 0);
  ASSERT_TRUE(s >= 0);
  here = loopback4(9);
  len = 16;
  const struct {
    const char *what;
    int (*call)();
    int error;
  } cases[] = {
      {"socket family 10", [] { return __syscall_socket(10, KV_SOCK_STREAM, 0); }, KV_EAFNOSUPPORT},
      {"socket type 9", [] { return __syscall_socket(KV_AF_INET, 9, 0); }, KV_EPROTOTYPE},
      {"bind null", [] { return __syscall_bind(s, nullptr, 16); }, KV_EFAULT},
      {"bind wild", [] { return __syscall_bind(s, wild, 16); }, KV_EFAULT},
      {"bind short", [] { return __syscall_bind(s, &here, 8); }, KV_EINVAL},
      {"bind bad fd", [] { return __syscall_bind(99, &here, sizeof here); }, KV_EBADF},
      {"bind console", [] { return __syscall_bind(1, &here, sizeof here); }, KV_ENOTSOCK},
      {"send huge", [] { return __syscall_sendto(s, &here, 0x7FFFFFFF, 0, &here, sizeof here); }, KV_EFAULT},
      {"send wild", [] { return __syscall_sendto(s, wild, 16, 0, &here, sizeof here); }, KV_EFAULT},
      {"recv wild", [] { return __syscall_recv(s, wild, 16, KV_MSG_DONTWAIT); }, KV_EFAULT},
      {"recv flags", [] { return __syscall_recv(s, &here, 16, 0x10000); }, KV_EINVAL},
      {"name wild", [] { return __syscall_getsockname(s, wild, &len); }, KV_EFAULT},
      {"name length wild", [] { return __syscall_getsockname(s, &here, static_cast<uint32_t *>(wild)); }, KV_EFAULT},
      {"peer unconnected", [] { return __syscall_getpeername(s, &here, &len); }, KV_ENOTCONN},
      {"option unknown", [] { return __syscall_setsockopt(s, KV_SOL_SOCKET, 0x7777, &len, 4); }, KV_ENOPROTOOPT},
      {"option short", [] { return __syscall_setsockopt(s, KV_SOL_SOCKET, KV_SO_REUSEADDR, &len, 2); }, KV_EINVAL},
      {"select wild set", [] { return __syscall_select(s + 1, wild, nullptr, nullptr, nullptr); }, KV_EFAULT},
      {"select closed fd", [] {
         static kv_fd_set set;
         set.fds_bits[1] = 1u << 30;
         return __syscall_select(63, &set, nullptr, nullptr, nullptr);
       }, KV_EBADF},
      {"select too many", [] { return __syscall_select(65, nullptr, nullptr, nullptr, nullptr); }, KV_EINVAL},
      {"host wild name", [] { return __syscall_gethostbyname(static_cast<const char *>(wild), 4, &here, 16); }, KV_EFAULT},
      {"host wild buffer", [] { return __syscall_gethostbyname("localhost", 9, wild, 2836); }, KV_EFAULT},
      {"addr bad type", [] { return __syscall_gethostbyaddr(&here, 4, 10, &here, 16); }, KV_EAFNOSUPPORT},
      {"sha wild", [] { return __syscall_sha(wild, 64, digest); }, KV_EFAULT},
      {"sha huge", [] { return __syscall_sha(&here, 0xFFFFFFF0u, digest); }, KV_EFAULT},
      {"sha null digest", [] { return __syscall_sha(&here, 4, nullptr); }, KV_EFAULT},
      {"ms null", [] { return __syscall_os_current_time_in_ms(nullptr); }, KV_EFAULT},
      {"spawn missing", [] {
         int pid;
         return __syscall_posix_spawn(&pid, "no_such_program", nullptr, nullptr, nullptr, nullptr) == KV_ENOENT ? -1 : 0;
       }, KV_ENOENT},
  };
  for (auto &c : cases) {
    __set_errno(0);
    int result = c.call();
    int error = __read_errno();
    if (result != -1 || error != c.error)
      kvtest::fail_detail("case", c.what);
    EXPECT_EQ(result, -1);
    EXPECT_EQ(error, c.error);
  }
  __syscall_close(s);
}
