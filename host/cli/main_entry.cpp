#include "cli/main_entry.h"

#include "cli/options.h"
#include "run/program_run.h"
#include "services/host_output.h"

namespace kvrun {

int kvrun_main(int argc, char *const argv[], int out_fd, int err_fd) {
  ParsedCommandLine parsed = parse_command_line(argc, argv);
  switch (parsed.action) {
  case ParsedCommandLine::help:
    write_all(out_fd, usage_text());
    return 0;
  case ParsedCommandLine::error:
    write_all(err_fd, "kvrun: " + parsed.message + "\n" + usage_text());
    return kStatusUsage;
  case ParsedCommandLine::run:
    break;
  }
  parsed.options.stdout_fd = out_fd;
  parsed.options.stderr_fd = err_fd;
  return run_program(parsed.options).status;
}

} // namespace kvrun
