// %d, %i and %u, 32-bit and 64-bit. Digits come from the reciprocal division by ten.
#include "printf/state.h"
#include "runtime/udiv10.h"

using namespace kv::printf;

namespace {

// The prefix for a signed conversion of a non-negative value.
int sign_prefix(uint32_t flags, const char *&prefix) {
  if (flags & PF_PLUS) {
    prefix = "+";
    return 1;
  }
  if (flags & PF_SPACE) {
    prefix = " ";
    return 1;
  }
  return 0;
}

} // namespace

namespace kv::printf {

int print_dec32(_printf_state *state, int letter, _printf_args args) {
  uint32_t v = args[0];
  uint32_t flags = state->flags;
  const char *prefix = "";
  int prefixlen = 0;
  if (letter == 'u') {
    if (flags & PF_CHAR)
      v &= 0xFF;
    else if (flags & PF_SHORT)
      v &= 0xFFFF;
  } else {
    int32_t s = static_cast<int32_t>(v);
    if (flags & PF_CHAR)
      s = static_cast<int8_t>(s);
    else if (flags & PF_SHORT)
      s = static_cast<int16_t>(s);
    if (s < 0) {
      v = 0u - static_cast<uint32_t>(s);
      prefix = "-";
      prefixlen = 1;
    } else {
      v = static_cast<uint32_t>(s);
      prefixlen = sign_prefix(flags, prefix);
    }
  }
  int n = 0;
  while (v) {
    kv::rt::div10_t<uint32_t> d = kv::rt::udiv10_32(v);
    state->digits[n++] = static_cast<char>('0' + d.rem);
    v = d.quot;
  }
  return _printf_int_common(state, n, prefix, prefixlen);
}

int print_dec64(_printf_state *state, int letter, _printf_args args) {
  uint64_t v = double_word(args);
  const char *prefix = "";
  int prefixlen = 0;
  if (letter != 'u') {
    if (static_cast<int64_t>(v) < 0) {
      v = 0 - v;
      prefix = "-";
      prefixlen = 1;
    } else {
      prefixlen = sign_prefix(state->flags, prefix);
    }
  }
  int n = 0;
  // Whole 64-bit steps only while the value needs them.
  while (v >> 32) {
    kv::rt::div10_t<uint64_t> d = kv::rt::udiv10_64(v);
    state->digits[n++] = static_cast<char>('0' + d.rem);
    v = d.quot;
  }
  for (uint32_t w = static_cast<uint32_t>(v); w;) {
    kv::rt::div10_t<uint32_t> d = kv::rt::udiv10_32(w);
    state->digits[n++] = static_cast<char>('0' + d.rem);
    w = d.quot;
  }
  return _printf_int_common(state, n, prefix, prefixlen);
}

} // namespace kv::printf
