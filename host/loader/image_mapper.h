// Puts an object's loadable segments into guest memory: writable while the loader relocates,
// then each page with the union of the protections of the segments that cover it.
#pragma once

#include "loader/loaded_object.h"
#include "memory/address_space.h"

namespace kvrun {

// Chooses the bias (position-independent objects go at `next_base`), maps and fills the pages.
// Throws LoadError when the object does not fit. Returns the first free address after it.
uint32_t map_image(LoadedObject &object, AddressSpace &memory, uint32_t next_base);
// Final protections, and read-only relocation data made read-only.
void protect_image(const LoadedObject &object, AddressSpace &memory);

} // namespace kvrun
