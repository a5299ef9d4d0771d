// Unload: the streams are written out and closed, then the finalisation lines come in their
// order and nothing follows them; the environment block goes back to the heap.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

TEST(Unload, FinalisationOrder) {
  char log_path[] = "/tmp/kv-unload-log-XXXXXX";
  close(mkstemp(log_path));
  std::string cmd = std::string(KVRUN_PATH) + " -L " KV_GUEST_LIB_DIR " -l " + log_path +
                    " " UNLOAD_PROGRAM;
  FILE *p = popen(cmd.c_str(), "r");
  ASSERT_NE(p, nullptr);
  std::string out;
  char buf[512];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, p)) > 0)
    out.append(buf, n);
  int status = pclose(p);
  std::ifstream in(log_path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);)
    lines.push_back(line);
  unlink(log_path);

  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  // The buffered text reaches the system side before the environment is freed.
  EXPECT_EQ(out, "waiting in the buffer [environ freed]");
  const std::vector<std::string> tail = {
      "<31>KV: (245) _sys_close( 0 )",
      "<31>KV: (245) _sys_close( 1 )",
      "<31>KV: (245) _sys_close( 2 )",
      "<31>KV: (306) ***** </libc.so> *****",
      "<31>KV: (168) free struct hostent* variable",
      "<31>KV: (290) free all reallocated environ variables",
      "<31>KV: (154) free all DIR* structures",
  };
  ASSERT_GE(lines.size(), tail.size());
  EXPECT_EQ(std::vector<std::string>(lines.end() - static_cast<long>(tail.size()), lines.end()),
            tail);
}
