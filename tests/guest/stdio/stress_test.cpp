// Random character and direct (fread/fwrite) traffic on a real file against a model of the file's bytes and position:
// every answer is checked as it comes, and after each round the file on the system side must
// hold exactly the model's bytes. The last round's file is left for the host to compare with
// the model's copy, written beside it through the raw entry points.
#include <kv/abi.h>
#include <kv/syscall.h>
#include <kvtest.h>
#include <xorshift.h>

#include "stdio/stream.h"

extern "C" size_t fread(void *buffer, size_t size, size_t count, FILE *s);
extern "C" size_t fwrite(const void *buffer, size_t size, size_t count, FILE *s);

using namespace kv::stdio;

namespace {

constexpr long kCapacity = 6000;

struct Model {
  unsigned char bytes[kCapacity];
  long length;
  long position;
  bool at_eof;
  bool pushed; // a pushed-back character waits
};
Model model;

uint32_t state = 0x2545F491;
uint32_t next() { return kvtest::xorshift32(state); }
long below(long n) { return n > 0 ? static_cast<long>(next() % static_cast<uint32_t>(n)) : 0; }

void model_put(unsigned char ch) {
  while (model.length < model.position)
    model.bytes[model.length++] = 0; // a write past the end leaves zeros behind
  model.bytes[model.position++] = ch;
  if (model.position > model.length)
    model.length = model.position;
}

struct Buffering {
  int mode;
  size_t size;
};
const Buffering kBufferings[] = {
    {0, 0},                 // the engine's own choice: 512, fully buffered
    {kFullyBuffered, 7},    {kFullyBuffered, 64}, {kLineBuffered, 16},
    {kLineBuffered, 300},   {kUnbuffered, 0},     {kFullyBuffered, 1},
    {kFullyBuffered, 4096},
};

enum Direction { kNone, kReadDir, kWriteDir };

bool file_matches_model(const char *name) {
  int fd = __syscall_open(name, KV_O_RDONLY, 0);
  if (fd < 0)
    return false;
  static unsigned char seen[kCapacity + 16];
  int n = __syscall_read(fd, seen, sizeof seen);
  __syscall_close(fd);
  if (n != model.length)
    return false;
  for (long i = 0; i < n; ++i)
    if (seen[i] != model.bytes[i])
      return false;
  return true;
}

void run_round(const Buffering &buffering, int operations) {
  FILE *s = take_free_record();
  ASSERT_TRUE(freopen("stress.bin", "w+", s) == s);
  if (buffering.mode)
    ASSERT_EQ(setvbuf(s, nullptr, buffering.mode, buffering.size), 0);
  model.length = model.position = 0;
  model.at_eof = model.pushed = false;
  Direction last = kNone;
  int last_read = -1;
  for (int op = 0; op < operations; ++op) {
    long room = kCapacity - 40 - model.position;
    int kind = static_cast<int>(below(12));
    if ((kind <= 1 && room <= 0) || (kind == 11 && room < 8))
      kind = 3;
    bool writes = kind <= 1, reads = kind == 2;
    if ((writes && last == kReadDir) || (reads && last == kWriteDir)) {
      ASSERT_EQ(fseek(s, 0, 1), 0); // switching direction needs a positioning call
      model.at_eof = model.pushed = false;
    }
    switch (kind) {
    case 0: {
      auto ch = static_cast<unsigned char>(next());
      ASSERT_EQ(fputc(ch, s), ch);
      model_put(ch);
      model.at_eof = false;
      last = kWriteDir;
      break;
    }
    case 1: {
      char text[24];
      long n = 1 + below(20);
      for (long i = 0; i < n; ++i)
        text[i] = static_cast<char>(1 + below(255));
      text[n] = 0;
      ASSERT_EQ(fputs(text, s), 0);
      for (long i = 0; i < n; ++i)
        model_put(static_cast<unsigned char>(text[i]));
      model.at_eof = false;
      last = kWriteDir;
      break;
    }
    case 2: {
      long n = 1 + below(30);
      for (long i = 0; i < n; ++i) {
        int want = (model.at_eof || model.position >= model.length)
                       ? -1
                       : model.bytes[model.position];
        int got = fgetc(s);
        ASSERT_EQ(got, want);
        if (want == -1)
          model.at_eof = true;
        else
          ++model.position;
        model.pushed = false;
        last_read = got;
      }
      last = kReadDir;
      break;
    }
    case 3:
    case 4:
    case 5: {
      long target = kind == 3 ? below(model.length + 6)
                  : kind == 4 ? model.position + below(model.position + 6) - model.position
                              : model.length - below(model.length + 1) + below(3);
      int whence = kind - 3;
      long offset = whence == 0 ? target : whence == 1 ? target - model.position
                                                       : target - model.length;
      ASSERT_EQ(fseek(s, offset, whence), 0);
      model.position = target;
      model.at_eof = false;
      model.pushed = false;
      last = kNone;
      last_read = -1;
      break;
    }
    case 6:
      ASSERT_EQ(ftell(s), model.position);
      break;
    case 7:
      // A flush repositions at the cursor: end of file and the pushback are dropped.
      ASSERT_EQ(fflush(s), 0);
      if (model.pushed)
        ++model.position;
      model.pushed = model.at_eof = false;
      last = kNone;
      break;
    case 8:
      if (last == kReadDir && last_read >= 0) {
        ASSERT_EQ(ungetc(last_read, s), last_read);
        --model.position;
        model.pushed = true;
        last_read = -1;
      }
      break;
    case 10: {
      // Straight from the file at the stream's position; the stream follows on behind the data.
      static unsigned char got[1600];
      long size = 1 + below(4), count = 1 + below(400);
      long available = model.length > model.position ? model.length - model.position : 0;
      long moved = size * count < available ? size * count : available;
      ASSERT_EQ(fread(got, static_cast<size_t>(size), static_cast<size_t>(count), s),
                static_cast<size_t>(moved / size));
      for (long i = 0; i < moved; ++i)
        ASSERT_EQ(got[i], model.bytes[model.position + i]);
      model.position += moved;
      model.at_eof = model.position == model.length;
      model.pushed = false;
      last = kNone;
      last_read = -1;
      break;
    }
    case 11: {
      static unsigned char text[1600];
      long size = 1 + below(4);
      long most = room < 1500 ? room : 1500;
      long count = 1 + below(most / size);
      for (long i = 0; i < size * count; ++i)
        text[i] = static_cast<unsigned char>(next());
      ASSERT_EQ(fwrite(text, static_cast<size_t>(size), static_cast<size_t>(count), s),
                static_cast<size_t>(count));
      for (long i = 0; i < size * count; ++i)
        model_put(text[i]);
      model.at_eof = model.pushed = false;
      last = kNone;
      last_read = -1;
      break;
    }
    default:
      ASSERT_FALSE(ferror(s));
      ASSERT_EQ(feof(s) != 0, model.at_eof);
      break;
    }
  }
  ASSERT_EQ(ftell(s), model.position);
  ASSERT_EQ(_fclose_internal(s), 0);
  EXPECT_TRUE(file_matches_model("stress.bin"));
}

TEST(Stress, EveryBufferingAgainstTheModel) {
  for (const Buffering &buffering : kBufferings)
    run_round(buffering, 3000);
  int fd = __syscall_open("stress.expected", KV_O_WRONLY | KV_O_CREAT | KV_O_TRUNC, 0644);
  ASSERT_TRUE(fd >= 0);
  EXPECT_EQ(__syscall_write(fd, model.bytes, static_cast<size_t>(model.length)), model.length);
  __syscall_close(fd);
}

} // namespace
