// Where a DT_NEEDED name is found: a name with a slash is a path; otherwise each directory of
// the search path in order.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kvrun {

std::optional<std::string> find_library(const std::string &name,
                                        const std::vector<std::string> &dirs);

} // namespace kvrun
