// The one host-entry buffer that every lookup overwrites; allocated on first use, kept to unload.
#pragma once

namespace kv::net {
extern void *host_entry_buffer;
void release_host_entry();
} // namespace kv::net
