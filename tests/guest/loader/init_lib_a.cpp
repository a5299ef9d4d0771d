// Announces each of its initialisation and finalisation functions; needs library B.
#include "say.h"

extern "C" int b_value();
extern "C" void a_dt_init() { say("dt_init a\n"); }
extern "C" void a_dt_fini() { say("dt_fini a\n"); }
__attribute__((constructor(101))) static void init_1() { say("init a 1\n"); }
__attribute__((constructor(102))) static void init_2() { say("init a 2\n"); }
__attribute__((destructor(101))) static void fini_1() { say("fini a 1\n"); }
__attribute__((destructor(102))) static void fini_2() { say("fini a 2\n"); }
extern "C" int a_value() { return b_value() + 1; }
