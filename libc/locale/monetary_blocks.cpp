// Monetary formats: "C" (nothing known) and "ISO8859-1" (sterling).
#include "locale/block_builder.h"
#include "locale/blocks.h"

namespace kv::locale {

namespace {

constexpr unsigned string_count = mon_negative_sign - mon_int_curr_symbol + 1;

struct MonetarySpec {
  const char *name;
  unsigned char fields[mon_field_count];
  const char *texts[string_count]; // in the order of the data's offsets
};

constexpr void write_block(BlockWriter &w, const MonetarySpec &spec) {
  w.begin(spec.name);
  for (unsigned char f : spec.fields)
    w.byte(f);
  size_t offsets = w.position();
  for (unsigned i = 0; i < string_count; ++i)
    w.word(0);
  for (unsigned i = 0; i < string_count; ++i) {
    w.patch_word(offsets + 4 * i, w.data_offset());
    w.text(spec.texts[i]);
  }
  w.end();
}

constexpr MonetarySpec c_spec = {
    "C", {255, 255, 255, 255, 255, 255, 255, 255}, {"", "", "", "", "", "", ""}};
constexpr MonetarySpec latin1_spec = {
    "ISO8859-1", {2, 2, 1, 0, 1, 0, 1, 2}, {"STG ", "\xa3", ".", ",", "\3", "", "-"}};
constexpr size_t c_size = block_size(c_spec);
constexpr size_t latin1_size = block_size(latin1_spec);
constinit const Block<c_size> c_block = build_block<c_size>(c_spec);
constinit const Block<latin1_size> latin1_block = build_block<latin1_size>(latin1_spec);

} // namespace

const unsigned char *const monetary_c = c_block.bytes + header_size("C");
const unsigned char *const monetary_iso8859_1 = latin1_block.bytes + header_size("ISO8859-1");

} // namespace kv::locale
