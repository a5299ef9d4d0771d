// Division by ten by reciprocal shift-and-add, natively against the host's divide: the whole
// 32-bit range in strides that cover every residue, and the 64-bit edges and a random sweep.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>

#include "runtime/udiv10.h"

namespace {

TEST(NativeUdiv10, Word32EveryResidueAcrossTheRange) {
  // Stride 997 (prime, coprime to 10) visits every residue in every region; the top end and
  // the first thousand values are checked one by one.
  uint64_t wrong = 0;
  for (uint64_t n = 0; n <= 0xffffffffull; n += 997) {
    auto r = kv::rt::udiv10_32(static_cast<uint32_t>(n));
    wrong += r.quot != n / 10 || r.rem != n % 10;
  }
  for (uint32_t k = 0; k < 1000; ++k)
    for (uint32_t n : {k, 0xffffffffu - k}) {
      auto r = kv::rt::udiv10_32(n);
      wrong += r.quot != n / 10 || r.rem != n % 10;
    }
  EXPECT_EQ(wrong, 0u);
  auto top = kv::rt::udiv10_32(0xffffffffu);
  EXPECT_EQ(top.quot, 429496729u);
  EXPECT_EQ(top.rem, 5u);
}

TEST(NativeUdiv10, Word64EdgesAndRandom) {
  uint64_t wrong = 0;
  auto check = [&](uint64_t n) {
    auto r = kv::rt::udiv10_64(n);
    wrong += r.quot != n / 10 || r.rem != n % 10;
  };
  for (uint64_t p = 1; p <= 10000000000000000000ull; p *= 10) {
    for (uint64_t d = 0; d < 20; ++d) {
      check(p + d);
      check(p - d);
    }
    if (p > 1844674407370955161ull)
      break;
  }
  for (uint64_t k = 0; k < 100000; ++k) {
    check(~0ull - k);
    check((1ull << 32) + k - 50000);
  }
  std::mt19937_64 gen(7);
  for (int i = 0; i < 5000000; ++i)
    check(gen() >> (gen() & 63));
  EXPECT_EQ(wrong, 0u);
  auto top = kv::rt::udiv10_64(~0ull);
  EXPECT_EQ(top.quot, 1844674407370955161ull);
  EXPECT_EQ(top.rem, 5u);
}

} // namespace
