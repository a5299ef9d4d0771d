// Reciprocals for division (and square roots) without a divide instruction: a table seed
// refined by Newton-Raphson steps in 32-bit fixed point. Every step rounds down, and the exact
// step never overshoots, so the estimate stays below the true value.
#pragma once

#include <stdint.h>

namespace kv::fp {
struct RecipSeeds {
  uint16_t v[256];
};
} // namespace kv::fp

// v[i] << 16 is at most 2^63 / b for every b in [2^31, 2^32) whose top nine bits are 1
// followed by i: 2^24 / (257 + i), rounded down.
extern "C" __attribute__((visibility("hidden"))) const kv::fp::RecipSeeds __kv_fp_recip_seed;

namespace kv::fp {

// One Newton-Raphson step r += r * (1 - b * r) with b in [2^31, 2^32) read as [0.5, 1) and r
// as r / 2^31; needs r <= 2^63 / b and keeps it so.
inline uint32_t recip_step(uint32_t b, uint32_t r) {
  uint64_t error = (uint64_t(1) << 63) - static_cast<uint64_t>(b) * r;
  uint32_t e = static_cast<uint32_t>(error >> 31);
  return r + static_cast<uint32_t>((static_cast<uint64_t>(r) * e) >> 32);
}

// About 2^63 / b for b in [2^31, 2^32): below it by at most 2^-29 of its value.
inline uint32_t recip32(uint32_t b) {
  uint32_t r = static_cast<uint32_t>(__kv_fp_recip_seed.v[(b >> 23) & 0xff]) << 16;
  return recip_step(b, recip_step(b, r));
}

} // namespace kv::fp
