// The report of a failed internal consistency check: it does not return.
#pragma once

namespace kv {

[[noreturn]] void assertion_failed(const char *expression, const char *file, int line);

} // namespace kv
