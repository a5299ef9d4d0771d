// Division: the quotient significand from a reciprocal estimate, made exact by one remainder
// check, with a non-zero remainder as the sticky bit.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/reciprocal.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

// High 64 bits of a * b, less at most 3 (the carries out of the low words are not formed).
inline uint64_t mul_high_approx(uint64_t a, uint64_t b) {
  uint32_t a0 = static_cast<uint32_t>(a), a1 = static_cast<uint32_t>(a >> 32);
  uint32_t b0 = static_cast<uint32_t>(b), b1 = static_cast<uint32_t>(b >> 32);
  uint64_t mid = (static_cast<uint64_t>(a0) * b1 >> 32) + (static_cast<uint64_t>(a1) * b0 >> 32);
  return static_cast<uint64_t>(a1) * b1 + mid;
}

// ma in [mb, 2 mb), mb with its leading one at kFracBits: floor(ma / mb) to two places below the
// last one (kFracBits + 2 bits), placed with its leading one at kLead, and the sticky bit.
template <typename U> U quotient_sig(U ma, U mb);

template <> uint64_t quotient_sig<uint64_t>(uint64_t ma, uint64_t mb) {
  // r ~ 2^84 / mb to 2^-29; one more Newton-Raphson step in 64 bits gives R ~ 2^115 / mb,
  // below it by less than 2^-56 of its value (the neglected square of the error and the
  // truncations all shrink it).
  uint32_t r = recip32(static_cast<uint32_t>(mb >> 21));
  auto error = static_cast<int64_t>(0 - mb * r); // 2^84 - mb r, small
  auto e = static_cast<int32_t>(error >> 25);
  uint64_t big = (static_cast<uint64_t>(r) << 31) +
                 static_cast<uint64_t>(static_cast<int64_t>(r) * e >> 28);
  // q = floor(ma 2^53 / mb) or one less: the estimate, formed with 8 more bits so that the
  // product's lost carries do not count, is below the quotient by less than a tenth of a unit.
  uint64_t q = mul_high_approx(ma << 10, big) >> 8;
  uint64_t rem = (ma << 53) - q * mb;
  if (rem >= mb) {
    ++q;
    rem -= mb;
  }
  return q << 9 | (rem != 0);
}

template <> uint32_t quotient_sig<uint32_t>(uint32_t ma, uint32_t mb) {
  // r ~ 2^55 / mb to 2^-29, so q = floor(ma 2^24 / mb) or one less.
  uint32_t r = recip32(mb << 8);
  auto q = static_cast<uint32_t>(static_cast<uint64_t>(ma) * r >> 31);
  uint32_t rem = (ma << 24) - q * mb;
  if (rem >= mb) {
    ++q;
    rem -= mb;
  }
  return q << 6 | (rem != 0);
}

template <typename U> U div(U a, U b) {
  using T = Traits<U>;
  uint32_t ea = T::exp(a), eb = T::exp(b);
  if (ea == T::kExpMax || eb == T::kExpMax)
    return naninf<U>(a, b, Op::div);
  U sign = T::sign(a ^ b);
  if (eb == 0)
    return ea == 0 ? T::kDefaultNaN : sign | T::kInf;
  if (ea == 0)
    return sign;
  U ma = T::sig(a), mb = T::sig(b);
  int32_t exp = static_cast<int32_t>(ea) - static_cast<int32_t>(eb) + T::kBias;
  if (ma < mb) {
    ma <<= 1;
    --exp;
  }
  return round_pack<U>(sign, exp, quotient_sig<U>(ma, mb));
}

} // namespace

uint64_t ddiv(uint64_t a, uint64_t b) { return div<uint64_t>(a, b); }
uint32_t fdiv(uint32_t a, uint32_t b) { return div<uint32_t>(a, b); }

} // namespace kv::fp

KV_FP_BINARY(_ddiv, double, kv::fp::ddiv)
KV_FUNCTION(protected, double, _drdiv, (double a, double b)) {
  return kv::fp::as_double(kv::fp::ddiv(kv::fp::bits(b), kv::fp::bits(a)));
}
KV_ALIAS(protected, double, __aeabi_ddiv, (double, double), _ddiv);
KV_ALIAS(protected, double, __aeabi_drdiv, (double, double), _drdiv);

// The exported _fdiv is in float_fast.S; this is its path for everything else.
extern "C" __attribute__((visibility("hidden"))) uint32_t __kv_fp_fdiv(uint32_t a, uint32_t b) {
  return kv::fp::fdiv(a, b);
}
#ifndef __arm__
// Hosts without the assembly (the native tests) export the portable body itself.
KV_FP_BINARY(_fdiv, float, kv::fp::fdiv)
#endif
KV_FUNCTION(protected, float, _frdiv, (float a, float b)) {
  return kv::fp::as_float(kv::fp::fdiv(kv::fp::bits(b), kv::fp::bits(a)));
}
#ifndef __arm__
KV_ALIAS(protected, float, __aeabi_fdiv, (float, float), _fdiv);
#endif
KV_ALIAS(protected, float, __aeabi_frdiv, (float, float), _frdiv);
