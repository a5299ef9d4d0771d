// The services through the dispatcher, in-process: results, errno cells, the trace, fault
// injection and replaceable handlers.
#include <gtest/gtest.h>
#include <kv/abi.h>
#include <unistd.h>

#include <chrono>
#include <cstring>

#include "memory/layout.h"
#include "memory/protection.h"
#include "memory/region_allocator.h"
#include "services/dispatcher.h"
#include "services/errno_names.h"
#include "services/fault_injection.h"
#include "services/process.h"
#include "test_support.h"

using namespace kvrun;

namespace {

constexpr uint32_t kData = 0x10000;     // read-write page
constexpr uint32_t kReadOnly = 0x11000; // read-only page after it
constexpr uint32_t kUnmapped = 0x20000;
constexpr uint32_t kCell = 0x10ff0;     // errno
constexpr uint32_t kHCell = 0x10ff8;    // h_errno
constexpr uint32_t kFailed = 0xFFFFFFFF;

std::string file_text(FILE *f) {
  std::string s;
  fflush(f);
  rewind(f);
  char b[4096];
  size_t n;
  while ((n = fread(b, 1, sizeof b, f)) > 0)
    s.append(b, n);
  return s;
}

class ServicesTest : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(m.memory.map(kData, 0x1000, kProtRead | kProtWrite));
    ASSERT_TRUE(m.memory.map(kReadOnly, 0x1000, kProtRead));
    process.log_fd = fileno(log);
    process.trace_fd = fileno(trace);
    process.descriptors.set(1, {fileno(out), true});
    process.descriptors.set(2, {fileno(err), true});
  }
  void TearDown() override {
    for (FILE *f : {log, trace, out, err})
      fclose(f);
  }

  Outcome call(int32_t number, uint32_t w1 = 0, uint32_t w2 = 0, uint32_t w3 = 0, uint32_t w4 = 0,
               uint32_t w5 = 0, uint32_t w6 = 0, uint32_t w7 = 0) {
    return dispatch(process, Request{number, {w1, w2, w3, w4, w5, w6, w7}});
  }
  uint32_t word(uint32_t addr) {
    uint32_t v = 0;
    m.memory.read_u32(addr, v);
    return v;
  }
  void put(uint32_t addr, const std::string &s) { ASSERT_TRUE(m.memory.poke(addr, s.c_str(), static_cast<uint32_t>(s.size() + 1))); }
  void handshake() { ASSERT_EQ(call(KV_SYS_set_errno_addr, kCell).value, 0u); }

  kvtest_host::GuestMemory m;
  RegionAllocator mappings{m.memory, layout::kMmapBase, layout::kMmapEnd, 64 * 1024};
  Process process{m.memory, mappings};
  FILE *log = tmpfile(), *trace = tmpfile(), *out = tmpfile(), *err = tmpfile();
};

TEST_F(ServicesTest, UnknownAndUnsupportedNumbersFailWithEnosys) {
  handshake();
  const int32_t numbers[] = {-1, 3, 42, 50, 103, 105, 5000, INT32_MIN};
  for (int32_t n : numbers) {
    m.memory.write_u32(kCell, 0);
    Outcome o = call(n, 1, 2, 3);
    EXPECT_EQ(o.value, kFailed) << n;
    EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_ENOSYS)) << n;
  }
}

TEST_F(ServicesTest, ErrnoIsStoredOnlyOnFailureAndOnlyIntoAKnownWritableCell) {
  // Before the handshake, a failure stores nothing anywhere.
  m.memory.write_u32(kCell, 0x1234);
  EXPECT_EQ(call(KV_SYS_sysconf, 1).value, kFailed);
  EXPECT_EQ(word(kCell), 0x1234u);

  handshake();
  EXPECT_EQ(call(KV_SYS_sysconf, 1).value, kFailed);
  EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_EINVAL));
  EXPECT_EQ(call(KV_SYS_sysconf, KV_SC_PAGESIZE).value, 4096u);
  EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_EINVAL)) << "success leaves errno alone";

  // A cell that cannot be written is refused and the old one kept.
  for (uint32_t bad : {0u, kReadOnly, kUnmapped, kData + 0xffe}) {
    EXPECT_EQ(call(KV_SYS_set_errno_addr, bad).value, kFailed);
    EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_EFAULT));
  }
  // A cell that stops being writable later is skipped, not a crash.
  ASSERT_TRUE(m.memory.protect(kData, 0x1000, kProtRead));
  EXPECT_EQ(call(KV_SYS_sysconf, 1).value, kFailed);
  EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_EFAULT));
}

TEST_F(ServicesTest, HErrnoFailuresGoToTheHErrnoCell) {
  handshake();
  EXPECT_EQ(call(KV_SYS_set_h_errno_addr, kHCell).value, 0u);
  process.services.set(KV_SYS_gethostbyname, {"gethostbyname", [](Process &, const Request &) {
                                                 return Outcome{kFailed, 0, 3};
                                               }, "s"});
  m.memory.write_u32(kCell, 0);
  EXPECT_EQ(call(KV_SYS_gethostbyname).value, kFailed);
  EXPECT_EQ(word(kHCell), 3u);
  EXPECT_EQ(word(kCell), 0u);
}

TEST_F(ServicesTest, CopyEnvironLayoutAndTooSmallAnswer) {
  process.environment = {"A=1", "LONGER=value with spaces", "E="};
  // 4 pointers (the last null), then the strings with their zeros.
  const uint32_t needed = 16 + 4 + 25 + 3;
  const uint32_t buffer = kData + 3; // unaligned on purpose
  std::vector<uint8_t> marks(0x100, 0xEE);
  m.memory.write(kData, marks.data(), 0x100);

  EXPECT_EQ(call(KV_SYS_copy_environ, buffer, needed - 1).value, needed);
  EXPECT_EQ(call(KV_SYS_copy_environ, buffer, 0).value, needed);
  std::vector<uint8_t> after(0x100);
  m.memory.read(kData, after.data(), 0x100);
  EXPECT_EQ(after, marks) << "a too-small buffer is left untouched";

  EXPECT_EQ(call(KV_SYS_copy_environ, buffer, needed + 10).value, 0u);
  std::vector<uint8_t> expect(needed);
  const uint32_t strings[] = {buffer + 16, buffer + 20, buffer + 45, 0};
  std::memcpy(expect.data(), strings, 16);
  std::memcpy(expect.data() + 16, "A=1\0LONGER=value with spaces\0E=", needed - 16);
  std::vector<uint8_t> got(needed + 1);
  m.memory.read(buffer, got.data(), needed + 1);
  EXPECT_EQ(std::vector<uint8_t>(got.begin(), got.end() - 1), expect);
  EXPECT_EQ(got.back(), 0xEE) << "nothing written past the block";
}

TEST_F(ServicesTest, CopyEnvironEmptyAndFaulting) {
  EXPECT_EQ(call(KV_SYS_copy_environ, kData, 3).value, 4u);
  EXPECT_EQ(call(KV_SYS_copy_environ, kData, 4).value, 0u);
  EXPECT_EQ(word(kData), 0u);
  process.environment = {"NAME=value"};
  handshake();
  // Straddling into the read-only page: nothing written at all.
  m.memory.write_u32(kReadOnly - 4, 0xABABABAB);
  EXPECT_EQ(call(KV_SYS_copy_environ, kReadOnly - 4, 64).value, kFailed);
  EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_EFAULT));
  EXPECT_EQ(word(kReadOnly - 4), 0xABABABABu);
}

TEST_F(ServicesTest, BadPointersGiveEfault) {
  handshake();
  put(kData, "text");
  const struct {
    const char *what;
    int32_t number;
    uint32_t w1 = 0, w2 = 0, w3 = 0, w4 = 0, w5 = 0;
  } cases[] = {
      {"write from page 0", KV_SYS_write, 1, 0, 4},
      {"write from unmapped", KV_SYS_write, 1, kUnmapped, 1},
      {"write running off its page", KV_SYS_write, 1, kReadOnly + 0xff0, 0x20},
      {"time into read-only", KV_SYS_time, kReadOnly},
      {"time into unmapped", KV_SYS_time, kUnmapped},
      {"syslog from unmapped", KV_SYS_syslog, 31, kUnmapped},
      {"puts from unmapped", KV_SYS_puts, kUnmapped, 0},
      {"puts with length", KV_SYS_puts, kReadOnly + 0xffe, 4},
      {"select time-out unmapped", KV_SYS_select, 0, 0, 0, 0, kUnmapped},
      {"copy_environ read-only", KV_SYS_copy_environ, kReadOnly, 100},
  };
  for (auto &c : cases) {
    m.memory.write_u32(kCell, 0);
    EXPECT_EQ(call(c.number, c.w1, c.w2, c.w3, c.w4, c.w5).value, kFailed) << c.what;
    EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_EFAULT)) << c.what;
  }
  EXPECT_EQ(file_text(out), "") << "nothing of a failed write reaches the console";
}

TEST_F(ServicesTest, WriteGoesToTheConsoleDescriptors) {
  handshake();
  put(kData, "hello, world");
  EXPECT_EQ(call(KV_SYS_write, 1, kData, 5).value, 5u);
  EXPECT_EQ(call(KV_SYS_write, 2, kData + 7, 5).value, 5u);
  EXPECT_EQ(call(KV_SYS_write, 1, kUnmapped, 0).value, 0u) << "nothing to read, nothing checked";
  EXPECT_EQ(file_text(out), "hello");
  EXPECT_EQ(file_text(err), "world");
  // A buffer that runs into unmapped memory after a full 64 KiB piece: written up to there.
  ASSERT_TRUE(m.memory.map(0x40000, 0x10000, kProtRead | kProtWrite));
  EXPECT_EQ(call(KV_SYS_write, 2, 0x40000, 0x20000).value, 0x10000u);
  EXPECT_EQ(file_text(err).size(), 5u + 0x10000);
  for (int32_t fd : {0, 3, -1, 1000}) {
    EXPECT_EQ(call(KV_SYS_write, static_cast<uint32_t>(fd), kData, 1).value, kFailed) << fd;
    EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_EBADF));
  }
}

TEST_F(ServicesTest, TraceLinesHaveTheExactFormat) {
  handshake();
  put(kData, "hello");
  call(KV_SYS_write, 1, kData, 5);
  call(-1, 0xdeadbeef);
  call(3, 1, 2, 3, 4, 5, 6, 7);
  call(KV_SYS_open, kData, 0x10, 0644); // unknown flags: refused before any file is touched
  call(KV_SYS_gethostbyname);           // no name: h_errno only
  EXPECT_EQ(file_text(trace),
            "trap 35 set_errno_addr 00010ff0 00000000 00000000 00000000 00000000 00000000 00000000 = 00000000 errno 0 set_errno_addr(0x00010ff0)\n"
            "trap 14 write 00000001 00010000 00000005 00000000 00000000 00000000 00000000 = 00000005 errno 0 write(1, \"hello\", 5)\n"
            "trap -1 unsupported deadbeef 00000000 00000000 00000000 00000000 00000000 00000000 = ffffffff errno 74 unsupported(0xdeadbeef, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000, 0x00000000)\n"
            "trap 3 unknown 00000001 00000002 00000003 00000004 00000005 00000006 00000007 = ffffffff errno 74 unknown(0x00000001, 0x00000002, 0x00000003, 0x00000004, 0x00000005, 0x00000006, 0x00000007)\n"
            "trap 0 open 00010000 00000010 000001a4 00000000 00000000 00000000 00000000 = ffffffff errno 45 open(\"hello\", 0x00000010, 0644)\n"
            "trap 38 gethostbyname 00000000 00000000 00000000 00000000 00000000 00000000 00000000 = ffffffff errno 0 h_errno 1 gethostbyname(0x00000000, 0, 0x00000000, 0)\n");
}

TEST_F(ServicesTest, FaultInjectionFailsTheChosenCallsBeforeTheirHandlers) {
  handshake();
  put(kData, "abc");
  process.faults.add({KV_SYS_write, KV_EIO, 2});
  process.faults.add({KV_SYS_exit, KV_EPERM, 0});
  EXPECT_EQ(call(KV_SYS_write, 1, kData, 3).value, 3u);
  EXPECT_EQ(call(KV_SYS_write, 1, kData, 3).value, kFailed);
  EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_EIO));
  EXPECT_EQ(call(KV_SYS_write, 1, kData, 3).value, 3u);
  EXPECT_EQ(file_text(out), "abcabc") << "the injected failure wrote nothing";
  EXPECT_EQ(call(KV_SYS_exit, 7).value, kFailed);
  EXPECT_FALSE(process.exit_status) << "the handler never ran";
  EXPECT_EQ(file_text(log), "kvrun: injected EIO into write(1, \"abc\", 3)\n"
                            "kvrun: injected EPERM into exit(7)\n");
}

TEST(FaultRules, ParseNumbersNamesAndOccurrences) {
  const struct {
    const char *text;
    bool ok;
    int32_t number = 0;
    int error = 0;
    uint32_t nth = 0;
  } cases[] = {
      {"14:EIO", true, 14, KV_EIO, 0},     {"14:46:3", true, 14, 46, 3},
      {"-1:ENOSYS", true, -1, KV_ENOSYS, 0}, {"32:EINTR:1", true, 32, KV_EINTR, 1},
      {"14", false},      {"x:EIO", false},  {"14:EWHAT", false}, {"14:EIO:0", false},
      {"14:EIO:x", false}, {"14:0", false},   {"14:", false},      {":EIO", false},
  };
  for (auto &c : cases) {
    std::string why;
    auto rule = parse_fault_rule(c.text, why);
    EXPECT_EQ(rule.has_value(), c.ok) << c.text;
    if (rule && c.ok) {
      EXPECT_EQ(rule->number, c.number) << c.text;
      EXPECT_EQ(rule->error, c.error) << c.text;
      EXPECT_EQ(rule->nth, c.nth) << c.text;
    }
    if (!c.ok) {
      EXPECT_NE(why, "") << c.text;
    }
  }
}

TEST(ErrnoNames, OneListForNamesValuesAndHostTranslation) {
  EXPECT_EQ(errno_by_name("EIO"), KV_EIO);
  EXPECT_EQ(errno_name(KV_ENOSYS), "ENOSYS");
  EXPECT_EQ(errno_name(3), "");
  const struct {
    int host, library;
  } cases[] = {{ENOENT, KV_ENOENT}, {EACCES, KV_EACCES}, {EAGAIN, KV_EAGAIN}, {EINVAL, KV_EINVAL},
               {ENOTEMPTY, KV_ENOTEMPTY}, {EADDRINUSE, KV_EADDRINUSE}, {ECHRNG, KV_EFAIL}, {0, KV_EFAIL}};
  for (auto &c : cases)
    EXPECT_EQ(from_host_errno(c.host), c.library) << c.host;
}

TEST_F(ServicesTest, ReplacedHandlersRecordRequestsAndScriptAnswers) {
  handshake();
  std::vector<Request> seen;
  process.services.set(KV_SYS_write, {"write", [&](Process &, const Request &r) {
                                        seen.push_back(r);
                                        return seen.size() == 1 ? success(77) : failure(KV_ENOSPC);
                                      }, "dpu"});
  EXPECT_EQ(call(KV_SYS_write, 1, 2, 3, 4, 5, 6, 7).value, 77u);
  EXPECT_EQ(call(KV_SYS_write, 9).value, kFailed);
  EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_ENOSPC));
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0].w, (std::array<uint32_t, 7>{1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(file_text(out), "");
  // Another process keeps the standard table.
  Process other(m.memory, mappings);
  EXPECT_EQ(dispatch(other, Request{KV_SYS_sysconf, {KV_SC_PAGESIZE}}).value, 4096u);
}

TEST_F(ServicesTest, SysconfTimeGetpid) {
  handshake();
  const struct {
    int32_t name;
    uint32_t value;
  } cases[] = {{53, 4096}, {54, 4096}, {0, kFailed}, {52, kFailed}, {55, kFailed}, {-1, kFailed}};
  for (auto &c : cases) {
    m.memory.write_u32(kCell, 0);
    EXPECT_EQ(call(KV_SYS_sysconf, static_cast<uint32_t>(c.name)).value, c.value) << c.name;
    EXPECT_EQ(word(kCell), c.value == kFailed ? static_cast<uint32_t>(KV_EINVAL) : 0u);
  }
  uint32_t before = static_cast<uint32_t>(time(nullptr));
  uint32_t t = call(KV_SYS_time, kData + 1).value;
  uint32_t after = static_cast<uint32_t>(time(nullptr));
  EXPECT_LE(before, t);
  EXPECT_LE(t, after);
  EXPECT_EQ(word(kData + 1), t);
  EXPECT_NE(call(KV_SYS_time, 0).value, kFailed);
  EXPECT_EQ(call(KV_SYS_getpid).value, static_cast<uint32_t>(getpid()));
}

TEST_F(ServicesTest, SelectWithoutDescriptorsWaits) {
  handshake();
  const uint32_t timeout = kData + 0x100;
  m.memory.write_u32(timeout, 0);
  m.memory.write_u32(timeout + 4, 30000);
  auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(call(KV_SYS_select, 0, 0, 0, 0, timeout).value, 0u);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));

  const struct {
    const char *what;
    uint32_t nfds, timeout;
    int32_t seconds;
    int error;
  } cases[] = {
      {"null time-out", 0, 0, 0, KV_EINVAL},
      {"negative seconds", 0, timeout, -1, KV_EINVAL},
      {"negative count", 0xFFFFFFFF, timeout, 0, KV_EINVAL},
  };
  for (auto &c : cases) {
    m.memory.write_u32(timeout, static_cast<uint32_t>(c.seconds));
    m.memory.write_u32(timeout + 4, 0);
    EXPECT_EQ(call(KV_SYS_select, c.nfds, 0, 0, 0, c.timeout).value, kFailed) << c.what;
    EXPECT_EQ(word(kCell), static_cast<uint32_t>(c.error)) << c.what;
  }
  // A wait ends at the deadline.
  process.deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
  m.memory.write_u32(timeout, 1000);
  start = std::chrono::steady_clock::now();
  EXPECT_EQ(call(KV_SYS_select, 0, 0, 0, 0, timeout).value, 0u);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(100));
}

TEST_F(ServicesTest, SyslogAndPutsGoToTheLogOneLineEach) {
  put(kData, "KV: (248) with newline\n");
  put(kData + 0x100, "no newline");
  put(kData + 0x200, "0123456789");
  put(kData + 0x300, "two\nlines");
  put(kData + 0x400, "");
  EXPECT_EQ(call(KV_SYS_syslog, 31, kData).value, 0u);
  EXPECT_EQ(call(KV_SYS_syslog, 3, kData + 0x100).value, 0u);
  EXPECT_EQ(call(KV_SYS_puts, kData + 0x200, 4).value, 0u);
  EXPECT_EQ(call(KV_SYS_puts, kData + 0x200, 0).value, 0u);
  EXPECT_EQ(call(KV_SYS_syslog, static_cast<uint32_t>(-1), kData + 0x300).value, 0u);
  EXPECT_EQ(call(KV_SYS_syslog, 6, kData + 0x400).value, 0u);
  EXPECT_EQ(file_text(log), "<31>KV: (248) with newline\n<3>no newline\n0123\n0123456789\n"
                            "<-1>two\n<-1>lines\n<6>\n");
}

TEST_F(ServicesTest, ExitRecordsTheStatus) {
  EXPECT_EQ(call(KV_SYS_exit, static_cast<uint32_t>(-3)).value, 0u);
  ASSERT_TRUE(process.exit_status);
  EXPECT_EQ(*process.exit_status, -3);
}

TEST_F(ServicesTest, MmapAndMunmapThroughTheDispatcher) {
  handshake();
  constexpr uint32_t kAnon = KV_MAP_PRIVATE | KV_MAP_ANONYMOUS;
  uint32_t a = call(KV_SYS_mmap, 0, 5000, 3, kAnon, kFailed, 0).value;
  EXPECT_EQ(a, layout::kMmapBase);
  EXPECT_TRUE(m.memory.accessible(a, 8192, kProtRead | kProtWrite));
  EXPECT_EQ(call(KV_SYS_munmap, a + 4096, 4096).value, 0u);
  EXPECT_FALSE(m.memory.accessible(a + 4096, 1, kProtNone));
  const struct {
    const char *what;
    uint32_t addr, length, prot, flags, fd, offset;
    int error;
  } cases[] = {
      {"zero length", 0, 0, 3, kAnon, kFailed, 0, KV_EINVAL},
      {"over the cap", 0, 128 * 1024, 3, kAnon, kFailed, 0, KV_ENOMEM},
      {"unknown protection", 0, 4096, 8, kAnon, kFailed, 0, KV_EINVAL},
      {"unknown flag", 0, 4096, 3, kAnon | 0x100, kFailed, 0, KV_EINVAL},
      {"neither shared nor private", 0, 4096, 3, KV_MAP_ANONYMOUS, kFailed, 0, KV_EINVAL},
      {"anonymous with a descriptor", 0, 4096, 3, kAnon, 3, 0, KV_EINVAL},
      {"unaligned offset", 0, 4096, 3, kAnon, kFailed, 100, KV_EINVAL},
      {"file, no such descriptor", 0, 4096, 3, KV_MAP_PRIVATE, 9, 0, KV_EBADF},
      {"fixed outside the window", 0x10000, 4096, 3, kAnon | KV_MAP_FIXED, kFailed, 0, KV_EINVAL},
  };
  for (auto &c : cases) {
    EXPECT_EQ(call(KV_SYS_mmap, c.addr, c.length, c.prot, c.flags, c.fd, c.offset).value, kFailed) << c.what;
    EXPECT_EQ(word(kCell), static_cast<uint32_t>(c.error)) << c.what;
  }
  uint32_t fixed = call(KV_SYS_mmap, a + 4096, 4096, 1, kAnon | KV_MAP_FIXED, kFailed, 0).value;
  EXPECT_EQ(fixed, a + 4096);
  EXPECT_FALSE(m.memory.accessible(fixed, 1, kProtWrite));
  EXPECT_EQ(call(KV_SYS_munmap, a + 1, 4096).value, kFailed);
  EXPECT_EQ(word(kCell), static_cast<uint32_t>(KV_EINVAL));
}

} // namespace
