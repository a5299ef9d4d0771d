// The EABI 32-bit division helpers. A quotient-and-remainder pair comes back in r0 and r1,
// which is how a 64-bit return value travels, low word first.
#include <stdint.h>

#include "runtime/div0.h"
#include "runtime/divide.h"
#include "support/export.h"

namespace {
uint64_t pair(uint32_t quot, uint32_t rem) { return quot | static_cast<uint64_t>(rem) << 32; }
} // namespace

KV_FUNCTION(protected, uint32_t, __aeabi_uidiv, (uint32_t n, uint32_t d)) {
  if (d == 0) {
    kv::raise_div0();
    return 0;
  }
  return kv::rt::udivmod32(n, d).quot;
}

KV_FUNCTION(protected, uint64_t, __aeabi_uidivmod, (uint32_t n, uint32_t d)) {
  if (d == 0) {
    kv::raise_div0();
    return pair(0, n);
  }
  kv::rt::udivmod32_t r = kv::rt::udivmod32(n, d);
  return pair(r.quot, r.rem);
}

KV_FUNCTION(protected, int32_t, __aeabi_idiv, (int32_t n, int32_t d)) {
  if (d == 0) {
    kv::raise_div0();
    return 0;
  }
  return kv::rt::sdivmod32(n, d).quot;
}

KV_FUNCTION(protected, uint64_t, __aeabi_idivmod, (int32_t n, int32_t d)) {
  if (d == 0) {
    kv::raise_div0();
    return pair(0, static_cast<uint32_t>(n));
  }
  kv::rt::sdivmod32_t r = kv::rt::sdivmod32(n, d);
  return pair(static_cast<uint32_t>(r.quot), static_cast<uint32_t>(r.rem));
}
