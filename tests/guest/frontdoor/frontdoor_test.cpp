// The ISO C front doors as a dynamically linked program reaches them, over libc.so's exports.
#include <kvtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

extern "C" int open(const char *path, int flags, ...);

namespace {

TEST(FrontDoor, FormattingIntoMemory) {
  struct {
    size_t size;
    const char *want;
    int count;
  } const rows[] = {{64, "7|-3|2.50|ff", 12}, {5, "7|-3", 12}, {1, "", 12}};
  for (const auto &row : rows) {
    char buffer[64] = "untouched";
    EXPECT_EQ(snprintf(buffer, row.size, "%d|%d|%.2f|%x", 7, -3, 2.5, 255), row.count);
    EXPECT_STREQ(buffer, row.want);
  }
  char buffer[32];
  EXPECT_EQ(sprintf(buffer, "%s=%ld", "n", -40L), 5);
  EXPECT_STREQ(buffer, "n=-40");
}

TEST(FrontDoor, StringFunctions) {
  struct {
    const char *a, *b;
    int sign;
  } const rows[] = {
      {"abc", "abc", 0}, {"abc", "abd", -1}, {"b", "abc", 1}, {"", "a", -1}, {"\xff", "a", 1}};
  for (const auto &row : rows) {
    int r = strcmp(row.a, row.b);
    EXPECT_EQ((r > 0) - (r < 0), row.sign);
  }
  EXPECT_EQ(strncmp("abcx", "abcy", 3), 0);
  EXPECT_EQ(strlen("hello"), 5u);
  EXPECT_STREQ(strchr("a,b,c", ','), ",b,c");
  EXPECT_STREQ(strrchr("a,b,c", ','), ",c");
  EXPECT_TRUE(strchr("abc", 'z') == nullptr);
  char buffer[16];
  strcpy(buffer, "ab");
  strcat(buffer, "cd");
  EXPECT_STREQ(buffer, "abcd");
  memset(buffer, 'x', 3);
  EXPECT_EQ(memcmp(buffer, "xxxd", 4), 0);
  memmove(buffer + 1, buffer, 4);
  EXPECT_EQ(memcmp(buffer, "xxxxd", 5), 0);
  EXPECT_EQ(atoi("  -123x"), -123);
}

// strlen reads aligned words: every start offset and length, bytes that look like a word's
// zero test (0x01, 0x80, 0xff) around the terminator, and text after it that must not count.
TEST(FrontDoor, StrlenAtEveryAlignment) {
  const unsigned char fill[] = {'a', 0x01, 0x80, 0xff, 0x7f, 0xfe};
  for (size_t first = 0; first < sizeof fill; ++first) {
    int wrong = 0;
    for (size_t offset = 0; offset < 8; ++offset)
      for (size_t length = 0; length < 40; ++length) {
        alignas(8) char buffer[64];
        memset(buffer, 'z', sizeof buffer);
        for (size_t i = 0; i < length; ++i)
          buffer[offset + i] = static_cast<char>(fill[(first + i) % sizeof fill]);
        buffer[offset + length] = 0;
        wrong += strlen(buffer + offset) != length;
      }
    EXPECT_EQ(wrong, 0);
  }
}

// The inline paths across several buffer refills and flushes, mixed with the locked calls, and
// positions that agree with what was moved.
TEST(FrontDoor, UnlockedCharacterPathsAcrossBufferBoundaries) {
  FILE *out = fopen("unlocked.txt", "w");
  ASSERT_TRUE(out != nullptr);
  flockfile(out);
  for (int i = 0; i < 3000; ++i)
    EXPECT_EQ(putc_unlocked('a' + i % 26, out), 'a' + i % 26);
  funlockfile(out);
  EXPECT_EQ(fputc('!', out), '!');
  EXPECT_EQ(putc_unlocked(0xE9, out), 0xE9);
  EXPECT_EQ(ftell(out), 3002L);
  EXPECT_EQ(fclose(out), 0);

  FILE *in = fopen("unlocked.txt", "r");
  ASSERT_TRUE(in != nullptr);
  int wrong = 0;
  for (int i = 0; i < 3000; ++i)
    wrong += getc_unlocked(in) != 'a' + i % 26;
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(fgetc(in), '!');
  EXPECT_EQ(getc_unlocked(in), 0xE9);
  EXPECT_EQ(getc_unlocked(in), EOF);
  EXPECT_TRUE(feof(in) != 0);
  EXPECT_EQ(fclose(in), 0);
  EXPECT_EQ(remove("unlocked.txt"), 0);
}

TEST(FrontDoor, FileRoundTripAndHeap) {
  FILE *out = fopen("frontdoor.txt", "w");
  ASSERT_TRUE(out != nullptr);
  EXPECT_EQ(fprintf(out, "line %d\n", 1), 7);
  EXPECT_EQ(fputs("second\n", out), 0);
  EXPECT_EQ(fwrite("xyz", 1, 3, out), 3u);
  EXPECT_EQ(fclose(out), 0);
  FILE *in = fopen("frontdoor.txt", "r");
  ASSERT_TRUE(in != nullptr);
  char line[32];
  EXPECT_STREQ(fgets(line, sizeof line, in), "line 1\n");
  EXPECT_EQ(fgetc(in), 's');
  EXPECT_STREQ(fgets(line, sizeof line, in), "econd\n");
  EXPECT_STREQ(fgets(line, sizeof line, in), "xyz");
  EXPECT_TRUE(fgets(line, sizeof line, in) == nullptr);
  EXPECT_TRUE(feof(in) != 0);
  EXPECT_EQ(ftell(in), 17L);
  EXPECT_EQ(fclose(in), 0);
  EXPECT_TRUE(fopen("missing.txt", "r") == nullptr);

  char *p = static_cast<char *>(malloc(8));
  ASSERT_TRUE(p != nullptr);
  strcpy(p, "heap");
  p = static_cast<char *>(realloc(p, 4000));
  EXPECT_STREQ(p, "heap");
  free(p);
  int *zeros = static_cast<int *>(calloc(10, sizeof(int)));
  EXPECT_EQ(zeros[9], 0);
  free(zeros);
}

// What the system side holds of a file, read through a descriptor of its own.
long size_on_host(const char *path) {
  int fd = open(path, KV_O_RDONLY);
  long size = lseek(fd, 0, SEEK_END);
  close(fd);
  return size;
}

TEST(FrontDoor, BufferModesDecideWhenBytesReachTheFile) {
  struct Case {
    int mode;
    size_t size;
    const char *text; // written with fputs after the buffer is set
    long before_flush;
  } cases[] = {
      {_IOFBF, 8, "12345", 0},         // held in the buffer
      {_IOFBF, 8, "123456789", 8},     // the ninth byte finds the buffer full
      {_IOLBF, 64, "ab\ncd", 3},      // written up to the newline
      {_IONBF, 0, "xyz", 3},           // nothing held
  };
  for (const Case &c : cases) {
    FILE *f = fopen("modes.txt", "w");
    ASSERT_TRUE(f != nullptr);
    static char buffer[64];
    EXPECT_EQ(setvbuf(f, c.mode == _IONBF ? nullptr : buffer, c.mode, c.size), 0);
    EXPECT_TRUE(fputs(c.text, f) >= 0);
    EXPECT_EQ(size_on_host("modes.txt"), c.before_flush);
    EXPECT_EQ(fflush(f), 0);
    EXPECT_EQ(size_on_host("modes.txt"), static_cast<long>(strlen(c.text)));
    EXPECT_EQ(fclose(f), 0);
  }
  // setbuf with no buffer is unbuffered.
  FILE *f = fopen("modes.txt", "w");
  setbuf(f, nullptr);
  fputc('q', f);
  EXPECT_EQ(size_on_host("modes.txt"), 1L);
  fclose(f);
}

TEST(FrontDoor, FreopenMovesAStreamToAnotherFile) {
  FILE *f = fopen("first.txt", "w");
  ASSERT_TRUE(f != nullptr);
  fputs("one", f);
  EXPECT_TRUE(freopen("second.txt", "w", f) == f);
  fputs("two!", f);
  fclose(f);
  EXPECT_EQ(size_on_host("first.txt"), 3L); // written out when the stream was reopened
  EXPECT_EQ(size_on_host("second.txt"), 4L);
  EXPECT_TRUE(freopen("no/such/dir/x.txt", "r", fopen("first.txt", "r")) == nullptr);
}

} // namespace
