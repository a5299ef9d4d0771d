// What the file services keep per program beyond the descriptors and Process::cwd: the sandbox
// and the open directory streams.
#pragma once

#include <dirent.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "services/sandbox.h"

namespace kvrun {

class FileState {
public:
  FileState() = default;
  ~FileState() {
    for (auto &[handle, dir] : directories)
      closedir(dir);
  }
  FileState(const FileState &) = delete;
  FileState &operator=(const FileState &) = delete;

  Sandbox sandbox;
  std::map<uint32_t, DIR *> directories; // opendir handles
  uint32_t next_directory = 1;           // handles are never 0 and not reused soon
};

} // namespace kvrun
