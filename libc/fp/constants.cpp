// The exported constants, the handler cells (never set or called here: nothing traps) and the
// library's lock word.
#include "fp/entry.h"

KV_VARIABLE(global, const double, __dInf) = __builtin_bit_cast(double, 0x7ff0000000000000ull);
KV_VARIABLE(global, const double, __huge_val) = __builtin_bit_cast(double, 0x7ff0000000000000ull);
KV_VARIABLE(global, const double, __aeabi_HUGE_VAL) =
    __builtin_bit_cast(double, 0x7ff0000000000000ull);
KV_VARIABLE(global, const double, __aeabi_HUGE_VALL) =
    __builtin_bit_cast(double, 0x7ff0000000000000ull);
KV_VARIABLE(global, const double, __aeabi_INFINITY) =
    __builtin_bit_cast(double, 0x7ff0000000000000ull);
KV_VARIABLE(global, const double, __dNaN) = __builtin_bit_cast(double, 0x7ff8000000000000ull);
KV_VARIABLE(global, const double, __aeabi_NAN) = __builtin_bit_cast(double, 0x7ff8000000000000ull);
KV_VARIABLE(global, const float, __fInf) = __builtin_bit_cast(float, 0x7f800000u);
KV_VARIABLE(global, const float, __aeabi_HUGE_VALF) = __builtin_bit_cast(float, 0x7f800000u);

// The words of a double are in the processor's own order (low word first).
KV_VARIABLE(global, const int, __fplib_config_pureend_doubles) = 1;

KV_VARIABLE(global, void *, __fpl_invalid_handler) = nullptr;
KV_VARIABLE(global, void *, __fpl_divbyzero_handler) = nullptr;
KV_VARIABLE(global, void *, __fpl_overflow_handler) = nullptr;
KV_VARIABLE(global, void *, __fpl_underflow_handler) = nullptr;
KV_VARIABLE(global, void *, __fpl_inexact_handler) = nullptr;
KV_VARIABLE(global, uint32_t, __fpl_lock) = 0;
