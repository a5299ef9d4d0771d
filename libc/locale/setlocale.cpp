// Selecting and naming the current locale, one category or several at a time.
#include "locale/setlocale.h"

#include <stdint.h>

#include "locale/blocks.h"
#include "locale/record.h"
#include "string/string_internal.h"
#include "support/export.h"

namespace kv::locale {

namespace {

bool same(const char *a, const char *b) { return strcmp(a, b) == 0; }

// Ctype and collate know one locale only, and it is also what the empty name means.
bool names_latin1(const char *name) { return !name || !*name || same(name, "ISO8859-1"); }

const unsigned char *find_ctype(const char *name) {
  return names_latin1(name) ? ctype_iso8859_1 + 1 : nullptr;
}

const unsigned char *find_collate(const char *name) {
  return names_latin1(name) ? collate_iso8859_1 : nullptr;
}

const unsigned char *find_exact(const unsigned char *a, const unsigned char *b, const char *name) {
  if (!name)
    return nullptr;
  if (same(block_name(a), name))
    return a;
  if (same(block_name(b), name))
    return b;
  return nullptr;
}

const unsigned char *find_monetary(const char *name) {
  return find_exact(monetary_c, monetary_iso8859_1, name);
}
const unsigned char *find_numeric(const char *name) {
  return find_exact(numeric_c, numeric_iso8859_1, name);
}
const unsigned char *find_time(const char *name) { return find_exact(time_c, time_fi, name); }

struct Category {
  int mask;
  Slot slot;
  const unsigned char *(*find)(const char *name);
};

// The order in which a name is applied; the first refusal stops there.
constexpr Category categories[] = {
    {mask_ctype, slot_ctype, find_ctype},
    {mask_collate, slot_collate, find_collate},
    {mask_monetary, slot_monetary, find_monetary},
    {mask_numeric, slot_numeric, find_numeric},
    {mask_time, slot_time, find_time},
};

const char *slot_name(int slot) {
  const unsigned char *data = record[slot];
  if (!data)
    return "C";
  return block_name(slot == slot_ctype ? data - 1 : data);
}

int hex_value(char c) {
  if (c >= '0' && c <= '9')
    return c - '0';
  if (c >= 'a' && c <= 'f')
    return c - 'a' + 10;
  return -1;
}

// "*" and five 8-digit lower-case hexadecimal words; anything else is not a composite name.
bool decode_composite(const char *name, uint32_t (&values)[slot_count]) {
  const char *p = name + 1;
  for (uint32_t &v : values) {
    v = 0;
    for (int i = 0; i < 8; ++i, ++p) {
      int d = hex_value(*p);
      if (d < 0)
        return false;
      v = v << 4 | static_cast<uint32_t>(d);
    }
  }
  return *p == 0;
}

void encode_composite(char *buffer) {
  static constexpr char digits[] = "0123456789abcdef";
  *buffer++ = '*';
  for (const unsigned char *slot : record) {
    auto v = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(slot));
    for (int shift = 28; shift >= 0; shift -= 4)
      *buffer++ = digits[(v >> shift) & 15];
  }
  *buffer = 0;
}

} // namespace

char *set_locale(char *buffer, int mask, const char *name) {
  if (mask <= 0 || mask >= 32)
    return nullptr;
  if (name && name[0] == '*') {
    uint32_t values[slot_count];
    if (!decode_composite(name, values))
      return nullptr;
    for (int s = 0; s < slot_count; ++s)
      if (mask & (1 << s))
        record[s] = reinterpret_cast<const unsigned char *>(static_cast<uintptr_t>(values[s]));
  } else if (name) {
    for (const Category &c : categories) {
      if (!(mask & c.mask))
        continue;
      const unsigned char *data = c.find(name);
      if (!data)
        return nullptr;
      record[c.slot] = data;
    }
  }
  if ((mask & (mask - 1)) == 0)
    return const_cast<char *>(slot_name(__builtin_ctz(static_cast<unsigned>(mask))));
  encode_composite(buffer);
  return buffer;
}

} // namespace kv::locale

KV_FUNCTION(protected, char *, _setlocale_r, (char *buffer, int mask, const char *name)) {
  return kv::locale::set_locale(buffer, mask, name);
}

extern "C" char *setlocale(int mask, const char *name) {
  static char buffer[kv::locale::composite_size];
  return kv::locale::set_locale(buffer, mask, name);
}
