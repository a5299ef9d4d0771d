// __rt_switch8 through libc.so: each in-range index reaches its case, every other index (also
// negative ones, which are large unsigned) the default, with r1 and r2 intact.
#include <kvtest.h>

extern "C" int switch8_probe(int index);

namespace {
struct Case {
  int index, result;
};
const Case cases[] = {{0, 21000}, {1, 21001}, {2, 21002}, {3, 21099}, {4, 21099},
                      {255, 21099}, {-1, 21099}, {0x100, 21099}};
} // namespace

TEST(Switch8, Dispatch) {
  for (const Case &c : cases)
    EXPECT_EQ(switch8_probe(c.index), c.result);
}
