// Socket addresses between the guest's records and the host's, both ways, and as the socket
// services read and store them: bad lengths and families refused, short buffers cut with the
// full length reported, and a bad buffer never costing a connection or a datagram.
#include <gtest/gtest.h>
#include <arpa/inet.h>
#include <kv/abi.h>
#include <netinet/in.h>

#include <chrono>
#include <cstring>

#include "service_fixture.h"
#include "services/socket_address.h"

using namespace kvrun;

namespace {

std::vector<uint8_t> guest_in(uint16_t family, uint16_t port_be, uint32_t addr_be) {
  kv_sockaddr_in a{};
  a.sin_family = family;
  a.sin_port = port_be;
  a.sin_addr.s_addr = addr_be;
  std::vector<uint8_t> v(sizeof a);
  std::memcpy(v.data(), &a, sizeof a);
  return v;
}

std::vector<uint8_t> guest_in6(uint16_t port_be, uint8_t first, uint8_t last, uint32_t flow,
                               uint32_t scope) {
  kv_sockaddr_in6 a{};
  a.sin6_family = KV_AF_INET6;
  a.sin6_port = port_be;
  a.sin6_flowinfo = flow;
  a.sin6_addr.bytes[0] = first;
  a.sin6_addr.bytes[15] = last;
  a.sin6_scope_id = scope;
  std::vector<uint8_t> v(sizeof a);
  std::memcpy(v.data(), &a, sizeof a);
  return v;
}

TEST(SocketAddress, GuestRecordsToHostAndBack) {
  auto v4 = guest_in(KV_AF_INET, htons(8080), htonl(0x7F000001));
  auto v6 = guest_in6(htons(443), 0x20, 7, 0x12345, 9);
  const struct {
    const char *what;
    std::vector<uint8_t> guest;
    uint32_t length;
    int error;
    int host_family;
    socklen_t host_length;
  } cases[] = {
      {"IPv4", v4, 16, 0, AF_INET, sizeof(sockaddr_in)},
      {"IPv4, longer length", v4, 28, 0, AF_INET, sizeof(sockaddr_in)},
      {"IPv4, 15 bytes", v4, 15, KV_EINVAL, 0, 0},
      {"IPv6", v6, 28, 0, AF_INET6, sizeof(sockaddr_in6)},
      {"IPv6, IPv4's length", v6, 16, KV_EINVAL, 0, 0},
      {"IPv6, 27 bytes", v6, 27, KV_EINVAL, 0, 0},
      {"no family", v4, 1, KV_EINVAL, 0, 0},
      {"nothing", v4, 0, KV_EINVAL, 0, 0},
      {"unspecified", guest_in(KV_AF_UNSPEC, 0, 0), 16, KV_EAFNOSUPPORT, 0, 0},
      {"host's IPv6 number", guest_in(AF_INET6, 0, 0), 16, KV_EAFNOSUPPORT, 0, 0},
      {"local sockets", guest_in(1, 0, 0), 16, KV_EAFNOSUPPORT, 0, 0},
  };
  for (auto &c : cases) {
    std::vector<uint8_t> g = c.guest;
    g.resize(28, 0xAA);
    HostAddress h;
    EXPECT_EQ(to_host_address(g.data(), c.length, h), c.error) << c.what;
    if (c.error)
      continue;
    EXPECT_EQ(h.get()->sa_family, c.host_family) << c.what;
    EXPECT_EQ(h.length, c.host_length) << c.what;
    // And back: the guest record again, byte for byte, with its full length.
    uint8_t back[28];
    std::memset(back, 0x55, sizeof back);
    uint32_t n = to_guest_address(h.get(), back);
    ASSERT_EQ(n, c.guest.size()) << c.what;
    EXPECT_EQ(std::vector<uint8_t>(back, back + n), c.guest) << c.what;
  }
}

TEST(SocketAddress, HostFieldsLandWhereTheHostExpectsThem) {
  auto v6 = guest_in6(htons(443), 0x20, 7, 0x12345, 9);
  HostAddress h;
  ASSERT_EQ(to_host_address(v6.data(), 28, h), 0);
  auto *s6 = reinterpret_cast<const sockaddr_in6 *>(h.get());
  EXPECT_EQ(ntohs(s6->sin6_port), 443);
  EXPECT_EQ(s6->sin6_flowinfo, 0x12345u);
  EXPECT_EQ(s6->sin6_scope_id, 9u);
  EXPECT_EQ(s6->sin6_addr.s6_addr[0], 0x20);
  EXPECT_EQ(s6->sin6_addr.s6_addr[15], 7);

  auto v4 = guest_in(KV_AF_INET, htons(8080), htonl(0x0A000102));
  ASSERT_EQ(to_host_address(v4.data(), 16, h), 0);
  auto *s4 = reinterpret_cast<const sockaddr_in *>(h.get());
  EXPECT_EQ(ntohs(s4->sin_port), 8080);
  EXPECT_EQ(ntohl(s4->sin_addr.s_addr), 0x0A000102u);

  sockaddr other{};
  other.sa_family = AF_UNIX;
  uint8_t out[28] = {};
  EXPECT_EQ(to_guest_address(&other, out), 0u) << "no guest record for it";
}

TEST(SocketAddress, FamiliesBothWays) {
  const struct {
    int32_t guest;
    int host;
  } known[] = {{KV_AF_UNSPEC, AF_UNSPEC}, {KV_AF_INET, AF_INET}, {KV_AF_INET6, AF_INET6}};
  for (auto &k : known) {
    EXPECT_EQ(host_family(k.guest), k.host);
    EXPECT_EQ(guest_family(k.host), k.guest);
  }
  for (int32_t g : {1, 4, 10, -1})
    EXPECT_EQ(host_family(g), -1) << g;
  for (int h : {AF_UNIX, AF_PACKET, 3})
    EXPECT_EQ(guest_family(h), -1) << h;
}

class SocketServiceTest : public kvtest_host::ServiceFixture {
protected:
  static constexpr uint32_t kAddr = kData + 0x1000; // an address record
  static constexpr uint32_t kLen = kData + 0x1100;  // its length word
  static constexpr uint32_t kBuf = kData + 0x1200;  // data

  void SetUp() override {
    ServiceFixture::SetUp();
    // Blocking calls give up rather than hang the suite.
    process.deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  }

  uint32_t open_socket(int32_t family, int32_t type) {
    Outcome o = call(KV_SYS_socket, static_cast<uint32_t>(family), static_cast<uint32_t>(type));
    EXPECT_NE(o.value, kFailed) << err();
    return o.value;
  }
  // A socket bound to the loopback address of the family with a port the host picks; the bound
  // address is left at kAddr.
  uint32_t bound_socket(int32_t family, int32_t type) {
    uint32_t s = open_socket(family, type);
    auto record = family == KV_AF_INET ? guest_in(KV_AF_INET, 0, htonl(INADDR_LOOPBACK))
                                       : guest_in6(0, 0, 1, 0, 0);
    put(kAddr, record.data(), static_cast<uint32_t>(record.size()));
    EXPECT_EQ(call(KV_SYS_bind, s, kAddr, static_cast<uint32_t>(record.size())).value, 0u) << err();
    put_word(kLen, 28);
    EXPECT_EQ(call(KV_SYS_getsockname, s, kAddr, kLen).value, 0u) << err();
    return s;
  }
};

TEST_F(SocketServiceTest, BindRefusesBadRecords) {
  uint32_t s = open_socket(KV_AF_INET, KV_SOCK_STREAM);
  const struct {
    const char *what;
    std::vector<uint8_t> record;
    uint32_t addr, length;
    int error;
  } cases[] = {
      {"short IPv4", guest_in(KV_AF_INET, 0, htonl(INADDR_LOOPBACK)), kAddr, 8, KV_EINVAL},
      {"zero length", guest_in(KV_AF_INET, 0, htonl(INADDR_LOOPBACK)), kAddr, 0, KV_EINVAL},
      {"host's IPv6 number", guest_in(AF_INET6, 0, 0), kAddr, 28, KV_EAFNOSUPPORT},
      {"unknown family", guest_in(9, 0, 0), kAddr, 16, KV_EAFNOSUPPORT},
      {"null record", {}, 0, 16, KV_EFAULT},
      {"unmapped record", {}, kUnmapped, 16, KV_EFAULT},
      {"record runs off the map", {}, kReadOnly + 0xff8, 16, KV_EFAULT},
  };
  for (auto &c : cases) {
    if (!c.record.empty())
      put(kAddr, c.record.data(), static_cast<uint32_t>(c.record.size()));
    EXPECT_EQ(call(KV_SYS_bind, s, c.addr, c.length).value, kFailed) << c.what;
    EXPECT_EQ(err(), c.error) << c.what;
  }
  EXPECT_EQ(call(KV_SYS_socket, 10, KV_SOCK_STREAM).value, kFailed);
  EXPECT_EQ(err(), KV_EAFNOSUPPORT);
  EXPECT_EQ(call(KV_SYS_socket, KV_AF_INET, 99).value, kFailed);
  EXPECT_EQ(err(), KV_EPROTOTYPE);
}

TEST_F(SocketServiceTest, ShortBuffersAreCutAndTheFullLengthReported) {
  for (int32_t family : {KV_AF_INET, KV_AF_INET6}) {
    const uint32_t full = family == KV_AF_INET ? 16 : 28;
    uint32_t s = bound_socket(family, KV_SOCK_DGRAM);
    auto whole = bytes(kAddr, full);
    EXPECT_EQ(word(kLen), full);
    uint16_t f;
    std::memcpy(&f, whole.data(), 2);
    EXPECT_EQ(f, family);
    EXPECT_NE(whole[2] | whole[3], 0) << "a port was picked";

    for (uint32_t room : {0u, 1u, 2u, 8u, full - 1, full, full + 20}) {
      guard(kAddr, 64);
      put_word(kLen, room);
      ASSERT_EQ(call(KV_SYS_getsockname, s, kAddr, kLen).value, 0u) << room;
      EXPECT_EQ(word(kLen), full) << room;
      uint32_t cut = std::min(room, full);
      EXPECT_EQ(bytes(kAddr, cut), std::vector<uint8_t>(whole.begin(), whole.begin() + cut)) << room;
      EXPECT_TRUE(guarded(kAddr + cut, 64 - cut)) << room;
    }
    const struct {
      const char *what;
      uint32_t addr, length_ptr, room;
      int error;
    } bad[] = {
        {"negative room", kAddr, kLen, 0x80000000u, KV_EINVAL},
        {"null record", 0, kLen, 28, KV_EFAULT},
        {"null length", kAddr, 0, 28, KV_EFAULT},
        {"read-only record", kReadOnly, kLen, 28, KV_EFAULT},
        {"length unmapped", kAddr, kUnmapped, 28, KV_EFAULT},
    };
    for (auto &c : bad) {
      put_word(kLen, c.room);
      EXPECT_EQ(call(KV_SYS_getsockname, s, c.addr, c.length_ptr).value, kFailed) << c.what;
      EXPECT_EQ(err(), c.error) << c.what;
    }
    EXPECT_EQ(call(KV_SYS_close, s).value, 0u);
  }
}

TEST_F(SocketServiceTest, ABadAddressBufferLosesNoConnection) {
  uint32_t server = bound_socket(KV_AF_INET, KV_SOCK_STREAM);
  ASSERT_EQ(call(KV_SYS_listen, server, 4).value, 0u);
  auto bound = bytes(kAddr, 16);
  uint32_t client = open_socket(KV_AF_INET, KV_SOCK_STREAM);
  put(kAddr + 0x40, bound.data(), 16);
  ASSERT_EQ(call(KV_SYS_connect, client, kAddr + 0x40, 16).value, 0u) << err();

  const struct {
    const char *what;
    uint32_t addr, length_ptr, room;
    int error;
  } bad[] = {
      {"read-only record", kReadOnly, kLen, 16, KV_EFAULT},
      {"record runs off the map", kReadOnly - 8, kLen, 16, KV_EFAULT},
      {"read-only length", kAddr, kReadOnly, 16, KV_EFAULT},
      {"negative room", kAddr, kLen, 0xFFFFFFFF, KV_EINVAL},
  };
  for (auto &c : bad) {
    put_word(kLen, c.room);
    EXPECT_EQ(call(KV_SYS_accept, server, c.addr, c.length_ptr).value, kFailed) << c.what;
    EXPECT_EQ(err(), c.error) << c.what;
  }
  // The connection is still there for an accept with a good buffer, cut to 8 bytes.
  put_word(kLen, 8);
  guard(kAddr, 32);
  uint32_t conn = call(KV_SYS_accept, server, kAddr, kLen).value;
  ASSERT_NE(conn, kFailed) << err();
  EXPECT_EQ(word(kLen), 16u);
  EXPECT_EQ(bytes(kAddr, 2), (std::vector<uint8_t>{KV_AF_INET, 0}));
  EXPECT_TRUE(guarded(kAddr + 8, 24));
  // And a null record asks for nothing.
  EXPECT_EQ(call(KV_SYS_getpeername, conn, 0, kLen).value, kFailed);
  EXPECT_EQ(err(), KV_EFAULT);
}

TEST_F(SocketServiceTest, ABadSourceBufferLosesNoDatagram) {
  uint32_t receiver = bound_socket(KV_AF_INET, KV_SOCK_DGRAM);
  auto to = bytes(kAddr, 16);
  uint32_t sender = bound_socket(KV_AF_INET, KV_SOCK_DGRAM);
  auto from = bytes(kAddr, 16);
  put(kAddr + 0x40, to.data(), 16);
  put_string(kBuf, "datagram");
  ASSERT_EQ(call(KV_SYS_sendto, sender, kBuf, 8, 0, kAddr + 0x40, 16).value, 8u) << err();

  const struct {
    const char *what;
    uint32_t from, length_ptr, room;
    int error;
  } bad[] = {
      {"read-only source", kReadOnly, kLen, 16, KV_EFAULT},
      {"source runs off the map", kReadOnly - 4, kLen, 16, KV_EFAULT},
      {"null length", kAddr, 0, 16, KV_EFAULT},
      {"negative room", kAddr, kLen, 0x80000000u, KV_EINVAL},
  };
  for (auto &c : bad) {
    put_word(kLen, c.room);
    EXPECT_EQ(call(KV_SYS_recvfrom, receiver, kBuf + 0x100, 64, 0, c.from, c.length_ptr).value,
              kFailed)
        << c.what;
    EXPECT_EQ(err(), c.error) << c.what;
  }
  put_word(kLen, 16);
  ASSERT_EQ(call(KV_SYS_recvfrom, receiver, kBuf + 0x100, 64, 0, kAddr, kLen).value, 8u) << err();
  EXPECT_EQ(string_at(kBuf + 0x100).substr(0, 8), "datagram");
  EXPECT_EQ(bytes(kAddr, 16), from) << "the sender's bound address";
  EXPECT_EQ(word(kLen), 16u);
}

TEST_F(SocketServiceTest, OnlySocketsAndTheirCopiesTakeSocketCalls) {
  uint32_t s = bound_socket(KV_AF_INET, KV_SOCK_DGRAM);
  uint32_t copy = call(KV_SYS_fcntl, s, KV_F_DUP2FD, 10).value;
  ASSERT_EQ(copy, 10u) << err();
  put_string(kBuf, "file");
  uint32_t file = call(KV_SYS_open, kBuf, KV_O_RDWR | KV_O_CREAT, 0644).value;
  ASSERT_NE(file, kFailed) << err();
  const struct {
    const char *what;
    uint32_t fd;
    int error;
  } cases[] = {
      {"a socket", s, 0},         {"its copy", copy, 0},      {"a file", file, KV_ENOTSOCK},
      {"the console", 1, KV_ENOTSOCK}, {"not open", 40, KV_EBADF}, {"negative", kFailed, KV_EBADF},
  };
  for (auto &c : cases) {
    put_word(kLen, 28);
    EXPECT_EQ(call(KV_SYS_getsockname, c.fd, kAddr, kLen).value, c.error ? kFailed : 0u) << c.what;
    EXPECT_EQ(err(), c.error) << c.what;
    // An unconnected datagram socket has nowhere to send to: the host's answer, not ours.
    EXPECT_EQ(call(KV_SYS_send, c.fd, kBuf, 1, 0).value, kFailed) << c.what;
    EXPECT_EQ(err(), c.error ? c.error : KV_EDESTADDRREQ) << c.what;
  }
}

} // namespace
