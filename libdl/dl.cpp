// Stand-in for the platform's libdl.so: libc.so needs it at load time.
#include <stdint.h>

#include "support/export.h"

// The platform's dynamic-loading library reports its own errors; the stand-in has none.
KV_FUNCTION(weak, const char *, dlerror, (void)) { return nullptr; }

// libc.so asks here for the handler of each of its core signals; with no table of handlers the
// answer is always -1, default handling. Weak, so a program or host may bind its own.
KV_FUNCTION(weak, intptr_t, __sigvec_lookup, (int, int)) { return -1; }
