// Stand-in for the platform's libdl.so: libc.so needs it at load time and nothing from it yet.
#include "support/export.h"

// The platform's dynamic-loading library reports its own errors; the stand-in has none.
KV_FUNCTION(weak, const char *, dlerror, (void)) { return nullptr; }
