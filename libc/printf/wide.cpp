// %lc and %ls: 16-bit wide characters converted with _wcrtomb, measured in a first pass so that
// the padding can go before the bytes.
#include "printf/state.h"

using namespace kv::printf;

extern "C" {
int _wcrtomb(char *out, int wide, void *state);
__attribute__((weak)) void _printf_wc(_printf_state *state, const uint16_t *text, int single);
}

namespace {

struct Conversion {
  uint32_t state[2] = {0, 0};
};

// A single character is converted even when it is 0.
void emit_wide(_printf_state *state, const uint16_t *text, bool single) {
  if (state->wide_hook && _printf_wc) {
    _printf_wc(state, text, single);
    return;
  }
  bool limited = state->flags & PF_PRECISION;
  char bytes[8];
  Conversion measure;
  int32_t total = 0;
  const uint16_t *stop = text;
  for (; single ? stop == text : *stop != 0; ++stop) {
    int n = _wcrtomb(bytes, *stop, measure.state);
    if (n < 0)
      continue;
    if (limited && total + n > state->precision)
      break;
    total += n;
  }
  state->width -= total;
  pre_padding(state);
  Conversion write;
  for (const uint16_t *p = text; p != stop; ++p) {
    int n = _wcrtomb(bytes, *p, write.state);
    for (int i = 0; i < n; ++i)
      put(state, static_cast<unsigned char>(bytes[i]));
  }
  state->count += total;
  post_padding(state);
}

} // namespace

KV_PRINTF_HANDLER(_printf_wchar) {
  uint16_t c = static_cast<uint16_t>(args[0]);
  emit_wide(state, &c, true);
  return 1;
}

KV_PRINTF_HANDLER(_printf_wstring) {
  auto text = reinterpret_cast<const uint16_t *>(static_cast<uintptr_t>(args[0]));
  static constexpr uint16_t kNull[] = {'(', 'n', 'u', 'l', 'l', ')', 0};
  emit_wide(state, text ? text : kNull, false);
  return 1;
}
