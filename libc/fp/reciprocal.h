// Reciprocals and reciprocal square roots without a divide instruction: a table seed refined
// by Newton-Raphson steps in 32-bit fixed point. Each reciprocal step rounds down, and the
// exact step never overshoots, so that estimate stays below the true value.
#pragma once

#include <stdint.h>

namespace kv::fp {
struct RecipSeeds {
  uint16_t v[256];
};
struct RsqrtSeeds {
  uint16_t v[384];
};
} // namespace kv::fp

// v[i] << 16 is at most 2^63 / b for every b in [2^31, 2^32) whose top nine bits are 1
// followed by i: 2^24 / (257 + i), rounded down.
extern "C" __attribute__((visibility("hidden"))) const kv::fp::RecipSeeds __kv_fp_recip_seed;
// v[i] is 2^16 / sqrt(x) rounded down at the upper end of the i-th interval of x in [1, 4)
// (step 1/128): below 1 / sqrt(x) by at most 2^-8 of it for every x of that interval.
extern "C" __attribute__((visibility("hidden"))) const kv::fp::RsqrtSeeds __kv_fp_rsqrt_seed;

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

// One Newton-Raphson step y += y (1 - x y^2) / 2 for x in [2^30, 2^32) read as [1, 4) and y
// as y / 2^30 (about 1 / sqrt(x)).
inline uint32_t rsqrt_step(uint32_t x, uint32_t y) {
  auto t = static_cast<uint32_t>(static_cast<uint64_t>(y) * y >> 29); // y^2 / 2^29
  auto h = static_cast<uint32_t>(static_cast<uint64_t>(x) * t >> 30);  // x y^2 as 2^31
  auto d = static_cast<int32_t>(0x80000000u - h);
  return y + static_cast<uint32_t>(static_cast<int64_t>(static_cast<int32_t>(y)) * d >> 32);
}

// About 2^30 / sqrt(x / 2^30) for x in [2^30, 2^32), to about 2^-27.
inline uint32_t rsqrt32(uint32_t x) {
  uint32_t y = static_cast<uint32_t>(__kv_fp_rsqrt_seed.v[(x >> 23) - 128]) << 14;
  return rsqrt_step(x, rsqrt_step(x, y));
}

} // namespace kv::fp
