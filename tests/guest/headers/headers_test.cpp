// The public headers against the system side: records filled by kvrun read correctly through
// the public field names, and the set and h_errno macros reach the right bits and cell.
#include <kv/syscall.h>
#include <kvtest.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/select.h>
#include <sys/socket.h>

extern "C" unsigned headers_c_fd_bits(int a, int b, int cleared);
extern "C" unsigned headers_c_locale(void);

TEST(Headers, LocaleHeadersInC) { EXPECT_EQ(headers_c_locale(), 255u); }

TEST(Headers, DescriptorSetMacrosInCAndCxx) {
  const struct {
    int a, b, cleared;
    unsigned c_bits;
  } cases[] = {
      {0, 31, 5, 1 | 2 | 8},  {32, 63, 40, 1 | 2 | 16}, {3, 33, 3, 2 | 16},
      {31, 32, 0, 1 | 2 | 8 | 16},
  };
  for (auto &c : cases) {
    EXPECT_EQ(headers_c_fd_bits(c.a, c.b, c.cleared), c.c_bits);
    fd_set set;
    FD_ZERO(&set);
    FD_SET(c.a, &set);
    EXPECT_EQ(set.fds_bits[c.a / 32], 1u << (c.a % 32));
    EXPECT_TRUE(FD_ISSET(c.a, &set));
    FD_CLR(c.a, &set);
    EXPECT_EQ(set.fds_bits[0] | set.fds_bits[1], 0u);
  }
}

// kvrun writes the address of a bound socket; the public names must find its fields.
TEST(Headers, SocketAddressesReadThroughPublicNames) {
  int fd = __syscall_socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
  ASSERT_TRUE(fd >= 0);
  sockaddr_in any = {};
  any.sin_family = AF_INET;
  any.sin_addr.s_addr = __builtin_bswap32(INADDR_LOOPBACK);
  ASSERT_EQ(__syscall_bind(fd, &any, sizeof any), 0);
  sockaddr_storage storage;
  socklen_t length = sizeof storage;
  ASSERT_EQ(__syscall_getsockname(fd, &storage, &length), 0);
  EXPECT_EQ(length, sizeof(sockaddr_in));
  EXPECT_EQ(storage.ss_family, AF_INET);
  auto *in = reinterpret_cast<sockaddr_in *>(&storage);
  EXPECT_EQ(in->sin_addr.s_addr, __builtin_bswap32(INADDR_LOOPBACK));
  EXPECT_NE(in->sin_port, 0);
  __syscall_close(fd);
}

TEST(Headers, HostEntryAndHErrnoThroughPublicNames) {
  static char buffer[2836];
  ASSERT_EQ(__syscall_gethostbyname("localhost", 9, buffer, sizeof buffer), 0);
  auto *h = reinterpret_cast<hostent *>(buffer);
  EXPECT_EQ(h->h_addrtype, AF_INET);
  EXPECT_EQ(h->h_length, 4);
  ASSERT_TRUE(h->h_addr != nullptr);
  EXPECT_EQ(static_cast<uint8_t>(h->h_addr[0]), 127);
  h_errno = 0;
  EXPECT_EQ(__syscall_gethostbyname("no-such-host.invalid", 20, buffer, sizeof buffer) != 0, true);
  EXPECT_EQ(h_errno, HOST_NOT_FOUND);
}
