#include "bridge/version.h"
#include "support/export.h"

namespace kv {
const char *version_text() { return "kvlibc core 4.1 build 894 (armv7-a thumb-2 soft-float)"; }
} // namespace kv

KV_FUNCTION(global, int, __C_library_version_number, (void)) { return 410894; }
