// Streams over descriptors that are already open on the system side.
#include <kv/abi.h>
#include <kv/syscall.h>

#include "bridge/debug_log.h"
#include "bridge/errno_cells.h"
#include "stdio/stream.h"

using namespace kv::stdio;

namespace {

// Letters in any order; an unknown one starts the flags afresh.
uint32_t mode_flags(const char *mode) {
  uint32_t flags = 0;
  for (; *mode; ++mode) {
    switch (*mode) {
    case 'r':
      flags |= kRead;
      break;
    case 'w':
      flags |= kWrite;
      break;
    case 'a':
      flags |= kAppend | kSeekPending | kReposition | kWrite;
      break;
    case '+':
      flags |= (flags & kRead) ? kRead | kWrite : kRead;
      break;
    case 'b':
      flags |= kBinary;
      break;
    default:
      flags = 0;
      break;
    }
  }
  return flags;
}

} // namespace

KV_FUNCTION(global, FILE *, fdopen, (int fd, const char *mode)) {
  kv::debug_log("KV: (479) fdopen ( %d, %s )\n ", fd, mode);
  if (fd < 0) {
    __set_errno(KV_EBADF);
    return nullptr;
  }
  uint32_t flags = mode_flags(mode);
  if (flags == 0) {
    __set_errno(KV_EINVAL);
    return nullptr;
  }
  FILE *s = take_free_record();
  if (!s) {
    __set_errno(KV_ENOMEM);
    return nullptr;
  }
  s->handle = fd;
  s->flags = flags;
  s->buffer_size = kDefaultBufferSize;
  s->buffer_position = static_cast<int32_t>(__syscall_lseek(fd, 0, KV_SEEK_CUR));
  // The pending seek of an append stream stays where the descriptor stands.
  s->seek_target = s->buffer_position;
  if (s->lock)
    __mutex_destroy(&s->lock);
  __mutex_initialize(&s->lock);
  s->link |= kLinkOpen;
  return s;
}

KV_FUNCTION(global, int, fileno, (FILE * s)) {
  if (!s) {
    __set_errno(KV_EBADF);
    return -1;
  }
  return s->handle;
}
