#include "bridge/errno_cells.h"
#include "support/export.h"

KV_FUNCTION(global, int, __read_errno, (void)) { return *___aeabi_errno_addr(); }
KV_FUNCTION(global, void, __set_errno, (int value)) { *___aeabi_errno_addr() = value; }
