// Announces each of its initialisation and finalisation functions.
#include "say.h"

extern "C" void b_dt_init() { say("dt_init b\n"); }
extern "C" void b_dt_fini() { say("dt_fini b\n"); }
__attribute__((constructor(101))) static void init_1() { say("init b 1\n"); }
__attribute__((constructor(102))) static void init_2() { say("init b 2\n"); }
__attribute__((destructor(101))) static void fini_1() { say("fini b 1\n"); }
__attribute__((destructor(102))) static void fini_2() { say("fini b 2\n"); }
extern "C" int b_value() { return 2; }
