#include <kv/syscall.h>
#include <time.h>

#include "support/export.h"

// Seconds since the epoch, straight from the system side.
KV_FUNCTION(protected, time_t, time, (time_t * t)) { return __syscall_time(t); }
