// The ISO stream functions for programs: thin calls to the engine entry points libc.so exports.
#include <kv/abi.h>
#include <stdio.h>

#include "frontdoor/imports.h"
#include "printf/state.h"
#include "stdio/stream.h"

extern "C" int open(const char *path, int flags, ...);
extern "C" int close(int fd);

KV_FUNCTION(protected, int, _printf_char_file, (const char *format, FILE *s, _printf_args args));

using namespace kv::stdio;

static_assert(_IOFBF == kFullyBuffered && _IOLBF == kLineBuffered && _IONBF == kUnbuffered);

namespace {

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

int fputc(int ch, FILE *s) {
  lock(s);
  int result = put_char(ch, s);
  unlock(s);
  return result;
}
int putc(int ch, FILE *s) { return fputc(ch, s); }
void flockfile(FILE *s) { lock(s); }
void funlockfile(FILE *s) { unlock(s); }
int putchar(int ch) { return fputc(ch, stdout); }

int fputs(const char *text, FILE *s) {
  int result = 0;
  lock(s);
  for (; *text; ++text)
    if (put_char(static_cast<unsigned char>(*text), s) == EOF) {
      result = EOF;
      break;
    }
  unlock(s);
  return result;
}
int puts(const char *text) {
  lock(stdout);
  int result = 0;
  for (; *text && result != EOF; ++text)
    result = put_char(static_cast<unsigned char>(*text), stdout);
  if (result != EOF)
    result = put_char('\n', stdout);
  unlock(stdout);
  return result == EOF ? EOF : 0;
}

int fgetc(FILE *s) {
  lock(s);
  int ch = get_char(s);
  unlock(s);
  return ch;
}
int getc(FILE *s) { return fgetc(s); }
int getchar(void) { return fgetc(stdin); }

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
  __mutex_acquire(&_stream_list_lock);
  for (FILE *each = stdin; each; each = next_record(each))
    if ((each->link & kLinkOpen) && _do_fflush(each) != 0)
      result = EOF;
  __mutex_release(&_stream_list_lock);
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
