// kvrun's command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "services/fault_injection.h"

namespace kvrun {

struct Options {
  std::string program;
  std::vector<std::string> args; // argv of the program; args[0] is PROGRAM as given
  std::vector<std::string> library_path; // -L directories, then the default
  std::string root = ".";
  std::vector<std::string> environment;
  std::string log_path;   // "" nowhere, "-" standard error
  std::string trace_path; // likewise
  bool count = false;
  std::string profile_path; // "" none, "-" standard error
  std::optional<double> time_limit; // seconds
  std::optional<uint64_t> memory_limit;
  uint32_t max_files = 256; // guest descriptors are numbered below this
  std::vector<FaultRule> faults;
  // Where kvrun's standard input, output and error are (tests run kvrun in-process).
  int stdin_fd = 0, stdout_fd = 1, stderr_fd = 2;
};

struct ParsedCommandLine {
  enum Action { run, help, error };
  Action action;
  Options options;
  std::string message; // for errors
};

ParsedCommandLine parse_command_line(int argc, char *const argv[]);
std::string usage_text();

} // namespace kvrun
