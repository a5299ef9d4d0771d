// Prints which definition each call reached: "name=definer" per line.
#include "say.h"

extern "C" {
const char *both();
const char *first_calls_who();
const char *first_calls_both();
const char *second_calls_both();
// Interposes the definitions of both libraries.
const char *who() { return "program"; }
}

int main() {
  say_line("who=", who());
  say_line("first_calls_who=", first_calls_who());
  say_line("both=", both());
  say_line("first_calls_both=", first_calls_both());
  say_line("second_calls_both=", second_calls_both());
  return 0;
}
