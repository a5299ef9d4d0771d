extern "C" int gone() { return 1; }
