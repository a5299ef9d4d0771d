// The locale record, the exported way to its ctype slot, and the initial locale.
#include "locale/record.h"

#include <stdint.h>

#include "locale/blocks.h"
#include "support/export.h"

namespace kv::locale {

const unsigned char *record[slot_count];

// Collate has no "C" block: its zero slot stands for "C".
void init_record() {
  record[slot_collate] = nullptr;
  record[slot_ctype] = ctype_c + 1;
  record[slot_monetary] = monetary_c;
  record[slot_numeric] = numeric_c;
  record[slot_time] = time_c;
}

} // namespace kv::locale

KV_FUNCTION(protected, const unsigned char **, __rt_ctype_table, (void)) {
  return &kv::locale::record[kv::locale::slot_ctype];
}

KV_VARIABLE(global, const uint32_t, __lcnull_start) = 0;
