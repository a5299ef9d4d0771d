// Checks every relocation type the loader supports; prints one line per case and returns the
// number of failures.
#include "say.h"

extern "C" {
extern int lib_counter;
extern int lib_table[3];
int lib_add(int);
extern int *lib_hidden_pointer;
// Defined nowhere: the loader binds them to 0.
extern int weak_missing_variable __attribute__((weak));
int weak_missing_function(void) __attribute__((weak));
}

static int local_value = 5;
int *relative_pointer = &local_value;    // R_ARM_RELATIVE
int *absolute_pointer = &lib_table[2];   // R_ARM_ABS32 with an addend in place
int (*function_pointer)(int) = lib_add;  // R_ARM_ABS32 to a Thumb function

static int failures;
static void check(bool ok, const char *what) {
  say_line(ok ? "ok " : "FAILED ", what);
  failures += !ok;
}

int main() {
  check(*relative_pointer == 5, "relative");
  check(*absolute_pointer == 3, "abs32 with addend");
  check(function_pointer(1) == 41, "abs32 function");
  check(lib_counter == 40, "glob_dat");            // through the GOT
  check(lib_add(2) == 42, "jump_slot");             // through the PLT
  check(*lib_hidden_pointer == 7, "relative in library");
  check(&weak_missing_variable == nullptr, "weak undefined variable");
  check(weak_missing_function == nullptr, "weak undefined function");
  return failures;
}
