// Multiplication: the double product from four 32x32->64 partial products, the float one from
// a single 32x32->64 multiply; bits below the rounding window only feed the sticky bit.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

// High 64 bits of a 128-bit product, with the low 64 bits folded into bit 0.
uint64_t mul_high_jam(uint64_t a, uint64_t b) {
  uint32_t a0 = static_cast<uint32_t>(a), a1 = static_cast<uint32_t>(a >> 32);
  uint32_t b0 = static_cast<uint32_t>(b), b1 = static_cast<uint32_t>(b >> 32);
  uint64_t p00 = static_cast<uint64_t>(a0) * b0;
  uint64_t p01 = static_cast<uint64_t>(a0) * b1;
  uint64_t p10 = static_cast<uint64_t>(a1) * b0;
  uint64_t p11 = static_cast<uint64_t>(a1) * b1;
  uint64_t mid = (p00 >> 32) + static_cast<uint32_t>(p01) + static_cast<uint32_t>(p10);
  uint64_t high = p11 + (p01 >> 32) + (p10 >> 32) + (mid >> 32);
  uint32_t low_nonzero = (static_cast<uint32_t>(mid) | static_cast<uint32_t>(p00)) != 0;
  return high | low_nonzero;
}

template <typename U> U product_sig(U ma, U mb);

// Both significands lifted to bit 63: the high half of the product lands at bit 62 or 63.
template <> uint64_t product_sig<uint64_t>(uint64_t ma, uint64_t mb) {
  return mul_high_jam(ma << 11, mb << 11);
}

template <> uint32_t product_sig<uint32_t>(uint32_t ma, uint32_t mb) {
  uint64_t p = static_cast<uint64_t>(ma << 8) * (mb << 8);
  return static_cast<uint32_t>(p >> 32) | (static_cast<uint32_t>(p) != 0);
}

template <typename U> U mul(U a, U b) {
  using T = Traits<U>;
  uint32_t ea = T::exp(a), eb = T::exp(b);
  if (ea == T::kExpMax || eb == T::kExpMax)
    return naninf<U>(a, b, Op::mul);
  U sign = T::sign(a ^ b);
  if (ea == 0 || eb == 0)
    return sign;
  U p = product_sig<U>(T::sig(a), T::sig(b));
  int32_t exp = static_cast<int32_t>(ea + eb) - T::kBias;
  if (p >> (T::kLead + 1)) {
    p = shift_right_jam<U>(p, 1);
    ++exp;
  }
  return round_pack<U>(sign, exp, p);
}

} // namespace

uint64_t dmul(uint64_t a, uint64_t b) { return mul<uint64_t>(a, b); }
uint32_t fmul(uint32_t a, uint32_t b) { return mul<uint32_t>(a, b); }

} // namespace kv::fp

// The exported _dmul is in mul_fast.S; this is its path for everything else.
extern "C" __attribute__((visibility("hidden"))) uint64_t __kv_fp_dmul(uint64_t a, uint64_t b) {
  return kv::fp::dmul(a, b);
}
#ifndef __arm__
// Hosts without the assembly (the native tests) export the portable body itself.
KV_FP_BINARY(_dmul, double, kv::fp::dmul)
#endif
// Likewise _fmul in float_fast.S.
extern "C" __attribute__((visibility("hidden"))) uint32_t __kv_fp_fmul(uint32_t a, uint32_t b) {
  return kv::fp::fmul(a, b);
}
#ifndef __arm__
KV_FP_BINARY(_fmul, float, kv::fp::fmul)
KV_ALIAS(protected, float, __aeabi_fmul, (float, float), _fmul);
#endif
