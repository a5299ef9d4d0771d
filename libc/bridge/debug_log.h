// The porting layer's log: one 256-byte buffer, sent to the system side at priority 31. Every
// message carries its own "KV: (line) " prefix in its format text.
#pragma once

namespace kv {

void debug_log(const char *format, ...) __attribute__((format(printf, 1, 2)));

} // namespace kv
