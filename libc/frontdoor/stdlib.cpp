// Allocation, exit and a few small helpers for programs. The heap is reached through its
// exported entry points.
#include <stdint.h>
#include <stdlib.h>

extern "C" {
void *__syscall_realloc(void *block, size_t size);
void *__syscall_calloc(size_t count, size_t size);
void __syscall_free(void *block);
void _call_atexit_fns(void);
long random(void);
void srandom(unsigned seed);
}

extern "C" {

void *malloc(size_t size) { return __syscall_realloc(nullptr, size); }
void free(void *block) { __syscall_free(block); }
void *realloc(void *block, size_t size) { return __syscall_realloc(block, size); }
void *calloc(size_t count, size_t size) { return __syscall_calloc(count, size); }

// atexit's functions are destructor records, which _exit runs newest first before it closes
// the streams.
void exit(int status) {
  _call_atexit_fns();
  _exit(status);
}

int rand(void) { return static_cast<int>(random()); }
void srand(unsigned seed) { srandom(seed); }

char *getenv(const char *name) {
  if (!environ)
    return nullptr;
  for (char **entry = environ; *entry; ++entry) {
    const char *n = name, *e = *entry;
    while (*n && *n == *e)
      ++n, ++e;
    if (!*n && *e == '=')
      return const_cast<char *>(e + 1);
  }
  return nullptr;
}

int abs(int value) { return value < 0 ? -value : value; }
long labs(long value) { return value < 0 ? -value : value; }

long atol(const char *text) {
  while (*text == ' ' || (*text >= '\t' && *text <= '\r'))
    ++text;
  bool negative = *text == '-';
  if (*text == '-' || *text == '+')
    ++text;
  unsigned long value = 0;
  for (; *text >= '0' && *text <= '9'; ++text)
    value = value * 10 + static_cast<unsigned long>(*text - '0');
  return static_cast<long>(negative ? 0 - value : value);
}
int atoi(const char *text) { return static_cast<int>(atol(text)); }

} // extern "C"
