// The two binary formats as integers, and the rules every operation shares: operands with a zero
// exponent field are zeros, results below the normal range are zeros, NaN results are quiet, and
// all rounding (nearest, ties to even) happens in round_pack. Pure: the native tests build it too.
#pragma once

#include <stdint.h>

namespace kv::fp {

template <typename U> struct Format;

template <> struct Format<uint64_t> {
  using S = int64_t;
  static constexpr int kBits = 64;
  static constexpr int kFracBits = 52;
  static constexpr int kBias = 1023;
  static constexpr uint32_t kExpMax = 0x7ff;
};

template <> struct Format<uint32_t> {
  using S = int32_t;
  static constexpr int kBits = 32;
  static constexpr int kFracBits = 23;
  static constexpr int kBias = 127;
  static constexpr uint32_t kExpMax = 0xff;
};

template <typename U> struct Traits : Format<U> {
  using F = Format<U>;
  static constexpr U kSign = U(1) << (F::kBits - 1);
  static constexpr U kFracMask = (U(1) << F::kFracBits) - 1;
  static constexpr U kImplicit = U(1) << F::kFracBits;
  static constexpr U kInf = U(F::kExpMax) << F::kFracBits;
  static constexpr U kQuiet = U(1) << (F::kFracBits - 1);
  static constexpr U kDefaultNaN = kInf | kQuiet;
  // Working significands keep their leading one at this bit, leaving one spare bit above it for
  // carries and kExtra bits below the last place for rounding.
  static constexpr int kLead = F::kBits - 2;
  static constexpr int kExtra = kLead - F::kFracBits;

  static uint32_t exp(U a) { return static_cast<uint32_t>(a >> F::kFracBits) & F::kExpMax; }
  static U sign(U a) { return a & kSign; }
  static U abs(U a) { return a & ~kSign; }
  static bool is_nan(U a) { return abs(a) > kInf; }
  static bool is_inf(U a) { return abs(a) == kInf; }
  // The significand with its implicit bit.
  static U sig(U a) { return (a & kFracMask) | kImplicit; }
  // What an operand counts as: a zero exponent field is a zero of that sign.
  static U flush(U a) { return exp(a) == 0 ? sign(a) : a; }
  static U quiet(U a) { return a | kQuiet; }
};

using D = Traits<uint64_t>;
using Fl = Traits<uint32_t>;

inline int clz(uint32_t v) { return __builtin_clz(v); }
inline int clz(uint64_t v) { return __builtin_clzll(v); }

// Right shift that ORs every bit shifted out into bit 0.
template <typename U> inline U shift_right_jam(U v, uint32_t n) {
  constexpr uint32_t w = sizeof(U) * 8;
  if (n == 0)
    return v;
  if (n >= w)
    return v != 0;
  return (v >> n) | ((v << (w - n)) != 0);
}

// sig has its leading one at kLead (or is a carry-free value just below 2^(kLead+1) after
// rounding); exp is the biased exponent of that leading bit. A value below the normal range is
// recognised before rounding and becomes a zero of the sign; one beyond it, an infinity.
template <typename U> inline U round_pack(U sign, int32_t exp, U sig) {
  using T = Traits<U>;
  if (exp <= 0)
    return sign;
  if (exp >= static_cast<int32_t>(T::kExpMax))
    return sign | T::kInf;
  constexpr U half = U(1) << (T::kExtra - 1);
  U rest = sig & ((U(1) << T::kExtra) - 1);
  sig >>= T::kExtra;
  if (rest > half || (rest == half && (sig & 1)))
    ++sig;
  // The implicit bit adds one to the exponent field; a carry out of rounding adds the other.
  U packed = (static_cast<U>(exp - 1) << T::kFracBits) + sig;
  if (packed >= T::kInf)
    return sign | T::kInf;
  return sign | packed;
}

// A magnitude of any width whose top set bit is known; normalised to kLead and rounded.
template <typename U> inline U normalise_round(U sign, int32_t exp_of_bit0, U mag) {
  using T = Traits<U>;
  if (mag == 0)
    return sign;
  int lz = clz(mag);
  int32_t exp = exp_of_bit0 + (T::kBits - 1 - lz);
  if (lz == 0)
    mag = shift_right_jam(mag, 1);
  else
    mag <<= lz - 1;
  return round_pack<U>(sign, exp, mag);
}

// What an operation gives when an operand has an all-ones exponent field.
enum class Op : uint32_t { add, mul, div, rem };

template <typename U> inline U naninf(U a, U b, Op op) {
  using T = Traits<U>;
  if (T::is_nan(a))
    return T::quiet(a);
  if (T::is_nan(b))
    return T::quiet(b);
  U sign = T::sign(a ^ b);
  switch (op) {
  case Op::add:
    if (T::is_inf(a))
      return T::is_inf(b) && sign ? T::kDefaultNaN : a;
    return b;
  case Op::mul:
    if (T::exp(a) == 0 || T::exp(b) == 0)
      return T::kDefaultNaN;
    return sign | T::kInf;
  case Op::div:
    if (T::is_inf(a))
      return T::is_inf(b) ? T::kDefaultNaN : sign | T::kInf;
    return sign;
  case Op::rem:
    if (T::is_inf(a))
      return T::kDefaultNaN;
    return T::flush(a);
  }
  return T::kDefaultNaN;
}

} // namespace kv::fp
