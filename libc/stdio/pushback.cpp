// One character of pushback, and the formatted input engine's un-read.
#include "stdio/stream.h"

using namespace kv::stdio;

KV_FUNCTION(protected, int, _ungetc_internal, (int ch, FILE *s)) {
  if (ch == -1 || !(s->flags & kRead) || (s->flags & (kError | kWriting | kUngot)))
    return -1;
  s->small_buffer[1] = static_cast<unsigned char>(ch);
  s->pushback_cursor = s->cursor;
  s->read_count = 0;
  s->write_count = 0;
  if (!(s->flags & kOrientation))
    s->flags |= kByteOriented;
  s->flags = (s->flags & ~(kUngotTaken | kEof)) | kUngot | kReading | kIoStarted;
  return ch;
}

extern "C" int ungetc(int ch, FILE *s) {
  lock(s);
  int result = _ungetc_internal(ch, s);
  unlock(s);
  return result;
}

KV_FUNCTION(protected, int, __backspace, (FILE * s)) {
  if ((s->flags & kUngotTaken) && s->cursor == s->pushback_cursor)
    return _ungetc_internal(s->small_buffer[1], s) == -1 ? -1 : 0;
  if ((s->flags & (kEof | kError)) || s->cursor == s->buffer)
    return -1;
  --s->cursor;
  ++s->read_count;
  return 0;
}
