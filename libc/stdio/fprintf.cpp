// Formatted output to a stream: the engine's character sink is the stream's inline write path,
// under the stream's lock for the whole call.
#include <stdarg.h>

#include "printf/state.h"
#include "stdio/stream.h"
#include "string/word.h"

namespace kv::stdio {
namespace {

// ARMv7 loads and stores single words at any alignment; the compiler, told nothing of that,
// would go byte by byte.
inline uint32_t load_word(const char *from) {
  uint32_t w;
  __asm__("ldr %0, %1" : "=r"(w) : "m"(*reinterpret_cast<const char(*)[4]>(from)));
  return w;
}
inline void store_word(unsigned char *to, uint32_t w) {
  __asm__("str %1, %0" : "=m"(*reinterpret_cast<unsigned char(*)[4]>(to)) : "r"(w));
}

} // namespace

void put_stream(int ch, void *sink) { put_char(ch, static_cast<FILE *>(sink)); }

// Pieces that need no decision go straight into the buffer: what the count still allows in a
// fully buffered stream, or the bytes of a steady line-buffered one up to a newline or the last
// free byte. The character that ends a piece takes __flsbuf, as it would on its own.
void put_stream_run(FILE *s, const char *text, int32_t n) {
  while (n > 0) {
    int32_t piece = 0;
    if (s->write_count > 0) {
      piece = n < s->write_count ? n : s->write_count;
      s->write_count -= piece;
      __builtin_memcpy(s->cursor, text, static_cast<size_t>(piece));
    } else if (steady_line_output(s) && s->cursor >= s->high_water) {
      int32_t room = static_cast<int32_t>(s->buffer_size) - 1 - (s->cursor - s->buffer);
      int32_t limit = n < room ? n : room;
      unsigned char *out = s->cursor;
      for (; piece + 4 <= limit; piece += 4) {
        uint32_t w = load_word(text + piece);
        if (kv::str::zero_bytes(w ^ kv::str::repeat('\n')))
          break;
        store_word(out + piece, w);
      }
      for (; piece < limit && text[piece] != '\n'; ++piece)
        out[piece] = static_cast<unsigned char>(text[piece]);
      s->read_count = 0;
    }
    if (piece == 0) {
      __flsbuf(static_cast<unsigned char>(*text), s);
      piece = 1;
    } else {
      s->cursor += piece;
    }
    text += piece;
    n -= piece;
  }
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
