// Division by zero: each helper sends signal 8 to its own process once, through the program's
// own entry points (which replace the library's), then returns quotient 0 and the dividend.
#include <kvtest.h>

#include "helpers.h"

using rt_test::call32;
using rt_test::call64;
using rt_test::pair;

namespace {
constexpr int fake_pid = 4321;
int kills, last_pid, last_sig, pids_asked;
} // namespace

extern "C" int __syscall_getpid(void) {
  ++pids_asked;
  return fake_pid;
}

extern "C" int __syscall_kill(int pid, int sig) {
  ++kills;
  last_pid = pid;
  last_sig = sig;
  return 0;
}

namespace {
void reset() { kills = last_pid = last_sig = pids_asked = 0; }
bool signalled_once() { return kills == 1 && pids_asked == 1 && last_pid == fake_pid && last_sig == 8; }
} // namespace

TEST(DivideByZero, Unsigned32) {
  reset();
  EXPECT_EQ(__aeabi_uidiv(1234, 0), 0u);
  EXPECT_TRUE(signalled_once());
  reset();
  auto regs = call32(__aeabi_uidivmod, 0xfffffffeu, 0);
  EXPECT_EQ(regs.r[0], 0u);
  EXPECT_EQ(regs.r[1], 0xfffffffeu);
  EXPECT_TRUE(signalled_once());
}

TEST(DivideByZero, Signed32) {
  reset();
  EXPECT_EQ(__aeabi_idiv(-1234, 0), 0);
  EXPECT_TRUE(signalled_once());
  reset();
  auto regs = call32(__aeabi_idivmod, static_cast<uint32_t>(-77), 0);
  EXPECT_EQ(regs.r[0], 0u);
  EXPECT_EQ(static_cast<int32_t>(regs.r[1]), -77);
  EXPECT_TRUE(signalled_once());
}

TEST(DivideByZero, Unsigned64) {
  reset();
  auto regs = call64(__aeabi_uldivmod, 0x123456789abcdef0ull, 0);
  EXPECT_EQ(pair(regs.r[0], regs.r[1]), 0u);
  EXPECT_EQ(pair(regs.r[2], regs.r[3]), 0x123456789abcdef0ull);
  EXPECT_TRUE(regs.preserved);
  EXPECT_TRUE(signalled_once());
}

TEST(DivideByZero, Signed64) {
  reset();
  auto regs = call64(__aeabi_ldivmod, static_cast<uint64_t>(-5000000000ll), 0);
  EXPECT_EQ(pair(regs.r[0], regs.r[1]), 0u);
  EXPECT_EQ(static_cast<int64_t>(pair(regs.r[2], regs.r[3])), -5000000000ll);
  EXPECT_TRUE(regs.preserved);
  EXPECT_TRUE(signalled_once());
}

// The core's names share the bodies, and with them the zero-divisor path.
TEST(DivideByZero, CoreNames) {
  reset();
  auto u = call64(_ll_udiv, 0xffffffff00000001ull, 0);
  EXPECT_EQ(pair(u.r[0], u.r[1]), 0u);
  EXPECT_EQ(pair(u.r[2], u.r[3]), 0xffffffff00000001ull);
  EXPECT_TRUE(signalled_once());
  reset();
  auto s = call64(_ll_sdiv, static_cast<uint64_t>(-3ll), 0);
  EXPECT_EQ(pair(s.r[0], s.r[1]), 0u);
  EXPECT_EQ(static_cast<int64_t>(pair(s.r[2], s.r[3])), -3);
  EXPECT_TRUE(signalled_once());
}

TEST(DivideByZero, NonZeroDivisorSendsNothing) {
  reset();
  EXPECT_EQ(__aeabi_uidiv(10, 3), 3u);
  EXPECT_EQ(__aeabi_idiv(-10, 3), -3);
  call32(__aeabi_uidivmod, 10, 3);
  call32(__aeabi_idivmod, 10, 3);
  call64(__aeabi_uldivmod, 10, 3);
  call64(__aeabi_ldivmod, 10, 3);
  EXPECT_EQ(kills, 0);
  EXPECT_EQ(pids_asked, 0);
}
