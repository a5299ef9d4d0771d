// The built-in locale blocks (their data starts) and the word layout of each category's data.
#pragma once

#include <stdint.h>

namespace kv::locale {

enum : unsigned char {
  class_space = 0x01,
  class_punct = 0x02,
  class_blank = 0x04, // the printable space
  class_lower = 0x08,
  class_upper = 0x10,
  class_digit = 0x20,
  class_control = 0x40,
  class_hex = 0x80,
};

// ctype data: a byte for end of file, then one class byte per character 0 to 255.
extern const unsigned char *const ctype_c;
extern const unsigned char *const ctype_iso8859_1;

// collate data: one order byte per character.
extern const unsigned char *const collate_iso8859_1;

// monetary data: eight 8-bit fields, then string offsets at these word indices.
enum : unsigned {
  mon_field_count = 8,
  mon_int_curr_symbol = 2,
  mon_currency_symbol,
  mon_decimal_point,
  mon_thousands_sep,
  mon_grouping,
  mon_positive_sign,
  mon_negative_sign,
};
enum : unsigned { mon_p_cs_precedes = 2 }; // byte index among the fields
extern const unsigned char *const monetary_c;
extern const unsigned char *const monetary_iso8859_1;

// numeric data: three string offsets.
enum : unsigned { num_decimal_point, num_thousands_sep, num_grouping };
extern const unsigned char *const numeric_c;
extern const unsigned char *const numeric_iso8859_1;

// time data: fourteen words.
enum : unsigned {
  time_abday,
  time_day,
  time_abmon,
  time_mon,
  time_am,
  time_pm,
  time_d_t_fmt,
  time_d_fmt,
  time_t_fmt,
  time_abday_stride,
  time_day_stride,
  time_abmon_stride,
  time_mon_stride,
  time_t_fmt_ampm,
};
extern const unsigned char *const time_c;
extern const unsigned char *const time_fi;

} // namespace kv::locale
