// Between the formats and 32/64-bit integers. To integers: truncation or nearest-even, NaN gives
// 0; signed results saturate by sign; unsigned results saturate to all ones from 2^width up and
// to 0 for negative values of that magnitude, while smaller negative values give their
// magnitude. From integers: exact or rounded once.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

// The magnitude of a finite value as an integer, when its integral part has fewer than
// `width` bits; *fits is cleared when it has more. Rounding may carry into bit `width`.
template <typename U> uint64_t magnitude(U a, bool round, uint32_t width, bool *fits) {
  using T = Traits<U>;
  *fits = true;
  int32_t e = static_cast<int32_t>(T::exp(a)) - T::kBias;
  if (T::exp(a) == 0 || e < -1)
    return 0;
  if (e >= static_cast<int32_t>(width)) {
    *fits = false;
    return 0;
  }
  uint64_t m = T::sig(a);
  if (e >= T::kFracBits)
    return m << (e - T::kFracBits);
  uint32_t shift = static_cast<uint32_t>(T::kFracBits - e);
  uint64_t whole = m >> shift;
  if (round) {
    uint64_t rest = m & ((uint64_t(1) << shift) - 1), half = uint64_t(1) << (shift - 1);
    if (rest > half || (rest == half && (whole & 1)))
      ++whole;
  }
  return whole;
}

template <typename U, typename R> R to_signed(U a, bool round) {
  using T = Traits<U>;
  constexpr uint32_t width = sizeof(R) * 8;
  constexpr uint64_t limit = uint64_t(1) << (width - 1);
  if (T::is_nan(a))
    return 0;
  bool fits;
  uint64_t mag = magnitude<U>(a, round, width - 1, &fits);
  if (T::sign(a)) {
    if (!fits || mag >= limit)
      return static_cast<R>(limit);
    return static_cast<R>(0 - mag);
  }
  if (!fits || mag >= limit)
    return static_cast<R>(limit - 1);
  return static_cast<R>(mag);
}

template <typename U, typename R> R to_unsigned(U a, bool round) {
  using T = Traits<U>;
  constexpr uint32_t width = sizeof(R) * 8;
  if (T::is_nan(a))
    return 0;
  bool fits;
  uint64_t mag = magnitude<U>(a, round, width, &fits);
  if (!fits || (width < 64 && mag >> (width & 63)))
    return T::sign(a) ? 0 : static_cast<R>(~R(0));
  return static_cast<R>(mag);
}

template <typename U> U from_integer(bool negative, uint64_t mag) {
  using T = Traits<U>;
  U sign = negative ? T::kSign : 0;
  if (mag == 0)
    return 0;
  int lz = clz(mag);
  int32_t exp = T::kBias + 63 - lz;
  mag <<= lz;
  if constexpr (sizeof(U) == 8)
    return round_pack<U>(sign, exp, shift_right_jam<uint64_t>(mag, 1));
  else
    return round_pack<U>(sign, exp,
                         static_cast<uint32_t>(mag >> 33) | ((mag & ((uint64_t(1) << 33) - 1)) != 0));
}

uint64_t abs64(int64_t v) { return v < 0 ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v); }

} // namespace

int32_t d_to_i32(uint64_t a, bool round) { return to_signed<uint64_t, int32_t>(a, round); }
uint32_t d_to_u32(uint64_t a, bool round) { return to_unsigned<uint64_t, uint32_t>(a, round); }
int64_t d_to_i64(uint64_t a, bool round) { return to_signed<uint64_t, int64_t>(a, round); }
uint64_t d_to_u64(uint64_t a, bool round) { return to_unsigned<uint64_t, uint64_t>(a, round); }
int32_t f_to_i32(uint32_t a, bool round) { return to_signed<uint32_t, int32_t>(a, round); }
uint32_t f_to_u32(uint32_t a, bool round) { return to_unsigned<uint32_t, uint32_t>(a, round); }
int64_t f_to_i64(uint32_t a, bool round) { return to_signed<uint32_t, int64_t>(a, round); }
uint64_t f_to_u64(uint32_t a, bool round) { return to_unsigned<uint32_t, uint64_t>(a, round); }

uint64_t d_from_magnitude(bool negative, uint64_t mag) {
  return from_integer<uint64_t>(negative, mag);
}
uint32_t f_from_magnitude(bool negative, uint64_t mag) {
  return from_integer<uint32_t>(negative, mag);
}
uint64_t d_from_i64(int64_t v) { return from_integer<uint64_t>(v < 0, abs64(v)); }
uint64_t d_from_u64(uint64_t v) { return from_integer<uint64_t>(false, v); }
uint32_t f_from_i64(int64_t v) { return from_integer<uint32_t>(v < 0, abs64(v)); }
uint32_t f_from_u64(uint64_t v) { return from_integer<uint32_t>(false, v); }
uint64_t d_from_i32(int32_t v) { return d_from_i64(v); }
uint64_t d_from_u32(uint32_t v) { return d_from_u64(v); }
uint32_t f_from_i32(int32_t v) { return f_from_i64(v); }
uint32_t f_from_u32(uint32_t v) { return f_from_u64(v); }

} // namespace kv::fp

#define KV_FP_TO_INT(name, from, to, core, round)                                                 \
  KV_FUNCTION(protected, to, name, (from a)) { return kv::fp::core(kv::fp::bits(a), round); }
#define KV_FP_FROM_INT(name, from, to, core)                                                      \
  KV_FUNCTION(protected, to, name, (from v)) { return __builtin_bit_cast(to, kv::fp::core(v)); }

// _dfix and _dflt (and their EABI names) are in convert_fast.S; these are _dfix's path for what
// it leaves, and the portable bodies themselves where the assembly is not built.
extern "C" __attribute__((visibility("hidden"))) int32_t __kv_fp_dfix(uint64_t a) {
  return kv::fp::d_to_i32(a, false);
}
#ifndef __arm__
KV_FP_TO_INT(_dfix, double, int32_t, d_to_i32, false)
KV_FP_FROM_INT(_dflt, int32_t, double, d_from_i32)
#endif
KV_FP_TO_INT(_dfixu, double, uint32_t, d_to_u32, false)
KV_FP_TO_INT(_dfix_r, double, int32_t, d_to_i32, true)
KV_FP_TO_INT(_dfixu_r, double, uint32_t, d_to_u32, true)
KV_FP_TO_INT(_ll_sfrom_d, double, int64_t, d_to_i64, false)
KV_FP_TO_INT(_ll_ufrom_d, double, uint64_t, d_to_u64, false)
KV_FP_TO_INT(_ll_sfrom_d_r, double, int64_t, d_to_i64, true)
KV_FP_TO_INT(_ll_ufrom_d_r, double, uint64_t, d_to_u64, true)
KV_ALIAS(protected, uint32_t, __aeabi_d2uiz, (double), _dfixu);
KV_ALIAS(protected, int64_t, __aeabi_d2lz, (double), _ll_sfrom_d);
KV_ALIAS(protected, uint64_t, __aeabi_d2ulz, (double), _ll_ufrom_d);

KV_FP_TO_INT(_ffix, float, int32_t, f_to_i32, false)
KV_FP_TO_INT(_ffixu, float, uint32_t, f_to_u32, false)
KV_FP_TO_INT(_ffix_r, float, int32_t, f_to_i32, true)
KV_FP_TO_INT(_ffixu_r, float, uint32_t, f_to_u32, true)
KV_FP_TO_INT(_ll_sfrom_f, float, int64_t, f_to_i64, false)
KV_FP_TO_INT(_ll_ufrom_f, float, uint64_t, f_to_u64, false)
KV_FP_TO_INT(_ll_sfrom_f_r, float, int64_t, f_to_i64, true)
KV_FP_TO_INT(_ll_ufrom_f_r, float, uint64_t, f_to_u64, true)
KV_ALIAS(protected, int32_t, __aeabi_f2iz, (float), _ffix);
KV_ALIAS(protected, uint32_t, __aeabi_f2uiz, (float), _ffixu);
KV_ALIAS(protected, int64_t, __aeabi_f2lz, (float), _ll_sfrom_f);
KV_ALIAS(protected, uint64_t, __aeabi_f2ulz, (float), _ll_ufrom_f);

KV_FP_FROM_INT(_dfltu, uint32_t, double, d_from_u32)
KV_FP_FROM_INT(_ll_sto_d, int64_t, double, d_from_i64)
KV_FP_FROM_INT(_ll_uto_d, uint64_t, double, d_from_u64)
KV_ALIAS(protected, double, __aeabi_ui2d, (uint32_t), _dfltu);
KV_ALIAS(protected, double, __aeabi_l2d, (int64_t), _ll_sto_d);
KV_ALIAS(protected, double, __aeabi_ul2d, (uint64_t), _ll_uto_d);

KV_FP_FROM_INT(_fflt, int32_t, float, f_from_i32)
KV_FP_FROM_INT(_ffltu, uint32_t, float, f_from_u32)
KV_FP_FROM_INT(_ll_sto_f, int64_t, float, f_from_i64)
KV_FP_FROM_INT(_ll_uto_f, uint64_t, float, f_from_u64)
KV_ALIAS(protected, float, __aeabi_i2f, (int32_t), _fflt);
KV_ALIAS(protected, float, __aeabi_ui2f, (uint32_t), _ffltu);
KV_ALIAS(protected, float, __aeabi_l2f, (int64_t), _ll_sto_f);
KV_ALIAS(protected, float, __aeabi_ul2f, (uint64_t), _ll_uto_f);
