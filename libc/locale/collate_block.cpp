// The one built-in collation order: identity over the 256 byte values.
#include "locale/block_builder.h"
#include "locale/blocks.h"

namespace kv::locale {

namespace {

struct CollateContent {
  const char *name;
};

constexpr void write_block(BlockWriter &w, const CollateContent &content) {
  w.begin(content.name);
  for (unsigned c = 0; c < 256; ++c)
    w.byte(c);
  w.end();
}

constexpr CollateContent latin1_content = {"ISO8859-1"};
constexpr size_t latin1_size = block_size(latin1_content);
constinit const Block<latin1_size> latin1_block = build_block<latin1_size>(latin1_content);

} // namespace

const unsigned char *const collate_iso8859_1 = latin1_block.bytes + header_size("ISO8859-1");

} // namespace kv::locale
