// The character class tables: "C" (the initial table; no name selects it) and "ISO8859-1".
#include "locale/block_builder.h"
#include "locale/blocks.h"

namespace kv::locale {

namespace {

struct ClassRange {
  unsigned char first, last, classes;
};

constexpr ClassRange c_ranges[] = {
    {0x00, 0x08, class_control},
    {0x09, 0x0d, class_control | class_space},
    {0x0e, 0x1f, class_control},
    {0x20, 0x20, class_space | class_blank},
    {0x21, 0x2f, class_punct},
    {0x30, 0x39, class_digit},
    {0x3a, 0x40, class_punct},
    {0x41, 0x46, class_upper | class_hex},
    {0x47, 0x5a, class_upper},
    {0x5b, 0x60, class_punct},
    {0x61, 0x66, class_lower | class_hex},
    {0x67, 0x7a, class_lower},
    {0x7b, 0x7e, class_punct},
    {0x7f, 0x7f, class_control},
};

constexpr ClassRange latin1_ranges[] = {
    {0x80, 0x9f, class_control},
    {0xa0, 0xa0, class_space | class_blank},
    {0xa1, 0xbf, class_punct},
    {0xc0, 0xd6, class_upper},
    {0xd7, 0xd7, class_punct},
    // 0xDF (sharp s) is classed upper case, so tolower maps it to 0xFF.
    {0xd8, 0xdf, class_upper},
    {0xe0, 0xf6, class_lower},
    {0xf7, 0xf7, class_punct},
    {0xf8, 0xff, class_lower},
};

struct CtypeContent {
  const char *name;
  bool latin1;
};

constexpr void fill(unsigned char *classes, const ClassRange *r, const ClassRange *end) {
  for (; r != end; ++r)
    for (unsigned c = r->first; c <= r->last; ++c)
      classes[c] = r->classes;
}

constexpr void write_block(BlockWriter &w, const CtypeContent &content) {
  unsigned char classes[256] = {};
  fill(classes, c_ranges, c_ranges + sizeof c_ranges / sizeof c_ranges[0]);
  if (content.latin1)
    fill(classes, latin1_ranges, latin1_ranges + sizeof latin1_ranges / sizeof latin1_ranges[0]);
  w.begin(content.name);
  w.byte(0); // end of file has no class
  for (unsigned char k : classes)
    w.byte(k);
  w.end();
}

constexpr CtypeContent c_content = {"C", false};
constexpr CtypeContent latin1_content = {"ISO8859-1", true};
constexpr size_t c_size = block_size(c_content);
constexpr size_t latin1_size = block_size(latin1_content);

// __ctype names the class byte of character 0 inside the "C" block.
static_assert(header_size("C") + 1 == 13);
asm(".globl __ctype\n"
    ".type __ctype, %object\n"
    ".set __ctype, __kv_ctype_c_block + 13\n"
    ".size __ctype, 256\n");

} // namespace

extern const Block<c_size> ctype_c_block asm("__kv_ctype_c_block");
constinit const Block<c_size> ctype_c_block = build_block<c_size>(c_content);
constinit const Block<latin1_size> ctype_latin1_block = build_block<latin1_size>(latin1_content);

const unsigned char *const ctype_c = ctype_c_block.bytes + header_size("C");
const unsigned char *const ctype_iso8859_1 = ctype_latin1_block.bytes + header_size("ISO8859-1");

} // namespace kv::locale
