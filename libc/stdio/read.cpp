// The read side of the engine: the slow path of the character input and the buffer fill.
#include "stdio/retarget.h"
#include "stdio/stream.h"

using namespace kv::stdio;

KV_FUNCTION(protected, int, _readbuf, (unsigned char *data, unsigned length, FILE *s)) {
  int r = _sys_read(s->handle, data, length, static_cast<int>(s->flags));
  if (r >= 0)
    return static_cast<int>(length) - r;
  if (r == -1) {
    _seterr(s);
    return -1;
  }
  s->flags |= kHandleEof;
  return static_cast<int>(length) - (r & 0x7fffffff);
}

KV_FUNCTION(protected, void, _seteof, (FILE * s)) {
  s->flags = (s->flags | kEof) & ~kReading;
  s->read_count = 0;
  s->write_count = (s->flags & (kLineBuffered | kUnbuffered))
                       ? 0
                       : static_cast<int32_t>(s->cursor - s->buffer) -
                             static_cast<int32_t>(s->buffer_size);
}

KV_FUNCTION(protected, void, _seterr, (FILE * s)) {
  s->flags = (s->flags | kError) & ~kUngotTaken;
  s->read_count = 0;
  s->write_count = 0;
}

namespace {

int fail(FILE *s) {
  _seterr(s);
  return -1;
}

} // namespace

KV_FUNCTION(protected, int, __filbuf, (FILE * s)) {
  s->flags |= kIoStarted;
  if (s->flags & kUngot) {
    s->flags &= ~kUngot;
    if (!(s->flags & kSeekPending))
      s->read_count = static_cast<int32_t>(data_end(s) - s->cursor);
    s->flags |= kUngotTaken;
    return s->small_buffer[1];
  }
  s->flags &= ~kUngotTaken;
  if (s->flags & kSeekPending)
    _deferredlazyseek(s);
  if (!(s->flags & kRead) || (s->flags & (kWriting | kError)))
    return fail(s);
  if (s->read_count < 0) {
    s->read_count = ~s->read_count;
    s->write_count = 0;
    s->flags |= kReading;
    return *s->cursor++;
  }
  // End of file is sticky until clearerr or a seek.
  if (s->flags & (kEof | kHandleEof)) {
    s->read_count = 0;
    s->flags = (s->flags | kEof) & ~(kReading | kHandleEof);
    s->write_count =
        static_cast<int32_t>(s->cursor - s->buffer) - static_cast<int32_t>(s->buffer_size);
    return -1;
  }
  if (!s->buffer && !(s->flags & kDirty))
    allocate_buffer(s);
  if (s->flags & kReposition) {
    if (s->flags & kDirty) {
      _fflush(s);
    } else if (_sys_seek(s->handle, s->buffer_position +
                                        static_cast<int32_t>(s->cursor - s->buffer)) < 0) {
      return fail(s);
    }
  }

  unsigned char *destination = s->buffer;
  unsigned length = s->buffer_size;
  if (s->flags & kDirty) {
    // Read after write in an update stream: keep what was written, read behind it.
    unsigned held = static_cast<unsigned>(data_end(s) - s->buffer);
    int32_t position = s->buffer_position;
    if (held && _writebuf(s->buffer, held, s) != 0)
      return -1;
    s->flags &= ~kDirty;
    if (held < s->buffer_size) {
      s->buffer_position = position;
      if (_sys_seek(s->handle, position + static_cast<int32_t>(held)) < 0)
        return fail(s);
      s->flags |= kReadAhead;
      destination = s->buffer + held;
      length = s->buffer_size - held;
    } else {
      s->cursor = s->high_water = s->buffer;
    }
  } else {
    s->buffer_position += static_cast<int32_t>(s->cursor - s->buffer);
    s->cursor = s->high_water = s->buffer;
  }

  s->flags &= ~kReposition;
  if (s->flags & (kLineBuffered | kUnbuffered))
    _flushlinebuffered(s);
  s->write_count = 0;
  s->flags |= kReading;
  int n = _readbuf(destination, length, s);
  if (n < 0)
    return -1;
  s->high_water = destination + n;
  if (n == 0) {
    s->cursor = destination;
    _seteof(s);
    return -1;
  }
  s->read_count = n - 1;
  s->cursor = destination + 1;
  s->flags |= kReadAhead;
  return *destination;
}

KV_ALIAS(protected, int, __filbuf_byte, (FILE * s), __filbuf);
KV_ALIAS(protected, int, __filbuf_wide, (FILE * s), __filbuf);
