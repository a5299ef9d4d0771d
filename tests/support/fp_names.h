// The soft-float entries as programs declare them (guest tests and the native build alike).
#pragma once

#include <stdint.h>

extern "C" {
double _dadd(double, double);
double _dsub(double, double);
double _drsb(double, double);
double _dmul(double, double);
double _ddiv(double, double);
double _drdiv(double, double);
double _drem(double, double);
double _dsqrt(double);
double _drnd(double);
float _fadd(float, float);
float _fsub(float, float);
float _frsb(float, float);
float _fmul(float, float);
float _fdiv(float, float);
float _frdiv(float, float);
float _frem(float, float);
float _fsqrt(float);
float _frnd(float);
int _deq(double, double);
int _dneq(double, double);
int _dgr(double, double);
int _dgeq(double, double);
int _dleq(double, double);
int _dls(double, double);
int _dun(double, double);
int _feq(float, float);
int _fneq(float, float);
int _fun(float, float);
int _fls(float, float);
int _fleq(float, float);
int _fgr(float, float);
int _fgeq(float, float);
int32_t _dfix(double);
uint32_t _dfixu(double);
int32_t _dfix_r(double);
uint32_t _dfixu_r(double);
int64_t _ll_sfrom_d(double);
uint64_t _ll_ufrom_d(double);
int64_t _ll_sfrom_d_r(double);
uint64_t _ll_ufrom_d_r(double);
int32_t _ffix(float);
uint32_t _ffixu(float);
int32_t _ffix_r(float);
uint32_t _ffixu_r(float);
int64_t _ll_sfrom_f(float);
uint64_t _ll_ufrom_f(float);
int64_t _ll_sfrom_f_r(float);
uint64_t _ll_ufrom_f_r(float);
double _dflt(int32_t);
double _dfltu(uint32_t);
double _ll_sto_d(int64_t);
double _ll_uto_d(uint64_t);
float _fflt(int32_t);
float _ffltu(uint32_t);
float _ll_sto_f(int64_t);
float _ll_uto_f(uint64_t);
float _d2f(double);
double _f2d(float);
double _nextafter(double, double);
float _nextafterf(float, float);
float __fpl_nextafterf_nexttowardf_internal_entry(float, float);
double __ARM_scalbn(double, int);
float __ARM_scalbnf(float, int);
int __aeabi_d2iz(double);
unsigned __aeabi_d2uiz(double);
long long __aeabi_d2lz(double);
unsigned long long __aeabi_d2ulz(double);
int __aeabi_f2iz(float);
long long __aeabi_f2lz(float);

extern const double __dInf, __huge_val, __aeabi_HUGE_VAL, __aeabi_HUGE_VALL, __aeabi_INFINITY;
extern const double __dNaN, __aeabi_NAN;
extern const float __fInf, __aeabi_HUGE_VALF;
extern const int __fplib_config_pureend_doubles;
extern void *__fpl_invalid_handler, *__fpl_divbyzero_handler, *__fpl_overflow_handler,
    *__fpl_underflow_handler, *__fpl_inexact_handler;
extern uint32_t __fpl_lock;
}

namespace fp_test {

inline uint64_t bits(double v) { return __builtin_bit_cast(uint64_t, v); }
inline uint32_t bits(float v) { return __builtin_bit_cast(uint32_t, v); }
inline double dbl(uint64_t v) { return __builtin_bit_cast(double, v); }
inline float flt(uint32_t v) { return __builtin_bit_cast(float, v); }

constexpr uint64_t kDNaN = 0x7ff8000000000000ull, kDInf = 0x7ff0000000000000ull;
constexpr uint32_t kFNaN = 0x7fc00000u, kFInf = 0x7f800000u;

inline bool is_nan(uint64_t v) { return (v << 1) > (kDInf << 1); }
inline bool is_nan(uint32_t v) { return (v << 1) > (kFInf << 1); }

} // namespace fp_test
