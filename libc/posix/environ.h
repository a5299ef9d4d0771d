// The environment as the library owns it.
#pragma once

namespace kv::env {
// Unload: everything the environment holds goes back to the heap and environ becomes null.
void release_environment();
} // namespace kv::env
