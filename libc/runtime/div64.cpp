// The EABI 64-bit division helpers: quotient in r0:r1, remainder in r2:r3. No C++ return type
// travels in four registers, so a short register shim gives the C++ half a place for both
// results on its stack and loads them from there.
#include <stdint.h>

#include "runtime/div0.h"
#include "runtime/divide.h"
#include "support/export.h"

namespace kv::rt {

// The C++ halves, named for the shims' calls.
void uldivmod_to(uint64_t n, uint64_t d, udivmod64_t *out) asm("__kv_uldivmod_to");
void ldivmod_to(int64_t n, int64_t d, sdivmod64_t *out) asm("__kv_ldivmod_to");

void uldivmod_to(uint64_t n, uint64_t d, udivmod64_t *out) {
  if (d == 0) {
    kv::raise_div0();
    *out = {0, n};
    return;
  }
  *out = udivmod64(n, d);
}

void ldivmod_to(int64_t n, int64_t d, sdivmod64_t *out) {
  if (d == 0) {
    kv::raise_div0();
    *out = {0, n};
    return;
  }
  *out = sdivmod64(n, d);
}

} // namespace kv::rt

// n in r0:r1 and d in r2:r3 pass straight on; the fifth argument word, at [sp], points at the
// 16-byte result area above it. 4 + 28 bytes keep the stack 8-byte aligned for the call.
#define KV_DIVMOD64_SHIM(to)                                                                      \
  asm volatile("push   {lr}\n\t"                                                                  \
               "sub    sp, sp, #28\n\t"                                                           \
               "add    r12, sp, #8\n\t"                                                           \
               "str    r12, [sp]\n\t"                                                             \
               "bl     " to "\n\t"                                                                \
               "ldrd   r0, r1, [sp, #8]\n\t"                                                      \
               "ldrd   r2, r3, [sp, #16]\n\t"                                                     \
               "add    sp, sp, #28\n\t"                                                           \
               "pop    {pc}")

KV_FUNCTION(protected, __attribute__((naked)) void, __aeabi_uldivmod, ()) {
  KV_DIVMOD64_SHIM("__kv_uldivmod_to");
}

KV_FUNCTION(protected, __attribute__((naked)) void, __aeabi_ldivmod, ()) {
  KV_DIVMOD64_SHIM("__kv_ldivmod_to");
}
