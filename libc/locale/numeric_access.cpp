// The decimal point the formatting engines use: the first character of the numeric block's text.
#include "locale/blocks.h"
#include "locale/locale_access.h"
#include "locale/record.h"

namespace kv::locale {

char decimal_point() {
  const unsigned char *num = record[slot_numeric];
  return *data_text(num, data_word(num, num_decimal_point));
}

} // namespace kv::locale
