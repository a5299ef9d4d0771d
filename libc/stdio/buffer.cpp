// Buffers: chosen by setvbuf before the first transfer, or allocated by that transfer.
#include "alloc/malloc.h"
#include "stdio/retarget.h"
#include "stdio/stream.h"

using namespace kv::stdio;

namespace kv::stdio {

// A stream without a buffer gets one at its first transfer; without memory it goes unbuffered.
void allocate_buffer(FILE *s) {
  _sys_istty(s->handle);
  auto *block = static_cast<unsigned char *>(kv::malloc(s->buffer_size));
  if (block) {
    s->buffer = block;
    s->flags |= kOwnBuffer;
    if (!(s->flags & kBufferModes))
      s->flags |= kFullyBuffered;
  } else {
    s->buffer = s->small_buffer;
    s->buffer_size = 1;
    s->flags = (s->flags & ~kBufferModes) | kUnbuffered;
  }
  s->cursor = s->high_water = s->buffer;
}

} // namespace kv::stdio

namespace {
constexpr size_t kMaxBufferSize = 0xFFFFFF;

int set_buffering(FILE *s, char *buffer, int mode, size_t size) {
  if (!is_open(s) || (s->flags & kIoStarted))
    return -1;
  auto *base = reinterpret_cast<unsigned char *>(buffer);
  switch (static_cast<uint32_t>(mode)) {
  case kFullyBuffered:
  case kLineBuffered:
    if (size < 1 || size > kMaxBufferSize)
      return -1;
    break;
  case kUnbuffered:
    base = s->small_buffer;
    size = 1;
    break;
  default:
    return -1;
  }
  s->buffer = s->cursor = s->high_water = base;
  s->buffer_size = static_cast<uint32_t>(size);
  s->flags = (s->flags & ~kBufferModes) | static_cast<uint32_t>(mode);
  return 0;
}
} // namespace

KV_FUNCTION(global, int, setvbuf, (FILE * s, char *buffer, int mode, size_t size)) {
  lock(s);
  int result = set_buffering(s, buffer, mode, size);
  unlock(s);
  return result;
}
