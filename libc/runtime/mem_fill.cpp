// Fill: __aeabi_memset and its aligned variants, and the library's own memset.
#include <stdint.h>

#include "runtime/block_memory.h"
#include "runtime/word_copy.h"
#include "support/export.h"

namespace kv {

void *mem_fill(void *dst, size_t n, int value) {
  auto *d = static_cast<unsigned char *>(dst);
  auto byte = static_cast<unsigned char>(value);
  if (n >= 8) {
    for (; !mem::aligned(d); --n)
      *d++ = byte;
    mem::word pattern = byte * 0x01010101u;
    auto *w = reinterpret_cast<mem::word *>(d);
    size_t words = n / 4;
    for (; words >= 4; words -= 4, w += 4) {
      w[0] = pattern;
      w[1] = pattern;
      w[2] = pattern;
      w[3] = pattern;
    }
    while (words--)
      *w++ = pattern;
    d = reinterpret_cast<unsigned char *>(w);
    n &= 3;
  }
  while (n--)
    *d++ = byte;
  return dst;
}

} // namespace kv

KV_ALIAS(protected, void, __aeabi_memset, (void *, size_t, int), __kv_mem_fill);
KV_ALIAS(protected, void, __aeabi_memset4, (void *, size_t, int), __kv_mem_fill);
KV_ALIAS(protected, void, __aeabi_memset8, (void *, size_t, int), __kv_mem_fill);

extern "C" void *memset(void *dst, int value, size_t n) { return kv::mem_fill(dst, n, value); }
