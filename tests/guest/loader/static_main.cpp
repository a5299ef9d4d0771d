// A static program (no dynamic section): its initialisation and finalisation arrays are found
// through its section headers.
#include "say.h"

static int initialised;
__attribute__((constructor)) static void init() {
  initialised = 1;
  say("static init\n");
}
__attribute__((destructor)) static void fini() { say("static fini\n"); }

int main() {
  say("static main\n");
  return initialised ? 5 : 1;
}
