// Guest instructions per call of the soft-float routines, on finite normal random operands:
//   fp OP N        N calls of OP, cycling through 256 prepared argument sets
//   fp empty:OP N  the same loop and arguments around an empty function (calibration)
// The per-call figure is (count(OP) - count(empty:OP)) / N + 1, as in bench/runtime.cpp.
//
// Built twice: against this library (the EABI entries compiled code calls; _dsqrt and _fsqrt
// for the roots), and with -DKV_BENCH_PEER against a compiler run-time's helpers and a peer
// mathematical library's sqrt and sqrtf, with the same inputs.
#include <stdint.h>

#include "word_calls.h"

extern "C" {
void __aeabi_dadd(void);
void __aeabi_dsub(void);
void __aeabi_dmul(void);
void __aeabi_ddiv(void);
void __aeabi_dcmplt(void);
void __aeabi_cdcmple(void);
void __aeabi_fcmplt(void);
void __aeabi_cfcmple(void);
void __aeabi_d2iz(void);
void __aeabi_i2d(void);
void __aeabi_d2f(void);
void __aeabi_f2d(void);
void __aeabi_fadd(void);
void __aeabi_fmul(void);
void __aeabi_fdiv(void);
#ifdef KV_BENCH_PEER
double sqrt(double);
float sqrtf(float);
#define KV_DSQRT sqrt
#define KV_FSQRT sqrtf
#else
double _dsqrt(double);
float _fsqrt(float);
#define KV_DSQRT _dsqrt
#define KV_FSQRT _fsqrt
#endif
}

namespace {

uint64_t state = 0x243F6A8885A308D3ull;
uint64_t rnd() {
  state ^= state >> 12;
  state ^= state << 25;
  state ^= state >> 27;
  return state * 0x2545F4914F6CDD1Dull;
}

// A double of random sign and significand with a binary exponent in [lo, hi].
uint64_t rnd_double(int lo, int hi, bool positive) {
  uint64_t r = rnd();
  uint64_t e = static_cast<uint64_t>(1023 + lo + static_cast<int>((r >> 53) % (hi - lo + 1)));
  uint64_t sign = positive ? 0 : r & 1ull << 63;
  return sign | e << 52 | (rnd() >> 12);
}
uint32_t rnd_float(int lo, int hi, bool positive) {
  uint64_t r = rnd();
  uint32_t e = static_cast<uint32_t>(127 + lo + static_cast<int>((r >> 40) % (hi - lo + 1)));
  uint32_t sign = positive ? 0 : static_cast<uint32_t>(r >> 32) & 0x80000000u;
  return sign | e << 23 | (static_cast<uint32_t>(r) >> 9);
}

const void *fn(void (*f)()) { return reinterpret_cast<const void *>(f); }

// Two doubles per set; exponents close enough that the smaller operand still counts.
void doubles(int lo, int hi, bool positive) {
  for (Args &t : table) {
    uint64_t a = rnd_double(lo, hi, positive), b = rnd_double(lo, hi, positive);
    t = {{static_cast<uint32_t>(a), static_cast<uint32_t>(a >> 32), static_cast<uint32_t>(b),
          static_cast<uint32_t>(b >> 32)}};
  }
}
void floats(int lo, int hi, bool positive) {
  for (Args &t : table)
    t = {{rnd_float(lo, hi, positive), rnd_float(lo, hi, positive), 0, 0}};
}

const void *prepare(const char *op) {
  if (same(op, "dadd"))
    return doubles(-20, 20, false), fn(__aeabi_dadd);
  if (same(op, "dsub"))
    return doubles(-20, 20, false), fn(__aeabi_dsub);
  if (same(op, "dmul"))
    return doubles(-100, 100, false), fn(__aeabi_dmul);
  if (same(op, "ddiv"))
    return doubles(-100, 100, false), fn(__aeabi_ddiv);
  if (same(op, "dsqrt"))
    return doubles(-100, 100, true), reinterpret_cast<const void *>(KV_DSQRT);
  if (same(op, "dcmplt"))
    return doubles(-4, 4, false), fn(__aeabi_dcmplt);
  if (same(op, "cdcmple"))
    return doubles(-4, 4, false), fn(__aeabi_cdcmple);
  if (same(op, "fcmplt"))
    return floats(-4, 4, false), fn(__aeabi_fcmplt);
  if (same(op, "cfcmple"))
    return floats(-4, 4, false), fn(__aeabi_cfcmple);
  if (same(op, "d2iz"))
    return doubles(-4, 30, false), fn(__aeabi_d2iz);
  if (same(op, "i2d")) {
    for (Args &t : table) {
      uint64_t r = rnd();
      t = {{static_cast<uint32_t>(r) >> (r >> 59), 0, 0, 0}};
      if (r & 1ull << 40)
        t.a[0] = 0 - t.a[0];
    }
    return fn(__aeabi_i2d);
  }
  if (same(op, "d2f"))
    return doubles(-100, 100, false), fn(__aeabi_d2f);
  if (same(op, "f2d"))
    return floats(-100, 100, false), fn(__aeabi_f2d);
  if (same(op, "fadd"))
    return floats(-10, 10, false), fn(__aeabi_fadd);
  if (same(op, "fmul"))
    return floats(-30, 30, false), fn(__aeabi_fmul);
  if (same(op, "fdiv"))
    return floats(-30, 30, false), fn(__aeabi_fdiv);
  if (same(op, "fsqrt"))
    return floats(-30, 30, true), reinterpret_cast<const void *>(KV_FSQRT);
  return nullptr;
}

} // namespace

int main(int argc, char **argv) { return run_word_calls(argc, argv, prepare); }
