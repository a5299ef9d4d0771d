// Serves one request: fault injection first, then the handler (ENOSYS when there is none), then
// the error into the guest's errno (or h_errno) cell and a line into the trace.
#pragma once

#include "services/process.h"
#include "services/request.h"

namespace kvrun {

Outcome dispatch(Process &process, const Request &request);

} // namespace kvrun
