// The stream record, its flag bits and the engine's entry points. The engine functions assume
// the caller holds the stream's lock; the public operations take it.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <kv/stream.h>

#include "support/export.h"

extern "C" {

typedef __kv_stream FILE;

} // extern "C"

namespace kv::stdio {

enum : uint32_t {
  kRead = 0x1,
  kWrite = 0x2,
  kBinary = 0x4,
  kReposition = 0x10,
  kSeekPending = 0x20,
  kEof = 0x40,
  kError = 0x80,
  kFullyBuffered = 0x100,
  kLineBuffered = 0x200,
  kUnbuffered = 0x400,
  kOwnBuffer = 0x800,
  kReading = 0x1000,
  kWriting = 0x2000,
  kHandleEof = 0x4000,
  kAppend = 0x8000,
  kDirty = 0x10000,
  kReadAhead = 0x20000,
  kUngot = 0x80000,
  kUngotTaken = 0x200000,
  kIoStarted = 0x400000,
  kByteOriented = 0x2000000,
  kOrientation = 0x6000000,

  kOpen = kRead | kWrite,
  kBufferModes = kFullyBuffered | kLineBuffered | kUnbuffered,
};

constexpr uint32_t kDefaultBufferSize = 512;
constexpr uint32_t kLinkOpen = 1;

inline bool is_open(const FILE *s) { return (s->flags & kOpen) != 0; }
inline unsigned char *data_end(const FILE *s) {
  return s->high_water > s->cursor ? s->high_water : s->cursor;
}
inline FILE *next_record(const FILE *s) {
  return reinterpret_cast<FILE *>(static_cast<uintptr_t>(s->link & ~kLinkOpen));
}

// The static records of stdin, stdout and stderr, the head of the stream list.
extern FILE standard_streams[3];

// Engine steps without locks.
void clear_record(FILE *s);
void allocate_buffer(FILE *s);
int open_record(FILE *s, const char *name, const char *mode);
int flush_and_reposition(FILE *s);
FILE *take_free_record();
void initialise_streams();
void terminate_streams();

inline void lock(FILE *s);
inline void unlock(FILE *s);

// A line-buffered stream that is already writing, with nothing pending: a character that
// neither ends a line nor fills the buffer is only stored.
inline bool steady_line_output(const FILE *s) {
  constexpr uint32_t kSteadyMask = kWrite | kReading | kError | kSeekPending | kUngot |
                                   kUngotTaken | kBufferModes | kWriting | kIoStarted | kDirty;
  constexpr uint32_t kSteady = kWrite | kLineBuffered | kWriting | kIoStarted | kDirty;
  return (s->flags & kSteadyMask) == kSteady;
}

// The formatting engine's stream sink: one character, or a run of them left exactly as that
// many characters would leave it.
void put_stream(int ch, void *sink);
void put_stream_run(FILE *s, const char *text, int32_t n);

} // namespace kv::stdio

extern "C" {
// The three static records head the stream list.
extern FILE *stdin, *stdout, *stderr;
extern uint32_t _stream_list_lock;

KV_FUNCTION(protected, int, __filbuf, (FILE * s));
KV_FUNCTION(protected, int, __flsbuf, (int ch, FILE *s));
KV_FUNCTION(protected, int, _writebuf, (const unsigned char *data, unsigned length, FILE *s));
KV_FUNCTION(protected, int, _readbuf, (unsigned char *data, unsigned length, FILE *s));
KV_FUNCTION(protected, int, _fflush, (FILE * s));
KV_FUNCTION(protected, int, _do_fflush, (FILE * s));
KV_FUNCTION(protected, void, _flushlinebuffered, (FILE * s));
KV_FUNCTION(protected, void, _deferredlazyseek, (FILE * s));
KV_FUNCTION(protected, int, _fseek, (FILE * s, long offset, int whence));
KV_FUNCTION(protected, long, _ftell_internal, (FILE * s));
KV_FUNCTION(protected, int, _ungetc_internal, (int ch, FILE *s));
KV_FUNCTION(protected, int, _fclose_internal, (FILE * s));
KV_FUNCTION(protected, void, _seterr, (FILE * s));
KV_FUNCTION(protected, void, _seteof, (FILE * s));
KV_FUNCTION(protected, int, __backspace, (FILE * s));

// Programs cannot make these two from other exports, so they are exported.
KV_FUNCTION(global, FILE *, freopen, (const char *name, const char *mode, FILE *s));
KV_FUNCTION(global, int, setvbuf, (FILE * s, char *buffer, int mode, size_t size));
// The other ISO operations exist for the library's own use and are not exported.
int fflush(FILE *s);
int fgetc(FILE *s);
int fputc(int ch, FILE *s);
int fputs(const char *text, FILE *s);
int fseek(FILE *s, long offset, int whence);
long ftell(FILE *s);
void clearerr(FILE *s);
int feof(FILE *s);
int ferror(FILE *s);
int ungetc(int ch, FILE *s);
int fprintf(FILE *s, const char *format, ...) __attribute__((format(printf, 2, 3)));
}

#include "posix/mutex_hooks.h"

namespace kv::stdio {
inline void lock(FILE *s) { __mutex_acquire(&s->lock); }
inline void unlock(FILE *s) { __mutex_release(&s->lock); }

// The inline character paths: a count test and a cursor step while the buffer lasts.
inline int get_char(FILE *s) {
  if (s->read_count > 0) {
    --s->read_count;
    return *s->cursor++;
  }
  return __filbuf(s);
}
inline int put_char(int ch, FILE *s) {
  if (s->write_count > 0) {
    --s->write_count;
    *s->cursor++ = static_cast<unsigned char>(ch);
    return static_cast<unsigned char>(ch);
  }
  return __flsbuf(ch, s);
}
} // namespace kv::stdio
