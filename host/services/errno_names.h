// The library's errno numbering, from the one list in kv/abi.h: names, values, and the
// translation of host errno values.
#pragma once

#include <optional>
#include <string_view>

namespace kvrun {

std::optional<int> errno_by_name(std::string_view name); // "EIO" -> 46
std::string_view errno_name(int value);                   // 46 -> "EIO"; "" if unassigned
// A host errno in the library's numbering (by name); EFAIL when the library has no such error.
int from_host_errno(int host_errno);

} // namespace kvrun
