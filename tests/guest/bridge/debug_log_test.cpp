// White-box: the debug log's formatting and its 255-character cut.
#include <kvtest.h>
#include <stdarg.h>
#include <stdint.h>

#include "bridge/debug_log.h"
#include "printf/printf.h"
#include "log_capture.h"

namespace {
const char *format(char *buffer, size_t size, const char *fmt, ...) {
  va_list args;
  va_start(args, fmt);
  vsnprintf(buffer, size, fmt, args);
  va_end(args);
  return buffer;
}
} // namespace

TEST(DebugLog, Conversions) {
  char b[10][64]; // one buffer per case: the table is built before it is checked
  struct {
    const char *got, *want;
  } cases[] = {
      {format(b[0], sizeof b[0], "KV: (434) _sys_exit( %d )", -3), "KV: (434) _sys_exit( -3 )"},
      {format(b[1], sizeof b[1], "%d %d %d", 0, 2147483647, -2147483647 - 1), "0 2147483647 -2147483648"},
      {format(b[2], sizeof b[2], "%u %x %X", 4294967295u, 0xbeefu, 0xbeefu), "4294967295 beef BEEF"},
      {format(b[3], sizeof b[3], "%08x|%08x", 0x1234u, 0xdeadbeefu), "00001234|deadbeef"},
      {format(b[4], sizeof b[4], "'%p'", reinterpret_cast<void *>(0x1234)), "'00001234'"},
      {format(b[5], sizeof b[5], "%p", static_cast<void *>(nullptr)), "00000000"},
      {format(b[6], sizeof b[6], "<%s><%s>", "abc", ""), "<abc><>"},
      {format(b[7], sizeof b[7], "%s", static_cast<const char *>(nullptr)), "(null)"},
      {format(b[8], sizeof b[8], "%c%c 100%%", 'o', 'k'), "ok 100%"},
      {format(b[9], sizeof b[9], "%5d|%-3d|", 42, 1), "   42|1  |"},
  };
  for (auto &c : cases)
    EXPECT_STREQ(c.got, c.want);
}

TEST(DebugLog, CutsAtTheBufferSize) {
  char small[8];
  EXPECT_STREQ(format(small, sizeof small, "abcdefghij"), "abcdefg");
  EXPECT_STREQ(format(small, sizeof small, "%d", -1234567890), "-123456");
  EXPECT_STREQ(format(small, 1, "abc"), "");
}

TEST(DebugLog, LongMessageReachesTheSystemSideAsItsFirst255Characters) {
  char text[301];
  for (int i = 0; i < 300; ++i)
    text[i] = static_cast<char>('a' + i % 26);
  text[300] = 0;
  size_t before = logcap::count();
  kv::debug_log("%s", text);
  ASSERT_EQ(logcap::count(), before + 1);
  const char *sent = logcap::line(before);
  size_t n = 0;
  while (sent[n])
    ++n;
  EXPECT_EQ(n, 255u);
  EXPECT_EQ(sent[254], text[254]);
  EXPECT_EQ(logcap::priority(before), 31);
}
