extern "C" const char *who() { return "first"; }
extern "C" const char *both() { return "first"; }
