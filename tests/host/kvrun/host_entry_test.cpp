// The host entry as gethostbyname and gethostbyaddr leave it in the guest's buffer: every
// pointer a guest address inside the buffer, nothing written past the size given, and failures
// in the right cell.
#include <gtest/gtest.h>
#include <kv/abi.h>

#include <cstring>

#include "service_fixture.h"
#include "services/host_entry.h"

using namespace kvrun;

namespace {

uint32_t word_at(const std::vector<uint8_t> &v, size_t at) {
  uint32_t w;
  std::memcpy(&w, &v[at], 4);
  return w;
}

TEST(HostEntryLayout, ListsAddressesAndStringsFollowTheRecord) {
  HostEntry e;
  e.name = "host.example";
  e.aliases = {"a", "bb"};
  e.family = KV_AF_INET6;
  std::vector<uint8_t> one(16, 0), two(16, 0);
  one[15] = 1;
  two[0] = 0xfe;
  e.addresses = {one, two};
  const uint32_t base = 0x8000;
  // 20 record + 12 alias list + 12 address list + 32 addresses + 13 + 2 + 3 strings
  const uint32_t need = 94;
  auto out = lay_out_host_entry(e, base, need);
  ASSERT_TRUE(out);
  ASSERT_EQ(out->size(), need);
  kv_hostent h;
  std::memcpy(&h, out->data(), sizeof h);
  EXPECT_EQ(h.h_addrtype, KV_AF_INET6);
  EXPECT_EQ(h.h_length, 16);
  EXPECT_EQ(h.h_aliases, base + 20);
  EXPECT_EQ(h.h_addr_list, base + 32);
  EXPECT_EQ(h.h_name, base + 76);
  EXPECT_EQ(std::string(reinterpret_cast<char *>(&(*out)[76])), "host.example");
  EXPECT_EQ(word_at(*out, 20), base + 89);
  EXPECT_EQ(word_at(*out, 24), base + 91);
  EXPECT_EQ(word_at(*out, 28), 0u);
  EXPECT_EQ(std::string(reinterpret_cast<char *>(&(*out)[89])), "a");
  EXPECT_EQ(std::string(reinterpret_cast<char *>(&(*out)[91])), "bb");
  EXPECT_EQ(word_at(*out, 32), base + 44);
  EXPECT_EQ(word_at(*out, 36), base + 60);
  EXPECT_EQ(word_at(*out, 40), 0u);
  EXPECT_EQ(std::vector<uint8_t>(out->begin() + 44, out->begin() + 60), one);
  EXPECT_EQ(std::vector<uint8_t>(out->begin() + 60, out->begin() + 76), two);
  EXPECT_EQ(out->back(), 0);

  EXPECT_FALSE(lay_out_host_entry(e, base, need - 1)) << "one byte short";
  EXPECT_FALSE(lay_out_host_entry(e, 0xFFFFFFC0u, need)) << "would run past 4 GiB";
}

TEST(HostEntryLayout, EmptyListsStillHaveTheirTerminators) {
  HostEntry e;
  e.name = "";
  e.family = KV_AF_INET;
  auto out = lay_out_host_entry(e, 0x100, 64);
  ASSERT_TRUE(out);
  ASSERT_EQ(out->size(), 20u + 4 + 4 + 1);
  kv_hostent h;
  std::memcpy(&h, out->data(), sizeof h);
  EXPECT_EQ(h.h_length, 4);
  EXPECT_EQ(word_at(*out, h.h_aliases - 0x100), 0u);
  EXPECT_EQ(word_at(*out, h.h_addr_list - 0x100), 0u);
  EXPECT_EQ(h.h_name, 0x100u + 28);
}

class HostLookupTest : public kvtest_host::ServiceFixture {
protected:
  static constexpr uint32_t kName = kData;          // the name text
  static constexpr uint32_t kBuffer = kData + 0x1000; // the result buffer
  static constexpr uint32_t kRoom = 0x1000;         // guarded area behind the buffer

  Outcome by_name(const std::string &name, uint32_t size) {
    put_string(kName, name);
    return call(KV_SYS_gethostbyname, kName, static_cast<uint32_t>(name.size()), kBuffer, size);
  }

  // Checks that the entry at kBuffer is the loopback entry of "localhost", every pointer inside
  // [kBuffer, kBuffer + size); returns the bytes the entry used.
  uint32_t expect_localhost_entry(uint32_t size) {
    kv_hostent h;
    EXPECT_EQ(m.memory.read(kBuffer, &h, sizeof h), 0);
    auto inside = [&](uint32_t p, uint32_t n) { return p >= kBuffer && p + n <= kBuffer + size; };
    uint32_t end = kBuffer + sizeof h;
    EXPECT_EQ(h.h_addrtype, KV_AF_INET);
    EXPECT_EQ(h.h_length, 4);
    EXPECT_TRUE(inside(h.h_name, 10));
    EXPECT_EQ(string_at(h.h_name), "localhost");
    end = std::max(end, h.h_name + 10);
    for (uint32_t a = h.h_aliases;; a += 4) {
      EXPECT_TRUE(inside(a, 4));
      end = std::max(end, a + 4);
      uint32_t s = word(a);
      if (s == 0 || !inside(a, 4))
        break;
      EXPECT_TRUE(inside(s, 1));
      end = std::max<uint32_t>(end, s + static_cast<uint32_t>(string_at(s).size()) + 1);
    }
    uint32_t list = h.h_addr_list;
    EXPECT_TRUE(inside(list, 8));
    uint32_t first = word(list);
    EXPECT_TRUE(inside(first, 4));
    EXPECT_EQ(bytes(first, 4), (std::vector<uint8_t>{127, 0, 0, 1}));
    uint32_t n = 0;
    for (uint32_t a = list; word(a) != 0 && n < 16; a += 4, ++n) {
      EXPECT_TRUE(inside(word(a), 4));
      end = std::max(end, std::max(a + 8, word(a) + 4));
    }
    return end - kBuffer;
  }
};

TEST_F(HostLookupTest, LocalhostFillsTheBufferWithGuestPointersAndNothingBeyondIt) {
  guard(kBuffer, 2836 + kRoom);
  ASSERT_EQ(by_name("localhost", 2836).value, 0u);
  uint32_t used = expect_localhost_entry(2836);
  EXPECT_TRUE(guarded(kBuffer + used, 2836 + kRoom - used)) << "bytes after the entry";
  EXPECT_EQ(err(), 0);
  EXPECT_EQ(herr(), 0);

  // The entry fits exactly in `used` bytes; one byte fewer fails with nothing written at all.
  guard(kBuffer, used + kRoom);
  ASSERT_EQ(by_name("localhost", used).value, 0u);
  EXPECT_EQ(expect_localhost_entry(used), used);
  EXPECT_TRUE(guarded(kBuffer + used, kRoom));

  guard(kBuffer, used + kRoom);
  for (uint32_t size : {used - 1, 20u, 0u}) {
    EXPECT_EQ(by_name("localhost", size).value, kFailed) << size;
    EXPECT_EQ(err(), KV_ERANGE) << size;
    EXPECT_EQ(herr(), KV_NO_RECOVERY) << size;
    EXPECT_TRUE(guarded(kBuffer, used + kRoom)) << size;
  }
}

TEST_F(HostLookupTest, ANameIsReadUpToItsLengthOrItsFirstZero) {
  put(kName, "localhost\0junk", 14);
  EXPECT_EQ(call(KV_SYS_gethostbyname, kName, 14, kBuffer, 2836).value, 0u);
  EXPECT_EQ(string_at(word(kBuffer)), "localhost");
  // The length cuts the text: "localhostX" with 9 is "localhost".
  put_string(kName, "localhostX");
  EXPECT_EQ(call(KV_SYS_gethostbyname, kName, 9, kBuffer, 2836).value, 0u);
  EXPECT_EQ(string_at(word(kBuffer)), "localhost");
}

TEST_F(HostLookupTest, FailuresGoToTheRightCellAndLeaveTheBufferAlone) {
  put_string(kName, "no-such-host.invalid");
  put_string(kName + 0x100, std::string(1025, 'a'));
  const struct {
    const char *what;
    uint32_t name, length, buffer, size;
    int error, h_error;
  } cases[] = {
      {"unknown name", kName, 20, kBuffer, 2836, 0, KV_HOST_NOT_FOUND},
      {"null name", 0, 0, kBuffer, 2836, 0, KV_HOST_NOT_FOUND},
      {"empty name", kName, 0, kBuffer, 2836, 0, KV_HOST_NOT_FOUND},
      {"name too long", kName + 0x100, 1025, kBuffer, 2836, 0, KV_HOST_NOT_FOUND},
      {"name unmapped", kUnmapped, 9, kBuffer, 2836, KV_EFAULT, KV_NO_RECOVERY},
      {"name runs off the map", kReadOnly + 0xffc, 9, kBuffer, 2836, KV_EFAULT, KV_NO_RECOVERY},
      {"null buffer", kName, 20, 0, 2836, KV_EFAULT, KV_NO_RECOVERY},
      {"read-only buffer", kName, 20, kReadOnly, 64, KV_EFAULT, KV_NO_RECOVERY},
      {"buffer runs off the map", kName, 20, kReadOnly - 16, 64, KV_EFAULT, KV_NO_RECOVERY},
  };
  for (auto &c : cases) {
    guard(kBuffer, 2836);
    EXPECT_EQ(call(KV_SYS_gethostbyname, c.name, c.length, c.buffer, c.size).value, kFailed)
        << c.what;
    EXPECT_EQ(err(), c.error) << c.what;
    EXPECT_EQ(herr(), c.h_error) << c.what;
    EXPECT_TRUE(guarded(kBuffer, 2836)) << c.what;
  }
}

TEST_F(HostLookupTest, AddressBackToItsEntry) {
  const uint8_t loopback[4] = {127, 0, 0, 1};
  put(kName, loopback, 4);
  guard(kBuffer, 2836 + kRoom);
  ASSERT_EQ(call(KV_SYS_gethostbyaddr, kName, 4, KV_AF_INET, kBuffer, 2836).value, 0u);
  uint32_t used = expect_localhost_entry(2836);
  EXPECT_TRUE(guarded(kBuffer + used, 2836 + kRoom - used));

  guard(kBuffer, 2836);
  EXPECT_EQ(call(KV_SYS_gethostbyaddr, kName, 4, KV_AF_INET, kBuffer, used - 1).value, kFailed);
  EXPECT_EQ(err(), KV_ERANGE);
  EXPECT_EQ(herr(), KV_NO_RECOVERY);
  EXPECT_TRUE(guarded(kBuffer, 2836));
}

TEST_F(HostLookupTest, AddressFailures) {
  const uint8_t test_net[16] = {192, 0, 2, 1};
  put(kName, test_net, 16);
  const struct {
    const char *what;
    uint32_t addr, length, type, buffer;
    int error, h_error;
  } cases[] = {
      {"no name for it", kName, 4, KV_AF_INET, kBuffer, 0, KV_HOST_NOT_FOUND},
      {"IPv4 with 16 bytes", kName, 16, KV_AF_INET, kBuffer, KV_EINVAL, KV_NO_RECOVERY},
      {"IPv6 with 4 bytes", kName, 4, KV_AF_INET6, kBuffer, KV_EINVAL, KV_NO_RECOVERY},
      {"unspecified family", kName, 4, KV_AF_UNSPEC, kBuffer, KV_EAFNOSUPPORT, KV_NO_RECOVERY},
      {"host's own IPv6 number", kName, 16, 10, kBuffer, KV_EAFNOSUPPORT, KV_NO_RECOVERY},
      {"null address", 0, 4, KV_AF_INET, kBuffer, KV_EFAULT, KV_NO_RECOVERY},
      {"address unmapped", kUnmapped, 4, KV_AF_INET, kBuffer, KV_EFAULT, KV_NO_RECOVERY},
      {"read-only buffer", kName, 4, KV_AF_INET, kReadOnly, KV_EFAULT, KV_NO_RECOVERY},
  };
  for (auto &c : cases) {
    guard(kBuffer, 2836);
    EXPECT_EQ(call(KV_SYS_gethostbyaddr, c.addr, c.length, c.type, c.buffer, 2836).value, kFailed)
        << c.what;
    EXPECT_EQ(err(), c.error) << c.what;
    EXPECT_EQ(herr(), c.h_error) << c.what;
    EXPECT_TRUE(guarded(kBuffer, 2836)) << c.what;
  }
}

} // namespace
