#include "runtime/block_memory.h"
#include "string/string_internal.h"

// Copies at most n bytes and pads with zeros up to n; no terminator when src is n or longer.
extern "C" char *strncpy(char *dst, const char *src, size_t n) {
  size_t len = 0;
  while (len < n && src[len])
    ++len;
  kv::mem_copy(dst, src, len);
  kv::mem_fill(dst + len, n - len, 0);
  return dst;
}
