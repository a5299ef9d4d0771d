// The seed table of the reciprocal estimates, computed at compile time.
#include "fp/reciprocal.h"

namespace {

constexpr kv::fp::RecipSeeds make_seeds() {
  kv::fp::RecipSeeds s{};
  for (uint32_t i = 0; i < 256; ++i)
    s.v[i] = static_cast<uint16_t>((uint32_t(1) << 24) / (257 + i));
  return s;
}

// floor(2^16 / sqrt((i + 129) / 128)) = floor(sqrt(2^39 / (i + 129))).
constexpr kv::fp::RsqrtSeeds make_rsqrt_seeds() {
  kv::fp::RsqrtSeeds s{};
  for (uint64_t i = 0; i < 384; ++i) {
    uint64_t n = (uint64_t(1) << 39) / (i + 129), lo = 0, hi = uint64_t(1) << 17;
    while (hi - lo > 1) {
      uint64_t mid = (lo + hi) / 2;
      (mid * mid <= n ? lo : hi) = mid;
    }
    s.v[i] = static_cast<uint16_t>(lo);
  }
  return s;
}

} // namespace

extern "C" {
constinit const kv::fp::RecipSeeds __kv_fp_recip_seed = make_seeds();
constinit const kv::fp::RsqrtSeeds __kv_fp_rsqrt_seed = make_rsqrt_seeds();
}
