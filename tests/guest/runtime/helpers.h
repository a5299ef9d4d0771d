// The EABI helpers as compiled code sees them: exact prototypes, called through libc.so.
#pragma once

#include <stddef.h>
#include <stdint.h>

extern "C" {
uint32_t __aeabi_uidiv(uint32_t, uint32_t);
int32_t __aeabi_idiv(int32_t, int32_t);
// These return two results in registers; call them through call_regs.
void __aeabi_uidivmod(void);
void __aeabi_idivmod(void);
void __aeabi_uldivmod(void);
void __aeabi_ldivmod(void);

uint64_t __aeabi_llsl(uint64_t, int);
uint64_t __aeabi_llsr(uint64_t, int);
int64_t __aeabi_lasr(int64_t, int);
uint64_t __aeabi_lmul(uint64_t, uint64_t);

void __aeabi_memcpy(void *, const void *, size_t);
void __aeabi_memcpy4(void *, const void *, size_t);
void __aeabi_memcpy8(void *, const void *, size_t);
void __aeabi_memmove(void *, const void *, size_t);
void __aeabi_memmove4(void *, const void *, size_t);
void __aeabi_memmove8(void *, const void *, size_t);
void __aeabi_memset(void *, size_t, int);
void __aeabi_memset4(void *, size_t, int);
void __aeabi_memset8(void *, size_t, int);
void __aeabi_memclr(void *, size_t);
void __aeabi_memclr4(void *, size_t);
void __aeabi_memclr8(void *, size_t);

// The core's own names for the same families.
void __rt_memcpy(void *, const void *, size_t);
void __rt_memcpy_w(void *, const void *, size_t);
void _memcpy_lastbytes(void *, const void *, size_t);
void _memcpy_lastbytes_aligned(void *, const void *, size_t);
void __rt_memmove(void *, const void *, size_t);
void __rt_memmove_w(void *, const void *, size_t);
void __memmove_aligned(void *, const void *, size_t);
// Tails of the backward copy: they take end pointers.
void __memmove_lastfew(void *dst_end, const void *src_end, size_t);
void __memmove_lastfew_aligned(void *dst_end, const void *src_end, size_t);
void __rt_memclr(void *, size_t);
void __rt_memclr_w(void *, size_t);
void _memset(void *, size_t, uint32_t pattern);
void _memset_w(void *, size_t, uint32_t pattern);

void _ll_udiv(void);
void _ll_udiv_donemoving(void);
void _ll_sdiv(void);
void _ll_udiv10(void);
uint64_t __rt_udiv10(uint32_t); // quotient in r0, remainder in r1
uint64_t _ll_mul(uint64_t, uint64_t);
uint64_t _ll_shift_l(uint64_t, int);
uint64_t _ll_ushift_r(uint64_t, int);
int64_t _ll_sshift_r(int64_t, int);
int _ll_ucmp(uint64_t, uint64_t);
int _ll_scmp(int64_t, int64_t);
int __aeabi_lcmp(int64_t, int64_t);
int __aeabi_ulcmp(uint64_t, uint64_t);

uint32_t call_regs(void (*fn)(void), uint32_t out[4], uint32_t a0, uint32_t a1, uint32_t a2,
                   uint32_t a3);
}

namespace rt_test {

struct Regs {
  uint32_t r[4];
  bool preserved;
};

// Calls a two-result helper; r2 and r3 start as marks so that a 32-bit helper that leaves them
// alone is not mistaken for one that writes them.
inline Regs call32(void (*fn)(void), uint32_t n, uint32_t d) {
  Regs out{};
  out.preserved = call_regs(fn, out.r, n, d, 0x22222222u, 0x33333333u) != 0;
  return out;
}

inline Regs call64(void (*fn)(void), uint64_t n, uint64_t d) {
  Regs out{};
  out.preserved = call_regs(fn, out.r, static_cast<uint32_t>(n), static_cast<uint32_t>(n >> 32),
                            static_cast<uint32_t>(d), static_cast<uint32_t>(d >> 32)) != 0;
  return out;
}

inline uint64_t pair(uint32_t lo, uint32_t hi) { return lo | static_cast<uint64_t>(hi) << 32; }

} // namespace rt_test
