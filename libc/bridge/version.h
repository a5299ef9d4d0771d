#pragma once

namespace kv {
// The library core's version, shown in the start-up banner.
const char *version_text();
} // namespace kv
