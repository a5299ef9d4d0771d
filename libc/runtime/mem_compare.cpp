// The library's own memcmp (not exported), which compiled code may call for comparisons.
#include <stdint.h>

#include "runtime/block_memory.h"
#include "runtime/word_copy.h"

namespace kv {

int mem_compare(const void *a, const void *b, size_t n) {
  auto *p = static_cast<const unsigned char *>(a);
  auto *q = static_cast<const unsigned char *>(b);
  // Skip equal words; the byte loop then finds the first difference in order.
  if (mem::aligned(p) && mem::aligned(q)) {
    for (; n >= 4; n -= 4, p += 4, q += 4)
      if (*reinterpret_cast<const mem::word *>(p) != *reinterpret_cast<const mem::word *>(q))
        break;
  }
  for (; n; --n, ++p, ++q)
    if (*p != *q)
      return *p - *q;
  return 0;
}

} // namespace kv

extern "C" int memcmp(const void *, const void *, size_t) __attribute__((alias("__kv_mem_compare")));
