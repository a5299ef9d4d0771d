// The order of initialisation and finalisation calls.
#pragma once

#include <vector>

#include "loader/loader.h"
#include "memory/address_space.h"

namespace kvrun {

// Fills `init_calls` and `fini_calls`: the program's pre-initialisation array; then each
// library's DT_INIT and init array, a library's needs before it; then the program's. At the
// end the program's fini array (reversed) and DT_FINI, then the libraries' in the reverse of
// their initialisation order, so that nothing is finalised while something initialised after
// it may still use it.
void order_init_and_fini(LoadedProgram &program, const AddressSpace &memory);

} // namespace kvrun
