// raise: the signal goes to this process by number, through kill.
#include "posix/signal_calls.h"
#include "support/export.h"

KV_FUNCTION(global, int, raise, (int sig)) { return kill(getpid(), sig); }
