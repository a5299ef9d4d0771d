// An entry point uses r4..r7 for the request's words and gives them back unchanged.
#include <kv/syscall.h>
#include <kvtest.h>
#include <stdint.h>

extern "C" uint32_t call_with_marked_registers(void (*fn)(void), uint32_t after[4]);

TEST(Registers, EntryPointsRestoreR4ToR7) {
  struct {
    const char *name;
    void (*fn)(void);
  } cases[] = {
      {"getpid (no arguments)", reinterpret_cast<void (*)(void)>(__syscall_getpid)},
      {"close (one argument)", reinterpret_cast<void (*)(void)>(__syscall_close)},
      {"send (four arguments)", reinterpret_cast<void (*)(void)>(__syscall_send)},
      {"getuid (unsupported)", reinterpret_cast<void (*)(void)>(__syscall_getuid)},
      {"time", reinterpret_cast<void (*)(void)>(__syscall_time)},
  };
  for (auto &c : cases) {
    uint32_t after[4] = {};
    call_with_marked_registers(c.fn, after);
    EXPECT_EQ(after[0], 0x44444444u);
    EXPECT_EQ(after[1], 0x55555555u);
    EXPECT_EQ(after[2], 0x66666666u);
    EXPECT_EQ(after[3], 0x77777777u);
  }
}

TEST(Registers, ResultComesBackBitForBit) {
  // getpid through the marked call returns exactly what a plain call returns.
  uint32_t after[4];
  uint32_t pid = call_with_marked_registers(reinterpret_cast<void (*)(void)>(__syscall_getpid), after);
  EXPECT_EQ(pid, static_cast<uint32_t>(__syscall_getpid()));
  EXPECT_NE(pid, 0u);
}
