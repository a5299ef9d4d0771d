// kvrun's main, callable in-process with other standard streams.
#pragma once

namespace kvrun {

// Parses the command line, runs the program, returns kvrun's exit status. Usage text and
// diagnostics go to err_fd, --help to out_fd.
int kvrun_main(int argc, char *const argv[], int out_fd = 1, int err_fd = 2);

} // namespace kvrun
