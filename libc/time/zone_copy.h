// The library's own copy of the TZ text, kept from one tzset to the next.
#pragma once

namespace kv::time {
extern char *tz_copy;
void release_tz_copy();
} // namespace kv::time
