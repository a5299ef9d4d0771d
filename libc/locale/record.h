// The current locale: five process-wide slots, one per category, each holding the data start
// of a built-in block (the ctype slot holds the class byte of character 0 instead). A zero slot
// reads as "C".
#pragma once

#include <stdint.h>

namespace kv::locale {

enum : int {
  mask_collate = 1,
  mask_ctype = 2,
  mask_monetary = 4,
  mask_numeric = 8,
  mask_time = 16,
  mask_all = 31,
};

enum Slot : int { slot_collate, slot_ctype, slot_monetary, slot_numeric, slot_time, slot_count };

extern const unsigned char *record[slot_count];

// Puts the initial locale in place; start-up calls it before anything is classified.
void init_record();

// The current class table, indexed by character -1 to 255.
inline const unsigned char *class_table() { return record[slot_ctype]; }

// Blocks are byte images; their words are read through an aliasing type.
using block_word = uint32_t __attribute__((may_alias));

inline uint32_t data_word(const unsigned char *data, unsigned index) {
  return reinterpret_cast<const block_word *>(data)[index];
}

inline const char *data_text(const unsigned char *data, uint32_t offset) {
  return reinterpret_cast<const char *>(data + offset);
}

// The name a block keeps in front of its data.
inline const char *block_name(const unsigned char *data) {
  return reinterpret_cast<const char *>(data) + static_cast<int32_t>(data_word(data - 4, 0));
}

} // namespace kv::locale
