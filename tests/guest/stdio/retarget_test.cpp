// The retarget functions against a scripted system side: results, requests and log lines.
#include <kv/abi.h>
#include <kvtest.h>

#include "fake_files.h"
#include "../bridge/log_capture.h"
#include "stdio/retarget.h"

extern "C" int __read_errno(void);
extern "C" void __set_errno(int);

namespace {

const int kNoInput[] = {0, 2};
const int kAnyHandles[] = {-1, 0, 1, 2, 7};

struct OpenCase {
  const char *name;
  int mode;
  int handle;        // -2: whatever the system side gives
  long flags;        // -1: no request
  const char *line;  // the second log line, or null for none
};

const OpenCase kOpenCases[] = {
    {"__stdout__", 0, 1, -1, nullptr},
    {"__stderr__", 4, 2, -1, nullptr},
    {"__stdin__", 4, 0, -1, nullptr},
    {"__stdin__x", 0, -2, 0x1, "KV: (200) O_RDONLY\n"},
    {"f", 0, -2, 0x1, "KV: (200) O_RDONLY\n"},
    {"f", 1, -2, 0x1, "KV: (200) O_RDONLY\n"},
    {"f", 2, -2, 0x2, "KV: (212) O_RDWR"},
    {"f", 3, -2, 0x2, "KV: (212) O_RDWR"},
    {"f", 4, -2, 0x904, "KV: (204) O_WRONLY | O_TRUNC | O_CREAT\n"},
    {"f", 5, -2, 0x904, "KV: (204) O_WRONLY | O_TRUNC | O_CREAT\n"},
    {"f", 6, -2, 0x902, "KV: (216) O_RDWR | O_TRUNC | O_CREAT\n"},
    {"f", 8, -2, 0x10C, "KV: (208) O_WRONLY | O_APPEND | O_CREAT\n"},
    {"f", 11, -2, 0x10A, "KV: (220) O_RDWR | O_APPEND | O_CREAT\n"},
    {"f", 0x10, -2, 0, "KV: (223) unknown mode\n"},
    {"f", 0x14, -2, 0, "KV: (223) unknown mode\n"},
    {"f", 12, -2, 0, "KV: (223) unknown mode\n"},
};

TEST(SysOpen, ModeTableAndConsoleNames) {
  for (const OpenCase &c : kOpenCases) {
    fake::reset();
    fake::make("f", "");
    fake::make("__stdin__x", "");
    logcap::clear();
    int handle = _sys_open(c.name, c.mode);
    if (c.handle == -2)
      EXPECT_TRUE(handle >= 3);
    else
      EXPECT_EQ(handle, c.handle);
    ASSERT_EQ(fake::count(fake::kOpen), c.flags == -1 ? 0u : 1u);
    if (c.flags != -1) {
      EXPECT_EQ(fake::request(0).a, c.flags);
      EXPECT_EQ(fake::request(0).b, 0L); // permission bits are never sent
    }
    ASSERT_EQ(logcap::count(), c.line ? 2u : 1u);
    if (c.line)
      EXPECT_STREQ(logcap::line(1), c.line);
  }
}

TEST(SysOpen, LogsNameAndModeFirst) {
  fake::reset();
  logcap::clear();
  _sys_open("__stdin__", 4);
  EXPECT_STREQ(logcap::line(0), "KV: (174) _sys_open( __stdin__, 4 )\n");
  logcap::clear();
  EXPECT_EQ(_sys_open(nullptr, 0), -1);
  EXPECT_EQ(logcap::count(), 1u);
  EXPECT_STREQ(logcap::line(0), "KV: (174) _sys_open( <null>, 0 )\n");
  EXPECT_EQ(fake::request_count(), 0u);
}

TEST(SysOpen, FailurePassesThrough) {
  fake::reset();
  __set_errno(0);
  EXPECT_EQ(_sys_open("missing", 0), -1);
  EXPECT_EQ(__read_errno(), KV_ENOENT);
  EXPECT_EQ(fake::count(fake::kOpen), 1u);
}

TEST(SysClose, ConsoleHandlesNeverReachTheSystemSide) {
  fake::reset();
  for (int handle = 0; handle < 3; ++handle) {
    logcap::clear();
    EXPECT_EQ(_sys_close(handle), 0);
    EXPECT_EQ(logcap::count(), 1u);
  }
  EXPECT_STREQ(logcap::line(0), "KV: (245) _sys_close( 2 )\n");
  EXPECT_EQ(fake::request_count(), 0u);
  int handle = _sys_open("g", 4);
  EXPECT_EQ(_sys_close(handle), 0);
  EXPECT_EQ(_sys_close(handle), -1); // already closed: the system side's answer
  EXPECT_EQ(fake::count(fake::kClose), 2u);
}

TEST(SysRead, StandardInputAndErrorReadAsEndOfFile) {
  fake::reset();
  unsigned char buffer[64];
  for (int handle : kNoInput) {
    logcap::clear();
    EXPECT_EQ(static_cast<uint32_t>(_sys_read(handle, buffer, 64, 0)), 0x80000040u);
    ASSERT_EQ(logcap::count(), 1u);
  }
  EXPECT_STREQ(logcap::line(0),
               "KV: (301) causing explicit EOF for read std file 2 for 64 bytes\n");
  EXPECT_EQ(fake::request_count(), 0u);
  _sys_read(1, buffer, 10, 0); // handle 1 is not special
  ASSERT_EQ(fake::count(fake::kRead), 1u);
  EXPECT_EQ(fake::request(0).handle, 1);
}

TEST(SysRead, CountsBytesNotRead) {
  fake::reset();
  fake::make("f", "0123456789");
  int handle = _sys_open("f", 0);
  unsigned char buffer[16];
  struct {
    unsigned length;
    int result;
  } const steps[] = {{4, 0}, {10, 4}, {8, 8}}; // the end comes back as the full length
  for (const auto &step : steps) {
    logcap::clear();
    EXPECT_EQ(_sys_read(handle, buffer, step.length, 0x1), step.result);
    ASSERT_EQ(logcap::count(), 2u);
  }
  EXPECT_STREQ(logcap::line(1), "KV: (311) _syscall_read returned: 0\n");
  logcap::clear();
  _sys_read(handle, buffer, 3, 0x1);
  EXPECT_EQ(logcap::line(0)[10], '_'); // "KV: (306) _sys_read( ..."
  fake::fail_next(fake::kRead, KV_EIO);
  logcap::clear();
  EXPECT_EQ(_sys_read(handle, buffer, 3, 0x1), -1);
  EXPECT_EQ(logcap::count(), 1u); // no line after a failure
}

TEST(SysWrite, CountsBytesNotWrittenAndLogsNothing) {
  fake::reset();
  int handle = _sys_open("w", 4);
  unsigned char data[16] = {};
  logcap::clear();
  EXPECT_EQ(_sys_write(handle, data, 16, 0), 0);
  fake::short_write_next(10);
  EXPECT_EQ(_sys_write(handle, data, 16, 0), 6);
  fake::fail_next(fake::kWrite, KV_ENOSPC);
  EXPECT_EQ(_sys_write(handle, data, 16, 0), -1);
  EXPECT_EQ(_sys_write(2, data, 3, 0), 0); // console handles go to the system side too
  EXPECT_EQ(fake::count(fake::kWrite), 4u);
  EXPECT_EQ(logcap::count(), 0u);
}

TEST(SysPosition, LengthAndSeekRequests) {
  fake::reset();
  fake::make("f", "abcdefg");
  int handle = _sys_open("f", 0);
  fake::forget_requests();
  logcap::clear();
  EXPECT_EQ(_sys_flen(handle), 7L);
  EXPECT_EQ(_sys_seek(handle, 3), 3);
  EXPECT_TRUE(_sys_seek(handle, -1) < 0);
  ASSERT_EQ(fake::request_count(), 3u);
  EXPECT_EQ(fake::request(0).b, 2L);
  EXPECT_EQ(fake::request(1).a, 3L);
  EXPECT_EQ(fake::request(1).b, 0L);
  char expected[40] = "KV: (379) _sys_flen( 3 )\n";
  expected[21] = static_cast<char>('0' + handle);
  EXPECT_STREQ(logcap::line(0), expected);
  EXPECT_EQ(logcap::count_prefix("KV: (396) _sys_seek( "), 2u);
}

TEST(SysIstty, NoHandleIsATerminalAndErrnoStays) {
  for (int handle : kAnyHandles) {
    __set_errno(45);
    EXPECT_EQ(_sys_istty(handle), 0);
    EXPECT_EQ(__read_errno(), 45);
  }
  __set_errno(0);
  EXPECT_EQ(isatty(-1), 0);
  EXPECT_EQ(__read_errno(), KV_EBADF);
  EXPECT_EQ(isatty(0), 0);
  EXPECT_EQ(__read_errno(), KV_ENOTTY);
}

} // namespace
