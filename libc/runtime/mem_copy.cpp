// Forward copy: __aeabi_memcpy and its aligned variants, and the library's own memcpy.
#include <stdint.h>

#include "runtime/block_memory.h"
#include "runtime/word_copy.h"
#include "support/export.h"

namespace kv {

void *mem_copy(void *dst, const void *src, size_t n) {
  auto *d = static_cast<unsigned char *>(dst);
  auto *s = static_cast<const unsigned char *>(src);
  // Below 8 bytes aligning first costs more than it saves.
  if (n >= 8) {
    for (; !mem::aligned(d); --n)
      *d++ = *s++;
    size_t words = n / 4;
    mem::words_forward(reinterpret_cast<mem::word *>(d), s, words);
    d += 4 * words;
    s += 4 * words;
    n &= 3;
  }
  while (n--)
    *d++ = *s++;
  return dst;
}

} // namespace kv

KV_ALIAS(protected, void, __aeabi_memcpy, (void *, const void *, size_t), __kv_mem_copy);
KV_ALIAS(protected, void, __aeabi_memcpy4, (void *, const void *, size_t), __kv_mem_copy);
KV_ALIAS(protected, void, __aeabi_memcpy8, (void *, const void *, size_t), __kv_mem_copy);
extern "C" void *memcpy(void *, const void *, size_t) __attribute__((alias("__kv_mem_copy")));
