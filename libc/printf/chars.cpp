// %c and %s as bytes; with a wide hook they are handed over instead.
#include "printf/state.h"
#include "string/string_internal.h"

using namespace kv::printf;

extern "C" __attribute__((weak)) void _printf_mbtowc(_printf_state *state, const char *text, int length);

namespace {

void emit_chars(_printf_state *state, const char *text, int32_t length) {
  if (state->wide_hook && _printf_mbtowc) {
    _printf_mbtowc(state, text, length);
    return;
  }
  state->count += length;
  state->width -= length;
  if (state->width > 0)
    pre_padding(state);
  emit(state, text, length);
  if (state->width > 0)
    post_padding(state);
}

} // namespace

KV_PRINTF_HANDLER(_printf_char) {
  state->digits[0] = static_cast<char>(args[0]);
  state->digits[1] = 0;
  emit_chars(state, state->digits, 1);
  return 1;
}

KV_PRINTF_HANDLER(_printf_string) {
  const char *text = reinterpret_cast<const char *>(static_cast<uintptr_t>(args[0]));
  if (__builtin_expect(!text, 0))
    text = "(null)";
  // No limit and no padding to place: the length can come out of the copy itself.
  if (!(state->flags & PF_PRECISION) && state->width <= 0 && !state->wide_hook) {
    int32_t length = emit_string(state, text);
    if (length >= 0) {
      state->count += length;
      state->width -= length;
      return 1;
    }
  }
  int32_t length;
  if (state->flags & PF_PRECISION) {
    int32_t limit = state->precision;
    for (length = 0; length < limit && text[length];)
      ++length;
  } else {
    length = static_cast<int32_t>(strlen(text));
  }
  emit_chars(state, text, length);
  return 1;
}
