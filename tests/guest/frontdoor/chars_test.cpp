// fputc, fgetc, putc, getc and fputs of the front door at the edges of a stream's 512-byte
// buffer. The same cases run in a program with the library's own lock hooks (the lock-free
// store) and in one that binds counting hooks (the locked path).
#include <kvtest.h>
#include <stdio.h>
#include <string.h>

namespace {

const char kFile[] = "chars.dat";

unsigned char pattern(int i) { return static_cast<unsigned char>(i * 37 + 11); }

// Reads the whole file back with fgetc and compares it with want[0..n).
int mismatches(const unsigned char *want, int n) {
  FILE *in = fopen(kFile, "rb");
  if (!in)
    return -1;
  int wrong = 0;
  for (int i = 0; i < n; ++i)
    wrong += fgetc(in) != want[i];
  wrong += fgetc(in) != EOF;
  fclose(in);
  return wrong;
}

TEST(Chars, WriteAndReadAcrossBufferBoundaries) {
  struct {
    int length;
    int (*put)(int, FILE *);
    int (*get)(FILE *);
  } const rows[] = {{0, fputc, fgetc},   {1, fputc, fgetc}, {511, fputc, fgetc},
                    {512, fputc, fgetc}, {513, putc, getc}, {1024, fputc, getc},
                    {1537, putc, fgetc}};
  for (const auto &row : rows) {
    FILE *out = fopen(kFile, "wb");
    ASSERT_TRUE(out != nullptr);
    int wrong = 0;
    for (int i = 0; i < row.length; ++i)
      wrong += row.put(pattern(i), out) != pattern(i);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(ftell(out), static_cast<long>(row.length));
    EXPECT_EQ(fclose(out), 0);

    FILE *in = fopen(kFile, "rb");
    ASSERT_TRUE(in != nullptr);
    for (int i = 0; i < row.length; ++i)
      wrong += row.get(in) != pattern(i);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(ftell(in), static_cast<long>(row.length));
    // End of file is sticky and not an error.
    EXPECT_EQ(row.get(in), EOF);
    EXPECT_EQ(row.get(in), EOF);
    EXPECT_TRUE(feof(in) != 0);
    EXPECT_FALSE(ferror(in) != 0);
    EXPECT_EQ(fclose(in), 0);
  }
}

TEST(Chars, StoresAndReturnsTheLowByte) {
  struct {
    int ch, stored;
  } const rows[] = {{0x141, 0x41}, {-1, 0xff}, {0x80, 0x80}, {0, 0}, {'\n', '\n'}};
  FILE *out = fopen(kFile, "wb");
  ASSERT_TRUE(out != nullptr);
  unsigned char want[5];
  int n = 0;
  for (const auto &row : rows) {
    EXPECT_EQ(fputc(row.ch, out), row.stored);
    want[n++] = static_cast<unsigned char>(row.stored);
  }
  EXPECT_EQ(fclose(out), 0);
  EXPECT_EQ(mismatches(want, n), 0);
}

TEST(Chars, WrongDirectionFailsAndStaysFailed) {
  FILE *out = fopen(kFile, "wb");
  ASSERT_TRUE(out != nullptr);
  EXPECT_EQ(fputc('a', out), 'a');
  EXPECT_EQ(fgetc(out), EOF);
  EXPECT_TRUE(ferror(out) != 0);
  EXPECT_EQ(fgetc(out), EOF);
  fclose(out);

  FILE *in = fopen(kFile, "rb");
  ASSERT_TRUE(in != nullptr);
  EXPECT_EQ(fputc('b', in), EOF);
  EXPECT_TRUE(ferror(in) != 0);
  EXPECT_EQ(fputs("text", in), EOF);
  fclose(in);
}

// The console's input reads as end of file at once; putchar's output is checked by the
// frontdoor_stdout_lines run.
TEST(Chars, GetcharReadsStandardInput) {
  EXPECT_EQ(getchar(), EOF);
  EXPECT_TRUE(feof(stdin) != 0);
  EXPECT_EQ(getchar(), EOF);
  clearerr(stdin);
}

// Seeks inside the buffer leave a count that must go through the slow path first; pushback
// too.
TEST(Chars, ReadResumesAfterSeeksAndPushback) {
  unsigned char data[700];
  FILE *out = fopen(kFile, "wb");
  ASSERT_TRUE(out != nullptr);
  for (int i = 0; i < 700; ++i)
    fputc(data[i] = pattern(i), out);
  EXPECT_EQ(fclose(out), 0);

  FILE *in = fopen(kFile, "rb");
  ASSERT_TRUE(in != nullptr);
  int wrong = 0;
  for (int i = 0; i < 600; ++i)
    wrong += fgetc(in) != data[i];
  EXPECT_EQ(wrong, 0);
  struct {
    long seek_to;
    int reads;
  } const rows[] = {{520, 30}, {699, 1}, {511, 3}, {100, 450}, {0, 700}};
  for (const auto &row : rows) {
    EXPECT_EQ(fseek(in, row.seek_to, SEEK_SET), 0);
    for (int i = 0; i < row.reads; ++i)
      wrong += fgetc(in) != data[row.seek_to + i];
    EXPECT_EQ(wrong, 0);
  }
  EXPECT_EQ(fgetc(in), EOF);
  EXPECT_EQ(fseek(in, 510, SEEK_SET), 0);
  EXPECT_EQ(fgetc(in), data[510]);
  EXPECT_EQ(ungetc('Z', in), 'Z');
  EXPECT_EQ(fgetc(in), 'Z');
  EXPECT_EQ(fgetc(in), data[511]);
  EXPECT_EQ(fgetc(in), data[512]);
  EXPECT_EQ(fclose(in), 0);
}

TEST(Chars, UpdateStreamWritesAfterReading) {
  FILE *s = fopen(kFile, "w+b");
  ASSERT_TRUE(s != nullptr);
  unsigned char want[600];
  for (int i = 0; i < 600; ++i)
    fputc(want[i] = pattern(i), s);
  EXPECT_EQ(fseek(s, 0, SEEK_SET), 0);
  int wrong = 0;
  for (int i = 0; i < 600; ++i)
    wrong += fgetc(s) != want[i];
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(fgetc(s), EOF);
  // Overwrite across the boundary, then write where a seek inside the read buffer landed.
  EXPECT_EQ(fseek(s, 509, SEEK_SET), 0);
  for (int i = 509; i < 515; ++i)
    EXPECT_EQ(fputc(want[i] = 'X', s), 'X');
  EXPECT_EQ(fseek(s, 520, SEEK_SET), 0);
  EXPECT_EQ(fgetc(s), want[520]);
  EXPECT_EQ(fseek(s, 530, SEEK_SET), 0);
  EXPECT_EQ(fputc(want[530] = 'Y', s), 'Y');
  EXPECT_EQ(fputc(want[531] = 'Z', s), 'Z');
  EXPECT_EQ(fclose(s), 0);
  EXPECT_EQ(mismatches(want, 600), 0);
}

// fputs copies runs while the buffer has room and must leave exactly what fputc would.
TEST(Chars, FputsMatchesCharacterOutput) {
  static char text[1301];
  for (int i = 0; i < 1300; ++i)
    text[i] = static_cast<char>('a' + i % 26);
  struct {
    int before, length;
  } const rows[] = {{0, 0},     {0, 1},   {0, 512},  {500, 11}, {500, 12},
                    {511, 600}, {512, 1}, {1, 1300}, {300, 900}};
  static unsigned char want[2000];
  for (const auto &row : rows) {
    FILE *out = fopen(kFile, "wb");
    ASSERT_TRUE(out != nullptr);
    int n = 0;
    for (; n < row.before; ++n)
      fputc(want[n] = pattern(n), out);
    char saved = text[row.length];
    text[row.length] = 0;
    EXPECT_EQ(fputs(text, out), 0);
    text[row.length] = saved;
    memcpy(want + n, text, static_cast<size_t>(row.length));
    n += row.length;
    EXPECT_EQ(fputs("", out), 0);
    EXPECT_EQ(fputc('!', out), '!');
    want[n++] = '!';
    EXPECT_EQ(ftell(out), static_cast<long>(n));
    EXPECT_EQ(fclose(out), 0);
    EXPECT_EQ(mismatches(want, n), 0);
  }
  remove(kFile);
}

} // namespace
