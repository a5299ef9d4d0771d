// With lock hooks of its own bound, the program's character calls must take and release the
// stream's lock around every character, full buffer or not.
#include <kvtest.h>
#include <stdint.h>
#include <stdio.h>

namespace {
int acquired, released, depth, deepest;
uint32_t *held, *other_lock;
} // namespace

extern "C" int __mutex_acquire(uint32_t *m) {
  ++acquired;
  if (++depth > deepest)
    deepest = depth;
  if (held && m != held)
    other_lock = m;
  held = m;
  return 0;
}
extern "C" void __mutex_release(uint32_t *m) {
  ++released;
  --depth;
  if (m != held)
    other_lock = m;
}

namespace {

FILE *stream;
const int kCount = 1100; // crosses two buffer boundaries

void put_each(int (*put)(int, FILE *)) {
  for (int i = 0; i < kCount; ++i)
    put('a' + i % 26, stream);
}
void get_each(int (*get)(FILE *)) {
  for (int i = 0; i < kCount; ++i)
    get(stream);
}

TEST(CharLocks, EveryCallTakesTheStreamLockOnce) {
  static char line[kCount + 1];
  for (int i = 0; i < kCount; ++i)
    line[i] = 'x';
  struct {
    const char *mode;
    void (*run)();
    int locks;
  } const rows[] = {
      {"wb", [] { put_each(fputc); }, kCount}, {"wb", [] { put_each(putc); }, kCount},
      {"wb", [] { fputs(line, stream); }, 1},  {"rb", [] { get_each(fgetc); }, kCount},
      {"rb", [] { get_each(getc); }, kCount},
  };
  for (const auto &row : rows) {
    stream = fopen("locks.dat", row.mode);
    ASSERT_TRUE(stream != nullptr);
    // The first transfer allocates the buffer, under the heap's lock too.
    if (row.mode[0] == 'w')
      fputc('0', stream);
    else
      fgetc(stream);
    held = nullptr;
    other_lock = nullptr;
    deepest = depth;
    int a0 = acquired, r0 = released;
    row.run();
    EXPECT_EQ(acquired - a0, row.locks);
    EXPECT_EQ(released - r0, row.locks);
    EXPECT_TRUE(held == &stream->lock);
    EXPECT_TRUE(other_lock == nullptr);
    EXPECT_EQ(deepest, 1);
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(fclose(stream), 0);
  }
  remove("locks.dat");
}

} // namespace
