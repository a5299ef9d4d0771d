// select on guest descriptors: the guest's fd_set words read and written back, only the words
// nfds covers, bits at and above nfds ignored, bad descriptors and sets refused.
#include <gtest/gtest.h>
#include <kv/abi.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>

#include "service_fixture.h"

using namespace kvrun;

namespace {

class SelectTest : public kvtest_host::ServiceFixture {
protected:
  static constexpr uint32_t kRead = kData + 0x1000, kWrite = kData + 0x1010,
                            kExcept = kData + 0x1020, kZero = kData + 0x1030;
  // Guest descriptors: a pipe's two ends, and one end of a socket pair.
  static constexpr int32_t kPipeIn = 3, kPipeOut = 4, kSocket = 5;

  void SetUp() override {
    ServiceFixture::SetUp();
    int p[2], s[2];
    ASSERT_EQ(pipe(p), 0);
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, s), 0);
    pipe_out = p[1];
    peer = s[1];
    process.descriptors.set(kPipeIn, {p[0], false, true});
    process.descriptors.set(kPipeOut, {p[1], false, true});
    process.descriptors.set(kSocket, {s[0], false, true});
    put_word(kZero, 0);
    put_word(kZero + 4, 0);
  }
  void TearDown() override {
    if (peer >= 0)
      close(peer);
  }

  void set(uint32_t addr, uint32_t w0, uint32_t w1 = 0) {
    put_word(addr, w0);
    put_word(addr + 4, w1);
  }
  Outcome select(uint32_t nfds, uint32_t r, uint32_t w, uint32_t e, uint32_t timeout = kZero) {
    return call(KV_SYS_select, nfds, r, w, e, timeout);
  }

  int pipe_out = -1, peer = -1;
};

constexpr uint32_t bit(int fd) { return 1u << fd; }

TEST_F(SelectTest, ReadyDescriptorsComeBackInTheirSets) {
  const struct {
    const char *what;
    bool pipe_data, socket_data;
    uint32_t read_in, write_in, result, read_out, write_out;
  } cases[] = {
      {"nothing to read", false, false, bit(3) | bit(5), bit(4), 1, 0, bit(4)},
      {"pipe has data", true, false, bit(3) | bit(5), bit(4), 2, bit(3), bit(4)},
      {"both have data", true, true, bit(3) | bit(5), 0, 2, bit(3) | bit(5), 0},
      {"one descriptor in two sets counts twice", false, true, bit(5), bit(5), 2, bit(5), bit(5)},
      {"empty sets", true, true, 0, 0, 0, 0, 0},
  };
  for (auto &c : cases) {
    char byte = 'x', sink[8];
    if (c.pipe_data) {
      ASSERT_EQ(write(pipe_out, &byte, 1), 1);
    }
    if (c.socket_data) {
      ASSERT_EQ(write(peer, &byte, 1), 1);
    }
    set(kRead, c.read_in);
    set(kWrite, c.write_in);
    set(kExcept, 0);
    EXPECT_EQ(select(6, kRead, kWrite, kExcept).value, c.result) << c.what;
    EXPECT_EQ(word(kRead), c.read_out) << c.what;
    EXPECT_EQ(word(kWrite), c.write_out) << c.what;
    EXPECT_EQ(word(kExcept), 0u) << c.what;
    // Drain what was written, through the host ends.
    if (c.pipe_data) {
      ASSERT_EQ(read(process.descriptors.find(kPipeIn)->host_fd, sink, 1), 1);
    }
    if (c.socket_data) {
      ASSERT_EQ(read(process.descriptors.find(kSocket)->host_fd, sink, 1), 1);
    }
  }
}

TEST_F(SelectTest, AClosedPeerIsReadable) {
  close(peer);
  peer = -1;
  set(kRead, bit(kSocket));
  EXPECT_EQ(select(6, kRead, 0, 0).value, 1u);
  EXPECT_EQ(word(kRead), bit(kSocket));
}

TEST_F(SelectTest, OnlyDescriptorsBelowNfdsCount) {
  ASSERT_EQ(write(pipe_out, "x", 1), 1);
  // Bits at and above nfds name no open descriptor: they are not looked at, the word that nfds
  // covers comes back without them, and the word it does not cover is not touched.
  set(kRead, bit(3) | bit(5) | bit(20), 0xFFFF0000u);
  EXPECT_EQ(select(4, kRead, 0, 0).value, 1u);
  EXPECT_EQ(word(kRead), bit(3));
  EXPECT_EQ(word(kRead + 4), 0xFFFF0000u);
  // nfds 0 with sets is a plain wait.
  set(kRead, bit(3));
  EXPECT_EQ(select(0, kRead, 0, 0).value, 0u);
  EXPECT_EQ(word(kRead), bit(3)) << "no word covered, none written";
}

TEST_F(SelectTest, ASetOfOneWordAtTheEndOfItsMemory) {
  // nfds up to 32 reads and writes one word: a set in the last word of writable memory works.
  const uint32_t last = kReadOnly - 4;
  ASSERT_EQ(write(pipe_out, "x", 1), 1);
  put_word(last, bit(3) | bit(4));
  EXPECT_EQ(select(32, last, 0, 0).value, 1u);
  EXPECT_EQ(word(last), bit(3));
  // With 33 it is two words, and the second cannot be written back.
  put_word(last, bit(3));
  EXPECT_EQ(select(33, last, 0, 0).value, kFailed);
  EXPECT_EQ(err(), KV_EFAULT);
}

TEST_F(SelectTest, BadDescriptorsAndSetsAreRefusedWithTheSetsUnchanged) {
  process.descriptors.set(6, {-1, false}); // in the table, but nothing behind it
  const struct {
    const char *what;
    uint32_t nfds, r, w, e, read_bits, write_bits, timeout;
    int error;
  } cases[] = {
      {"closed descriptor in the read set", 8, kRead, 0, 0, bit(7), 0, kZero, KV_EBADF},
      {"closed descriptor in the write set", 8, kRead, kWrite, 0, bit(3), bit(7), kZero, KV_EBADF},
      {"descriptor without a host object", 8, kRead, 0, 0, bit(6), 0, kZero, KV_EBADF},
      {"descriptor 63", 64, kRead, 0, 0, bit(3), 0, kZero, KV_EBADF},
      {"nfds above the set size", 65, kRead, 0, 0, bit(3), 0, kZero, KV_EINVAL},
      {"negative nfds", 0xFFFFFFFF, kRead, 0, 0, bit(3), 0, kZero, KV_EINVAL},
      {"unmapped set", 8, kUnmapped, 0, 0, bit(3), 0, kZero, KV_EFAULT},
      {"read-only set", 8, kRead, kReadOnly, 0, bit(3), 0, kZero, KV_EFAULT},
      {"unmapped time-out", 8, kRead, 0, 0, bit(3), 0, kUnmapped, KV_EFAULT},
  };
  for (auto &c : cases) {
    set(kRead, c.read_bits, c.nfds == 64 ? 0x80000000u : 0);
    set(kWrite, c.write_bits);
    EXPECT_EQ(select(c.nfds, c.r, c.w, c.e, c.timeout).value, kFailed) << c.what;
    EXPECT_EQ(err(), c.error) << c.what;
    EXPECT_EQ(word(kRead), c.read_bits) << c.what;
    EXPECT_EQ(word(kWrite), c.write_bits) << c.what;
  }
}

TEST_F(SelectTest, NullSetsAndTimeOuts) {
  // No read set, a write set: the pipe's writing end is ready at once, even without a time-out.
  set(kWrite, bit(kPipeOut));
  EXPECT_EQ(select(5, 0, kWrite, 0, 0).value, 1u);
  EXPECT_EQ(word(kWrite), bit(kPipeOut));
  // Nothing ready: a time-out of 20 ms passes and the set is cleared.
  set(kRead, bit(kPipeIn));
  put_word(kData + 0x1040, 0);
  put_word(kData + 0x1044, 20000);
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(select(5, kRead, 0, 0, kData + 0x1040).value, 0u);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
  EXPECT_EQ(word(kRead), 0u);
}

} // namespace
