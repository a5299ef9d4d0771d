// The memory sinks and the byte-format front end of the engine.
#include "printf/state.h"

KV_FUNCTION(protected, void, _sputc, (int ch, void *sink)) {
  auto *s = static_cast<_sputc_sink *>(sink);
  *s->next++ = static_cast<char>(ch);
}

// The byte at `end` stays free for the terminator.
KV_FUNCTION(protected, void, _snputc, (int ch, void *sink)) {
  auto *s = static_cast<_snputc_sink *>(sink);
  if (reinterpret_cast<uintptr_t>(s->next) < reinterpret_cast<uintptr_t>(s->end))
    *s->next++ = static_cast<char>(ch);
}

static int next_byte(_printf_state *state) {
  return static_cast<unsigned char>(*state->format_cursor++);
}

KV_FUNCTION(protected, int, _printf_char_common,
            (const char *format, void *sink, _printf_args args, _printf_put_fn put_char)) {
  _printf_state state;
  state.put_char = put_char;
  state.sink = sink;
  state.next_format_char = next_byte;
  state.format_cursor = format;
  state.wide_hook = nullptr;
  return __printf(&state, args);
}
