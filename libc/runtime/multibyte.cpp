// Single-character conversion between bytes and 16-bit wide characters in the current locale.
// The built-in locales are all single-byte: a byte maps to the wide character of the same value
// when its class entry is non-zero; anything else is invalid (-1).
#include <stdint.h>

#include "locale/record.h"
#include "support/export.h"

KV_FUNCTION(protected, int, _mbrtowc, (uint16_t *out, int byte, void *)) {
  auto b = static_cast<unsigned char>(byte);
  if (!kv::locale::class_table()[b])
    return -1;
  if (out)
    *out = b;
  return 1;
}

KV_FUNCTION(protected, int, _wcrtomb, (char *out, int wide, void *)) {
  auto w = static_cast<uint16_t>(wide);
  if (w >= 256 || !kv::locale::class_table()[w])
    return -1;
  if (out)
    *out = static_cast<char>(w);
  return 1;
}
