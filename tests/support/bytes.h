// Byte helpers for test programs, which do not rely on the C library's string functions.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace kvtest {

inline size_t length_of(const char *s) {
  size_t n = 0;
  while (s[n])
    ++n;
  return n;
}

inline bool same_text(const char *a, const char *b) {
  while (*a && *a == *b)
    ++a, ++b;
  return *a == *b;
}

// Volatile reads keep the compiler from turning the loop into a memcmp call.
inline bool same_bytes(const void *a, const void *b, size_t n) {
  auto *x = static_cast<const volatile uint8_t *>(a);
  auto *y = static_cast<const volatile uint8_t *>(b);
  for (size_t i = 0; i < n; ++i)
    if (x[i] != y[i])
      return false;
  return true;
}

} // namespace kvtest
