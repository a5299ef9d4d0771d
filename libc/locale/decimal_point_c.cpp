// The "C" locale's decimal point, until locales can be switched.
#include "locale/locale_access.h"

char kv::locale::decimal_point() { return '.'; }
