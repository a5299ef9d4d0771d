// The request trace: one line per trap.
#pragma once

#include <string>
#include <string_view>

#include "services/request.h"

namespace kvrun {

// "trap 14 write 00000001 0001a2b4 0000000c 00000000 00000000 00000000 00000000 = 0000000c errno 0\n"
std::string trace_line(const Request &request, std::string_view name, const Outcome &outcome);

} // namespace kvrun
