// The current locale's character table as the rest of the library reads it. Until the locale
// machinery exists the only locale is "C": single-byte, classes for the 128 ASCII codes and
// none for the upper half.
#pragma once

#include <stdint.h>

namespace kv::locale {

enum : unsigned char {
  class_upper = 0x01,
  class_lower = 0x02,
  class_digit = 0x04,
  class_space = 0x08,
  class_punct = 0x10,
  class_control = 0x20,
  class_hex = 0x40,
  class_blank = 0x80,
};

struct CharTable {
  const unsigned char *classes; // 256 entries, indexed by byte value
  // Set only in multibyte locales; they convert one character through these.
  int (*to_wide)(uint16_t *out, unsigned char byte, void *state);
  int (*to_bytes)(char *out, uint16_t wide, void *state);
};

const CharTable &current_table();

} // namespace kv::locale
