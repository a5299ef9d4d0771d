#ifndef _STDIO_H
#define _STDIO_H

#include <kv/abi.h>
#include <kv/stream.h>
#include <stdarg.h>
#include <stddef.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct __kv_stream FILE;

extern FILE *stdin, *stdout, *stderr;

#define EOF (-1)
#define BUFSIZ 512
#define _IOFBF 0x100
#define _IOLBF 0x200
#define _IONBF 0x400
#define SEEK_SET KV_SEEK_SET
#define SEEK_CUR KV_SEEK_CUR
#define SEEK_END KV_SEEK_END

/* Exported by libc.so. */
FILE *fdopen(int fd, const char *mode);
int fileno(FILE *stream);
size_t fread(void *buffer, size_t size, size_t count, FILE *stream);
size_t fwrite(const void *buffer, size_t size, size_t count, FILE *stream);
int remove(const char *path);
int rename(const char *from, const char *to);
FILE *freopen(const char *path, const char *mode, FILE *stream);
int setvbuf(FILE *stream, char *buffer, int mode, size_t size);

/* From the front-door archive (libkvc_front.a), linked beside libc.so. */
int printf(const char *format, ...) __attribute__((format(printf, 1, 2)));
int vprintf(const char *format, va_list args);
int fprintf(FILE *stream, const char *format, ...) __attribute__((format(printf, 2, 3)));
int vfprintf(FILE *stream, const char *format, va_list args);
int sprintf(char *buffer, const char *format, ...) __attribute__((format(printf, 2, 3)));
int vsprintf(char *buffer, const char *format, va_list args);
int snprintf(char *buffer, size_t size, const char *format, ...)
    __attribute__((format(printf, 3, 4)));
int vsnprintf(char *buffer, size_t size, const char *format, va_list args);
int puts(const char *text);
int putchar(int ch);
int putc(int ch, FILE *stream);
int fputc(int ch, FILE *stream);
int fputs(const char *text, FILE *stream);
int getchar(void);
int getc(FILE *stream);
int fgetc(FILE *stream);
char *fgets(char *buffer, int size, FILE *stream);
int ungetc(int ch, FILE *stream);
FILE *fopen(const char *path, const char *mode);
void setbuf(FILE *stream, char *buffer);

void flockfile(FILE *stream);
void funlockfile(FILE *stream);
/* The inline character paths, for a caller that holds the stream's lock (flockfile) or has one
 * thread: a count test and a cursor step while the buffer lasts, the library's slow paths when
 * it runs out. */
int __filbuf(FILE *stream);
int __flsbuf(int ch, FILE *stream);
/* Both fields are read before the test so that the compiler can pair the accesses. */
static inline int getc_unlocked(FILE *stream) {
  int32_t left = stream->read_count - 1;
  unsigned char *at = stream->cursor;
  if (__builtin_expect(left >= 0, 1)) {
    stream->read_count = left;
    stream->cursor = at + 1;
    return *at;
  }
  return __filbuf(stream);
}
static inline int putc_unlocked(int ch, FILE *stream) {
  unsigned char *at = stream->cursor;
  int32_t left = stream->write_count - 1;
  if (__builtin_expect(left >= 0, 1)) {
    *at = (unsigned char)ch;
    stream->cursor = at + 1;
    stream->write_count = left;
    return (unsigned char)ch;
  }
  return __flsbuf(ch, stream);
}
static inline int getchar_unlocked(void) { return getc_unlocked(stdin); }
static inline int putchar_unlocked(int ch) { return putc_unlocked(ch, stdout); }
int fclose(FILE *stream);
int fseek(FILE *stream, long offset, int whence);
long ftell(FILE *stream);
void rewind(FILE *stream);
int fflush(FILE *stream);
int feof(FILE *stream);
int ferror(FILE *stream);
void clearerr(FILE *stream);

#ifdef __cplusplus
}
#endif

#endif
