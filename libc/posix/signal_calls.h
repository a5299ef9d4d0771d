// The process and signal calls that the library itself makes. Exported, global, and called
// through the PLT, so that a definition the loader binds in their place is used by us too.
#pragma once

#include <signal.h>
#include <sys/types.h>

extern "C" pid_t getpid(void);
extern "C" [[noreturn]] void abort(void);
