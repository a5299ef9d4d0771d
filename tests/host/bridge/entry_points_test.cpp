// Runs the guest program that calls every entry point and checks kvrun's request trace against
// this table: call number, argument count, and the words the program passed (0xE0000000 |
// index << 8 | word), zeros in the unused words, and the result the program received.
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "../guest_run.h"

namespace {

struct Entry {
  int number;
  const char *name;
  int words;
};

// In the order the guest program calls them.
const Entry kTable[] = {
    {0, "open", 3},          {1, "mmap", 6},         {2, "munmap", 2},
    {6, "puts", 2},          {7, "socket", 3},       {8, "bind", 3},
    {9, "connect", 3},       {10, "listen", 2},      {11, "accept", 3},
    {12, "sendto", 6},       {13, "recvfrom", 6},    {14, "write", 3},
    {15, "read", 3},         {16, "close", 1},       {25, "lseek", 3},
    {26, "mkdir", 2},        {27, "rmdir", 1},       {28, "opendir", 1},
    {29, "readdir", 2},      {30, "closedir", 1},    {31, "remove", 1},
    {32, "select", 5},       {33, "time", 1},        {34, "getsockname", 3},
    {35, "set_errno_addr", 1}, {36, "send", 4},      {37, "recv", 4},
    {38, "gethostbyname", 4}, {39, "rename", 2},     {40, "stat", 2},
    {41, "getpid", 0},       {43, "unlink", 1},      {44, "access", 2},
    {45, "fstat", 2},        {46, "fsync", 1},       {47, "ftruncate", 2},
    {48, "getcwd", 2},       {49, "set_h_errno_addr", 1}, {69, "fcntl", 3},
    {70, "chdir", 1},        {71, "fchdir", 1},      {72, "getpeername", 3},
    {73, "getsockopt", 5},   {74, "setsockopt", 5},  {75, "gethostbyaddr", 5},
    {76, "sha", 3},          {77, "sysconf", 1},     {78, "kill", 2},
    {79, "syslog", 2},       {80, "copy_environ", 2}, {81, "os_current_time_in_ms", 1},
    {82, "shm_open", 3},     {83, "shm_unlink", 1},  {84, "posix_spawn", 6},
    {104, "truncate", 2},
    // unsupported: number -1
    {-1, "times", 1},        {-1, "adjtime", 2},     {-1, "clock_settime", 2},
    {-1, "sendmsg", 3},      {-1, "recvmsg", 3},     {-1, "getnameinfo", 7},
    {-1, "getaddrinfo", 7},  {-1, "ioctl", 3},       {-1, "sigaction", 3},
    {-1, "alarm", 1},        {-1, "pselect", 6},     {-1, "sigprocmask", 3},
    {-1, "pthread_sigmask", 3}, {-1, "pipe", 1},     {-1, "shutdown", 2},
    {-1, "fchmod", 2},       {-1, "getuid", 0},      {-1, "statvfs", 2},
    {-1, "fstatvfs", 2},     {-1, "chmod", 2},       {-1, "clock", 0},
};
constexpr size_t kCount = sizeof kTable / sizeof kTable[0];

struct Trap {
  int number;
  std::string name;
  uint32_t w[7];
  uint32_t result;
};

bool parse(const std::string &line, Trap &t) {
  std::istringstream in(line);
  std::string word, eq;
  if (!(in >> word) || word != "trap")
    return false;
  in >> t.number >> t.name;
  for (auto &w : t.w)
    in >> std::hex >> w;
  in >> eq >> std::hex >> t.result;
  return !in.fail() && eq == "=";
}

struct Outcome {
  int status = -1;
  std::string out;
  std::vector<Trap> traps;
};

Outcome run_program() {
  kvtest_host::GuestRun run = kvtest_host::run_guest(ENTRY_POINTS_PROGRAM);
  Outcome r;
  r.status = run.status;
  r.out = run.out;
  for (const std::string &line : run.trace) {
    Trap t;
    if (parse(line, t))
      r.traps.push_back(t);
  }
  return r;
}

uint32_t word(size_t k, int i) { return 0xE0000000u | static_cast<uint32_t>(k) << 8 | i; }

TEST(EntryPoints, EachIssuesItsNumberAndWordsAndReturnsTheResult) {
  Outcome r = run_program();
  ASSERT_EQ(r.status, 0) << r.out;
  // The program prints what each call returned, one hex word per line.
  std::vector<uint32_t> results;
  std::istringstream out(r.out);
  std::string line;
  while (std::getline(out, line))
    results.push_back(static_cast<uint32_t>(std::stoul(line, nullptr, 16)));
  ASSERT_EQ(results.size(), kCount + 1);

  // The table's calls start at the first request whose first word marks call 0.
  size_t start = 0;
  while (start < r.traps.size() && r.traps[start].w[0] != word(0, 1))
    ++start;
  ASSERT_LE(start + kCount, r.traps.size()) << "the marked requests are not in the trace";
  for (size_t k = 0; k < kCount; ++k) {
    const Entry &e = kTable[k];
    const Trap &t = r.traps[start + k];
    SCOPED_TRACE(e.name);
    EXPECT_EQ(t.number, e.number);
    for (int i = 0; i < 7; ++i)
      EXPECT_EQ(t.w[i], i < e.words ? word(k, i + 1) : 0u) << "word " << i + 1;
    EXPECT_EQ(t.result, results[k]);
  }

  // sleep(0): the start time, then a select on no descriptors with a zero time-out record.
  ASSERT_LE(start + kCount + 2, r.traps.size());
  const Trap &time = r.traps[start + kCount];
  EXPECT_EQ(time.number, 33);
  EXPECT_EQ(time.w[0], 0u);
  const Trap &select = r.traps[start + kCount + 1];
  EXPECT_EQ(select.number, 32);
  for (int i : {0, 1, 2, 3, 5, 6})
    EXPECT_EQ(select.w[i], 0u) << "word " << i + 1;
  EXPECT_NE(select.w[4], 0u);
  EXPECT_EQ(select.result, 0u);
  EXPECT_EQ(results[kCount], 0u);
}

} // namespace
