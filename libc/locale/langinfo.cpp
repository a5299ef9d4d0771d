// Locale texts by item number.
#include "locale/blocks.h"
#include "locale/record.h"
#include "locale/setlocale.h"
#include "string/string_internal.h"
#include "support/export.h"

namespace {

using namespace kv::locale;

enum : int {
  item_codeset = 0,
  item_d_t_fmt = 1,
  item_am = 5,
  item_day = 7,
  item_abday = 14,
  item_mon = 21,
  item_abmon = 33,
  item_radix = 50,
  item_thousands = 51,
  item_currency = 54,
  item_count = 55,
};

char empty[1];

// Formats in item order (1 to 4), then the morning and afternoon strings (5, 6).
constexpr unsigned format_words[] = {time_d_t_fmt, time_d_fmt, time_t_fmt, time_t_fmt_ampm,
                                     time_am,      time_pm};

struct NameItems {
  int first, count;
  unsigned offset_word, stride_word;
};

constexpr NameItems name_items[] = {
    {item_day, 7, time_day, time_day_stride},
    {item_abday, 7, time_abday, time_abday_stride},
    {item_mon, 12, time_mon, time_mon_stride},
    {item_abmon, 12, time_abmon, time_abmon_stride},
};

char *text(const unsigned char *data, uint32_t offset) {
  return const_cast<char *>(data_text(data, offset));
}

// The currency symbol marked with where it goes: "-" before the value, "+" after it, "." in
// place of the decimal point; empty when the locale has none or does not say.
char *currency_text() {
  static char buffer[16];
  const unsigned char *mon = record[slot_monetary];
  const char *symbol = data_text(mon, data_word(mon, mon_currency_symbol));
  const char *point = data_text(mon, data_word(mon, mon_decimal_point));
  unsigned char precedes = mon[mon_p_cs_precedes];
  if (!*symbol || precedes > 1)
    return empty;
  if (strcmp(symbol, point) == 0)
    return const_cast<char *>(".");
  buffer[0] = precedes ? '-' : '+';
  size_t n = 0;
  for (; symbol[n] && n + 2 < sizeof buffer; ++n)
    buffer[n + 1] = symbol[n];
  buffer[n + 1] = 0;
  return buffer;
}

} // namespace

KV_FUNCTION(global, char *, nl_langinfo, (int item)) {
  set_native_locale(mask_all, nullptr);
  if (item < 0 || item >= item_count)
    return empty;
  if (item == item_codeset) {
    char *name = set_native_locale(mask_ctype, nullptr);
    return name ? name : empty;
  }
  const unsigned char *time = record[slot_time];
  if (item >= item_d_t_fmt && item < item_day)
    return text(time, data_word(time, format_words[item - item_d_t_fmt]));
  for (const NameItems &n : name_items)
    if (item >= n.first && item < n.first + n.count)
      return text(time, data_word(time, n.offset_word) +
                            data_word(time, n.stride_word) * static_cast<uint32_t>(item - n.first));
  const unsigned char *num = record[slot_numeric];
  if (item == item_radix)
    return text(num, data_word(num, num_decimal_point));
  if (item == item_thousands)
    return text(num, data_word(num, num_thousands_sep));
  if (item == item_currency)
    return currency_text();
  return empty;
}
