// The guest address space: mappings kept in step with the emulator, and the checked accessors
// that must fail cleanly (EFAULT) for every bad range.
#include <gtest/gtest.h>
#include <kv/abi.h>

#include <cstring>

#include "memory/protection.h"
#include "test_support.h"

using namespace kvrun;

namespace {

// 0x10000-0x12000 read-write, 0x12000-0x13000 read-only, 0x20000-0x21000 read-write,
// 0x30000-0x31000 no access, the top page read-write. Everything else unmapped.
class AddressSpaceTest : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(m.memory.map(0x10000, 0x2000, kProtRead | kProtWrite));
    ASSERT_TRUE(m.memory.map(0x12000, 0x1000, kProtRead));
    ASSERT_TRUE(m.memory.map(0x20000, 0x1000, kProtRead | kProtWrite));
    ASSERT_TRUE(m.memory.map(0x30000, 0x1000, kProtNone));
    ASSERT_TRUE(m.memory.map(0xFFFFF000, 0x1000, kProtRead | kProtWrite));
  }
  kvtest_host::GuestMemory m;
};

struct RangeCase {
  uint32_t addr, size;
  bool ok;
};

TEST_F(AddressSpaceTest, ReadsFailForUnmappedWrappingAndUnreadableRanges) {
  const RangeCase cases[] = {
      {0x0, 4, false},         {0x10, 1, false},        {0x0, 0, true},
      {0x10000, 4, true},      {0x11ffe, 4, true},      {0x12ffe, 2, true},
      {0x12ffe, 4, false},     {0x1fffc, 8, false},     {0x20ffc, 4, true},
      {0x20ffd, 4, false},     {0x30000, 1, false},     {0xfffffffe, 2, true},
      {0xfffffffe, 4, false},  {0xffffffff, 1, true},   {0x10000, 0x3000, true},
      {0x10000, 0x3001, false},
  };
  for (auto &c : cases) {
    std::vector<uint8_t> buf(c.size + 1, 0xCC);
    SCOPED_TRACE(testing::Message() << std::hex << c.addr << "+" << c.size);
    EXPECT_EQ(m.memory.read(c.addr, buf.data(), c.size), c.ok ? 0 : KV_EFAULT);
    if (!c.ok) {
      EXPECT_EQ(buf[0], 0xCC) << "a failed read copied something";
    }
  }
}

TEST_F(AddressSpaceTest, WritesFailForReadOnlyAndLeaveMemoryUntouched) {
  const RangeCase cases[] = {
      {0x10000, 4, true},      {0x11ffc, 4, true},      {0x11ffe, 4, false},
      {0x12000, 1, false},     {0x30000, 1, false},     {0x0, 1, false},
      {0xffffffff, 1, true},   {0xffffffff, 2, false},  {0x20fff, 2, false},
      {0x10000, 0x2000, true}, {0x10000, 0x2001, false},
  };
  for (auto &c : cases) {
    SCOPED_TRACE(testing::Message() << std::hex << c.addr << "+" << c.size);
    std::vector<uint8_t> ones(c.size, 0x5A);
    if (c.ok) {
      EXPECT_EQ(m.memory.write(c.addr, ones.data(), c.size), 0);
      std::vector<uint8_t> back(c.size);
      ASSERT_EQ(m.memory.read(c.addr, back.data(), c.size), 0);
      EXPECT_EQ(back, ones);
    } else {
      uint8_t before = 0, after = 0;
      bool readable = m.memory.read(c.addr, &before, 1) == 0;
      EXPECT_EQ(m.memory.write(c.addr, ones.data(), c.size), KV_EFAULT);
      if (readable) {
        m.memory.read(c.addr, &after, 1);
        EXPECT_EQ(after, before) << "a failed write changed the first byte";
      }
    }
  }
}

TEST_F(AddressSpaceTest, StringReadsAreBoundedAndStopAtTheTerminator) {
  auto put = [&](uint32_t addr, const char *text, size_t n) { ASSERT_TRUE(m.memory.poke(addr, text, static_cast<uint32_t>(n))); };
  put(0x20ffc, "abc", 4);       // ends exactly at the end of its page, unmapped after
  put(0x12ffc, "wxyz", 4);      // no terminator before the unmapped page
  put(0x10000, "0123456789", 11);
  put(0xfffffffc, "top", 4);    // terminator in the very last byte
  put(0x10100, "", 1);
  const struct {
    uint32_t addr, max;
    StringStatus status;
    const char *text;
  } cases[] = {
      {0x20ffc, 100, StringStatus::ok, "abc"},
      {0x12ffc, 100, StringStatus::fault, ""},
      {0x10000, 10, StringStatus::ok, "0123456789"},
      {0x10000, 9, StringStatus::too_long, "012345678"},
      {0x10000, 0, StringStatus::too_long, ""},
      {0xfffffffc, 10, StringStatus::ok, "top"},
      {0xfffffffd, 10, StringStatus::ok, "op"},
      {0x10100, 5, StringStatus::ok, ""},
      {0x0, 10, StringStatus::fault, ""},
      {0x30000, 10, StringStatus::fault, ""},
  };
  for (auto &c : cases) {
    SCOPED_TRACE(testing::Message() << std::hex << c.addr);
    std::string out;
    EXPECT_EQ(m.memory.read_string(c.addr, c.max, out), c.status);
    if (c.status != StringStatus::fault) {
      EXPECT_EQ(out, c.text);
    }
  }
  // Running off the top of the address space is a fault, not a wrap to address 0.
  std::vector<char> full(0x1000, 'x');
  put(0xFFFFF000, full.data(), full.size());
  std::string out;
  EXPECT_EQ(m.memory.read_string(0xFFFFF800, 0x10000, out), StringStatus::fault);
}

TEST_F(AddressSpaceTest, MapUnmapProtectKeepTheEmulatorInStep) {
  EXPECT_FALSE(m.memory.map(0x11000, 0x1000, kProtRead)) << "overlapping map";
  EXPECT_FALSE(m.memory.map(0x40001, 0x1000, kProtRead)) << "misaligned map";
  EXPECT_FALSE(m.memory.is_free(0x12fff, 2));
  EXPECT_TRUE(m.memory.is_free(0x13000, 0xd000));

  // Unmapping the middle of a range leaves both ends.
  m.memory.unmap(0x11000, 0x1000);
  EXPECT_TRUE(m.memory.accessible(0x10000, 0x1000, kProtWrite));
  EXPECT_FALSE(m.memory.accessible(0x11000, 1, kProtNone));
  EXPECT_TRUE(m.memory.accessible(0x12000, 0x1000, kProtRead));
  uint8_t b = 0;
  EXPECT_EQ(m.memory.read(0x11000, &b, 1), KV_EFAULT);
  EXPECT_TRUE(m.memory.map(0x11000, 0x1000, kProtRead | kProtWrite)) << "the hole can be reused";

  // Protection changes are seen by the accessors.
  ASSERT_TRUE(m.memory.protect(0x20000, 0x1000, kProtRead));
  EXPECT_EQ(m.memory.write_u32(0x20000, 1), KV_EFAULT);
  EXPECT_TRUE(m.memory.poke(0x20000, "z", 1)) << "the loader writes whatever the protection";
  EXPECT_FALSE(m.memory.protect(0x21000, 0x1000, kProtRead)) << "unmapped range";

  // Unmapping across several regions and gaps.
  m.memory.unmap(0x10000, 0x20000);
  EXPECT_TRUE(m.memory.is_free(0x10000, 0x20000));
  EXPECT_TRUE(m.memory.accessible(0x30000, 0x1000, kProtNone));
}

TEST_F(AddressSpaceTest, WordAccessorsAreLittleEndian) {
  ASSERT_EQ(m.memory.write_u32(0x10001, 0x11223344), 0);
  uint8_t bytes[4];
  ASSERT_EQ(m.memory.read(0x10001, bytes, 4), 0);
  EXPECT_EQ(bytes[0], 0x44);
  EXPECT_EQ(bytes[3], 0x11);
  uint32_t v = 0;
  EXPECT_EQ(m.memory.read_u32(0x10001, v), 0);
  EXPECT_EQ(v, 0x11223344u);
  EXPECT_EQ(m.memory.read_u32(0xfffffffe, v), KV_EFAULT);
}

} // namespace
