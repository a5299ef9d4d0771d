// The sleep entry point: a select with the wait as its time-out. Run twice: once plainly, once
// with kvrun failing every select (call 32), while this program's time entry point makes three
// seconds pass during the failed wait.
#include <kv/syscall.h>
#include <kvtest.h>
#include <stdint.h>

namespace {
int32_t clock_now = 1000;
int time_calls;
} // namespace

// Replaces the time entry point that the library's time() goes through.
extern "C" int32_t __syscall_time(int32_t *t) {
  int32_t now = clock_now;
  clock_now += 3;
  ++time_calls;
  if (t)
    *t = now;
  return now;
}

TEST(Sleep, FullWaitReturnsZero) {
  EXPECT_EQ(__syscall_sleep(0), 0);
  EXPECT_EQ(__syscall_sleep(1), 0);
  EXPECT_EQ(time_calls, 2); // the start time only, once per call
}

TEST(SleepFails, ReturnsTheSecondsThatPassed) {
  EXPECT_EQ(__syscall_sleep(5), 3);
  EXPECT_EQ(time_calls, 2);
  EXPECT_EQ(__syscall_sleep(0), 3);
  EXPECT_EQ(time_calls, 4);
}
