#include "string/string_internal.h"
#include "string/word.h"

// The terminator itself can be found (c == 0).
extern "C" char *strchr(const char *s, int c) {
  auto ch = static_cast<unsigned char>(c);
  for (; !kv::str::aligned(s); ++s) {
    if (static_cast<unsigned char>(*s) == ch)
      return const_cast<char *>(s);
    if (*s == 0)
      return nullptr;
  }
  uint32_t pattern = kv::str::repeat(ch);
  for (;; s += 4) {
    uint32_t w = *reinterpret_cast<const kv::str::word *>(s);
    if (kv::str::zero_bytes(w) | kv::str::zero_bytes(w ^ pattern))
      break;
  }
  for (;; ++s) {
    if (static_cast<unsigned char>(*s) == ch)
      return const_cast<char *>(s);
    if (*s == 0)
      return nullptr;
  }
}
