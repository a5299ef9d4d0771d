// The format interpreter: flags, width, precision and length, then the conversion letter goes
// to the handlers in a fixed order. Where the characters go is the caller's business.
#include "printf/state.h"

using namespace kv::printf;

namespace {

// Flag characters ' '..'0'; 0 ends the flags.
constexpr uint8_t kFlagBits[17] = {PF_SPACE, 0, 0, PF_ALT, 0, 0, 0, 0, 0,
                                   0,        0, PF_PLUS, 0, PF_LEFT, 0, 0, PF_ZERO};

inline int next(_printf_state *state) { return state->next_format_char(state); }
inline bool digit(int c) { return static_cast<unsigned>(c - '0') < 10; }

} // namespace

namespace kv::printf {
int print_dec32(_printf_state *state, int letter, _printf_args args);
int print_dec64(_printf_state *state, int letter, _printf_args args);
int print_count(_printf_state *state, int letter, _printf_args args);
} // namespace kv::printf

// The order of the tests decides which length modifiers matter for which letter.
static int _printf_dispatch(_printf_state *state, int letter, _printf_args args) {
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
  }
  uint32_t flags = state->flags;
  unsigned wide = letter | ((flags & PF_LONGLONG) ? 0x80 : 0);
  switch (wide) {
  case 'd':
  case 'i':
  case 'u':
    return print_dec32(state, letter, args);
  case 'o':
    return _printf_int_oct(state, letter, args);
  case 'x':
    return _printf_int_hex(state, letter, args);
  case 'd' | 0x80:
  case 'i' | 0x80:
  case 'u' | 0x80:
    return print_dec64(state, letter, args);
  case 'o' | 0x80:
    return _printf_ll_oct(state, letter, args);
  case 'x' | 0x80:
    return _printf_ll_hex(state, letter, args);
  }
  wide = letter | ((flags & (PF_LONG | PF_LONGLONG)) ? 0x80 : 0);
  switch (wide) {
  case 'c':
    return _printf_char(state, letter, args);
  case 's':
    return _printf_string(state, letter, args);
  case 'c' | 0x80:
    return _printf_wchar(state, letter, args);
  case 's' | 0x80:
    return _printf_wstring(state, letter, args);
  }
  return _printf_percent_end(state, letter, args);
}

KV_PRINTF_HANDLER(_printf_percent_end) { return 0; }

KV_FUNCTION(protected, int, __printf, (_printf_state * state, _printf_args args)) {
  state->count = 0;
  for (;;) {
    int c = next(state);
    if (c == 0)
      return state->count;
    if (c != '%') {
      put(state, c);
      ++state->count;
      continue;
    }
    uint32_t flags = 0;
    for (;;) {
      c = next(state);
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
      c = next(state);
    } else {
      for (; digit(c); c = next(state))
        width = width * 10 + (c - '0');
    }
    if (c == '.') {
      flags |= PF_PRECISION;
      c = next(state);
      if (c == '*') {
        precision = static_cast<int32_t>(*args++);
        c = next(state);
        if (precision < 0)
          flags &= ~PF_PRECISION;
      } else {
        for (; digit(c); c = next(state))
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
      c = next(state);
      if (c == 'l') {
        flags |= PF_LONGLONG;
        c = next(state);
      } else {
        flags |= PF_LONG;
      }
    } else if (c == 'h') {
      c = next(state);
      if (c == 'h') {
        flags |= PF_CHAR;
        c = next(state);
      } else {
        flags |= PF_SHORT;
      }
    } else if (c == 'j') {
      flags |= PF_LONGLONG;
      c = next(state);
    } else if (c == 'L' || c == 't' || c == 'z') {
      c = next(state);
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
    int used = _printf_dispatch(state, c, args);
    if (used == 0) {
      put(state, c);
      ++state->count;
    } else if (used == 1) {
      ++args;
    } else {
      args = reinterpret_cast<_printf_args>((reinterpret_cast<uintptr_t>(args) + 7) & ~uintptr_t{7}) + 2;
    }
  }
}
