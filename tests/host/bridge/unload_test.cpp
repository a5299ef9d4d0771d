// Unload: the streams are written out and closed, then the finalisation lines come in their
// order and nothing follows them; the environment block goes back to the heap.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../guest_run.h"

TEST(Unload, FinalisationOrder) {
  kvtest_host::GuestRun r = kvtest_host::run_guest(UNLOAD_PROGRAM);
  EXPECT_EQ(r.status, 0);
  // The buffered text reaches the system side before the environment is freed.
  EXPECT_EQ(r.out, "waiting in the buffer [environ freed]");
  const std::vector<std::string> tail = {
      "<31>KV: (245) _sys_close( 0 )",
      "<31>KV: (245) _sys_close( 1 )",
      "<31>KV: (245) _sys_close( 2 )",
      "<31>KV: (306) ***** </libc.so> *****",
      "<31>KV: (168) free struct hostent* variable",
      "<31>KV: (290) free all reallocated environ variables",
      "<31>KV: (154) free all DIR* structures",
  };
  ASSERT_GE(r.log.size(), tail.size());
  EXPECT_EQ(std::vector<std::string>(r.log.end() - static_cast<long>(tail.size()), r.log.end()),
            tail);
}
