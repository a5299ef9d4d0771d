// The byte-format front end of the engine.
#include "printf/state.h"

namespace kv::printf {

int next_byte(_printf_state *state) { return static_cast<unsigned char>(*state->format_cursor++); }

} // namespace kv::printf

KV_FUNCTION(protected, int, _printf_char_common,
            (const char *format, void *sink, _printf_args args, _printf_put_fn put_char)) {
  _printf_state state;
  state.put_char = put_char;
  state.sink = sink;
  state.next_format_char = kv::printf::next_byte;
  state.format_cursor = format;
  state.wide_hook = nullptr;
  return __printf(&state, args);
}
