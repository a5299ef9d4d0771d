// Shared pieces of the soft-float differential tests: the host FPU in flush-to-zero mode as the
// reference, and operand generators that favour the cases where rounding code goes wrong.
#pragma once

#include <xmmintrin.h>

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>

namespace fptest {

inline uint64_t bits(double v) { return std::bit_cast<uint64_t>(v); }
inline uint32_t bits(float v) { return std::bit_cast<uint32_t>(v); }
inline double dbl(uint64_t v) { return std::bit_cast<double>(v); }
inline float flt(uint32_t v) { return std::bit_cast<float>(v); }

// Cases per binary operation; KV_FP_CASES raises it (and makes float unary sweeps exhaustive).
inline uint64_t case_count(uint64_t fallback) {
  const char *env = std::getenv("KV_FP_CASES");
  return env ? std::strtoull(env, nullptr, 10) : fallback;
}
inline bool exhaustive() { return std::getenv("KV_FP_CASES") != nullptr; }

// Host arithmetic with subnormal operands read as zero and subnormal results flushed.
class FlushToZero {
public:
  explicit FlushToZero(bool on = true) : saved_(_mm_getcsr()) {
    unsigned csr = saved_ & ~(_MM_ROUND_MASK | _MM_FLUSH_ZERO_MASK | 0x0040u);
    _mm_setcsr(on ? csr | _MM_FLUSH_ZERO_ON | 0x0040u /* DAZ */ : csr);
  }
  ~FlushToZero() { _mm_setcsr(saved_); }

private:
  unsigned saved_;
};

template <typename U> struct Fmt;
template <> struct Fmt<uint64_t> {
  static constexpr int frac = 52, exp_max = 0x7ff, bias = 1023;
};
template <> struct Fmt<uint32_t> {
  static constexpr int frac = 23, exp_max = 0xff, bias = 127;
};

template <typename U> constexpr U sign_bit = U(1) << (sizeof(U) * 8 - 1);
template <typename U> bool is_nan(U v) {
  return (v & ~sign_bit<U>) > (U(Fmt<U>::exp_max) << Fmt<U>::frac);
}
template <typename U> U flush(U v) {
  return (v >> Fmt<U>::frac & Fmt<U>::exp_max) == 0 ? v & sign_bit<U> : v;
}
template <typename U> U make(U sign, uint32_t exp, U frac) {
  return (sign ? sign_bit<U> : 0) | U(exp) << Fmt<U>::frac | (frac & ((U(1) << Fmt<U>::frac) - 1));
}

// Operands: random encodings, exponents at the edges of the range, fractions with long runs of
// ones or zeros (carry chains), and values near small integers and halves.
template <typename U> class Operands {
public:
  explicit Operands(uint64_t seed) : rng_(seed) {}

  U any() {
    using F = Fmt<U>;
    switch (rng_() % 8) {
    case 0:
    case 1:
      return static_cast<U>(rng_());
    case 2:
      return make<U>(rng_() & 1, edge_exp(), fraction());
    case 3:
      return make<U>(rng_() & 1, F::bias - 2 + rng_() % (F::frac + 12), fraction());
    case 4:
      return make<U>(rng_() & 1, F::bias + rng_() % 64, fraction());
    default:
      return make<U>(rng_() & 1, rng_() % (F::exp_max + 1), fraction());
    }
  }

  // A second operand related to the first: close in magnitude (cancellation), shifted by about
  // a significand's width (halfway and sticky cases), or independent.
  U near(U a) {
    using F = Fmt<U>;
    uint32_t ea = a >> F::frac & F::exp_max;
    switch (rng_() % 6) {
    case 0:
      return a + static_cast<U>(static_cast<int>(rng_() % 9) - 4);
    case 1:
      return (a ^ sign_bit<U>) + static_cast<U>(static_cast<int>(rng_() % 9) - 4);
    case 2: {
      int32_t e = static_cast<int32_t>(ea) - static_cast<int32_t>(rng_() % (F::frac + 6));
      return make<U>(rng_() & 1, e < 0 ? 0 : static_cast<uint32_t>(e), fraction());
    }
    default:
      return any();
    }
  }

  U fraction() {
    switch (rng_() % 6) {
    case 0:
      return 0;
    case 1:
      return ~U(0);
    case 2:
      return ~U(0) << (rng_() % (Fmt<U>::frac + 1));
    case 3:
      return ~(~U(0) << (rng_() % (Fmt<U>::frac + 1)));
    case 4:
      return U(1) << (rng_() % Fmt<U>::frac);
    default:
      return static_cast<U>(rng_());
    }
  }

  uint32_t edge_exp() {
    static const int offsets[] = {0, 1, 2, 3, -1, -2, -3};
    int base = (rng_() & 1) ? 0 : Fmt<U>::exp_max;
    int e = base + offsets[rng_() % 7];
    if (e < 0)
      e = -e;
    if (e > Fmt<U>::exp_max)
      e = 2 * Fmt<U>::exp_max - e;
    return static_cast<uint32_t>(e);
  }

  uint64_t raw() { return rng_(); }

private:
  std::mt19937_64 rng_;
};

// The host flushes after rounding (a result that rounds up to the smallest normal survives);
// the library decides before rounding. That one class may differ: the library gives a zero of
// the same sign where the host gives the smallest normal.
template <typename U> bool tiny_class(U ours, U host) {
  U min_normal = U(1) << Fmt<U>::frac;
  return (ours & ~sign_bit<U>) == 0 && (host & ~sign_bit<U>) == min_normal &&
         (ours & sign_bit<U>) == (host & sign_bit<U>);
}

// Same encoding, or both NaN (payloads and NaN signs are not specified).
template <typename U> bool same(U ours, U host) {
  return ours == host || (is_nan(ours) && is_nan(host));
}

} // namespace fptest
