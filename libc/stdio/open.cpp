// Opening, reopening and closing a stream record, and taking a free record from the list.
#include "alloc/malloc.h"
#include "stdio/retarget.h"
#include "stdio/stream.h"

using namespace kv::stdio;

namespace kv::stdio {

void clear_record(FILE *s) {
  auto *bytes = reinterpret_cast<unsigned char *>(s);
  for (size_t i = 0; i < offsetof(FILE, lock); ++i)
    bytes[i] = 0;
}

int open_record(FILE *s, const char *name, const char *mode) {
  _fclose_internal(s);
  uint32_t flags;
  int open_mode;
  switch (*mode) {
  case 'r':
    flags = kRead, open_mode = 0;
    break;
  case 'w':
    flags = kWrite, open_mode = kModeWrite;
    break;
  case 'a':
    flags = kAppend | kWrite, open_mode = kModeAppend;
    break;
  default:
    return -1;
  }
  for (const char *m = mode + 1; *m; ++m) {
    if (*m == '+') {
      flags |= kRead | kWrite;
      open_mode |= kModeUpdate;
    } else if (*m == 'b') {
      flags |= kBinary;
      open_mode |= kModeBinary;
    } else {
      if (*m == 't')
        open_mode |= kModeText;
      break;
    }
  }
  int handle = _sys_open(name, open_mode);
  if (handle == -1)
    return -1;
  clear_record(s);
  s->flags = flags;
  s->buffer_size = kDefaultBufferSize;
  s->handle = handle;
  if (*mode == 'a')
    _fseek(s, 0, 2);
  s->link |= kLinkOpen;
  return 0;
}

FILE *take_free_record() {
  __mutex_acquire(&_stream_list_lock);
  FILE *last = standard_streams;
  FILE *found = nullptr;
  for (FILE *each = standard_streams; each; each = next_record(each)) {
    if (!(each->link & kLinkOpen)) {
      found = each;
      break;
    }
    last = each;
  }
  if (!found) {
    found = static_cast<FILE *>(kv::malloc(sizeof(FILE)));
    if (found) {
      clear_record(found);
      found->lock = 0;
      found->link = 0;
      __mutex_initialize(&found->lock);
      last->link = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(found)) |
                   (last->link & kLinkOpen);
    }
  }
  __mutex_release(&_stream_list_lock);
  return found;
}

} // namespace kv::stdio

KV_FUNCTION(protected, int, _fclose_internal, (FILE * s)) {
  if (!is_open(s))
    return -1;
  _fflush(s);
  if (_sys_close(s->handle) < 0)
    return -1;
  if (s->flags & kOwnBuffer)
    kv::free(s->buffer);
  clear_record(s);
  s->link &= ~kLinkOpen;
  return 0;
}

KV_FUNCTION(global, FILE *, freopen, (const char *name, const char *mode, FILE *s)) {
  __mutex_acquire(&_stream_list_lock);
  lock(s);
  int result = open_record(s, name, mode);
  unlock(s);
  __mutex_release(&_stream_list_lock);
  return result == 0 ? s : nullptr;
}
