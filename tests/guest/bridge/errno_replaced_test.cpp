// An environment's own errno accessor or handshake takes over for the whole library.
#include <kvtest.h>

#include "log_capture.h"

extern "C" {
int __read_errno(void);
void __set_errno(int);
int *___h_errno_addr(void);
}

namespace {
int my_errno = -5;
int my_h_errno;
int h_asked;
} // namespace

extern "C" int *___aeabi_errno_addr(void) { return &my_errno; }

// A replaced handshake decides which cell the library's accessor hands out.
extern "C" int *__syscall_get_h_errno_addr(void) {
  ++h_asked;
  return &my_h_errno;
}

TEST(ErrnoReplaced, LibraryUsesTheProgramsAccessor) {
  EXPECT_EQ(my_errno, 0); // start-up cleared it through our accessor
  __set_errno(7);
  EXPECT_EQ(my_errno, 7);
  my_errno = 9;
  EXPECT_EQ(__read_errno(), 9);
  // The library's own handshake never ran: nobody called its __syscall_get_errno_addr.
  EXPECT_EQ(logcap::count_prefix("KV: (248) sending"), 0u);
  EXPECT_EQ(logcap::count_prefix("KV: (273)"), 0u);
}

TEST(ErrnoReplaced, ReplacedHandshakeChoosesTheCell) {
  EXPECT_EQ(h_asked, 1);
  EXPECT_EQ(___h_errno_addr(), &my_h_errno);
  EXPECT_EQ(h_asked, 1);
  EXPECT_EQ(logcap::count_prefix("KV: (187)"), 0u);
  EXPECT_EQ(logcap::count_prefix("KV: (346) Using h_errno from address "), 1u);
}
