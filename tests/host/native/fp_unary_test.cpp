// Square root, rounding to integral and the format conversions against the host.
#include <gtest/gtest.h>

#include <cmath>

#include "fp/softfloat.h"
#include "fp_reference.h"

namespace {

using namespace fptest;

template <typename Check> void double_sweep(uint64_t seed, Check check) {
  Operands<uint64_t> gen(seed);
  uint64_t cases = case_count(200000);
  FlushToZero ftz;
  for (uint64_t i = 0; i < cases; ++i)
    check(gen.any());
}

// Every float with KV_FP_CASES set, otherwise every 4099th encoding (a prime stride, so the
// low bits vary too) plus the encodings around each exponent boundary.
template <typename Check> void float_sweep(Check check) {
  FlushToZero ftz;
  uint64_t stride = exhaustive() ? 1 : 4099;
  for (uint64_t v = 0; v <= 0xffffffffu; v += stride)
    check(static_cast<uint32_t>(v));
  if (!exhaustive())
    for (uint32_t e = 0; e < 512; ++e)
      for (uint32_t d = 0; d < 4; ++d) {
        check(e << 23 | d);
        check((e << 23) - 1 - d);
      }
}

TEST(NativeFp, SquareRoot) {
  double_sweep(21, [](uint64_t a) {
    uint64_t want = bits(std::sqrt(dbl(a)));
    ASSERT_TRUE(same(kv::fp::dsqrt(a), want)) << std::hex << a;
  });
  float_sweep([](uint32_t a) {
    uint32_t want = bits(std::sqrt(flt(a)));
    ASSERT_TRUE(same(kv::fp::fsqrt(a), want)) << std::hex << a;
  });
}

TEST(NativeFp, RoundIntegral) {
  double_sweep(22, [](uint64_t a) {
    uint64_t want = bits(std::nearbyint(dbl(flush(a))));
    ASSERT_TRUE(same(kv::fp::drnd(a), want)) << std::hex << a;
  });
  float_sweep([](uint32_t a) {
    uint32_t want = bits(std::nearbyint(flt(flush(a))));
    ASSERT_TRUE(same(kv::fp::frnd(a), want)) << std::hex << a;
  });
}

TEST(NativeFp, FormatConversions) {
  double_sweep(23, [](uint64_t a) {
    uint32_t ours = kv::fp::f_from_d(a), want = bits(static_cast<float>(dbl(a)));
    ASSERT_TRUE(same(ours, want) || tiny_class(ours, want)) << std::hex << a;
  });
  float_sweep([](uint32_t a) {
    uint64_t want = bits(static_cast<double>(flt(a)));
    ASSERT_TRUE(same(kv::fp::d_from_f(a), want)) << std::hex << a;
  });
}

} // namespace
