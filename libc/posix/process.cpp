// Process identity: the system side's answer as it comes.
#include <kv/syscall.h>

#include "posix/signal_calls.h"
#include "support/export.h"

KV_FUNCTION(global, pid_t, getpid, (void)) { return __syscall_getpid(); }
