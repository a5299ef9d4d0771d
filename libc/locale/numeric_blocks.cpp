// Decimal point, thousands separator and grouping: "C" and "ISO8859-1".
#include "locale/block_builder.h"
#include "locale/blocks.h"

namespace kv::locale {

namespace {

struct NumericContent {
  const char *name;
  const char *texts[3]; // in the order of the data's offsets
};

constexpr void write_block(BlockWriter &w, const NumericContent &content) {
  w.begin(content.name);
  size_t offsets = w.position();
  for (int i = 0; i < 3; ++i)
    w.word(0);
  for (int i = 0; i < 3; ++i) {
    w.patch_word(offsets + 4 * i, w.data_offset());
    w.text(content.texts[i]);
  }
  w.end();
}

constexpr NumericContent c_content = {"C", {".", "", ""}};
constexpr NumericContent latin1_content = {"ISO8859-1", {".", ",", "\3"}};
constexpr size_t c_size = block_size(c_content);
constexpr size_t latin1_size = block_size(latin1_content);
constinit const Block<c_size> c_block = build_block<c_size>(c_content);
constinit const Block<latin1_size> latin1_block = build_block<latin1_size>(latin1_content);

} // namespace

const unsigned char *const numeric_c = c_block.bytes + header_size("C");
const unsigned char *const numeric_iso8859_1 = latin1_block.bytes + header_size("ISO8859-1");

} // namespace kv::locale
