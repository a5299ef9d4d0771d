// kill and sigaction are the two entry points with global binding.
#include <kv/abi.h>
#include <kv/syscall.h>

#include "bridge/trap.h"
#include "support/export.h"

KV_SYSCALL(global, int, __syscall_kill, KV_SYS_kill, (int pid, int sig), pid, sig)
