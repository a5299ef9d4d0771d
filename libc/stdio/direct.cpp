// fread and fwrite move their bytes straight between the caller's memory and the system side;
// the stream is positioned before and repositioned after, so the buffer never sees the data.
#include <kv/abi.h>
#include <kv/syscall.h>

#include "bridge/debug_log.h"
#include "bridge/errno_cells.h"
#include "stdio/stream.h"

using namespace kv::stdio;

namespace {

constexpr size_t kChunk = 4096;

bool is_standard(const FILE *s) { return s == stdin || s == stdout || s == stderr; }

size_t fail(FILE *s) {
  _seterr(s);
  unlock(s);
  return 0;
}

// Writes out, empties the buffer and puts the system side at the stream's position. False when
// the position cannot be had.
bool take_position(FILE *s) {
  long position = (s->flags & kAppend) ? static_cast<long>(__syscall_lseek(s->handle, 0, KV_SEEK_END))
                                       : _ftell_internal(s);
  if (position < 0)
    return false;
  if (_fflush(s) != 0)
    return false;
  s->cursor = s->high_water = s->buffer;
  s->read_count = s->write_count = 0;
  s->pending_count = 0;
  s->flags = (s->flags & ~(kSeekPending | kReading | kWriting | kUngot | kUngotTaken |
                           kReadAhead | kEof | kHandleEof)) |
             kReposition;
  long at = __syscall_lseek(s->handle, position, KV_SEEK_SET);
  s->buffer_position = static_cast<int32_t>(at);
  return at == position;
}

// 4096 bytes a request while more remain; the first answer that is not a full chunk ends it.
template <typename Transfer> size_t in_chunks(size_t total, Transfer transfer) {
  size_t done = 0;
  while (total - done > kChunk) {
    int n = transfer(done, kChunk);
    if (n != static_cast<int>(kChunk))
      return n > 0 ? done + static_cast<size_t>(n) : done;
    done += kChunk;
  }
  int n = transfer(done, total - done);
  return n > 0 ? done + static_cast<size_t>(n) : done;
}

// The system side stands at `cur` after the transfer; the stream's next step starts there.
void reposition(FILE *s, size_t moved, long cur) {
  s->buffer_position += static_cast<int32_t>(moved);
  if (cur >= 0 && !is_standard(s))
    _fseek(s, cur, KV_SEEK_SET);
}

} // namespace

KV_FUNCTION(global, size_t, fread, (void *buffer, size_t size, size_t count, FILE *s)) {
  if (size == 0 || count == 0)
    return 0;
  if (s->flags & kError)
    clearerr(s);
  lock(s);
  if (!(s->flags & kRead)) {
    fail(s);
    __set_errno(KV_EBADF);
    return 0;
  }
  if (!is_standard(s) && !take_position(s))
    return fail(s);
  auto *out = static_cast<unsigned char *>(buffer);
  size_t moved = in_chunks(size * count, [&](size_t at, size_t length) {
    return __syscall_read(s->handle, out + at, length);
  });
  long cur = __syscall_lseek(s->handle, 0, KV_SEEK_CUR);
  long end = __syscall_lseek(s->handle, 0, KV_SEEK_END);
  reposition(s, moved, cur);
  if (end == cur)
    s->flags |= kEof;
  unlock(s);
  return moved / size;
}

KV_FUNCTION(global, size_t, fwrite, (const void *buffer, size_t size, size_t count, FILE *s)) {
  if (size == 0 || count == 0)
    return 0;
  kv::debug_log("KV: (1075) fwrite lock begin\n");
  lock(s);
  if (!(s->flags & kWrite)) {
    fail(s);
    __set_errno(KV_EBADF);
    return 0;
  }
  // The standard streams keep their buffered bytes; those follow this call's.
  if (!is_standard(s) && !take_position(s))
    return fail(s);
  auto *in = static_cast<const unsigned char *>(buffer);
  size_t moved = in_chunks(size * count, [&](size_t at, size_t length) {
    return __syscall_write(s->handle, in + at, length);
  });
  long cur = __syscall_lseek(s->handle, 0, KV_SEEK_CUR);
  reposition(s, moved, cur);
  kv::debug_log("KV: (1151) fwrite lock end\n");
  unlock(s);
  return moved / size;
}
