#include "services/trace.h"

#include <cstdio>

namespace kvrun {

std::string trace_line(const Request &r, std::string_view name, const Outcome &outcome) {
  char b[160];
  int n = snprintf(b, sizeof b, "trap %d %.*s %08x %08x %08x %08x %08x %08x %08x = %08x errno %d\n",
                   r.number, static_cast<int>(name.size()), name.data(), r.w[0], r.w[1], r.w[2],
                   r.w[3], r.w[4], r.w[5], r.w[6], outcome.value, outcome.error);
  return std::string(b, n > 0 && static_cast<size_t>(n) < sizeof b ? n : 0);
}

} // namespace kvrun
