#include "services/trace.h"

#include <cstdio>
#include <string>

namespace kvrun {

std::string trace_line(const Request &r, std::string_view name, const Outcome &outcome) {
  char b[160];
  int n = snprintf(b, sizeof b, "trap %d %.*s %08x %08x %08x %08x %08x %08x %08x = %08x errno %d\n",
                   r.number, static_cast<int>(name.size()), name.data(), r.w[0], r.w[1], r.w[2],
                   r.w[3], r.w[4], r.w[5], r.w[6], outcome.value, outcome.error);
  if (n <= 0 || static_cast<size_t>(n) >= sizeof b)
    return {};
  std::string line(b, n);
  if (outcome.h_error)
    line.insert(line.size() - 1, " h_errno " + std::to_string(outcome.h_error));
  return line;
}

} // namespace kvrun
