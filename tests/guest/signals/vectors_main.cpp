// A program that answers the core's handler lookup itself: vectors default|ignore|handler.
// The core's signal 2 with the divide-by-zero type is raised once; what happens shows on stdout
// and stderr and in the exit status.
#include <kv/syscall.h>
#include <stdint.h>

#include "../../support/bytes.h"

extern "C" void __rt_raise(int sig, uint32_t type);

namespace {
intptr_t answer;
int looked_up_which, looked_up_sig;

void say(const char *text) { __syscall_write(1, text, kvtest::length_of(text)); }
using kvtest::same_text;

void handler(int sig, uint32_t type) {
  say(sig == 2 && type == 0x08000000 ? "handler got 2 and the type\n" : "handler got other\n");
}
} // namespace

extern "C" intptr_t __sigvec_lookup(int which, int sig) {
  looked_up_which = which;
  looked_up_sig = sig;
  return answer;
}

int main(int argc, char **argv) {
  if (argc < 2)
    return 99;
  if (same_text(argv[1], "default"))
    answer = -1;
  else if (same_text(argv[1], "ignore"))
    answer = -3;
  else if (same_text(argv[1], "handler"))
    answer = reinterpret_cast<intptr_t>(handler);
  else
    return 99;
  __rt_raise(2, 0x08000000);
  say(looked_up_which == -1 && looked_up_sig == 2 ? "asked (-1, 2)\n" : "asked wrongly\n");
  say("returned\n");
  return 0;
}
