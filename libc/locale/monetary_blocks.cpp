// Monetary formats: "C" (nothing known) and "ISO8859-1" (sterling).
#include "locale/block_builder.h"
#include "locale/blocks.h"

namespace kv::locale {

namespace {

constexpr unsigned string_count = mon_negative_sign - mon_int_curr_symbol + 1;

struct MonetaryContent {
  const char *name;
  unsigned char fields[mon_field_count];
  const char *texts[string_count]; // in the order of the data's offsets
};

constexpr void write_block(BlockWriter &w, const MonetaryContent &content) {
  w.begin(content.name);
  for (unsigned char f : content.fields)
    w.byte(f);
  size_t offsets = w.position();
  for (unsigned i = 0; i < string_count; ++i)
    w.word(0);
  for (unsigned i = 0; i < string_count; ++i) {
    w.patch_word(offsets + 4 * i, w.data_offset());
    w.text(content.texts[i]);
  }
  w.end();
}

constexpr MonetaryContent c_content = {
    "C", {255, 255, 255, 255, 255, 255, 255, 255}, {"", "", "", "", "", "", ""}};
constexpr MonetaryContent latin1_content = {
    "ISO8859-1", {2, 2, 1, 0, 1, 0, 1, 2}, {"STG ", "\xa3", ".", ",", "\3", "", "-"}};
constexpr size_t c_size = block_size(c_content);
constexpr size_t latin1_size = block_size(latin1_content);
constinit const Block<c_size> c_block = build_block<c_size>(c_content);
constinit const Block<latin1_size> latin1_block = build_block<latin1_size>(latin1_content);

} // namespace

const unsigned char *const monetary_c = c_block.bytes + header_size("C");
const unsigned char *const monetary_iso8859_1 = latin1_block.bytes + header_size("ISO8859-1");

} // namespace kv::locale
