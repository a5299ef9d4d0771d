// The core's reports and ways out, one case per run:
//   handler SIG | fpe TYPE | rtmem TYPE | raise SIG TYPE | sig_exit STATUS | fp_trap WORD
//   | assert LINE | sigrtred | abort | abort_returning | atexit | atexit_exit
// Numbers are hexadecimal. abort_returning lets the system side's kill return, so the whole of
// abort's order shows on stdout and in the request trace.
#include <kv/syscall.h>
#include <stdint.h>

#include "../../support/bytes.h"
#include <stdio.h>
#include <stdlib.h>

extern "C" {
int32_t raw_trap(int32_t number, uint32_t w1, uint32_t w2, uint32_t w3);
int __default_signal_handler(int sig, uint32_t type);
void __rt_SIGFPE(uint32_t type);
int __rt_SIGRTMEM_inner(uint32_t type);
void __rt_raise(int sig, uint32_t type);
void __sig_exit(int status);
double _fp_trap(uint32_t, uint32_t, uint32_t, uint32_t, uint32_t exception);
void __aeabi_assert(const char *expression, const char *file, int line);
void __rt_SIGRTRED(const char *name);
}

namespace {
bool signals_return;

void say(const char *text) { __syscall_write(1, text, kvtest::length_of(text)); }
using kvtest::same_text;

uint32_t hex(const char *text) {
  bool negative = *text == '-';
  if (negative)
    ++text;
  uint32_t v = 0;
  for (; *text; ++text)
    v = v * 16 + static_cast<uint32_t>(*text <= '9' ? *text - '0' : (*text | 0x20) - 'a' + 10);
  return negative ? 0 - v : v;
}

void mark_a() { say("A"); }
void mark_d() { say("D"); }
void mark_b() {
  say("B");
  atexit(mark_d);
}
void mark_c() { say("C"); }
void destructor_mark() { say("destructor\n"); }
} // namespace

extern "C" int __syscall_kill(int pid, int sig) {
  if (!signals_return)
    return raw_trap(78, static_cast<uint32_t>(pid), static_cast<uint32_t>(sig), 0);
  say(sig == 6 ? "kill 6\n" : "kill ?\n");
  return 0;
}

int main(int argc, char **argv) {
  if (argc < 2)
    return 99;
  const char *c = argv[1];
  uint32_t a = argc > 2 ? hex(argv[2]) : 0;
  uint32_t b = argc > 3 ? hex(argv[3]) : 0;
  if (same_text(c, "handler"))
    return __default_signal_handler(static_cast<int>(a), 0);
  if (same_text(c, "fpe"))
    __rt_SIGFPE(a);
  else if (same_text(c, "rtmem"))
    return __rt_SIGRTMEM_inner(a);
  else if (same_text(c, "raise"))
    __rt_raise(static_cast<int>(a), b);
  else if (same_text(c, "sig_exit"))
    __sig_exit(static_cast<int>(a));
  else if (same_text(c, "fp_trap"))
    _fp_trap(0, 0, 0, 0, a);
  else if (same_text(c, "assert"))
    __aeabi_assert("x > 0", "f", static_cast<int>(a));
  else if (same_text(c, "sigrtred"))
    __rt_SIGRTRED("stdout");
  else if (same_text(c, "abort") || same_text(c, "abort_returning")) {
    signals_return = same_text(c, "abort_returning");
    atexit(destructor_mark);
    printf("pending");
    abort();
  } else if (same_text(c, "atexit") || same_text(c, "atexit_exit")) {
    atexit(mark_a);
    atexit(mark_b);
    atexit(mark_c);
    if (same_text(c, "atexit_exit"))
      exit(3);
    return 0;
  } else
    return 99;
  say("returned\n");
  return 0;
}
