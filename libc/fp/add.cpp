// Addition and subtraction: like signs add magnitudes, unlike signs subtract them.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {
namespace {

template <typename U> U add_magnitudes(U a, U b) {
  using T = Traits<U>;
  if (T::exp(a) == T::kExpMax || T::exp(b) == T::kExpMax)
    return naninf<U>(a, b, Op::add);
  if (T::abs(a) < T::abs(b)) {
    U t = a;
    a = b;
    b = t;
  }
  uint32_t ea = T::exp(a), eb = T::exp(b);
  if (eb == 0)
    return ea == 0 ? T::sign(a) : a;
  // One bit of headroom below kLead for the carry.
  U ma = T::sig(a) << (T::kExtra - 1);
  U mb = shift_right_jam<U>(T::sig(b) << (T::kExtra - 1), ea - eb);
  U sum = ma + mb;
  int32_t exp = static_cast<int32_t>(ea) + 1;
  if (sum < (U(1) << T::kLead)) {
    sum <<= 1;
    --exp;
  }
  return round_pack<U>(T::sign(a), exp, sum);
}

template <typename U> U subtract_magnitudes(U a, U b) {
  using T = Traits<U>;
  if (T::exp(a) == T::kExpMax || T::exp(b) == T::kExpMax)
    return naninf<U>(a, b ^ T::kSign, Op::add);
  U sign = T::sign(a);
  if (T::abs(a) < T::abs(b)) {
    U t = a;
    a = b;
    b = t;
    sign ^= T::kSign;
  }
  uint32_t ea = T::exp(a), eb = T::exp(b);
  // Zeros of opposite signs, and exact cancellation, give +0.
  if (eb == 0)
    return ea == 0 ? 0 : sign | T::abs(a);
  U ma = T::sig(a) << T::kExtra;
  U mb = shift_right_jam<U>(T::sig(b) << T::kExtra, ea - eb);
  U diff = ma - mb;
  if (diff == 0)
    return 0;
  int shift = clz(diff) - 1;
  return round_pack<U>(sign, static_cast<int32_t>(ea) - shift, diff << shift);
}

template <typename U> U add(U a, U b) {
  if ((a ^ b) & Traits<U>::kSign)
    return subtract_magnitudes<U>(a, b ^ Traits<U>::kSign);
  return add_magnitudes<U>(a, b);
}

} // namespace

uint64_t dadd(uint64_t a, uint64_t b) { return add<uint64_t>(a, b); }
uint64_t dsub(uint64_t a, uint64_t b) { return add<uint64_t>(a, b ^ D::kSign); }
uint32_t fadd(uint32_t a, uint32_t b) { return add<uint32_t>(a, b); }
uint32_t fsub(uint32_t a, uint32_t b) { return add<uint32_t>(a, b ^ Fl::kSign); }

} // namespace kv::fp

// The exported _dadd/_dsub are in add_fast.S; this is their path for everything but finite
// normal operands.
extern "C" __attribute__((visibility("hidden"))) uint64_t __kv_fp_dadd(uint64_t a, uint64_t b) {
  return kv::fp::dadd(a, b);
}
#ifndef __arm__
// Hosts without the assembly (the native tests) export the portable body itself.
KV_FP_BINARY(_dadd, double, kv::fp::dadd)
KV_FP_BINARY(_dsub, double, kv::fp::dsub)
#endif
KV_FUNCTION(protected, double, _drsb, (double a, double b)) {
  return kv::fp::as_double(kv::fp::dsub(kv::fp::bits(b), kv::fp::bits(a)));
}
KV_ALIAS(protected, double, __aeabi_drsub, (double, double), _drsb);

// Likewise _fadd/_fsub in float_fast.S.
extern "C" __attribute__((visibility("hidden"))) uint32_t __kv_fp_fadd(uint32_t a, uint32_t b) {
  return kv::fp::fadd(a, b);
}
#ifndef __arm__
KV_FP_BINARY(_fadd, float, kv::fp::fadd)
KV_FP_BINARY(_fsub, float, kv::fp::fsub)
#endif
KV_FUNCTION(protected, float, _frsb, (float a, float b)) {
  return kv::fp::as_float(kv::fp::fsub(kv::fp::bits(b), kv::fp::bits(a)));
}
#ifndef __arm__
KV_ALIAS(protected, float, __aeabi_fadd, (float, float), _fadd);
KV_ALIAS(protected, float, __aeabi_fsub, (float, float), _fsub);
#endif
KV_ALIAS(protected, float, __aeabi_frsub, (float, float), _frsb);
