// The memory sinks, and runs of characters: into a memory sink they are stored directly, into a
// stream in pieces, into any other sink one put_char call each.
#include "printf/state.h"
#include "string/string_internal.h"

#if defined(__arm__)
#include "runtime/block_memory.h"
#include "stdio/stream.h"
#endif

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

namespace kv::printf {
namespace {

// Four bytes from any address to any address. ARMv7 loads and stores single words unaligned
// (the block copy relies on it too); the compiler, told nothing of that, would go byte by byte.
inline void copy_word(char *to, const char *from) {
#if defined(__arm__)
  uint32_t w;
  __asm__("ldr %0, %1" : "=r"(w) : "m"(*reinterpret_cast<const char(*)[4]>(from)));
  __asm__("str %1, %0" : "=m"(*reinterpret_cast<char(*)[4]>(to)) : "r"(w));
#else
  __builtin_memcpy(to, from, 4);
#endif
}

#if defined(__arm__)
inline void store_word(char *to, uint32_t w) {
  __asm__("str %1, %0" : "=m"(*reinterpret_cast<char(*)[4]>(to)) : "r"(w));
}
#endif

// Where a run of n characters goes in a memory sink, with n cut to the room left; null for
// any other sink.
char *memory_run(_printf_state *state, int32_t &n) {
  if (state->put_char == _snputc) {
    auto *s = static_cast<_snputc_sink *>(state->sink);
    char *next = s->next;
    uintptr_t room = reinterpret_cast<uintptr_t>(s->end) - reinterpret_cast<uintptr_t>(next);
    if (reinterpret_cast<uintptr_t>(next) >= reinterpret_cast<uintptr_t>(s->end))
      room = 0;
    if (static_cast<uint32_t>(n) > room)
      n = static_cast<int32_t>(room);
    s->next = next + n;
    return next;
  }
  if (state->put_char == _sputc) {
    auto *s = static_cast<_sputc_sink *>(state->sink);
    char *next = s->next;
    s->next = next + n;
    return next;
  }
  return nullptr;
}

} // namespace

void emit(_printf_state *state, const char *text, int32_t n) {
  if (n <= 0)
    return;
  if (char *out = memory_run(state, n)) {
    if (n >= 16) {
#if defined(__arm__)
      kv::mem_copy(out, text, static_cast<size_t>(n));
#else
      __builtin_memcpy(out, text, static_cast<size_t>(n));
#endif
      return;
    }
    // Most runs are digits or short words: a word at a time, at any alignment.
    for (; n >= 4; n -= 4, out += 4, text += 4)
      copy_word(out, text);
    for (; n > 0; --n)
      *out++ = *text++;
    return;
  }
#if defined(__arm__)
  // In the library (not the host build of the engine) streams take runs too.
  if (state->put_char == kv::stdio::put_stream) {
    kv::stdio::put_stream_run(static_cast<FILE *>(state->sink), text, n);
    return;
  }
#endif
  for (int32_t i = 0; i < n; ++i)
    put(state, static_cast<unsigned char>(text[i]));
}

int32_t emit_string(_printf_state *state, const char *text) {
  char **next;
  uint32_t room;
  if (state->put_char == _snputc) {
    auto *s = static_cast<_snputc_sink *>(state->sink);
    next = &s->next;
    room = reinterpret_cast<uintptr_t>(s->end) - reinterpret_cast<uintptr_t>(s->next);
    if (reinterpret_cast<uintptr_t>(s->next) >= reinterpret_cast<uintptr_t>(s->end))
      room = 0;
  } else if (state->put_char == _sputc) {
    next = &static_cast<_sputc_sink *>(state->sink)->next;
    room = UINT32_MAX;
  } else {
    return -1;
  }
  const char *p = text;
  char *out = *next;
#if defined(__arm__)
  // Aligned loads never reach into the next page, whatever follows the terminator. The head
  // before the first aligned word is at most three bytes; with room for a word it needs no
  // room check, and with less the byte loop below does it all.
  if (room >= 4) {
    for (; reinterpret_cast<uintptr_t>(p) & 3; ++p, --room) {
      char c = *p;
      if (!c)
        goto found;
      *out++ = c;
    }
  }
  for (; room >= 4; p += 4, out += 4, room -= 4) {
    uint32_t w;
    __builtin_memcpy(&w, __builtin_assume_aligned(p, 4), 4);
    if ((w - 0x01010101u) & ~w & 0x80808080u)
      break;
    store_word(out, w);
  }
#endif
  for (; room; ++p, --room) {
    if (!*p)
      goto found;
    *out++ = *p;
  }
  // The buffer is full: the rest of the string is only counted.
  *next = out;
  return static_cast<int32_t>(p - text + strlen(p));
found:
  *next = out;
  return static_cast<int32_t>(p - text);
}

void fill(_printf_state *state, int ch, int32_t n) {
  if (n <= 0)
    return;
  if (char *out = memory_run(state, n)) {
    for (int32_t i = 0; i < n; ++i)
      out[i] = static_cast<char>(ch);
    return;
  }
  for (int32_t i = 0; i < n; ++i)
    put(state, ch);
}

} // namespace kv::printf
