// Character classification and case mapping on the current class table. Characters outside
// -1..255 have no class and map to themselves.
#include "locale/blocks.h"
#include "locale/classify.h"
#include "locale/record.h"

namespace {

using namespace kv::locale;

unsigned classes(int c) {
  if (c < -1 || c > 255)
    return 0;
  return class_table()[c];
}

bool any(int c, unsigned bits) { return (classes(c) & bits) != 0; }

} // namespace

extern "C" {

int isalnum(int c) { return any(c, class_lower | class_upper | class_digit); }
int isalpha(int c) { return any(c, class_lower | class_upper | class_hex); }
int iscntrl(int c) { return any(c, class_control); }
int isdigit(int c) { return classes(c) == class_digit; }
int isgraph(int c) { return any(c, class_punct | class_lower | class_upper | class_digit | class_hex); }
int islower(int c) { return any(c, class_lower); }
int isprint(int c) { return any(c, class_punct | class_blank | class_lower | class_upper | class_digit); }
int ispunct(int c) { return any(c, class_punct); }
int isspace(int c) { return any(c, class_space); }
int isupper(int c) { return any(c, class_upper); }

// Digits carry only the digit bit and hex letters only the hex bit beside their case.
int isxdigit(int c) {
  unsigned k = classes(c) & (class_digit | class_hex);
  return k == class_digit || k == class_hex;
}

int isblank(int c) { return (classes(c) & (class_space | class_control)) == class_space || c == '\t'; }

int tolower(int c) { return any(c, class_upper) ? c + 32 : c; }

// 0xDF has no upper-case partner in the upper half.
int toupper(int c) { return any(c, class_lower) && c != 0xdf ? c - 32 : c; }

} // extern "C"
