// The write side of the engine: the slow path of the character output, write-out and flushes.
#include "stdio/retarget.h"
#include "stdio/stream.h"

using namespace kv::stdio;

KV_FUNCTION(protected, int, _writebuf, (const unsigned char *data, unsigned length, FILE *s)) {
  if (s->flags & (kReposition | kReadAhead)) {
    if (_sys_seek(s->handle, s->buffer_position) < 0) {
      _seterr(s);
      return -1;
    }
    s->flags &= ~(kReposition | kReadAhead);
  }
  int left = _sys_write(s->handle, data, length, static_cast<int>(s->flags));
  if (left != -1)
    s->buffer_position += static_cast<int32_t>(length) - left;
  if (left != 0) {
    _seterr(s);
    return -1;
  }
  return 0;
}

namespace {

// Everything but the steady line-buffered store, kept apart so that store needs no frame.
__attribute__((noinline)) int put_slow(unsigned char byte, FILE *s) {
  s->flags = (s->flags & ~(kUngot | kUngotTaken)) | kIoStarted;
  if (s->flags & kSeekPending)
    _deferredlazyseek(s);
  if (!(s->flags & kWrite) || (s->flags & (kReading | kError))) {
    _seterr(s);
    return -1;
  }
  // Every append starts at the file's current end.
  if ((s->flags & (kAppend | kWriting)) == kAppend) {
    if (s->flags & kDirty) {
      s->cursor = data_end(s);
    } else {
      s->cursor = s->high_water = s->buffer;
      s->buffer_position = static_cast<int32_t>(_sys_flen(s->handle));
    }
  }
  // A write right after a read continues in the buffer.
  if (s->write_count < 0 && !(s->flags & kLineBuffered)) {
    s->write_count = ~s->write_count;
    s->read_count = 0;
    s->flags |= kDirty | kWriting;
    *s->cursor++ = byte;
    return byte;
  }
  s->flags |= kWriting;
  s->read_count = 0;
  if (!s->buffer)
    allocate_buffer(s);

  if (s->flags & kFullyBuffered) {
    unsigned held = static_cast<unsigned>(data_end(s) - s->buffer);
    if (held && _writebuf(s->buffer, held, s) != 0)
      return -1;
    s->buffer[0] = byte;
    s->cursor = s->high_water = s->buffer + 1;
    s->write_count = static_cast<int32_t>(s->buffer_size) - 1;
    s->flags |= kDirty;
    return byte;
  }

  // Line-buffered and unbuffered streams: a line end or a full buffer writes out.
  *s->cursor++ = byte;
  s->flags |= kDirty;
  unsigned char *end = data_end(s);
  unsigned held = static_cast<unsigned>(end - s->buffer);
  if ((s->flags & kUnbuffered) || held >= s->buffer_size || byte == '\n') {
    int32_t after = static_cast<int32_t>(end - s->cursor);
    s->cursor = s->high_water = s->buffer;
    s->write_count = 0;
    if (_writebuf(s->buffer, held, s) != 0)
      return -1;
    if (after) {
      s->buffer_position -= after;
      s->flags |= kReposition;
    }
  }
  return byte;
}

} // namespace

KV_FUNCTION(protected, int, __flsbuf, (int ch, FILE *s)) {
  const unsigned char byte = static_cast<unsigned char>(ch);
  // A line-buffered stream already writing comes here for every character; while the byte
  // neither ends a line nor fills the buffer, storing it is all the path below would do.
  if (steady_line_output(s) && byte != '\n' &&
      data_end(s) + 1 - s->buffer < static_cast<int32_t>(s->buffer_size)) {
    s->read_count = 0;
    *s->cursor++ = byte;
    return byte;
  }
  return put_slow(byte, s);
}

KV_FUNCTION(protected, int, _fflush, (FILE * s)) {
  s->flags &= ~(kUngot | kUngotTaken);
  if (!(s->flags & kDirty))
    return 0;
  unsigned held = static_cast<unsigned>(data_end(s) - s->buffer);
  if (held && _writebuf(s->buffer, held, s) != 0)
    return -1;
  s->cursor = s->high_water = s->buffer;
  s->write_count = 0;
  s->flags &= ~kDirty;
  return 0;
}

namespace kv::stdio {

// Writes out and seeks back to where the caller stands, dropping any read-ahead.
int flush_and_reposition(FILE *s) {
  if (!is_open(s))
    return 0;
  int32_t position = (s->flags & kSeekPending)
                         ? s->seek_target
                         : s->buffer_position + static_cast<int32_t>(s->cursor - s->buffer);
  int result = _fflush(s);
  _fseek(s, position, 0);
  return result;
}

} // namespace kv::stdio

KV_FUNCTION(protected, int, _do_fflush, (FILE * s)) {
  lock(s);
  int result = flush_and_reposition(s);
  unlock(s);
  return result;
}

KV_FUNCTION(protected, void, _flushlinebuffered, (FILE * s)) {
  __mutex_acquire(&_stream_list_lock);
  for (FILE *other = standard_streams; other; other = next_record(other)) {
    if (other == s || !(other->link & kLinkOpen))
      continue;
    lock(other);
    uint32_t flags = other->flags;
    unlock(other);
    if ((flags & (kLineBuffered | kWrite)) == (kLineBuffered | kWrite))
      _do_fflush(other);
  }
  __mutex_release(&_stream_list_lock);
}

extern "C" int fflush(FILE *s) {
  if (s)
    return _do_fflush(s);
  int result = 0;
  __mutex_acquire(&_stream_list_lock);
  for (FILE *each = standard_streams; each; each = next_record(each))
    if ((each->link & kLinkOpen) && _do_fflush(each) != 0)
      result = -1;
  __mutex_release(&_stream_list_lock);
  return result;
}

KV_ALIAS(protected, int, __flsbuf_byte, (int ch, FILE *s), __flsbuf);
KV_ALIAS(protected, int, __flsbuf_wide, (int ch, FILE *s), __flsbuf);
