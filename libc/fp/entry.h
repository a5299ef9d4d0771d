// Exported floating-point entries take and return double/float; the soft-float calling
// convention passes them exactly as the encodings the cores work on.
#pragma once

#include <stdint.h>

#include "support/export.h"

namespace kv::fp {

inline uint64_t bits(double v) { return __builtin_bit_cast(uint64_t, v); }
inline uint32_t bits(float v) { return __builtin_bit_cast(uint32_t, v); }
inline double as_double(uint64_t v) { return __builtin_bit_cast(double, v); }
inline float as_float(uint32_t v) { return __builtin_bit_cast(float, v); }

} // namespace kv::fp

// name(a, b) -> core(a, b) for double and float binary operations.
#define KV_FP_BINARY(name, type, core)                                                            \
  KV_FUNCTION(protected, type, name, (type a, type b)) {                                          \
    return __builtin_bit_cast(type, core(kv::fp::bits(a), kv::fp::bits(b)));                      \
  }
#define KV_FP_UNARY(name, type, core)                                                             \
  KV_FUNCTION(protected, type, name, (type a)) {                                                  \
    return __builtin_bit_cast(type, core(kv::fp::bits(a)));                                       \
  }
