// Directory handle records: every record ever made stays in the registry, open or free, until
// unload.
#pragma once

#include <stdint.h>

namespace kv::dirs {

struct DirRecord {
  uint32_t handle; // the system side's handle; 0 when free for reuse
  char entry[256]; // what the system side wrote for the last readdir
  DirRecord *next;
};

extern DirRecord *registry;
void release_directories();

} // namespace kv::dirs
