// Division by ten for the number formatters: __rt_udiv10 returns the quotient in r0 and the
// remainder in r1; _ll_udiv10 the quotient in r0:r1 and the remainder in r2:r3, as _ll_udiv.
#include "runtime/udiv10.h"
#include "support/export.h"

KV_FUNCTION(protected, uint64_t, __rt_udiv10, (uint32_t n)) {
  kv::rt::div10_t<uint32_t> r = kv::rt::udiv10_32(n);
  return r.quot | static_cast<uint64_t>(r.rem) << 32;
}

namespace kv::rt {
// The C++ half of _ll_udiv10: results through memory, which the shim loads into r0-r3.
void ll_udiv10_to(uint64_t n, uint64_t out[2]) asm("__kv_ll_udiv10_to");
void ll_udiv10_to(uint64_t n, uint64_t out[2]) {
  div10_t<uint64_t> r = udiv10_64(n);
  out[0] = r.quot;
  out[1] = r.rem;
}
} // namespace kv::rt

KV_FUNCTION(protected, __attribute__((naked)) void, _ll_udiv10, ()) {
  asm volatile("push   {r4, lr}\n\t"
               "sub    sp, sp, #16\n\t"
               "mov    r2, sp\n\t"
               "bl     __kv_ll_udiv10_to\n\t"
               "ldrd   r0, r1, [sp]\n\t"
               "ldrd   r2, r3, [sp, #8]\n\t"
               "add    sp, sp, #16\n\t"
               "pop    {r4, pc}");
}
