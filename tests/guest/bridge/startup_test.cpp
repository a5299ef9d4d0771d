// What start-up leaves behind: the standard streams as every program finds them, the
// exception-handling record, and the emergency exception buffer's one slot.
#include <kvtest.h>
#include <stdint.h>

#include "bridge/exceptions.h"
#include "stdio/stream.h"

extern "C" void **__rt_eh_globals_addr(void);
extern "C" int __C_library_version_number(void);
extern "C" void *__aeabi_stdin, *__aeabi_stdout, *__aeabi_stderr;

using namespace kv::stdio;

namespace {

TEST(Startup, StandardStreamsAreLineBufferedOnTheConsole) {
  struct {
    FILE *stream;
    void *aeabi;
    int handle;
    uint32_t flags;
    uint32_t size;
  } const rows[] = {
      {stdin, __aeabi_stdin, 0, kRead | kLineBuffered, 64},
      {stdout, __aeabi_stdout, 1, kWrite | kLineBuffered, 256},
      {stderr, __aeabi_stderr, 2, kRead | kWrite | kLineBuffered, 256}, // reopened "w+"
  };
  for (const auto &row : rows) {
    EXPECT_TRUE(row.aeabi == row.stream);
    EXPECT_EQ(row.stream->handle, row.handle);
    EXPECT_EQ(row.stream->flags, row.flags);
    EXPECT_EQ(row.stream->buffer_size, row.size);
    EXPECT_TRUE(row.stream->buffer == nullptr); // allocated on first use
    EXPECT_EQ(row.stream->link & 1, 1u);
  }
  EXPECT_TRUE(next_record(stdin) == stdout);
  EXPECT_TRUE(next_record(stdout) == stderr);
}

TEST(Startup, ExceptionRecordIsMade) {
  auto *record = static_cast<uint32_t *>(*__rt_eh_globals_addr());
  ASSERT_TRUE(record != nullptr);
  EXPECT_EQ(record[0], 0u);
  EXPECT_NE(record[2], 0u); // the terminate handler
  EXPECT_EQ(record[7], 0u); // no emergency buffer was asked for
  EXPECT_EQ(__C_library_version_number(), 410894);
}

TEST(Exceptions, EmergencyBufferHoldsOneSlot) {
  void *buffer = __ARM_exceptions_buffer_init();
  ASSERT_TRUE(buffer != nullptr);
  auto *slot_address = static_cast<unsigned char *>(buffer) + 8;
  EXPECT_TRUE(__ARM_exceptions_buffer_allocate(buffer, 129) == nullptr);
  EXPECT_TRUE(__ARM_exceptions_buffer_allocate(nullptr, 8) == nullptr);
  void *slot = __ARM_exceptions_buffer_allocate(buffer, 128);
  EXPECT_TRUE(slot == slot_address);
  EXPECT_TRUE(__ARM_exceptions_buffer_allocate(buffer, 1) == nullptr);
  EXPECT_EQ(__ARM_exceptions_buffer_free(buffer, slot_address + 1), 0);
  EXPECT_EQ(__ARM_exceptions_buffer_free(nullptr, slot), 0);
  EXPECT_NE(__ARM_exceptions_buffer_free(buffer, slot), 0);
  EXPECT_TRUE(__ARM_exceptions_buffer_allocate(buffer, 128) == slot_address);
}

} // namespace
