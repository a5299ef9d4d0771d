#include "time/zone_copy.h"

#include "alloc/malloc.h"

namespace kv::time {

char *tz_copy;

void release_tz_copy() {
  kv::free(tz_copy);
  tz_copy = nullptr;
}

} // namespace kv::time
