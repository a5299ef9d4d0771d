// White-box: the byte layout of every built-in block, read as raw words and bytes.
#include <kvtest.h>
#include <stdint.h>

#include "locale/blocks.h"

namespace {

using namespace kv::locale;

int32_t word_at(const unsigned char *p) {
  return static_cast<int32_t>(p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24);
}

const char *text_at(const unsigned char *data, int word) {
  return reinterpret_cast<const char *>(data + word_at(data + 4 * word));
}

struct Header {
  const unsigned char *data;
  const char *name;
  int32_t name_offset;
  uint32_t min_size; // header and data without the strings
};

const Header headers[] = {
    {ctype_c, "C", -8, 12 + 257},
    {ctype_iso8859_1, "ISO8859-1", -16, 20 + 257},
    {collate_iso8859_1, "ISO8859-1", -16, 20 + 256},
    {monetary_c, "C", -8, 12 + 36},
    {monetary_iso8859_1, "ISO8859-1", -16, 20 + 36},
    {numeric_c, "C", -8, 12 + 12},
    {numeric_iso8859_1, "ISO8859-1", -16, 20 + 12},
    {time_c, "C", -8, 12 + 56},
    {time_fi, "FI", -8, 12 + 56},
};

} // namespace

// size, the padded name, the offset back to the name, then the data.
TEST(Blocks, Headers) {
  for (const Header &h : headers) {
    EXPECT_EQ(word_at(h.data - 4), h.name_offset);
    const unsigned char *block = h.data + h.name_offset - 4;
    EXPECT_STREQ(reinterpret_cast<const char *>(block + 4), h.name);
    for (const unsigned char *p = block + 4; p < h.data - 4; ++p)
      if (p > block + 4 && p[-1] == 0)
        EXPECT_EQ(*p, 0); // zero padding after the name
    auto size = static_cast<uint32_t>(word_at(block));
    EXPECT_TRUE(size >= h.min_size);
    EXPECT_TRUE(size < h.min_size + 400);
  }
}

TEST(Blocks, CollateIsIdentity) {
  for (int c = 0; c < 256; ++c)
    EXPECT_EQ(collate_iso8859_1[c], c);
}

namespace {

struct TimeLayout {
  const unsigned char *data;
  uint32_t strides[4];
  const char *first[4], *last[4]; // first and last name of each list
  int counts[4];
  const char *texts[6]; // am, pm, date and time, date, time (words 4-8), 12-hour time (word 13)
};

const TimeLayout time_layouts[] = {
    {time_c,
     {4, 10, 4, 10},
     {"Sun", "Sunday", "Jan", "January"},
     {"Sat", "Saturday", "Dec", "December"},
     {7, 7, 12, 12},
     {"AM", "PM", "%a %b %e %H:%M:%S %Y", "%m/%d/%y", "%H:%M:%S", "%I:%M:%S %p"}},
    {time_fi,
     {4, 12, 7, 10},
     {"Su", "Sunnuntai", "Tammi", "Tammikuu"},
     {"La", "Lauantai", "Joulu", "Joulukuu"},
     {7, 7, 12, 12},
     {"AM", "PM", "%a %e. %Bta %Y %H:%M:%S", "%d.%m.%Y", "%H:%M:%S", "%I:%M:%S %p"}},
};

} // namespace

// Names sit in fixed-stride slots, zero-padded to the stride.
TEST(Blocks, TimeData) {
  for (const TimeLayout &t : time_layouts) {
    for (int list = 0; list < 4; ++list) {
      EXPECT_EQ(static_cast<uint32_t>(word_at(t.data + 4 * (9 + list))), t.strides[list]);
      const unsigned char *names = t.data + word_at(t.data + 4 * list);
      EXPECT_STREQ(reinterpret_cast<const char *>(names), t.first[list]);
      const unsigned char *last = names + t.strides[list] * (t.counts[list] - 1);
      EXPECT_STREQ(reinterpret_cast<const char *>(last), t.last[list]);
      for (int i = 0; i < t.counts[list]; ++i) {
        const unsigned char *slot = names + t.strides[list] * i;
        bool ended = false;
        for (uint32_t k = 0; k < t.strides[list]; ++k) {
          if (ended)
            EXPECT_EQ(slot[k], 0);
          ended |= slot[k] == 0;
        }
        EXPECT_TRUE(ended);
      }
    }
    for (int w = 4; w < 9; ++w)
      EXPECT_STREQ(text_at(t.data, w), t.texts[w - 4]);
    EXPECT_STREQ(text_at(t.data, 13), t.texts[5]);
  }
}
