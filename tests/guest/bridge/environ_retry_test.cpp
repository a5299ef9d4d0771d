// A system side that needs 500 bytes for the environment: the library retries once with a new
// block of exactly that size and uses it.
#include <kv/syscall.h>
#include <kvtest.h>
#include <stdint.h>

extern "C" char **environ;

namespace {
struct Call {
  void *buffer;
  size_t size;
};
Call calls[4];
int count;
} // namespace

extern "C" int __syscall_copy_environ(void *buffer, size_t size) {
  if (count < 4)
    calls[count] = {buffer, size};
  ++count;
  if (size < 500)
    return 500;
  // A one-variable block: pointer array, then the text.
  char **slots = static_cast<char **>(buffer);
  char *text = reinterpret_cast<char *>(slots + 2);
  const char value[] = "SIZE=500";
  for (size_t i = 0; i < sizeof value; ++i)
    text[i] = value[i];
  slots[0] = text;
  slots[1] = nullptr;
  return 0;
}

TEST(EnvironRetry, SecondCallGetsAFreshBlockOfTheAskedSize) {
  ASSERT_EQ(count, 2);
  EXPECT_EQ(calls[0].size, 50u);
  EXPECT_EQ(calls[1].size, 500u);
  // The small first block went back to the heap, which serves the retry from the same place.
  EXPECT_EQ(calls[0].buffer, calls[1].buffer);
  EXPECT_EQ(static_cast<void *>(environ), calls[1].buffer);
  EXPECT_STREQ(environ[0], "SIZE=500");
  EXPECT_TRUE(environ[1] == nullptr);
}
