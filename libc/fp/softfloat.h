// The arithmetic cores on raw encodings (double as uint64_t, float as uint32_t). The exported
// names wrap these; the native tests call them directly.
#pragma once

#include <stdint.h>

namespace kv::fp {

uint64_t dadd(uint64_t a, uint64_t b);
uint64_t dsub(uint64_t a, uint64_t b);
uint64_t dmul(uint64_t a, uint64_t b);
uint64_t ddiv(uint64_t a, uint64_t b);
uint64_t drem(uint64_t a, uint64_t b);
uint64_t dsqrt(uint64_t a);
uint64_t drnd(uint64_t a);
uint64_t dnextafter(uint64_t a, uint64_t b);
uint64_t dscalbn(uint64_t a, int32_t n);

uint32_t fadd(uint32_t a, uint32_t b);
uint32_t fsub(uint32_t a, uint32_t b);
uint32_t fmul(uint32_t a, uint32_t b);
uint32_t fdiv(uint32_t a, uint32_t b);
uint32_t frem(uint32_t a, uint32_t b);
uint32_t fsqrt(uint32_t a);
uint32_t frnd(uint32_t a);
uint32_t fnextafter(uint32_t a, uint32_t b);
uint32_t fscalbn(uint32_t a, int32_t n);

// Comparison as the processor flags word (N, Z, C, V in bits 31..28).
constexpr uint32_t kLess = 0x80000000u;
constexpr uint32_t kEqual = 0x60000000u;
constexpr uint32_t kGreater = 0x20000000u;
constexpr uint32_t kUnordered = 0x30000000u;
uint32_t dcmp(uint64_t a, uint64_t b);
uint32_t fcmp(uint32_t a, uint32_t b);

uint64_t d_from_f(uint32_t a);
uint32_t f_from_d(uint64_t a);

// To integers: truncating, or rounding to nearest when round is set.
int32_t d_to_i32(uint64_t a, bool round);
uint32_t d_to_u32(uint64_t a, bool round);
int64_t d_to_i64(uint64_t a, bool round);
uint64_t d_to_u64(uint64_t a, bool round);
int32_t f_to_i32(uint32_t a, bool round);
uint32_t f_to_u32(uint32_t a, bool round);
int64_t f_to_i64(uint32_t a, bool round);
uint64_t f_to_u64(uint32_t a, bool round);

uint64_t d_from_magnitude(bool negative, uint64_t mag);
uint32_t f_from_magnitude(bool negative, uint64_t mag);
uint64_t d_from_i64(int64_t v);
uint64_t d_from_u64(uint64_t v);
uint32_t f_from_i64(int64_t v);
uint32_t f_from_u64(uint64_t v);
uint64_t d_from_i32(int32_t v);
uint64_t d_from_u32(uint32_t v);
uint32_t f_from_i32(int32_t v);
uint32_t f_from_u32(uint32_t v);

} // namespace kv::fp
