// Needs a library that is not in the search path: never runs.
extern "C" int gone();
int main() { return gone(); }
