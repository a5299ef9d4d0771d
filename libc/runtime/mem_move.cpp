// Copy with overlap: __aeabi_memmove and its aligned variants, and the library's own memmove.
#include <stdint.h>

#include "runtime/block_memory.h"
#include "runtime/word_copy.h"
#include "support/export.h"

namespace kv {

void *mem_move(void *dst, const void *src, size_t n) {
  // The forward copy is safe whenever the destination starts below the source or past its end.
  uintptr_t gap = reinterpret_cast<uintptr_t>(dst) - reinterpret_cast<uintptr_t>(src);
  if (gap >= n)
    return mem_copy(dst, src, n);
  if (gap == 0)
    return dst;
  auto *d = static_cast<unsigned char *>(dst) + n;
  auto *s = static_cast<const unsigned char *>(src) + n;
  if (n >= 8) {
    for (; !mem::aligned(d); --n)
      *--d = *--s;
    size_t words = n / 4;
    mem::words_backward(reinterpret_cast<mem::word *>(d), s, words);
    d -= 4 * words;
    s -= 4 * words;
    n &= 3;
  }
  while (n--)
    *--d = *--s;
  return dst;
}

} // namespace kv

KV_ALIAS(protected, void, __aeabi_memmove, (void *, const void *, size_t), __kv_mem_move);
KV_ALIAS(protected, void, __aeabi_memmove4, (void *, const void *, size_t), __kv_mem_move);
KV_ALIAS(protected, void, __aeabi_memmove8, (void *, const void *, size_t), __kv_mem_move);
extern "C" void *memmove(void *, const void *, size_t) __attribute__((alias("__kv_mem_move")));
