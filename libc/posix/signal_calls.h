// The process and signal calls that the library itself makes. Exported, global, and called
// through the PLT, so that a definition the loader binds in their place is used by us too.
#pragma once

#include <sys/types.h>

extern "C" {
int kill(pid_t pid, int sig);
pid_t getpid(void);
int raise(int sig);
}

extern "C" [[noreturn]] void abort(void);
