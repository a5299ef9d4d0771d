// Host memory behind the guest's file mappings: the file's pages mapped into kvrun itself and
// handed to Unicorn as they are, so a store through a shared mapping is a store into the file,
// seen at once by read() and by every other process that maps it.
//
// Touching a mapped page that lies wholly past the end of the file raises SIGBUS on the host,
// whether the file was short from the start or was cut afterwards by anyone. kvrun must not die
// of that: a handler swaps the page for a private zero page and the access goes on, so the guest
// reads zeros there and what it writes there stays in memory.
#pragma once

#include <cstdint>

namespace kvrun::file_pages {

// `size` bytes (a whole number of pages) of the file from `offset` (a page multiple). Shared:
// stores reach the file; otherwise the pages show the file until kvrun itself writes one. The
// memory is always readable and writable on the host, as Unicorn needs; the guest's own
// protection is Unicorn's business. Null with host errno set on failure.
void *map(int fd, uint64_t offset, uint64_t size, bool shared);

// Gives back pages from map(): all of a mapping or any page-aligned part of it.
void unmap(void *addr, uint64_t size);

} // namespace kvrun::file_pages
