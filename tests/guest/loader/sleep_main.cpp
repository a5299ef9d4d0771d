// Sleeps far longer than any test waits: for the time limit during a select.
#include <kv/syscall.h>

int main() { return __syscall_sleep(600); }
