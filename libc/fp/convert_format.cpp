// Between the two formats: widening is exact, narrowing rounds once.
#include "fp/format.h"
#include "fp/entry.h"
#include "fp/softfloat.h"

namespace kv::fp {

uint64_t d_from_f(uint32_t a) {
  uint64_t sign = static_cast<uint64_t>(Fl::sign(a)) << 32;
  uint32_t e = Fl::exp(a);
  uint64_t frac = static_cast<uint64_t>(a & Fl::kFracMask) << (D::kFracBits - Fl::kFracBits);
  if (e == 0)
    return sign;
  if (e == Fl::kExpMax)
    return sign | D::kInf | frac | (Fl::is_nan(a) ? D::kQuiet : 0);
  return sign | static_cast<uint64_t>(e - Fl::kBias + D::kBias) << D::kFracBits | frac;
}

uint32_t f_from_d(uint64_t a) {
  uint32_t sign = static_cast<uint32_t>(D::sign(a) >> 32);
  uint32_t e = D::exp(a);
  if (e == D::kExpMax) {
    if (!D::is_nan(a))
      return sign | Fl::kInf;
    return sign | Fl::kInf | Fl::kQuiet |
           static_cast<uint32_t>((a & D::kFracMask) >> (D::kFracBits - Fl::kFracBits));
  }
  if (e == 0)
    return sign;
  // Leading one at bit 62, then the low half jammed into the float working significand.
  uint64_t m = D::sig(a) << D::kExtra;
  uint32_t sig = static_cast<uint32_t>(m >> 32) | (static_cast<uint32_t>(m) != 0);
  return round_pack<uint32_t>(sign, static_cast<int32_t>(e) - D::kBias + Fl::kBias, sig);
}

} // namespace kv::fp

// The exported _f2d and _d2f are in convert_fast.S; these are their paths for what they leave.
extern "C" __attribute__((visibility("hidden"))) uint64_t __kv_fp_f2d(uint32_t a) {
  return kv::fp::d_from_f(a);
}
extern "C" __attribute__((visibility("hidden"))) uint32_t __kv_fp_d2f(uint64_t a) {
  return kv::fp::f_from_d(a);
}
#ifndef __arm__
// Hosts without the assembly (the native tests) export the portable bodies themselves.
KV_FUNCTION(protected, double, _f2d, (float a)) {
  return kv::fp::as_double(kv::fp::d_from_f(kv::fp::bits(a)));
}
KV_FUNCTION(protected, float, _d2f, (double a)) {
  return kv::fp::as_float(kv::fp::f_from_d(kv::fp::bits(a)));
}
#endif
