#include "services/dispatcher.h"

#include <kv/abi.h>

#include "services/errno_names.h"
#include "services/host_output.h"
#include "services/trace.h"

namespace kvrun {

Outcome dispatch(Process &process, const Request &request) {
  Outcome outcome;
  if (auto injected = process.faults.on_call(request.number)) {
    outcome = failure(*injected);
    write_all(process.log_fd, "kvrun: injected " + std::string(errno_name(*injected)) + " into " +
                                  describe_request(process, request) + "\n");
  } else if (const Service *s = process.services.find(request.number); s && s->handler) {
    outcome = s->handler(process, request);
  } else {
    outcome = failure(KV_ENOSYS);
  }
  // Only into a cell the program told us about, and only while it is still writable.
  if (outcome.error && process.errno_cell)
    process.memory.write_u32(*process.errno_cell, static_cast<uint32_t>(outcome.error));
  if (outcome.h_error && process.h_errno_cell)
    process.memory.write_u32(*process.h_errno_cell, static_cast<uint32_t>(outcome.h_error));
  if (process.trace_fd >= 0) {
    // The raw words first (tools parse them), then the call as a reader wants it: paths and
    // buffer contents decoded.
    std::string line = trace_line(request, process.services.name_of(request.number), outcome);
    if (!line.empty())
      line.insert(line.size() - 1, " " + describe_request(process, request));
    write_all(process.trace_fd, line);
  }
  return outcome;
}

} // namespace kvrun
