// Formatted output to a stream: the engine's character sink is the stream's inline write path,
// under the stream's lock for the whole call.
#include <stdarg.h>

#include "printf/state.h"
#include "stdio/runs.h"
#include "stdio/stream.h"

namespace kv::stdio {

void put_stream(int ch, void *sink) { put_char(ch, static_cast<FILE *>(sink)); }
// Most runs of formatted text go to a line-buffered stream, fit it and hold no newline: they
// are only copied. The rest, and whatever follows a newline, goes in pieces.
void put_stream_run(FILE *s, const char *text, int32_t n) {
  size_t left = static_cast<size_t>(n);
  if (left <= steady_line_room(s)) {
    size_t copied = copy_before_newline(s->cursor, text, left);
    s->cursor += copied;
    s->read_count = 0;
    if (copied == left)
      return;
    text += copied;
    left -= copied;
  }
  put_run_in_pieces(s, text, left);
}

} // namespace kv::stdio

using kv::stdio::put_stream;

KV_FUNCTION(protected, int, _printf_char_file, (const char *format, FILE *s, _printf_args args)) {
  kv::stdio::lock(s);
  int count = _printf_char_common(format, s, args, put_stream);
  bool failed = (s->flags & kv::stdio::kError) != 0;
  kv::stdio::unlock(s);
  return failed ? -1 : count;
}

extern "C" int fprintf(FILE *s, const char *format, ...) {
  va_list args;
  va_start(args, format);
  int count = _printf_char_file(format, s, __builtin_bit_cast(_printf_args, args));
  va_end(args);
  return count;
}
