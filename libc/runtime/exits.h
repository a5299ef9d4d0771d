// The ways out of the process: destructor records, the atexit table, abort and the assertion
// report.
#pragma once

#include <stdint.h>

extern "C" {
[[noreturn]] void abort(void);
[[noreturn]] void __aeabi_assert(const char *expression, const char *file, int line);
void _call_atexit_fns(void);
int atexit(void (*function)(void));
}

namespace kv {
// The run-time ABI's order (argument, function, owner) and the other one; 0 or 1 on no memory.
int register_destructor(void *argument, void (*function)(void *), void *owner);
int register_destructor_function_first(void (*function)(void *), void *argument, void *owner);
// Every record of the owner (every record for owner 0), newest first.
void run_destructors(void *owner);
void initialise_atexit_table();
} // namespace kv
