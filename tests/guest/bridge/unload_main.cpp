// Unload as the system side sees it: text left in stdout's buffer, and a note on stdout when the
// start-up environment block is handed back to the heap (this program's free replaces the
// library's, so the block is only noted, not reused).
#include <kv/syscall.h>
#include <stdio.h>
#include <stdlib.h>

namespace {
void *environ_block;
}

extern "C" void __syscall_free(void *block) {
  if (block && block == environ_block)
    __syscall_write(1, "[environ freed]", 15);
}

int main() {
  environ_block = environ;
  printf("waiting in the buffer ");
  return 0;
}
