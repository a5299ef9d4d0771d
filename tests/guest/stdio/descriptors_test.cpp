// The descriptor calls, fdopen, fread and fwrite against a scripted system side.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <kvtest.h>

#include "fake_files.h"
#include "stdio/stream.h"

extern "C" {
int __read_errno(void);
void __set_errno(int);
int open(const char *path, int flags, ...);
int creat(const char *path, int mode);
int close(int fd);
int read(int fd, void *buffer, size_t count);
int write(int fd, const void *buffer, size_t count);
int fcntl(int fd, int command, ...);
int dup(int fd);
int dup2(int fd, int fd2);
int isatty(int fd);
int fileno(FILE *s);
FILE *fdopen(int fd, const char *mode);
size_t fread(void *buffer, size_t size, size_t count, FILE *s);
size_t fwrite(const void *buffer, size_t size, size_t count, FILE *s);
}

using namespace kv::stdio;

namespace {

// A store with file "f" of `length` bytes 'a'..'z' repeating, opened on a stream with `mode`.
FILE *stream_on(long length, const char *mode) {
  fake::reset();
  fake::File *f = fake::make("f", "");
  for (long i = 0; i < length; ++i)
    f->data[i] = static_cast<unsigned char>('a' + i % 26);
  f->length = length;
  FILE *s = take_free_record();
  if (s && !freopen("f", mode, s))
    return nullptr;
  fake::forget_requests();
  return s;
}

// The sizes of the requests of one kind, in order.
size_t sizes_of(fake::Call call, long *out, size_t room) {
  size_t n = 0;
  for (size_t i = 0; i < fake::request_count(); ++i)
    if (fake::request(i).call == call && n < room)
      out[n++] = fake::request(i).a;
  return n;
}

unsigned char data[16000];

TEST(Console, ClosingAndReadingFollowTheConsoleRules) {
  enum Op { kClose, kRead };
  struct {
    Op op;
    int fd;
    int result;
    size_t requests;
  } const rows[] = {
      {kClose, 0, 0, 0}, {kClose, 1, 0, 0}, {kClose, 2, 0, 0}, {kClose, 9, -1, 1},
      {kRead, 0, 0, 0},  {kRead, 2, 0, 0},  {kRead, 1, -1, 1}, {kRead, 9, -1, 1},
  };
  for (const auto &row : rows) {
    fake::reset();
    char buffer[10];
    int result = row.op == kClose ? close(row.fd) : read(row.fd, buffer, sizeof buffer);
    EXPECT_EQ(result, row.result);
    EXPECT_EQ(fake::request_count(), row.requests);
    if (row.requests)
      EXPECT_EQ(fake::request(0).handle, row.fd);
  }
}

TEST(Console, WritesAfterClosingStillArrive) {
  fake::reset();
  EXPECT_EQ(close(1), 0);
  EXPECT_EQ(write(1, "[still here]\n", 13), 13);
  EXPECT_STREQ(fake::console_text(), "[still here]\n");
}

TEST(Descriptors, NoDescriptorIsATerminal) {
  struct {
    int fd;
    int error;
  } const rows[] = {{0, KV_ENOTTY}, {1, KV_ENOTTY}, {2, KV_ENOTTY}, {17, KV_ENOTTY},
                    {-1, KV_EBADF}, {-40, KV_EBADF}};
  for (const auto &row : rows) {
    fake::reset();
    __set_errno(0);
    EXPECT_EQ(isatty(row.fd), 0);
    EXPECT_EQ(__read_errno(), row.error);
    EXPECT_EQ(fake::request_count(), 0u);
  }
}

TEST(Descriptors, DuplicationGoesThroughFcntl) {
  enum Op { kDup, kDup2, kFcntl };
  struct {
    Op op;
    int fd, other;
    long command, argument; // the request, or -1 for none
  } const rows[] = {
      {kDup2, 3, 7, 8, 7},   {kDup, 4, 0, 0, 0},     {kFcntl, 5, 0x55, 3, 0x55},
      {kDup, -2, 0, -1, 0},  {kDup2, -1, 3, -1, 0},  {kDup2, 3, -1, -1, 0},
  };
  for (const auto &row : rows) {
    fake::reset();
    __set_errno(0);
    int result = row.op == kDup    ? dup(row.fd)
                 : row.op == kDup2 ? dup2(row.fd, row.other)
                                   : fcntl(row.fd, 3, row.other);
    if (row.command < 0) {
      EXPECT_EQ(result, -1);
      EXPECT_EQ(__read_errno(), KV_EBADF);
      EXPECT_EQ(fake::request_count(), 0u);
      continue;
    }
    ASSERT_EQ(fake::count(fake::kFcntl), 1u);
    EXPECT_EQ(fake::request(0).handle, row.fd);
    EXPECT_EQ(fake::request(0).a, row.command);
    EXPECT_EQ(fake::request(0).b, row.argument);
  }
}

TEST(Descriptors, ModeIsPassedOnlyWhenCreating) {
  struct {
    bool use_creat;
    int flags;
    long sent_flags, sent_mode;
  } const rows[] = {
      {false, KV_O_RDONLY, KV_O_RDONLY, 0},
      {false, KV_O_WRONLY | KV_O_CREAT, KV_O_WRONLY | KV_O_CREAT, 0640},
      {true, 0, 0x904, 0640},
  };
  for (const auto &row : rows) {
    fake::reset();
    fake::make("f", "x");
    int fd = row.use_creat ? creat("f", 0640) : open("f", row.flags, 0640);
    EXPECT_TRUE(fd >= 3);
    ASSERT_EQ(fake::request_count(), 1u);
    EXPECT_EQ(fake::request(0).a, row.sent_flags);
    EXPECT_EQ(fake::request(0).b, row.sent_mode);
  }
}

TEST(Fdopen, ModeLettersGiveFlags) {
  struct {
    int fd;
    const char *mode;
    uint32_t flags; // 0: refused
    int error;
  } const rows[] = {
      {3, "w+", 0x3, 0},    {3, "r", 0x1, 0},      {3, "xr", 0x1, 0},
      {3, "rb", 0x5, 0},    {3, "a", 0x8032, 0},   {3, "+", 0x1, 0},
      {3, "+r", 0x1, 0},    {3, "rw", 0x3, 0},     {3, "r+x", 0, KV_EINVAL},
      {3, "zq", 0, KV_EINVAL}, {3, "", 0, KV_EINVAL}, {-1, "r", 0, KV_EBADF},
  };
  for (const auto &row : rows) {
    fake::reset();
    fake::make("f", "hello");
    int fd = open("f", KV_O_RDWR);
    ASSERT_EQ(fd, 3);
    __syscall_lseek(fd, 2, KV_SEEK_SET);
    fake::forget_requests();
    __set_errno(0);
    FILE *s = fdopen(row.fd, row.mode);
    if (!row.flags) {
      EXPECT_TRUE(s == nullptr);
      EXPECT_EQ(__read_errno(), row.error);
      continue;
    }
    ASSERT_TRUE(s != nullptr);
    EXPECT_EQ(s->flags, row.flags);
    EXPECT_EQ(s->buffer_size, 512u);
    EXPECT_EQ(s->buffer_position, 2);
    EXPECT_EQ(s->handle, 3);
    EXPECT_EQ(fileno(s), 3);
    EXPECT_TRUE((s->link & 1) != 0);
    ASSERT_EQ(fake::request_count(), 1u); // only where the descriptor stands; nothing is opened
    EXPECT_EQ(fake::request(0).call, fake::kSeek);
    EXPECT_EQ(fake::request(0).b, KV_SEEK_CUR);
    _fclose_internal(s);
  }
}

TEST(Fdopen, ClosedRecordsAreReusedAndTheStreamReads) {
  fake::reset();
  fake::make("f", "hello");
  FILE *a = fdopen(open("f", KV_O_RDONLY), "r");
  ASSERT_TRUE(a != nullptr);
  EXPECT_EQ(fgetc(a), 'h');
  FILE *b = fdopen(open("f", KV_O_RDONLY), "r");
  ASSERT_TRUE(b != nullptr && b != a);
  EXPECT_EQ(_fclose_internal(a), 0);
  FILE *c = fdopen(open("f", KV_O_RDONLY), "r");
  EXPECT_TRUE(c == a);
  EXPECT_EQ(fgetc(c), 'h');
  __set_errno(0);
  EXPECT_EQ(fileno(nullptr), -1);
  EXPECT_EQ(__read_errno(), KV_EBADF);
  _fclose_internal(b);
  _fclose_internal(c);
}

TEST(Direct, TransfersAreChunked) {
  struct {
    bool writing;
    long file_length;
    size_t size, count;
    long requests[4];
    size_t request_count;
    size_t items;
    bool eof;
    long position;
  } const rows[] = {
      {false, 12000, 5000, 3, {4096, 4096, 4096}, 3, 2, true, 12000},
      {false, 12000, 4096, 2, {4096, 4096}, 2, 2, false, 8192},
      {false, 12000, 1, 4097, {4096, 1}, 2, 4097, false, 4097},
      {false, 7, 4, 3, {12}, 1, 1, true, 7},
      {true, 0, 10000, 1, {4096, 4096, 1808}, 3, 1, false, 10000},
      {true, 0, 8, 512, {4096}, 1, 512, false, 4096},
      {true, 0, 3, 3000, {4096, 4096, 808}, 3, 3000, false, 9000},
  };
  for (const auto &row : rows) {
    FILE *s = stream_on(row.file_length, row.writing ? "w+" : "r");
    ASSERT_TRUE(s != nullptr);
    size_t items = row.writing ? fwrite(data, row.size, row.count, s)
                               : fread(data, row.size, row.count, s);
    EXPECT_EQ(items, row.items);
    long sizes[8];
    size_t n = sizes_of(row.writing ? fake::kWrite : fake::kRead, sizes, 8);
    ASSERT_EQ(n, row.request_count);
    for (size_t i = 0; i < n; ++i)
      EXPECT_EQ(sizes[i], row.requests[i]);
    EXPECT_EQ(feof(s) != 0, row.eof);
    EXPECT_FALSE(ferror(s));
    EXPECT_EQ(ftell(s), row.position);
    if (row.writing)
      EXPECT_EQ(fake::find("f")->length, row.position);
    _fclose_internal(s);
  }
}

TEST(Direct, ReadDataAndTheNextCharacter) {
  FILE *s = stream_on(12000, "r");
  ASSERT_TRUE(s != nullptr);
  EXPECT_EQ(fgetc(s), 'a'); // the buffer now holds the first 512 bytes
  EXPECT_EQ(fread(data, 1, 30, s), 30u);
  EXPECT_EQ(data[0], 'b');
  EXPECT_EQ(data[29], 'e');
  EXPECT_EQ(fgetc(s), 'f');
  EXPECT_EQ(ungetc('f', s), 'f');
  EXPECT_EQ(fread(data, 1, 2, s), 2u);
  EXPECT_EQ(data[0], 'f');
  EXPECT_EQ(fgetc(s), 'h');
  EXPECT_EQ(fread(data, 600, 1, s), 1u);
  EXPECT_EQ(fgetc(s), static_cast<int>('a' + 634 % 26));
  _fclose_internal(s);
}

TEST(Direct, WritesLandAtTheStreamsPosition) {
  FILE *s = stream_on(0, "w+");
  ASSERT_TRUE(s != nullptr);
  EXPECT_EQ(fputs("abc", s), 0);
  EXPECT_EQ(fwrite("def", 1, 3, s), 3u);
  EXPECT_EQ(fputc('g', s), 'g');
  EXPECT_EQ(fseek(s, 1, 0), 0);
  EXPECT_EQ(fwrite("XY", 2, 1, s), 1u);
  EXPECT_EQ(fgetc(s), 'd');
  EXPECT_EQ(fflush(s), 0);
  fake::File *f = fake::find("f");
  ASSERT_EQ(f->length, 7);
  const char want[] = "aXYdefg";
  for (int i = 0; i < 7; ++i)
    EXPECT_EQ(f->data[i], static_cast<unsigned char>(want[i]));
  _fclose_internal(s);
}

TEST(Direct, FailuresGiveShortCountsAndTheErrorState) {
  enum Case { kWrongDirectionRead, kWrongDirectionWrite, kFailedRead, kShortWrite, kFailedSeek };
  struct {
    Case what;
    const char *mode;
    size_t items;
    bool error;
    int error_number;
  } const rows[] = {
      {kWrongDirectionRead, "w", 0, true, KV_EBADF},
      {kWrongDirectionWrite, "r", 0, true, KV_EBADF},
      {kFailedRead, "r", 0, false, 0},
      {kShortWrite, "w", 25, false, 0},
      {kFailedSeek, "r", 0, true, 0},
  };
  for (const auto &row : rows) {
    FILE *s = stream_on(12000, row.mode);
    ASSERT_TRUE(s != nullptr);
    __set_errno(0);
    size_t items = 0;
    switch (row.what) {
    case kWrongDirectionRead:
    case kFailedRead:
      if (row.what == kFailedRead)
        fake::fail_next(fake::kRead, 0);
      items = fread(data, 4, 2000, s);
      break;
    case kFailedSeek:
      fake::fail_next(fake::kSeek, 0);
      items = fread(data, 4, 2000, s);
      break;
    case kWrongDirectionWrite:
      items = fwrite(data, 4, 10, s);
      break;
    case kShortWrite:
      fake::short_write_next(101);
      items = fwrite(data, 4, 2000, s);
      break;
    }
    EXPECT_EQ(items, row.items);
    EXPECT_EQ(ferror(s) != 0, row.error);
    if (row.error_number) {
      EXPECT_EQ(__read_errno(), row.error_number);
      EXPECT_EQ(fake::count(fake::kRead) + fake::count(fake::kWrite), 0u);
    }
    if (row.what == kShortWrite)
      EXPECT_EQ(fake::count(fake::kWrite), 1u);
    _fclose_internal(s);
  }
}

TEST(Direct, ReadingClearsAnEarlierError) {
  FILE *s = stream_on(100, "r");
  ASSERT_TRUE(s != nullptr);
  s->flags |= kError;
  EXPECT_EQ(fread(data, 10, 2, s), 2u);
  EXPECT_FALSE(ferror(s));
  EXPECT_EQ(fread(data, 0, 2, s), 0u);
  EXPECT_EQ(fread(data, 2, 0, s), 0u);
  _fclose_internal(s);
}

TEST(Direct, StandardOutputKeepsItsBufferedBytesForLater) {
  fake::reset();
  EXPECT_EQ(fputc('<', stdout), '<');
  EXPECT_EQ(fwrite("direct", 1, 6, stdout), 6u);
  EXPECT_EQ(fputc('\n', stdout), '\n');
  EXPECT_STREQ(fake::console_text(), "direct<\n");
  EXPECT_EQ(fake::count(fake::kWrite), 2u);
}

} // namespace
