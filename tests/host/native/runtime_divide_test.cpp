// The division kernels, built natively, against the host's / and %.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "runtime/divide.h"

namespace {

using kv::rt::sdivmod32;
using kv::rt::sdivmod64;
using kv::rt::udivmod32;
using kv::rt::udivmod64;

// 0, 1, the extremes, powers of two and their neighbours, values near 2^32 and 2^63.
std::vector<uint64_t> edge_values() {
  std::vector<uint64_t> v = {0, 1, 2, 3, 5, 7, 10, 0xff, 0xffff, 0x7fffffff, 0x80000000,
                             0xffffffff, 0x100000000, 0x100000001, 0x1ffffffff, 0x123456789,
                             0x7fffffffffffffff, 0x8000000000000000, 0x8000000000000001,
                             0xfffffffffffffffe, 0xffffffffffffffff, 0xfedcba9876543210};
  for (int k = 1; k < 64; ++k) {
    uint64_t p = uint64_t{1} << k;
    v.insert(v.end(), {p - 1, p, p + 1});
  }
  return v;
}

// Random operands of every bit length, so that each normalisation distance occurs often.
class Operands {
public:
  uint64_t next64() { return rng_() >> (rng_() & 63); }
  uint32_t next32() { return static_cast<uint32_t>(rng_()) >> (rng_() & 31); }
  bool coin() { return rng_() & 1; }

private:
  std::mt19937_64 rng_{20240611};
};

constexpr int random_pairs = 2'000'000;

TEST(NativeDivide, Unsigned32EdgeTable) {
  for (uint64_t a : edge_values())
    for (uint64_t b : edge_values()) {
      auto n = static_cast<uint32_t>(a), d = static_cast<uint32_t>(b);
      if (d == 0)
        continue;
      auto r = udivmod32(n, d);
      ASSERT_EQ(r.quot, n / d) << n << " / " << d;
      ASSERT_EQ(r.rem, n % d) << n << " % " << d;
    }
}

TEST(NativeDivide, Unsigned64EdgeTable) {
  for (uint64_t n : edge_values())
    for (uint64_t d : edge_values()) {
      if (d == 0)
        continue;
      auto r = udivmod64(n, d);
      ASSERT_EQ(r.quot, n / d) << n << " / " << d;
      ASSERT_EQ(r.rem, n % d) << n << " % " << d;
    }
}

// Signed edge values: the unsigned ones and their negations reinterpreted.
TEST(NativeDivide, Signed32EdgeTable) {
  constexpr int32_t min = std::numeric_limits<int32_t>::min();
  for (uint64_t a : edge_values())
    for (uint64_t b : edge_values())
      for (int signs = 0; signs < 4; ++signs) {
        auto n = static_cast<int32_t>(signs & 1 ? 0 - static_cast<uint32_t>(a) : a);
        auto d = static_cast<int32_t>(signs & 2 ? 0 - static_cast<uint32_t>(b) : b);
        if (d == 0)
          continue;
        auto r = sdivmod32(n, d);
        if (n == min && d == -1) { // the host traps; the helper wraps
          EXPECT_EQ(r.quot, min);
          EXPECT_EQ(r.rem, 0);
          continue;
        }
        ASSERT_EQ(r.quot, n / d) << n << " / " << d;
        ASSERT_EQ(r.rem, n % d) << n << " % " << d;
      }
}

TEST(NativeDivide, Signed64EdgeTable) {
  constexpr int64_t min = std::numeric_limits<int64_t>::min();
  for (uint64_t a : edge_values())
    for (uint64_t b : edge_values())
      for (int signs = 0; signs < 4; ++signs) {
        auto n = static_cast<int64_t>(signs & 1 ? 0 - a : a);
        auto d = static_cast<int64_t>(signs & 2 ? 0 - b : b);
        if (d == 0)
          continue;
        auto r = sdivmod64(n, d);
        if (n == min && d == -1) {
          EXPECT_EQ(r.quot, min);
          EXPECT_EQ(r.rem, 0);
          continue;
        }
        ASSERT_EQ(r.quot, n / d) << n << " / " << d;
        ASSERT_EQ(r.rem, n % d) << n << " % " << d;
      }
}

TEST(NativeDivide, RandomUnsigned) {
  Operands ops;
  for (int i = 0; i < random_pairs; ++i) {
    uint64_t n = ops.next64(), d = ops.next64();
    if (d == 0)
      continue;
    auto r = udivmod64(n, d);
    ASSERT_EQ(r.quot, n / d) << n << " / " << d;
    ASSERT_EQ(r.rem, n % d) << n << " % " << d;

    uint32_t n32 = ops.next32(), d32 = ops.next32();
    if (d32 == 0)
      continue;
    auto r32 = udivmod32(n32, d32);
    ASSERT_EQ(r32.quot, n32 / d32) << n32 << " / " << d32;
    ASSERT_EQ(r32.rem, n32 % d32) << n32 << " % " << d32;
  }
}

TEST(NativeDivide, RandomSigned) {
  Operands ops;
  for (int i = 0; i < random_pairs; ++i) {
    auto n = static_cast<int64_t>(ops.coin() ? 0 - ops.next64() : ops.next64());
    auto d = static_cast<int64_t>(ops.coin() ? 0 - ops.next64() : ops.next64());
    if (d == 0 || (n == std::numeric_limits<int64_t>::min() && d == -1))
      continue;
    auto r = sdivmod64(n, d);
    ASSERT_EQ(r.quot, n / d) << n << " / " << d;
    ASSERT_EQ(r.rem, n % d) << n << " % " << d;

    auto n32 = static_cast<int32_t>(ops.coin() ? 0 - ops.next32() : ops.next32());
    auto d32 = static_cast<int32_t>(ops.coin() ? 0 - ops.next32() : ops.next32());
    if (d32 == 0 || (n32 == std::numeric_limits<int32_t>::min() && d32 == -1))
      continue;
    auto r32 = sdivmod32(n32, d32);
    ASSERT_EQ(r32.quot, n32 / d32) << n32 << " / " << d32;
    ASSERT_EQ(r32.rem, n32 % d32) << n32 << " % " << d32;
  }
}

} // namespace
