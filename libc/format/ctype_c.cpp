// The "C" locale's character classes, built at compile time.
#include "format/ctype_table.h"

namespace kv::locale {

namespace {

constexpr unsigned char classify(unsigned c) {
  unsigned char k = 0;
  if (c >= 128)
    return 0;
  if (c < 32 || c == 127)
    k |= class_control;
  if (c == ' ' || (c >= '\t' && c <= '\r'))
    k |= class_space;
  if (c == ' ' || c == '\t')
    k |= class_blank;
  if (c >= 'A' && c <= 'Z')
    k |= class_upper;
  if (c >= 'a' && c <= 'z')
    k |= class_lower;
  if (c >= '0' && c <= '9')
    k |= class_digit;
  if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'))
    k |= class_hex;
  if (c > ' ' && c < 127 && !(k & (class_upper | class_lower | class_digit)))
    k |= class_punct;
  return k;
}

struct Classes {
  unsigned char v[256];
};

constexpr Classes make_classes() {
  Classes t{};
  for (unsigned c = 0; c < 256; ++c)
    t.v[c] = classify(c);
  return t;
}

constexpr Classes c_classes = make_classes();
constexpr CharTable c_table = {c_classes.v, nullptr, nullptr};

} // namespace

const CharTable &current_table() { return c_table; }

} // namespace kv::locale
