// Leaves through the exit call: status 3, and no finalisation runs.
#include "say.h"

__attribute__((destructor)) static void fini() { say("fini ran\n"); }

int main() {
  say("before exit\n");
  __syscall_exit(3);
  say("after exit\n");
  return 0;
}
