// %o, %x and %p: digits by shifting, from the lower- or upper-case table.
#include "printf/state.h"

using namespace kv::printf;

namespace {

// 16 is the '@' of "%#p", 17-18 the "0x" prefix.
constexpr char kLower[] = "0123456789abcdef@0x";
constexpr char kUpper[] = "0123456789ABCDEF@0X";

uint32_t narrow_unsigned(uint32_t v, uint32_t flags) {
  if (flags & PF_CHAR)
    return v & 0xFF;
  if (flags & PF_SHORT)
    return v & 0xFFFF;
  return v;
}

int octal(_printf_state *state, uint64_t v) {
  const char *prefix = "";
  int prefixlen = 0;
  if ((state->flags & PF_ALT) && ((state->flags & PF_PRECISION) || v)) {
    prefix = "0";
    prefixlen = 1;
    --state->precision;
  }
  char *end = state->digits + sizeof state->digits, *first = end;
  for (; v; v >>= 3)
    *--first = static_cast<char>('0' + (v & 7));
  return int_layout(state, first, static_cast<int>(end - first), prefix, prefixlen);
}

int hex(_printf_state *state, int letter, uint64_t v) {
  const char *table = (state->flags & PF_UPPER) ? kUpper : kLower;
  const char *prefix = "";
  int prefixlen = 0;
  if ((state->flags & PF_ALT) && v) {
    if (letter == 'p') {
      prefix = table + 16;
      prefixlen = 1;
    } else {
      prefix = table + 17;
      prefixlen = 2;
    }
  }
  char *end = state->digits + sizeof state->digits, *first = end;
  uint32_t hi = static_cast<uint32_t>(v >> 32), lo = static_cast<uint32_t>(v);
  for (; hi; hi >>= 4) {
    *--first = table[lo & 15];
    lo = lo >> 4 | hi << 28;
  }
  for (; lo; lo >>= 4)
    *--first = table[lo & 15];
  return int_layout(state, first, static_cast<int>(end - first), prefix, prefixlen);
}

} // namespace

KV_PRINTF_HANDLER(_printf_int_oct) { return octal(state, narrow_unsigned(args[0], state->flags)); }
KV_PRINTF_HANDLER(_printf_ll_oct) { return octal(state, double_word(args)); }
KV_PRINTF_HANDLER(_printf_int_hex) { return hex(state, letter, narrow_unsigned(args[0], state->flags)); }
KV_PRINTF_HANDLER(_printf_ll_hex) { return hex(state, letter, double_word(args)); }

// Always eight digits and no "0x".
KV_PRINTF_HANDLER(_printf_hex_ptr) {
  state->flags |= PF_PRECISION;
  state->precision = 8;
  return hex(state, letter, args[0]);
}
