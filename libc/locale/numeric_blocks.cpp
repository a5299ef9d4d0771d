// Decimal point, thousands separator and grouping: "C" and "ISO8859-1".
#include "locale/block_builder.h"
#include "locale/blocks.h"

namespace kv::locale {

namespace {

struct NumericSpec {
  const char *name;
  const char *texts[3]; // in the order of the data's offsets
};

constexpr void write_block(BlockWriter &w, const NumericSpec &spec) {
  w.begin(spec.name);
  size_t offsets = w.position();
  for (int i = 0; i < 3; ++i)
    w.word(0);
  for (int i = 0; i < 3; ++i) {
    w.patch_word(offsets + 4 * i, w.data_offset());
    w.text(spec.texts[i]);
  }
  w.end();
}

constexpr NumericSpec c_spec = {"C", {".", "", ""}};
constexpr NumericSpec latin1_spec = {"ISO8859-1", {".", ",", "\3"}};
constexpr size_t c_size = block_size(c_spec);
constexpr size_t latin1_size = block_size(latin1_spec);
constinit const Block<c_size> c_block = build_block<c_size>(c_spec);
constinit const Block<latin1_size> latin1_block = build_block<latin1_size>(latin1_spec);

} // namespace

const unsigned char *const numeric_c = c_block.bytes + header_size("C");
const unsigned char *const numeric_iso8859_1 = latin1_block.bytes + header_size("ISO8859-1");

} // namespace kv::locale
