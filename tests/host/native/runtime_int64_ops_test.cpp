// The word-pair 64-bit shifts and multiply, built natively, against the host's operators.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>

#include "runtime/int64_ops.h"

namespace {

using kv::rt::ashr64;
using kv::rt::lshr64;
using kv::rt::mul64;
using kv::rt::shl64;

const uint64_t shift_values[] = {0, 1, 0x8000000000000000, 0xffffffffffffffff, 0x0123456789abcdef,
                                 0xf123456789abcdef, 0x00000000ffffffff, 0xffffffff00000000};

TEST(NativeInt64, EveryShiftCount) {
  std::mt19937_64 rng(7);
  for (int round = 0; round < 1000; ++round) {
    uint64_t v = round < 8 ? shift_values[round] : rng();
    for (uint32_t n = 0; n < 64; ++n) {
      ASSERT_EQ(shl64(v, n), v << n) << v << " << " << n;
      ASSERT_EQ(lshr64(v, n), v >> n) << v << " >> " << n;
      ASSERT_EQ(ashr64(static_cast<int64_t>(v), n), static_cast<int64_t>(v) >> n)
          << v << " >> " << n;
    }
  }
}

// Counts past 63 shift everything out, as the target's register shifts do.
TEST(NativeInt64, CountsPast63) {
  for (uint32_t n : {64u, 65u, 96u, 255u, 256u, 0x80000000u, 0xffffffffu}) {
    EXPECT_EQ(shl64(0xffffffffffffffff, n), 0u) << n;
    EXPECT_EQ(lshr64(0xffffffffffffffff, n), 0u) << n;
    EXPECT_EQ(ashr64(-5, n), -1) << n;
    EXPECT_EQ(ashr64(5, n), 0) << n;
  }
}

TEST(NativeInt64, Multiply) {
  std::mt19937_64 rng(11);
  for (uint64_t a : shift_values)
    for (uint64_t b : shift_values)
      ASSERT_EQ(mul64(a, b), a * b) << a << " * " << b;
  for (int i = 0; i < 1'000'000; ++i) {
    uint64_t a = rng() >> (rng() & 63), b = rng() >> (rng() & 63);
    ASSERT_EQ(mul64(a, b), a * b) << a << " * " << b;
  }
}

} // namespace
