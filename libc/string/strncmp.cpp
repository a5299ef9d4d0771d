#include "string/string_internal.h"
#include "string/word.h"

// Bytes compare as unsigned char. Whole equal words without a terminator are skipped.
extern "C" int strncmp(const char *a, const char *b, size_t n) {
  auto *p = reinterpret_cast<const unsigned char *>(a);
  auto *q = reinterpret_cast<const unsigned char *>(b);
  if (kv::str::same_alignment(p, q)) {
    for (; n && !kv::str::aligned(p); --n, ++p, ++q)
      if (*p != *q || *p == 0)
        return *p - *q;
    for (; n >= 4; n -= 4, p += 4, q += 4) {
      uint32_t w = *reinterpret_cast<const kv::str::word *>(p);
      if (w != *reinterpret_cast<const kv::str::word *>(q) || kv::str::zero_bytes(w))
        break;
    }
  }
  for (; n; --n, ++p, ++q)
    if (*p != *q || *p == 0)
      return *p - *q;
  return 0;
}
