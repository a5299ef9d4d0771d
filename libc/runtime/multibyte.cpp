// Single-character conversion between bytes and 16-bit wide characters in the current locale.
// A single-byte locale maps a byte to the wide character of the same value when its class
// entry is non-zero; anything else is invalid (-1).
#include <stdint.h>

#include "format/ctype_table.h"
#include "support/export.h"

KV_FUNCTION(protected, int, _mbrtowc, (uint16_t *out, int byte, void *state)) {
  const kv::locale::CharTable &t = kv::locale::current_table();
  auto b = static_cast<unsigned char>(byte);
  if (t.to_wide)
    return t.to_wide(out, b, state);
  if (!t.classes[b])
    return -1;
  if (out)
    *out = b;
  return 1;
}

KV_FUNCTION(protected, int, _wcrtomb, (char *out, int wide, void *state)) {
  const kv::locale::CharTable &t = kv::locale::current_table();
  auto w = static_cast<uint16_t>(wide);
  if (t.to_bytes)
    return t.to_bytes(out, w, state);
  if (w >= 256 || !t.classes[w])
    return -1;
  if (out)
    *out = static_cast<char>(w);
  return 1;
}
