// Announces its own initialisation, main and finalisation; the libraries announce theirs.
#include "say.h"

extern "C" int a_value();
static void preinit() { say("preinit program\n"); }
__attribute__((section(".preinit_array"), used)) static void (*const preinit_entry)() = preinit;
__attribute__((constructor)) static void init() { say("init program\n"); }
__attribute__((destructor)) static void fini() { say("fini program\n"); }

int main() {
  say("main\n");
  return a_value() == 3 ? 0 : 1;
}
