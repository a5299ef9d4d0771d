// memcmp: equal words are skipped; the byte loop then finds the first difference in order.
#include <stdint.h>

#include "runtime/block_memory.h"
#include "string/string_internal.h"
#include "string/word.h"

namespace kv {

int mem_compare(const void *a, const void *b, size_t n) {
  auto *p = static_cast<const unsigned char *>(a);
  auto *q = static_cast<const unsigned char *>(b);
  if (str::same_alignment(p, q)) {
    for (; n && !str::aligned(p); --n, ++p, ++q)
      if (*p != *q)
        return *p - *q;
    for (; n >= 4; n -= 4, p += 4, q += 4)
      if (*reinterpret_cast<const str::word *>(p) != *reinterpret_cast<const str::word *>(q))
        break;
  }
  for (; n; --n, ++p, ++q)
    if (*p != *q)
      return *p - *q;
  return 0;
}

} // namespace kv

extern "C" int memcmp(const void *, const void *, size_t) __attribute__((alias("__kv_mem_compare")));
