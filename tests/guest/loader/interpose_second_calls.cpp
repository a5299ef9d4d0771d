extern "C" const char *both();
extern "C" const char *second_calls_both() { return both(); }
