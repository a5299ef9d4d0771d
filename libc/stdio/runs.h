// Runs of characters into a stream, left exactly as that many put_char calls would leave it.
// Inline, for the formatting engine's stream sink in the library and fputs and puts in the
// program's front door.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "stdio/stream.h"
#include "string/word.h"

extern "C" void __aeabi_memcpy(void *to, const void *from, size_t n);

namespace kv::stdio {

// ARMv7 loads and stores single words at any alignment; the compiler, told nothing of that,
// would go byte by byte.
inline uint32_t load_any_word(const char *from) {
  uint32_t w;
  __asm__("ldr %0, %1" : "=r"(w) : "m"(*reinterpret_cast<const char(*)[4]>(from)));
  return w;
}
inline void store_any_word(unsigned char *to, uint32_t w) {
  __asm__("str %1, %0" : "=m"(*reinterpret_cast<unsigned char(*)[4]>(to)) : "r"(w));
}

// How many characters a steady line-buffered stream stores without writing out (while none is
// a newline): up to its last free byte. 0 for any other stream; a stream whose cursor lies
// below the data end is left to the character path too.
inline size_t steady_line_room(const FILE *s) {
  if (!steady_line_output(s) || s->cursor < s->high_water)
    return 0;
  int32_t room = static_cast<int32_t>(s->buffer_size) - 1 - (s->cursor - s->buffer);
  return room > 0 ? static_cast<size_t>(room) : 0;
}

// Copies the characters before the first newline, at most limit of them; returns how many.
inline size_t copy_before_newline(unsigned char *to, const char *from, size_t limit) {
  const char *start = from, *end = from + limit;
  for (size_t words = limit >> 2; words; --words, from += 4, to += 4) {
    uint32_t w = load_any_word(from);
    if (str::zero_bytes(w ^ str::repeat('\n')))
      break;
    store_any_word(to, w);
  }
  for (; from < end && *from != '\n'; ++from, ++to)
    *to = static_cast<unsigned char>(*from);
  return static_cast<size_t>(from - start);
}

// Pieces that need no decision go straight into the buffer: what the count still allows in a
// fully buffered stream, or the bytes of a steady line-buffered one up to a newline or the last
// free byte. The character that ends a piece takes __flsbuf, as it would on its own; the first
// failure ends the run with -1 (later characters would fail the same way and change nothing).
__attribute__((noinline)) inline int put_run_in_pieces(FILE *s, const char *text, size_t n) {
  while (n) {
    size_t piece = 0;
    if (s->write_count > 0) {
      piece = n < static_cast<size_t>(s->write_count) ? n : static_cast<size_t>(s->write_count);
      s->write_count -= static_cast<int32_t>(piece);
      __aeabi_memcpy(s->cursor, text, piece);
    } else if (size_t room = steady_line_room(s)) {
      piece = copy_before_newline(s->cursor, text, n < room ? n : room);
      s->read_count = 0;
    }
    if (piece) {
      s->cursor += piece;
    } else {
      if (__flsbuf(static_cast<unsigned char>(*text), s) == -1)
        return -1;
      piece = 1;
    }
    text += piece;
    n -= piece;
  }
  return 0;
}

// The common case first: a fully buffered stream with room for the whole run.
inline int put_run(FILE *s, const char *text, size_t n) {
  if (s->write_count > 0 && n <= static_cast<size_t>(s->write_count)) {
    __aeabi_memcpy(s->cursor, text, n);
    s->cursor += n;
    s->write_count -= static_cast<int32_t>(n);
    return 0;
  }
  return put_run_in_pieces(s, text, n);
}

} // namespace kv::stdio
