// In their own file, so the compiler cannot bind the calls to this library's definitions.
extern "C" const char *who();
extern "C" const char *both();
extern "C" const char *first_calls_who() { return who(); }
extern "C" const char *first_calls_both() { return both(); }
