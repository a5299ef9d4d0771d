// The current numeric and monetary conventions as a struct lconv.
#define __KV_LIBC_SOURCE
#include <locale.h>

#include "locale/blocks.h"
#include "locale/record.h"
#include "support/export.h"

namespace {

using namespace kv::locale;

char *text(const unsigned char *data, unsigned word) {
  return const_cast<char *>(data_text(data, data_word(data, word)));
}

// struct lconv's monetary members in the order of the block's strings and fields.
char *lconv::*const monetary_strings[] = {
    &lconv::int_curr_symbol, &lconv::currency_symbol, &lconv::mon_decimal_point,
    &lconv::mon_thousands_sep, &lconv::mon_grouping, &lconv::positive_sign, &lconv::negative_sign,
};
char lconv::*const monetary_fields[mon_field_count] = {
    &lconv::int_frac_digits, &lconv::frac_digits,    &lconv::p_cs_precedes, &lconv::p_sep_by_space,
    &lconv::n_cs_precedes,   &lconv::n_sep_by_space, &lconv::p_sign_posn,   &lconv::n_sign_posn,
};

} // namespace

KV_FUNCTION(protected, void, _get_lconv, (struct lconv * conv)) {
  const unsigned char *num = record[slot_numeric];
  const unsigned char *mon = record[slot_monetary];
  conv->decimal_point = text(num, num_decimal_point);
  conv->thousands_sep = text(num, num_thousands_sep);
  conv->grouping = text(num, num_grouping);
  unsigned w = mon_int_curr_symbol;
  for (char *lconv::*m : monetary_strings)
    conv->*m = text(mon, w++);
  for (unsigned i = 0; i < mon_field_count; ++i)
    conv->*monetary_fields[i] = static_cast<char>(mon[i]);
}

extern "C" struct lconv *localeconv(void) {
  static struct lconv conv;
  _get_lconv(&conv);
  return &conv;
}
