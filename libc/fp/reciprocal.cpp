// The seed table of the reciprocal estimates, computed at compile time.
#include "fp/reciprocal.h"

namespace {

constexpr kv::fp::RecipSeeds make_seeds() {
  kv::fp::RecipSeeds s{};
  for (uint32_t i = 0; i < 256; ++i)
    s.v[i] = static_cast<uint16_t>((uint32_t(1) << 24) / (257 + i));
  return s;
}

} // namespace

extern "C" {
constinit const kv::fp::RecipSeeds __kv_fp_recip_seed = make_seeds();
}
