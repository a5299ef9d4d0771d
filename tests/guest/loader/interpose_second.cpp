extern "C" const char *who() { return "second"; }
extern "C" const char *both() { return "second"; }
