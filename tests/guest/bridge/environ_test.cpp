// The environment that start-up copies from the system side (kvrun -e A=1 -e ...).
#include <kvtest.h>

extern "C" char **environ;

TEST(Environ, HoldsExactlyTheGivenVariablesInOrder) {
  ASSERT_TRUE(environ != nullptr);
  EXPECT_STREQ(environ[0], "GREETING=hello world");
  EXPECT_STREQ(environ[1], "EMPTY=");
  EXPECT_STREQ(environ[2], "LONG=0123456789012345678901234567890123456789012345678901234567890123456789");
  EXPECT_TRUE(environ[3] == nullptr);
}
