// The shared special-value routines as exported entries. The operations reach the same rules
// inline (format.h); these serve callers that have already classified their operands.
#include "fp/entry.h"
#include "fp/format.h"
#include "fp/softfloat.h"

// op: 0 add, 1 multiply, 2 divide, 3 remainder; for a subtraction pass b negated.
KV_FUNCTION(protected, double, __fpl_dnaninf, (double a, double b, uint32_t op)) {
  return kv::fp::as_double(
      kv::fp::naninf<uint64_t>(kv::fp::bits(a), kv::fp::bits(b), static_cast<kv::fp::Op>(op & 3)));
}
KV_FUNCTION(protected, float, __fpl_fnaninf, (float a, float b, uint32_t op)) {
  return kv::fp::as_float(
      kv::fp::naninf<uint32_t>(kv::fp::bits(a), kv::fp::bits(b), static_cast<kv::fp::Op>(op & 3)));
}

// An infinity with the sign of bit 31 of the word.
KV_FUNCTION(protected, double, __fpl_dretinf, (uint32_t sign)) {
  return kv::fp::as_double(static_cast<uint64_t>(sign & 0x80000000u) << 32 | kv::fp::D::kInf);
}
KV_FUNCTION(protected, float, __fpl_fretinf, (uint32_t sign)) {
  return kv::fp::as_float((sign & 0x80000000u) | kv::fp::Fl::kInf);
}

// Comparisons with an infinite or NaN operand: the four-way flags word, and the <= test.
KV_FUNCTION(protected, uint32_t, __fpl_dcmp_Inf, (double a, double b)) {
  return kv::fp::dcmp(kv::fp::bits(a), kv::fp::bits(b));
}
KV_FUNCTION(protected, uint32_t, __fpl_fcmp_Inf, (float a, float b)) {
  return kv::fp::fcmp(kv::fp::bits(a), kv::fp::bits(b));
}
KV_FUNCTION(protected, int, __fpl_dcmple_InfNaN, (double a, double b)) {
  uint32_t flags = kv::fp::dcmp(kv::fp::bits(a), kv::fp::bits(b));
  return flags == kv::fp::kLess || flags == kv::fp::kEqual;
}
KV_FUNCTION(protected, int, __fpl_fcmple_InfNaN, (float a, float b)) {
  uint32_t flags = kv::fp::fcmp(kv::fp::bits(a), kv::fp::bits(b));
  return flags == kv::fp::kLess || flags == kv::fp::kEqual;
}

// A sign and a 64-bit magnitude, normalised and rounded.
KV_FUNCTION(protected, double, __dflt_normalise, (uint32_t negative, uint64_t magnitude)) {
  return kv::fp::as_double(kv::fp::d_from_magnitude(negative != 0, magnitude));
}
KV_FUNCTION(protected, float, __fflt_normalise, (uint32_t negative, uint64_t magnitude)) {
  return kv::fp::as_float(kv::fp::f_from_magnitude(negative != 0, magnitude));
}
