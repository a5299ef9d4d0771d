// Runs a guest program through the kvrun binary, as a user would, and collects what the system
// side saw: stdout, stderr, the exit status, the request trace and the debug log.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace kvtest_host {

struct GuestRun {
  int status = -1; // the exit status, -1 if kvrun did not exit normally
  std::string out, err;
  std::vector<std::string> trace; // the "trap ..." lines
  std::vector<std::string> log;
};

inline std::string slurp(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

inline GuestRun run_guest(const std::string &program, const std::string &args = "") {
  GuestRun r;
  char err_path[] = "/tmp/kv-run-err-XXXXXX";
  char trace_path[] = "/tmp/kv-run-trace-XXXXXX";
  char log_path[] = "/tmp/kv-run-log-XXXXXX";
  close(mkstemp(err_path));
  close(mkstemp(trace_path));
  close(mkstemp(log_path));
  std::string cmd = std::string(KVRUN_PATH) + " -L " KV_GUEST_LIB_DIR " --trace " + trace_path +
                    " -l " + log_path + " " + program + " " + args + " 2>" + err_path;
  if (FILE *p = popen(cmd.c_str(), "r")) {
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, p)) > 0)
      r.out.append(buf, n);
    int raw = pclose(p);
    r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  }
  r.err = slurp(err_path);
  std::istringstream trace(slurp(trace_path)), log(slurp(log_path));
  for (std::string line; std::getline(trace, line);)
    if (line.rfind("trap ", 0) == 0)
      r.trace.push_back(line);
  for (std::string line; std::getline(log, line);)
    r.log.push_back(line);
  unlink(err_path);
  unlink(trace_path);
  unlink(log_path);
  return r;
}

} // namespace kvtest_host
