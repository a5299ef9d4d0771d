// Block memory goes to the run-time routines libc.so exports; the string functions are small
// enough to live here.
#include <stdint.h>
#include <string.h>

extern "C" {
void __aeabi_memcpy(void *to, const void *from, size_t n);
void __aeabi_memmove(void *to, const void *from, size_t n);
void __aeabi_memset(void *to, size_t n, int ch);

void *memcpy(void *to, const void *from, size_t n) {
  __aeabi_memcpy(to, from, n);
  return to;
}
void *memmove(void *to, const void *from, size_t n) {
  __aeabi_memmove(to, from, n);
  return to;
}
void *memset(void *to, int ch, size_t n) {
  __aeabi_memset(to, n, ch);
  return to;
}

int memcmp(const void *a, const void *b, size_t n) {
  auto *p = static_cast<const unsigned char *>(a), *q = static_cast<const unsigned char *>(b);
  for (; n; --n, ++p, ++q)
    if (*p != *q)
      return *p - *q;
  return 0;
}
void *memchr(const void *s, int ch, size_t n) {
  for (auto *p = static_cast<const unsigned char *>(s); n; --n, ++p)
    if (*p == static_cast<unsigned char>(ch))
      return const_cast<unsigned char *>(p);
  return nullptr;
}

// Bytes up to a word boundary, then a word at a time (an aligned word never reaches a page the
// string does not touch), then the bytes of the word that holds the terminator.
size_t strlen(const char *s) {
  typedef uint32_t __attribute__((may_alias)) word;
  const char *p = s;
  for (; reinterpret_cast<uintptr_t>(p) & 3; ++p)
    if (!*p)
      return static_cast<size_t>(p - s);
  const word *w = reinterpret_cast<const word *>(p);
  while (!((*w - 0x01010101u) & ~*w & 0x80808080u))
    ++w;
  for (p = reinterpret_cast<const char *>(w); *p; ++p) {
  }
  return static_cast<size_t>(p - s);
}
int strcmp(const char *a, const char *b) {
  while (*a && *a == *b)
    ++a, ++b;
  return static_cast<unsigned char>(*a) - static_cast<unsigned char>(*b);
}
int strncmp(const char *a, const char *b, size_t n) {
  for (; n; --n, ++a, ++b)
    if (*a != *b || !*a)
      return static_cast<unsigned char>(*a) - static_cast<unsigned char>(*b);
  return 0;
}
char *strchr(const char *s, int ch) {
  for (;; ++s) {
    if (*s == static_cast<char>(ch))
      return const_cast<char *>(s);
    if (!*s)
      return nullptr;
  }
}
char *strrchr(const char *s, int ch) {
  const char *found = nullptr;
  for (;; ++s) {
    if (*s == static_cast<char>(ch))
      found = s;
    if (!*s)
      return const_cast<char *>(found);
  }
}
char *strcpy(char *to, const char *from) {
  char *d = to;
  while ((*d++ = *from++))
    ;
  return to;
}
char *strncpy(char *to, const char *from, size_t n) {
  size_t i = 0;
  for (; i < n && from[i]; ++i)
    to[i] = from[i];
  for (; i < n; ++i)
    to[i] = 0;
  return to;
}
char *strcat(char *to, const char *from) {
  strcpy(to + strlen(to), from);
  return to;
}

} // extern "C"
