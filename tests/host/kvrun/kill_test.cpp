// kill: the program's own pid ends it as the signal would, its spawned children get the real
// signal, and no other process on the host is ever touched.
#include <gtest/gtest.h>
#include <kv/abi.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "service_fixture.h"

using namespace kvrun;

namespace {

class KillTest : public kvtest_host::ServiceFixture {
protected:
  // A host process that waits to be signalled.
  static pid_t sleeper() {
    pid_t pid = fork();
    if (pid == 0) {
      for (;;)
        pause();
    }
    return pid;
  }
  // Whether the process is still running (not ended, not yet reaped).
  static bool alive(pid_t pid) { return waitpid(pid, nullptr, WNOHANG) == 0; }
  static int ended_by(pid_t pid) {
    int status = 0;
    EXPECT_EQ(waitpid(pid, &status, 0), pid);
    return WIFSIGNALED(status) ? WTERMSIG(status) : -1;
  }
  Outcome kill(int32_t pid, int32_t sig) {
    return call(KV_SYS_kill, static_cast<uint32_t>(pid), static_cast<uint32_t>(sig));
  }
};

TEST_F(KillTest, OwnPid) {
  const int32_t self = getpid();
  EXPECT_EQ(kill(self, 0).value, 0u);
  EXPECT_FALSE(process.exit_status) << "signal 0 only checks";

  const struct {
    int32_t sig;
    int status;
  } cases[] = {{KV_SIGTERM, 143}, {KV_SIGABRT, 134}, {KV_SIGFPE, 136}, {KV_SIGKILL, 137}, {31, 159}};
  for (auto &c : cases) {
    process.exit_status.reset();
    EXPECT_EQ(kill(self, c.sig).value, 0u) << c.sig;
    ASSERT_TRUE(process.exit_status) << c.sig;
    EXPECT_EQ(*process.exit_status, c.status) << c.sig;
  }
}

TEST_F(KillTest, BadSignalsFailBeforeAnything) {
  const int32_t self = getpid();
  for (int32_t sig : {32, 64, -1, INT32_MIN}) {
    EXPECT_EQ(kill(self, sig).value, kFailed) << sig;
    EXPECT_EQ(err(), KV_EINVAL) << sig;
  }
  EXPECT_FALSE(process.exit_status);
}

TEST_F(KillTest, OtherProcessesAreOutOfReach) {
  pid_t stranger = sleeper();
  ASSERT_GT(stranger, 0);
  const struct {
    const char *what;
    int32_t pid;
  } cases[] = {
      {"init", 1},
      {"kvrun's parent", static_cast<int32_t>(getppid())},
      {"a process kvrun did not spawn", stranger},
      {"the process group", 0},
      {"every process", -1},
      {"a process group by number", -static_cast<int32_t>(getpgrp())},
  };
  for (auto &c : cases) {
    for (int32_t sig : {0, KV_SIGTERM}) {
      EXPECT_EQ(kill(c.pid, sig).value, kFailed) << c.what << ", signal " << sig;
      EXPECT_EQ(err(), KV_EPERM) << c.what;
    }
  }
  EXPECT_TRUE(alive(stranger)) << "never signalled";
  EXPECT_FALSE(process.exit_status);
  ::kill(stranger, SIGKILL);
  EXPECT_EQ(ended_by(stranger), SIGKILL);
}

TEST_F(KillTest, SpawnedChildrenGetTheSignal) {
  pid_t child = sleeper();
  ASSERT_GT(child, 0);
  process.children.push_back(child);
  EXPECT_EQ(kill(child, 0).value, 0u);
  EXPECT_TRUE(alive(child));
  EXPECT_EQ(kill(child, KV_SIGTERM).value, 0u);
  EXPECT_EQ(ended_by(child), SIGTERM);

  // A child that has ended is ESRCH, and is forgotten: its pid may be someone else's soon.
  pid_t gone = fork();
  if (gone == 0)
    _exit(0);
  process.children.push_back(gone);
  for (int i = 0; i < 500 && kill(gone, 0).value == 0; ++i)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_EQ(err(), KV_ESRCH);
  EXPECT_EQ(kill(gone, KV_SIGTERM).value, kFailed);
  EXPECT_EQ(err(), KV_EPERM) << "no longer a child";
}

} // namespace
