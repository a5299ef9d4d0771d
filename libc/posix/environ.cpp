#include "support/export.h"

// The environment: start-up points it at the block the system side copied in.
KV_VARIABLE(global, char **, environ) = nullptr;
