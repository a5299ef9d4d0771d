// Pass-through wrappers: the system side's result and errno as they come.
#include <kv/syscall.h>

#include "posix/signal_calls.h"
#include "support/export.h"

KV_FUNCTION(global, int, kill, (pid_t pid, int sig)) { return __syscall_kill(pid, sig); }

KV_FUNCTION(global, pid_t, getpid, (void)) { return __syscall_getpid(); }
