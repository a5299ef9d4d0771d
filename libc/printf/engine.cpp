// The format interpreter: flags, width, precision and length, then the conversion letter goes
// to the handlers in a fixed order. Where the characters go is the caller's business.
#include "printf/state.h"
#include "string/word.h"

using namespace kv::printf;

namespace {

// Flag characters ' '..'0'; 0 ends the flags.
constexpr uint8_t kFlagBits[17] = {PF_SPACE, 0, 0, PF_ALT, 0, 0, 0, 0, 0,
                                   0,        0, PF_PLUS, 0, PF_LEFT, 0, 0, PF_ZERO};

// Lower-case letters other than the length modifiers h, j, l, t and z.
constexpr uint32_t kBareLetters =
    ((1u << 26) - 1) & ~(1u << ('h' - 'a') | 1u << ('j' - 'a') | 1u << ('l' - 'a') | 1u << ('t' - 'a') |
                         1u << ('z' - 'a'));

inline bool digit(int c) { return static_cast<unsigned>(c - '0') < 10; }

// Any format reader, one call per character.
struct CallReader {
  _printf_state *state;
  int next() { return state->next_format_char(state); }
  // Writes plain text up to the next '%' or the end; returns that '%' or 0.
  int text() {
    for (;;) {
      int c = next();
      if (c == 0 || c == '%')
        return c;
      put(state, c);
      ++state->count;
    }
  }
};

// The byte reader's own work done in place, and plain text passed on in runs.
struct ByteReader {
  _printf_state *state;
  const unsigned char *cursor;
  int next() { return *cursor++; }
  int text() {
    const unsigned char *start = cursor, *p = cursor;
    unsigned c;
    // Bytes to a word boundary, then whole words without a terminator or '%' (an aligned word
    // never reaches a page the format does not touch), then the bytes of the word that stops.
    // A local cursor: the reader's own may alias whatever the sink writes.
    for (; reinterpret_cast<uintptr_t>(p) & 3; ++p)
      if ((c = *p) == 0 || c == '%')
        goto found;
    for (;; p += 4) {
      uint32_t w = *reinterpret_cast<const kv::str::word *>(p);
      if (kv::str::zero_bytes(w) | kv::str::zero_bytes(w ^ kv::str::repeat('%')))
        break;
    }
    while ((c = *p) != 0 && c != '%')
      ++p;
  found:
    cursor = p + 1;
    int32_t n = static_cast<int32_t>(p - start);
    if (n) {
      emit(state, reinterpret_cast<const char *>(start), n);
      state->count += n;
    }
    return static_cast<int>(c);
  }
  void finish() { state->format_cursor = reinterpret_cast<const char *>(cursor); }
};

} // namespace

namespace kv::printf {
int print_dec32(_printf_state *state, int letter, _printf_args args);
int print_dec64(_printf_state *state, int letter, _printf_args args);
int print_count(_printf_state *state, int letter, _printf_args args);
} // namespace kv::printf

// One switch on the letter; within a letter the length flags choose the handler as the order
// "n p f e g a, then ll for d i u o x, then l or ll for c s" would.
static int _printf_dispatch(_printf_state *state, int letter, _printf_args args) {
  uint32_t flags = state->flags;
  switch (letter) {
  case 'n':
    return print_count(state, letter, args);
  case 'p':
    return _printf_hex_ptr(state, letter, args);
  case 'f':
  case 'e':
  case 'g':
    return _printf_fp_dec_real(state, letter, args);
  case 'a':
    return _printf_fp_hex_real(state, letter, args);
  case 'd':
  case 'i':
  case 'u':
    return (flags & PF_LONGLONG) ? print_dec64(state, letter, args) : print_dec32(state, letter, args);
  case 'o':
    return (flags & PF_LONGLONG) ? _printf_ll_oct(state, letter, args) : _printf_int_oct(state, letter, args);
  case 'x':
    return (flags & PF_LONGLONG) ? _printf_ll_hex(state, letter, args) : _printf_int_hex(state, letter, args);
  case 'c':
    return (flags & (PF_LONG | PF_LONGLONG)) ? _printf_wchar(state, letter, args) : _printf_char(state, letter, args);
  case 's':
    return (flags & (PF_LONG | PF_LONGLONG)) ? _printf_wstring(state, letter, args)
                                             : _printf_string(state, letter, args);
  }
  return _printf_percent_end(state, letter, args);
}

KV_PRINTF_HANDLER(_printf_percent_end) { return 0; }

namespace {

// One conversion: the handler for the letter, then past the argument words it used (a
// double word starts 8-aligned); a letter no handler takes is printed as itself.
inline _printf_args convert(_printf_state *state, int c, _printf_args args) {
  int used = _printf_dispatch(state, c, args);
  if (used == 0) {
    put(state, c);
    ++state->count;
    return args;
  }
  if (used == 1)
    return args + 1;
  return reinterpret_cast<_printf_args>((reinterpret_cast<uintptr_t>(args) + 7) & ~uintptr_t{7}) + 2;
}

// A bare letter: no flags, width or precision.
inline _printf_args convert_bare(_printf_state *state, int c, _printf_args args) {
  state->flags = 0;
  state->width = 0;
  state->precision = 0;
  return convert(state, c, args);
}

template <typename Reader> int interpret(Reader &in, _printf_args args) {
  _printf_state *state = in.state;
  state->count = 0;
  for (;;) {
    int c = in.text();
    if (c == 0)
      return state->count;
    c = in.next();
    // Most conversions are a bare lower-case letter that is not a length modifier.
    if (static_cast<unsigned>(c - 'a') < 26 && (kBareLetters >> (c - 'a') & 1)) {
      args = convert_bare(state, c, args);
      continue;
    }
    uint32_t flags = 0;
    for (bool first = true;; first = false) {
      if (!first)
        c = in.next();
      unsigned index = static_cast<unsigned>(c - 0x20);
      if (index > 0x10 || !kFlagBits[index])
        break;
      flags |= kFlagBits[index];
    }
    if (flags & PF_PLUS)
      flags &= ~PF_SPACE;

    int32_t width = 0, precision = 0;
    if (c == '*') {
      width = static_cast<int32_t>(*args++);
      c = in.next();
    } else {
      for (; digit(c); c = in.next())
        width = width * 10 + (c - '0');
    }
    if (c == '.') {
      flags |= PF_PRECISION;
      c = in.next();
      if (c == '*') {
        precision = static_cast<int32_t>(*args++);
        c = in.next();
        if (precision < 0)
          flags &= ~PF_PRECISION;
      } else {
        for (; digit(c); c = in.next())
          precision = precision * 10 + (c - '0');
      }
    }
    if (width < 0) {
      width = -width;
      flags |= PF_LEFT;
    }
    if (flags & PF_LEFT)
      flags &= ~PF_ZERO;

    if (c == 'l') {
      c = in.next();
      if (c == 'l') {
        flags |= PF_LONGLONG;
        c = in.next();
      } else {
        flags |= PF_LONG;
      }
    } else if (c == 'h') {
      c = in.next();
      if (c == 'h') {
        flags |= PF_CHAR;
        c = in.next();
      } else {
        flags |= PF_SHORT;
      }
    } else if (c == 'j') {
      flags |= PF_LONGLONG;
      c = in.next();
    } else if (c == 'L' || c == 't' || c == 'z') {
      c = in.next();
    }

    if (c == 0)
      return state->count;
    if (static_cast<unsigned>(c - 'A') < 26) {
      flags |= PF_UPPER;
      c += 'a' - 'A';
    }
    state->flags = flags;
    state->width = width;
    state->precision = precision;
    args = convert(state, c, args);
  }
}

} // namespace

namespace kv::printf {

// The memory front doors' way in: their format is bytes, so the reader is never called and the
// cursor is nobody's business afterwards. A format that is one bare conversion goes straight to
// its handler.
int format_bytes(_printf_state *state, const char *format, _printf_args args) {
  unsigned c = static_cast<unsigned char>(format[1]);
  if (format[0] == '%' && c - 'a' < 26 && (kBareLetters >> (c - 'a') & 1) && format[2] == 0) {
    // convert_bare's work, without the argument step nobody reads: it costs instructions here.
    state->count = 0;
    state->flags = 0;
    state->width = 0;
    state->precision = 0;
    if (_printf_dispatch(state, static_cast<int>(c), args) == 0) {
      put(state, static_cast<int>(c));
      ++state->count;
    }
    return state->count;
  }
  ByteReader in{state, reinterpret_cast<const unsigned char *>(format)};
  return interpret(in, args);
}

} // namespace kv::printf

KV_FUNCTION(protected, int, __printf, (_printf_state * state, _printf_args args)) {
  if (state->next_format_char == next_byte) {
    ByteReader in{state, reinterpret_cast<const unsigned char *>(state->format_cursor)};
    int count = interpret(in, args);
    in.finish();
    return count;
  }
  CallReader in{state};
  return interpret(in, args);
}
