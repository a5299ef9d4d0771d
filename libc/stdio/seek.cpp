// Lazy positioning: a seek inside the buffered data only moves the cursor; any other seek is
// recorded and carried out by the next transfer.
#include "bridge/errno_cells.h"
#include "stdio/retarget.h"
#include "stdio/stream.h"

using namespace kv::stdio;

namespace {
constexpr uint32_t kSeekClears =
    kSeekPending | kEof | kReading | kWriting | kUngot | kUngotTaken | kReadAhead;
constexpr int kSeekRefused = 2;
constexpr int kSeekFailed = 1;
} // namespace

KV_FUNCTION(protected, long, _ftell_internal, (FILE * s)) {
  if (!is_open(s)) {
    __set_errno(1);
    return -1;
  }
  long position = (s->flags & kSeekPending)
                      ? s->seek_target
                      : s->buffer_position + static_cast<long>(s->cursor - s->buffer);
  if (s->pending_count)
    position -= s->pending_length;
  else if ((s->flags & kUngot) && position > 0)
    position -= 1;
  return position;
}

KV_FUNCTION(protected, int, _fseek, (FILE * s, long offset, int whence)) {
  if (!is_open(s) || whence < 0 || whence > 2)
    return kSeekRefused;
  long target = offset;
  if (whence == 2) {
    long end = _sys_flen(s->handle);
    s->flags |= kReposition;
    if (end < 0) {
      _seterr(s);
      return kSeekFailed;
    }
    if (s->flags & kDirty) {
      long written_end = s->buffer_position + static_cast<long>(data_end(s) - s->buffer);
      if (written_end > end)
        end = written_end;
    }
    target += end;
  } else if (whence == 1) {
    target += _ftell_internal(s);
  }
  if (target < 0)
    return kSeekRefused;

  if (s->high_water < s->cursor)
    s->high_water = s->cursor;
  if (s->flags & kReadAhead)
    s->flags = (s->flags & ~kReadAhead) | kReposition;

  long held = s->buffer ? static_cast<long>(s->high_water - s->buffer) : 0;
  s->flags &= ~kSeekClears;
  s->pending_count = 0;
  if (held > 0 && target >= s->buffer_position && target < s->buffer_position + held) {
    long into = target - s->buffer_position;
    s->cursor = s->buffer + into;
    s->write_count = static_cast<int32_t>(into - static_cast<long>(s->buffer_size));
    s->read_count = -static_cast<int32_t>(held - into);
    return 0;
  }
  s->write_count = 0;
  s->read_count = 0;
  s->seek_target = static_cast<int32_t>(target);
  s->flags |= kSeekPending;
  return 0;
}

KV_FUNCTION(protected, void, _deferredlazyseek, (FILE * s)) {
  s->flags &= ~kSeekPending;
  if (s->seek_target != s->buffer_position) {
    _fflush(s);
    s->flags = (s->flags & ~(kReading | kWriting)) | kReposition;
    s->buffer_position = s->seek_target;
    s->cursor = s->high_water = s->buffer;
  }
  s->flags &= ~(kEof | kHandleEof);
}

extern "C" int fseek(FILE *s, long offset, int whence) {
  int result = _fseek(s, offset, whence);
  if (result == 0 && (s->flags & kWrite))
    fflush(s);
  return result;
}

extern "C" long ftell(FILE *s) {
  lock(s);
  long position = _ftell_internal(s);
  unlock(s);
  return position;
}
