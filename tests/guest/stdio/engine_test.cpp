// The stream engine against a scripted system side: the state it keeps and the requests it makes.
#include <kv/abi.h>
#include <kvtest.h>

#include "fake_files.h"
#include "../bridge/log_capture.h"
#include "stdio/stream.h"

extern "C" int __read_errno(void);
extern "C" void __set_errno(int);

using namespace kv::stdio;

namespace {

FILE *open_file(const char *name, const char *mode) {
  FILE *s = take_free_record();
  return s ? freopen(name, mode, s) : nullptr;
}

// A fresh store with one file "f" holding `contents`, opened with `mode`.
FILE *fresh(const char *contents, const char *mode) {
  fake::reset();
  fake::make("f", contents);
  FILE *s = open_file("f", mode);
  fake::forget_requests();
  return s;
}

const char kDigits[] = "0123456789abcdefghijklmnopqrstuvwxyz";

TEST(Open, ModeStringsGiveFlagsAndOpenModes) {
  struct {
    const char *mode;
    uint32_t flags;
    long open_flags;
  } const rows[] = {
      {"r", 0x1, 0x1},       {"rb", 0x5, 0x1},       {"r+", 0x3, 0x2},
      {"rb+", 0x7, 0x2},     {"w", 0x2, 0x904},      {"w+", 0x3, 0x902},
      {"a", 0x8002, 0x10C},  {"a+", 0x8003, 0x10A},  {"rt+", 0x1, 0x0},
      {"rx+", 0x1, 0x1},
  };
  for (const auto &row : rows) {
    FILE *s = fresh("xyz", "r");
    fake::forget_requests();
    ASSERT_TRUE(freopen("f", row.mode, s) == s);
    EXPECT_EQ(s->flags & ~(kSeekPending | kReposition), row.flags);
    EXPECT_EQ(s->buffer_size, 512u);
    EXPECT_TRUE(s->buffer == nullptr);
    EXPECT_TRUE((s->link & 1) != 0);
    ASSERT_EQ(fake::count(fake::kOpen), 1u);
    size_t open_at = fake::count(fake::kClose); // the old handle is closed first
    EXPECT_EQ(fake::request(open_at).a, row.open_flags);
  }
}

TEST(Open, BadFirstCharacterFailsWithoutARequest) {
  fake::reset();
  FILE *s = take_free_record();
  ASSERT_TRUE(s != nullptr);
  EXPECT_TRUE(freopen("f", "x", s) == nullptr);
  EXPECT_TRUE(freopen("f", "+r", s) == nullptr);
  EXPECT_EQ(fake::request_count(), 0u);
  EXPECT_EQ(s->link & 1, 0u);
}

TEST(Open, FailedOpenLeavesTheRecordClosed) {
  FILE *s = fresh("abc", "r");
  EXPECT_TRUE(freopen("missing", "r", s) == nullptr);
  EXPECT_EQ(s->flags, 0u);
  EXPECT_EQ(s->link & 1, 0u);
  EXPECT_EQ(ftell(s), -1L);
  EXPECT_EQ(__read_errno(), 1);
}

TEST(List, FreeRecordsAreReusedBeforeNewOnesAreAppended) {
  fake::reset();
  fake::make("f", "");
  FILE *a = open_file("f", "r");
  FILE *b = open_file("f", "r");
  ASSERT_TRUE(a != nullptr && b != nullptr);
  EXPECT_TRUE(a != b);
  // b was appended after a, and the list runs from stdin through both.
  size_t seen = 0;
  for (FILE *each = standard_streams; each; each = next_record(each))
    seen += each == a || each == b;
  EXPECT_EQ(seen, 2u);
  EXPECT_EQ(_fclose_internal(a), 0);
  EXPECT_TRUE(take_free_record() == a);
  EXPECT_EQ(_fclose_internal(a), -1); // closed already
}

TEST(Setvbuf, RefusalsAndUnbuffered) {
  FILE *s = fresh("hello", "r");
  EXPECT_NE(setvbuf(s, nullptr, kFullyBuffered, 0), 0);
  EXPECT_NE(setvbuf(s, nullptr, kLineBuffered, 0x1000000), 0);
  EXPECT_NE(setvbuf(s, nullptr, 0x300, 64), 0);
  EXPECT_EQ(setvbuf(s, nullptr, kFullyBuffered, 0xFFFFFF), 0);
  EXPECT_EQ(setvbuf(s, nullptr, kUnbuffered, 12345), 0);
  EXPECT_EQ(s->buffer_size, 1u);
  EXPECT_TRUE(s->buffer == s->small_buffer);
  EXPECT_EQ(fgetc(s), 'h');
  EXPECT_EQ(fake::count(fake::kRead), 1u);
  EXPECT_EQ(fake::request(fake::request_count() - 1).a, 1L); // one byte per request
  EXPECT_NE(setvbuf(s, nullptr, kFullyBuffered, 64), 0);     // after the first transfer
  EXPECT_EQ(fgetc(s), 'e');
}

TEST(Setvbuf, CallerBufferIsUsedAndNotFreed) {
  static char mine[8];
  FILE *s = fresh(kDigits, "r");
  EXPECT_EQ(setvbuf(s, mine, kFullyBuffered, sizeof mine), 0);
  EXPECT_EQ(fgetc(s), '0');
  EXPECT_EQ(mine[7], '7');
  EXPECT_EQ(s->flags & kOwnBuffer, 0u);
  EXPECT_EQ(fgetc(s), '1');
  EXPECT_EQ(fake::count(fake::kRead), 1u);
  EXPECT_EQ(_fclose_internal(s), 0);
}

TEST(Read, SeekInsideTheBufferMakesNoRequest) {
  FILE *s = fresh(kDigits, "r");
  EXPECT_EQ(fgetc(s), '0');
  EXPECT_EQ(fgetc(s), '1');
  size_t before = fake::request_count();
  const long targets[] = {20, 3, 0, 35};
  for (long target : targets) {
    EXPECT_EQ(fseek(s, target, 0), 0);
    EXPECT_EQ(ftell(s), target);
    EXPECT_EQ(fgetc(s), kDigits[target]);
  }
  EXPECT_EQ(fseek(s, -2, 1), 0);
  EXPECT_EQ(fgetc(s), 'y');
  EXPECT_EQ(fake::request_count(), before);
}

TEST(Read, EndOfFileIsStickyUntilClearerrOrSeek) {
  FILE *s = fresh("ab", "r");
  EXPECT_EQ(fgetc(s), 'a');
  EXPECT_EQ(fgetc(s), 'b');
  EXPECT_EQ(fgetc(s), -1);
  EXPECT_TRUE(feof(s));
  size_t before = fake::request_count();
  EXPECT_EQ(fgetc(s), -1);
  EXPECT_EQ(fgetc(s), -1);
  EXPECT_EQ(fake::request_count(), before);
  fake::find("f")->data[2] = 'c';
  fake::find("f")->length = 3;
  clearerr(s);
  EXPECT_FALSE(feof(s));
  EXPECT_EQ(fgetc(s), 'c');
  EXPECT_EQ(fgetc(s), -1);
  EXPECT_EQ(fseek(s, 0, 0), 0);
  EXPECT_FALSE(feof(s));
  EXPECT_EQ(fgetc(s), 'a');
}

TEST(Read, StandardInputIsAtEndAtOnce) {
  fake::reset();
  EXPECT_EQ(fgetc(stdin), -1);
  EXPECT_TRUE(feof(stdin));
  EXPECT_EQ(fgetc(stdin), -1);
  EXPECT_EQ(fake::request_count(), 0u);
  EXPECT_EQ(stdin->buffer_size, 64u);
  clearerr(stdin);
}

TEST(Read, ReadFailureSetsTheErrorFlag) {
  FILE *s = fresh("abc", "r");
  fake::fail_next(fake::kRead, KV_EIO);
  EXPECT_EQ(fgetc(s), -1);
  EXPECT_TRUE(ferror(s));
  EXPECT_FALSE(feof(s));
  EXPECT_EQ(fgetc(s), -1); // the error stays
  clearerr(s);
  EXPECT_EQ(fgetc(s), 'a');
}

TEST(Pushback, OneCharacterAtATime) {
  FILE *s = fresh("xyz", "r");
  EXPECT_EQ(ungetc(-1, s), -1);
  EXPECT_EQ(fgetc(s), 'x');
  EXPECT_EQ(ungetc('Q', s), 'Q');
  EXPECT_EQ(ungetc('R', s), -1);
  EXPECT_EQ(ftell(s), 0L);
  EXPECT_EQ(fgetc(s), 'Q');
  EXPECT_EQ(ftell(s), 1L);
  EXPECT_EQ(fgetc(s), 'y');
  EXPECT_EQ(__backspace(s), 0);
  EXPECT_EQ(fgetc(s), 'y');
  EXPECT_EQ(fgetc(s), 'z');
  EXPECT_EQ(fgetc(s), -1);
  EXPECT_EQ(__backspace(s), -1); // at end of file
  FILE *w = fresh("", "w");
  EXPECT_EQ(ungetc('a', w), -1); // not open for reading
}

TEST(Write, FullyBufferedWritesOncePerBuffer) {
  FILE *s = fresh("", "w");
  for (int i = 0; i < 3; ++i)
    fputc('a' + i, s);
  EXPECT_EQ(fake::count(fake::kWrite), 0u);
  for (int i = 3; i < 512; ++i)
    fputc('a', s);
  EXPECT_EQ(fake::count(fake::kWrite), 0u);
  fputc('Z', s); // the 513th
  ASSERT_EQ(fake::count(fake::kWrite), 1u);
  EXPECT_EQ(fake::request(fake::request_count() - 1).a, 512L);
  EXPECT_EQ(fflush(s), 0);
  EXPECT_EQ(fake::count(fake::kWrite), 2u);
  EXPECT_EQ(fake::find("f")->length, 513L);
  EXPECT_EQ(fake::find("f")->data[512], 'Z');
  fputs("tail", s);
  EXPECT_EQ(_fclose_internal(s), 0);
  EXPECT_EQ(fake::find("f")->length, 517L);
  EXPECT_FALSE(fake::find("f")->open);
}

TEST(Write, AppendGoesToTheEndEvenAfterSeekToStart) {
  FILE *s = fresh("start", "a");
  fputs("-one", s);
  fflush(s);
  EXPECT_EQ(fseek(s, 0, 0), 0);
  fputs("-two", s);
  fflush(s);
  fake::File *f = fake::find("f");
  f->data[f->length] = 0;
  EXPECT_STREQ(reinterpret_cast<char *>(f->data), "start-one-two");
}

TEST(Write, LineBufferedStdoutWaitsForTheNewline) {
  fake::reset();
  fputs("partial", stdout);
  EXPECT_STREQ(fake::console_text(), "");
  fputs(" line\nnext", stdout);
  EXPECT_STREQ(fake::console_text(), "partial line\n");
  fflush(stdout);
  EXPECT_STREQ(fake::console_text(), "partial line\nnext");
  fake::reset();
  for (int i = 0; i < 300; ++i)
    fputc('.', stdout);
  EXPECT_EQ(fake::count(fake::kWrite), 1u); // 256 bytes gathered
  fflush(stdout);
}

TEST(Write, FailureSetsErrorAndFprintfReportsIt) {
  FILE *s = fresh("", "w");
  EXPECT_EQ(fprintf(s, "%d-%s", 42, "x"), 4);
  EXPECT_EQ(fflush(s), 0);
  EXPECT_EQ(fake::find("f")->length, 4L);
  EXPECT_EQ(fputc('a', s), 'a');
  fake::short_write_next(0);
  EXPECT_EQ(fflush(s), -1);
  EXPECT_TRUE(ferror(s));
  EXPECT_EQ(fprintf(s, "more"), -1);
}

TEST(Seek, InvalidRequestsAndLengthFailure) {
  FILE *s = fresh("abcdef", "r+");
  EXPECT_EQ(fseek(s, 0, 3), 2);
  EXPECT_EQ(fseek(s, -7, 2), 2);
  EXPECT_EQ(fseek(s, -1, 0), 2);
  EXPECT_FALSE(ferror(s));
  fake::fail_next(fake::kSeek, KV_EIO);
  EXPECT_EQ(fseek(s, 0, 2), 1);
  EXPECT_TRUE(ferror(s));
  clearerr(s);
  EXPECT_EQ(fseek(s, -2, 2), 0);
  EXPECT_EQ(ftell(s), 4L);
  EXPECT_EQ(fgetc(s), 'e');
}

TEST(Seek, LazySeekCostsNothingWithoutATransfer) {
  FILE *s = fresh(kDigits, "r");
  EXPECT_EQ(fseek(s, 30, 0), 0);
  EXPECT_EQ(fseek(s, 10, 0), 0);
  EXPECT_EQ(fake::request_count(), 0u);
  EXPECT_EQ(ftell(s), 10L);
  EXPECT_EQ(fgetc(s), 'a');
}

TEST(Update, ReadAfterWriteAndWriteAfterRead) {
  FILE *s = fresh("0123456789", "r+");
  EXPECT_EQ(fgetc(s), '0');
  EXPECT_EQ(fseek(s, 0, 1), 0);
  fputs("AB", s);
  EXPECT_EQ(fseek(s, 0, 1), 0);
  EXPECT_EQ(fgetc(s), '3');
  EXPECT_EQ(ftell(s), 4L);
  fflush(s);
  fake::File *f = fake::find("f");
  f->data[f->length] = 0;
  EXPECT_STREQ(reinterpret_cast<char *>(f->data), "0AB3456789");
}

TEST(Shutdown, TerminationClosesEveryStream) {
  FILE *s = fresh("", "w");
  fputs("kept", s);
  // What the end routine does, minus the standard streams' console: nothing is lost.
  EXPECT_EQ(_fclose_internal(s), 0);
  EXPECT_EQ(fake::find("f")->length, 4L);
  EXPECT_EQ(s->flags, 0u);
  EXPECT_TRUE(s->buffer == nullptr);
}

} // namespace
