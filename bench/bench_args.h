// Command-line helpers of the guest benchmarks, which run without the C library's own.
#pragma once

// The decimal number at the start of `s`.
inline unsigned parse(const char *s) {
  unsigned v = 0;
  while (*s >= '0' && *s <= '9')
    v = v * 10 + static_cast<unsigned>(*s++ - '0');
  return v;
}

inline bool same(const char *a, const char *b) {
  while (*a && *a == *b)
    ++a, ++b;
  return *a == *b;
}

// Strips the "empty:" of a calibration run from the operation name; whether it was there.
inline bool calibration(const char *&op) {
  const char *prefix = "empty:";
  const char *p = op;
  while (*prefix && *p == *prefix)
    ++p, ++prefix;
  if (*prefix)
    return false;
  op = p;
  return true;
}
