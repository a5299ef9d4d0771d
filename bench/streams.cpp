// Stream transfers of 1 MiB through the ISO front doors, and printf to stdout:
//   streams OP         putc puts fwrite (write streams.dat), getc fread (read it back),
//                      printf (10000 lines to stdout)
//   streams empty:OP   the same loop and arguments around an empty function, no file opened
// The runner counts guest instructions and the trace's requests of both runs; the difference
// is what the stream functions cost, opening and closing included.
#include <stdio.h>

#include "bench_args.h"

namespace {

constexpr unsigned kTotal = 1u << 20;
constexpr unsigned kLine = 80; // 79 characters and the newline
constexpr unsigned kBlock = 4096;
constexpr unsigned kPrintfLines = 10000;
const char kFile[] = "streams.dat";

unsigned char block[kBlock];
char line[kLine + 1];

// The empty stand-ins: one instruction each, so the loops around them cost the same.
extern "C" __attribute__((noinline)) int empty_putc(int, FILE *) {
  asm volatile("");
  return 0;
}
extern "C" __attribute__((noinline)) int empty_puts(const char *, FILE *) {
  asm volatile("");
  return 0;
}
extern "C" __attribute__((noinline)) size_t empty_transfer(void *, size_t, size_t, FILE *) {
  asm volatile("");
  return 0;
}
extern "C" __attribute__((noinline)) int empty_getc(FILE *) {
  asm volatile("");
  return 0;
}
extern "C" __attribute__((noinline)) int empty_printf(const char *, ...) {
  asm volatile("");
  return 0;
}
size_t write_block(void *data, size_t size, size_t count, FILE *s) {
  return fwrite(data, size, count, s);
}

FILE *open_file(bool empty, const char *mode) { return empty ? nullptr : fopen(kFile, mode); }
void close_file(FILE *s) {
  if (s)
    fclose(s);
}

// Every loop calls through a volatile pointer so that both variants make the same call.
unsigned put_chars(bool empty) {
  int (*volatile fn)(int, FILE *) = empty ? empty_putc : fputc;
  FILE *s = open_file(empty, "wb");
  for (unsigned i = 0; i < kTotal; ++i)
    fn('a' + static_cast<int>(i % 26), s);
  close_file(s);
  return 0;
}

unsigned put_lines(bool empty) {
  int (*volatile fn)(const char *, FILE *) = empty ? empty_puts : fputs;
  for (unsigned i = 0; i < kLine - 1; ++i)
    line[i] = static_cast<char>('a' + i % 26);
  line[kLine - 1] = '\n';
  FILE *s = open_file(empty, "wb");
  unsigned i = 0;
  for (; i + kLine <= kTotal; i += kLine)
    fn(line, s);
  // The rest of the mebibyte: a short last line.
  line[kTotal - i] = 0;
  fn(line, s);
  close_file(s);
  return 0;
}

unsigned put_blocks(bool empty) {
  size_t (*volatile fn)(void *, size_t, size_t, FILE *) = empty ? empty_transfer : write_block;
  for (unsigned i = 0; i < kBlock; ++i)
    block[i] = static_cast<unsigned char>(i * 7);
  FILE *s = open_file(empty, "wb");
  for (unsigned i = 0; i < kTotal; i += kBlock)
    fn(block, 1, kBlock, s);
  close_file(s);
  return 0;
}

unsigned get_chars(bool empty) {
  int (*volatile fn)(FILE *) = empty ? empty_getc : fgetc;
  FILE *s = open_file(empty, "rb");
  unsigned sum = 0;
  for (unsigned i = 0; i < kTotal; ++i)
    sum += static_cast<unsigned>(fn(s));
  close_file(s);
  return sum;
}

unsigned get_blocks(bool empty) {
  size_t (*volatile fn)(void *, size_t, size_t, FILE *) = empty ? empty_transfer : fread;
  FILE *s = open_file(empty, "rb");
  unsigned got = 0;
  for (unsigned i = 0; i < kTotal; i += kBlock)
    got += static_cast<unsigned>(fn(block, 1, kBlock, s));
  close_file(s);
  return got;
}

unsigned print_lines(bool empty) {
  int (*volatile fn)(const char *, ...) = empty ? empty_printf : printf;
  for (unsigned i = 0; i < kPrintfLines; ++i)
    fn("line %5u of the stream benchmark: %s\n", i, "text");
  return 0;
}

// The inline paths under one flockfile: no call per character while the buffer lasts. The
// empty variant runs the same loop storing into a plain array.
unsigned put_chars_inline(bool empty) {
  static unsigned char plain[64];
  FILE *s = open_file(empty, "wb");
  if (s)
    flockfile(s);
  for (unsigned i = 0; i < kTotal; ++i) {
    int ch = 'a' + static_cast<int>(i % 26);
    if (s)
      putc_unlocked(ch, s);
    else
      plain[i & 63] = static_cast<unsigned char>(ch);
  }
  if (s) {
    funlockfile(s);
    close_file(s);
  }
  return plain[0];
}

unsigned get_chars_inline(bool empty) {
  static unsigned char plain[64];
  FILE *s = open_file(empty, "rb");
  if (s)
    flockfile(s);
  unsigned sum = 0;
  for (unsigned i = 0; i < kTotal; ++i)
    sum += static_cast<unsigned>(s ? getc_unlocked(s) : plain[i & 63]);
  if (s) {
    funlockfile(s);
    close_file(s);
  }
  return sum;
}

struct Op {
  const char *name;
  unsigned (*run)(bool empty);
};
constexpr Op kOps[] = {
    {"putc", put_chars},   {"puts", put_lines},  {"fwrite", put_blocks},
    {"getc", get_chars},   {"fread", get_blocks}, {"printf", print_lines},
    {"putc_unlocked", put_chars_inline}, {"getc_unlocked", get_chars_inline},
};

} // namespace

int main(int argc, char **argv) {
  if (argc < 2)
    return 2;
  const char *op = argv[1];
  bool empty = calibration(op);
  for (const Op &each : kOps)
    if (same(op, each.name)) {
      volatile unsigned sink = each.run(empty);
      (void)sink;
      return 0;
    }
  return 2;
}
