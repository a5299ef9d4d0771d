// Helpers for kvrun's tests: guest memory without a program, and whole runs of kvrun in-process
// with their output captured.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cpu/engine.h"
#include "memory/address_space.h"

namespace kvtest_host {

// A fresh emulator and an empty address space.
struct GuestMemory {
  kvrun::Engine engine;
  kvrun::AddressSpace memory{engine.get()};
};

struct Captured {
  int status;
  std::string out, err;
};

// Runs kvrun with these arguments (without "kvrun" itself), capturing its output and error.
Captured run_kvrun(const std::vector<std::string> &args);

// The path of a program or library built in tests/guest/loader.
std::string loader_program(const std::string &name);

// The lines of a text, without their newlines.
std::vector<std::string> lines_of(const std::string &text);

std::vector<uint8_t> read_file(const std::string &path);
void write_file(const std::string &path, const std::vector<uint8_t> &bytes);

// A directory of its own under /tmp, removed with everything in it at the end.
class TempDir {
public:
  TempDir();
  ~TempDir();
  const std::string &path() const { return path_; }

private:
  std::string path_;
};

} // namespace kvtest_host
