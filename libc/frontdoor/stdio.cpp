// The ISO stream functions for programs: thin calls to the engine entry points libc.so exports.
#include <kv/abi.h>
#include <stdio.h>
#include <string.h>

#include "frontdoor/imports.h"
#include "printf/state.h"
#include "stdio/runs.h"
#include "stdio/stream.h"

extern "C" int open(const char *path, int flags, ...);
extern "C" int close(int fd);

KV_FUNCTION(protected, int, _printf_char_file, (const char *format, FILE *s, _printf_args args));

using kv::stdio::get_char;
using kv::stdio::kEof;
using kv::stdio::kError;
using kv::stdio::kHandleEof;
using kv::stdio::kLinkOpen;
using kv::stdio::kWrite;
using kv::stdio::next_record;
using kv::stdio::put_char;
using kv::stdio::put_run;

static_assert(_IOFBF == kv::stdio::kFullyBuffered && _IOLBF == kv::stdio::kLineBuffered &&
              _IONBF == kv::stdio::kUnbuffered);

namespace {

// The program calls the lock hooks through their GOT entries, the ones chars.S compares with
// the default, so that what it checks is what is called. (A call through the PLT would also
// take a veneer from Thumb to the ARM-state stub.)
template <class Hook> Hook *bound(Hook *hook) {
  asm("" : "+r"(hook));
  return hook;
}
void take(uint32_t *mutex) {
  auto *acquire = bound(&__mutex_acquire);
  acquire(mutex);
}
void give(uint32_t *mutex) {
  auto *release = bound(&__mutex_release);
  release(mutex);
}
void lock(FILE *s) { take(&s->lock); }
void unlock(FILE *s) { give(&s->lock); }

_printf_args words(va_list args) { return __builtin_bit_cast(_printf_args, args); }

int bounded(char *buffer, size_t size, const char *format, va_list args) {
  _snputc_sink sink = {buffer, size ? buffer + size - 1 : buffer};
  int count = _printf_char_common(format, &sink, words(args), _snputc);
  if (size)
    *sink.next = 0;
  return count;
}

} // namespace

extern "C" {

int vfprintf(FILE *s, const char *format, va_list args) {
  return _printf_char_file(format, s, words(args));
}
int vprintf(const char *format, va_list args) { return vfprintf(stdout, format, args); }
int printf(const char *format, ...) {
  va_list args;
  va_start(args, format);
  int count = vfprintf(stdout, format, args);
  va_end(args);
  return count;
}
int fprintf(FILE *s, const char *format, ...) {
  va_list args;
  va_start(args, format);
  int count = vfprintf(s, format, args);
  va_end(args);
  return count;
}
int vsprintf(char *buffer, const char *format, va_list args) {
  _sputc_sink sink = {buffer};
  int count = _printf_char_common(format, &sink, words(args), _sputc);
  *sink.next = 0;
  return count;
}
int sprintf(char *buffer, const char *format, ...) {
  va_list args;
  va_start(args, format);
  int count = vsprintf(buffer, format, args);
  va_end(args);
  return count;
}
int vsnprintf(char *buffer, size_t size, const char *format, va_list args) {
  return bounded(buffer, size, format, args);
}
int snprintf(char *buffer, size_t size, const char *format, ...) {
  va_list args;
  va_start(args, format);
  int count = bounded(buffer, size, format, args);
  va_end(args);
  return count;
}

// The paths of fputc and fgetc (chars.S) for a bound lock hook or a buffer that is full or
// empty.
__attribute__((visibility("hidden"))) int kv_fputc_locked(int ch, FILE *s) {
  lock(s);
  int result = put_char(ch, s);
  unlock(s);
  return result;
}
__attribute__((visibility("hidden"))) int kv_fgetc_locked(FILE *s) {
  lock(s);
  int ch = get_char(s);
  unlock(s);
  return ch;
}
void flockfile(FILE *s) { lock(s); }
void funlockfile(FILE *s) { unlock(s); }

int fputs(const char *text, FILE *s) {
  size_t n = strlen(text);
  lock(s);
  int result = put_run(s, text, n);
  unlock(s);
  return result;
}
int puts(const char *text) {
  size_t n = strlen(text);
  lock(stdout);
  int result = put_run(stdout, text, n);
  if (result != EOF)
    result = put_char('\n', stdout);
  unlock(stdout);
  return result == EOF ? EOF : 0;
}

char *fgets(char *buffer, int size, FILE *s) {
  if (size <= 0)
    return nullptr;
  int n = 0;
  lock(s);
  while (n < size - 1) {
    int ch = get_char(s);
    if (ch == EOF)
      break;
    buffer[n++] = static_cast<char>(ch);
    if (ch == '\n')
      break;
  }
  unlock(s);
  if (n == 0)
    return nullptr;
  buffer[n] = 0;
  return buffer;
}

int ungetc(int ch, FILE *s) {
  lock(s);
  int result = _ungetc_internal(ch, s);
  unlock(s);
  return result;
}

// The descriptor is opened first and the stream record laid over it.
FILE *fopen(const char *path, const char *mode) {
  int flags;
  switch (mode[0]) {
  case 'r':
    flags = KV_O_RDONLY;
    break;
  case 'w':
    flags = KV_O_WRONLY | KV_O_CREAT | KV_O_TRUNC;
    break;
  case 'a':
    flags = KV_O_WRONLY | KV_O_CREAT | KV_O_APPEND;
    break;
  default:
    return nullptr;
  }
  char letters[4] = {mode[0]};
  int used = 1;
  for (const char *m = mode + 1; *m && used < 3; ++m) {
    if (*m == '+') {
      flags = (flags & ~(KV_O_RDONLY | KV_O_WRONLY)) | KV_O_RDWR;
      letters[used++] = '+';
    } else if (*m == 'b') {
      letters[used++] = 'b';
    }
  }
  int fd = open(path, flags, 0666);
  if (fd < 0)
    return nullptr;
  FILE *s = fdopen(fd, letters);
  if (!s)
    close(fd);
  return s;
}

void setbuf(FILE *s, char *buffer) { setvbuf(s, buffer, buffer ? _IOFBF : _IONBF, BUFSIZ); }

int fclose(FILE *s) {
  lock(s);
  int result = _fclose_internal(s);
  unlock(s);
  return result == 0 ? 0 : EOF;
}

int fseek(FILE *s, long offset, int whence) {
  lock(s);
  int result = _fseek(s, offset, whence);
  unlock(s);
  if (result == 0 && (s->flags & kWrite))
    _do_fflush(s);
  return result == 0 ? 0 : -1;
}
void rewind(FILE *s) {
  fseek(s, 0, SEEK_SET);
  clearerr(s);
}
long ftell(FILE *s) {
  lock(s);
  long position = _ftell_internal(s);
  unlock(s);
  return position;
}

int fflush(FILE *s) {
  if (s)
    return _do_fflush(s);
  int result = 0;
  take(&_stream_list_lock);
  for (FILE *each = stdin; each; each = next_record(each))
    if ((each->link & kLinkOpen) && _do_fflush(each) != 0)
      result = EOF;
  give(&_stream_list_lock);
  return result;
}

int feof(FILE *s) { return (s->flags & kEof) != 0; }
int ferror(FILE *s) { return (s->flags & kError) != 0; }
void clearerr(FILE *s) {
  lock(s);
  s->flags &= ~(kEof | kError | kHandleEof);
  unlock(s);
}

} // extern "C"
