// The formatting engine's state record, flag bits and handler entry points. One record per
// call, on the caller's stack: the engine allocates nothing and is reentrant.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "support/export.h"

extern "C" {

struct _printf_state;
typedef void (*_printf_put_fn)(int ch, void *sink);
typedef int (*_printf_next_fn)(_printf_state *state);
// The argument words (the EABI va_list pointer).
typedef const uint32_t *_printf_args;

struct _printf_state {
  uint32_t flags;
  _printf_put_fn put_char;
  void *sink;
  _printf_next_fn next_format_char;
  const char *format_cursor;
  void *wide_hook;
  int32_t width;
  int32_t precision;
  int32_t count;
  char digits[24];
};

struct _sputc_sink {
  char *next;
};
struct _snputc_sink {
  char *next;
  char *end;
};

struct _fp_digits_result {
  int exponent; // decimal exponent of the first digit
  int count;    // digits delivered
  int fixed;    // whether fixed-point mode was kept
};

#define KV_PRINTF_HANDLER(name)                                                                   \
  KV_FUNCTION(protected, int, name,                                                               \
              ([[maybe_unused]] _printf_state * state, [[maybe_unused]] int letter,              \
               [[maybe_unused]] _printf_args args))
KV_PRINTF_HANDLER(_printf_int_oct);
KV_PRINTF_HANDLER(_printf_ll_oct);
KV_PRINTF_HANDLER(_printf_int_hex);
KV_PRINTF_HANDLER(_printf_ll_hex);
KV_PRINTF_HANDLER(_printf_hex_ptr);
KV_PRINTF_HANDLER(_printf_char);
KV_PRINTF_HANDLER(_printf_string);
KV_PRINTF_HANDLER(_printf_wchar);
KV_PRINTF_HANDLER(_printf_wstring);
KV_PRINTF_HANDLER(_printf_fp_dec_real);
KV_PRINTF_HANDLER(_printf_fp_hex_real);
KV_PRINTF_HANDLER(_printf_percent_end);

KV_FUNCTION(protected, int, __printf, (_printf_state * state, _printf_args args));
KV_FUNCTION(protected, int, _printf_char_common,
            (const char *format, void *sink, _printf_args args, _printf_put_fn put_char));
KV_FUNCTION(protected, void, _sputc, (int ch, void *sink));
KV_FUNCTION(protected, void, _snputc, (int ch, void *sink));
KV_FUNCTION(protected, int, _printf_int_common,
            (_printf_state * state, int ndigits, const char *prefix, int prefixlen));
KV_FUNCTION(protected, void, _printf_fp_infnan, (_printf_state * state, int letter, int fp_class, int sign));
KV_FUNCTION(protected, void, _printf_fp_digits,
            (_fp_digits_result * result, char *buffer, double value, int n, int fixed));
KV_FUNCTION(protected, int, _fp_classify, (double value));
KV_FUNCTION(protected, int, _is_digit, (int ch));
}

namespace kv::printf {

enum : uint32_t {
  PF_LEFT = 0x1,
  PF_PLUS = 0x2,
  PF_SPACE = 0x4,
  PF_ALT = 0x8,
  PF_ZERO = 0x10,
  PF_PRECISION = 0x20,
  PF_LONG = 0x40,
  PF_LONGLONG = 0x80,
  PF_SHORT = 0x100,
  PF_CHAR = 0x400,
  PF_UPPER = 0x800,
};

enum FpClass { fp_zero = 0, fp_infinite = 3, fp_subnormal = 4, fp_normal = 5, fp_nan = 7 };

void pre_padding(_printf_state *state);
void post_padding(_printf_state *state);

// Runs of characters to the sink; the caller accounts for them in `count`.
void emit(_printf_state *state, const char *text, int32_t n);
void fill(_printf_state *state, int ch, int32_t n);
// A whole NUL-terminated string into a memory sink, cut to the room left; returns its full
// length, or -1 (nothing written) when the sink is not memory.
int32_t emit_string(_printf_state *state, const char *text);

// The reader of a NUL-terminated byte format; the engine reads such a format in place.
int next_byte(_printf_state *state);

// __printf over a NUL-terminated byte format, for front doors that need no cursor afterwards.
int format_bytes(_printf_state *state, const char *format, _printf_args args);

// The field layout of an integer conversion whose digits stand in order at `digits`.
int int_layout(_printf_state *state, const char *digits, int ndigits, const char *prefix,
               int prefixlen);

inline void put(_printf_state *state, int ch) { state->put_char(ch, state->sink); }

// The double word at the next 8-byte-aligned argument address.
inline uint64_t double_word(_printf_args args) {
  auto p = reinterpret_cast<const uint32_t *>((reinterpret_cast<uintptr_t>(args) + 7) & ~uintptr_t{7});
  return static_cast<uint64_t>(p[1]) << 32 | p[0];
}

// Sign character of a floating value: '-', '+', ' ' or 0.
inline char fp_sign(uint32_t flags, uint64_t bits) {
  if (bits >> 63)
    return '-';
  if (flags & PF_PLUS)
    return '+';
  return (flags & PF_SPACE) ? ' ' : 0;
}

} // namespace kv::printf
