#pragma once

namespace kv {
// Destructor records, the streams, the exception record: what every way out runs first.
void shutdown_core();
} // namespace kv
