// A system side that refuses both addresses: the library keeps its own cells, warns once each.
#include <kvtest.h>
#include <stdint.h>

#include "log_capture.h"

extern "C" {
int *___aeabi_errno_addr(void);
int *___h_errno_addr(void);
int __read_errno(void);
void __set_errno(int);
}

namespace {
int *offered_errno, *offered_h_errno;
int refusals;
} // namespace

extern "C" int __syscall_set_errno_addr(int *cell) {
  offered_errno = cell;
  ++refusals;
  return -1;
}
extern "C" int __syscall_set_h_errno_addr(int *cell) {
  offered_h_errno = cell;
  ++refusals;
  return -1;
}

TEST(ErrnoRefused, WarnsOnceAndKeepsTheLibraryCell) {
  EXPECT_EQ(logcap::count_prefix("KV: (252) could not send errno address, errno might not be "
                                 "correctly updated\n"),
            1u);
  EXPECT_EQ(logcap::count_prefix("KV: (192) could not send h_errno address, h_errno might not "
                                 "be correctly updated\n"),
            1u);
  ASSERT_TRUE(offered_errno != nullptr);
  EXPECT_EQ(___aeabi_errno_addr(), offered_errno);
  EXPECT_EQ(___h_errno_addr(), offered_h_errno);
  EXPECT_EQ(refusals, 2);
}

TEST(ErrnoRefused, LaterCallsAskNothingAndLogNothing) {
  size_t before = logcap::count();
  for (int i = 0; i < 3; ++i) {
    ___aeabi_errno_addr();
    ___h_errno_addr();
  }
  __set_errno(45);
  EXPECT_EQ(__read_errno(), 45);
  EXPECT_EQ(*offered_errno, 45);
  EXPECT_EQ(logcap::count(), before);
  EXPECT_EQ(refusals, 2);
}
