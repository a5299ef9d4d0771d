#include "cli/main_entry.h"

int main(int argc, char **argv) { return kvrun::kvrun_main(argc, argv); }
