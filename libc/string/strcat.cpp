#include "runtime/block_memory.h"
#include "string/string_internal.h"

extern "C" char *strcat(char *dst, const char *src) {
  kv::mem_copy(dst + strlen(dst), src, strlen(src) + 1);
  return dst;
}
