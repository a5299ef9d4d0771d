// The native locale: what the empty name selects, category by category.
#include "locale/record.h"
#include "locale/setlocale.h"
#include "runtime/exits.h"

namespace kv::locale {

namespace {

struct NativeStep {
  int mask;
  const char *name;
  int line;
};

constexpr NativeStep native_steps[] = {
    {mask_collate, "ISO8859-1", 215}, {mask_ctype, "ISO8859-1", 220},
    {mask_numeric, "ISO8859-1", 225}, {mask_monetary, "ISO8859-1", 230},
    {mask_time, "C", 235},
};

} // namespace

char *set_native_locale(int mask, const char *name) {
  if (name && !*name) {
    for (const NativeStep &s : native_steps) {
      if (!(mask & s.mask))
        continue;
      char *ret = setlocale(s.mask, s.name);
      if (!ret)
        __aeabi_assert("ret", "kv_locale", s.line);
    }
    name = nullptr;
  }
  return setlocale(mask, name);
}

} // namespace kv::locale
