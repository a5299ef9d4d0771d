// The mmap window: placement, zero fill, partial release, the cap.
#include <gtest/gtest.h>
#include <kv/abi.h>

#include "memory/protection.h"
#include "memory/region_allocator.h"
#include "test_support.h"

using namespace kvrun;

namespace {

constexpr uint32_t kLo = 0x60000000, kHi = 0x60100000; // a 1 MiB window
constexpr unsigned kRW = kProtRead | kProtWrite;

class RegionAllocatorTest : public ::testing::Test {
protected:
  bool zero(uint32_t addr, uint32_t size) {
    std::vector<uint8_t> b(size);
    if (m.memory.read(addr, b.data(), size))
      return false;
    for (auto v : b)
      if (v)
        return false;
    return true;
  }
  void fill(uint32_t addr, uint32_t size) {
    std::vector<uint8_t> b(size, 0x77);
    ASSERT_EQ(m.memory.write(addr, b.data(), size), 0);
  }
  bool mapped(uint32_t addr) { return m.memory.accessible(addr, 1, kProtNone); }

  kvtest_host::GuestMemory m;
  RegionAllocator alloc{m.memory, kLo, kHi, 256 * 1024};
};

TEST_F(RegionAllocatorTest, PlacesPageAlignedZeroFilledMappingsLowestFirst) {
  auto a = alloc.allocate(1, kRW);
  auto b = alloc.allocate(4096, kRW);
  auto c = alloc.allocate(4097, kRW);
  ASSERT_EQ(a.error, 0);
  ASSERT_EQ(b.error, 0);
  ASSERT_EQ(c.error, 0);
  EXPECT_EQ(a.addr, kLo);
  EXPECT_EQ(b.addr, kLo + 0x1000);
  EXPECT_EQ(c.addr, kLo + 0x2000);
  EXPECT_EQ(alloc.in_use(), 4u * 4096);
  EXPECT_TRUE(zero(c.addr, 0x2000));
  EXPECT_FALSE(mapped(c.addr + 0x2000));
  // Protections as asked.
  auto ro = alloc.allocate(100, kProtRead);
  EXPECT_TRUE(m.memory.accessible(ro.addr, 4096, kProtRead));
  EXPECT_FALSE(m.memory.accessible(ro.addr, 1, kProtWrite));
}

TEST_F(RegionAllocatorTest, ReleasesHeadsTailsAndMiddles) {
  auto r = alloc.allocate(8 * 4096, kRW);
  ASSERT_EQ(r.error, 0);
  fill(r.addr, 8 * 4096);
  EXPECT_EQ(alloc.release(r.addr, 4096), 0);                 // head
  EXPECT_EQ(alloc.release(r.addr + 7 * 4096, 4096), 0);      // tail
  EXPECT_EQ(alloc.release(r.addr + 3 * 4096, 2 * 4096), 0);  // middle
  const bool expected[8] = {false, true, true, false, false, true, true, false};
  for (int i = 0; i < 8; ++i)
    EXPECT_EQ(mapped(r.addr + i * 4096), expected[i]) << "page " << i;
  EXPECT_EQ(alloc.in_use(), 4u * 4096);
  // Releasing what is already gone, or a range over gaps, is fine.
  EXPECT_EQ(alloc.release(r.addr, 8 * 4096), 0);
  EXPECT_EQ(alloc.in_use(), 0u);
  // The lowest hole is reused, and it is zero again.
  auto again = alloc.allocate(2 * 4096, kRW);
  EXPECT_EQ(again.addr, r.addr);
  EXPECT_TRUE(zero(again.addr, 2 * 4096));
}

TEST_F(RegionAllocatorTest, FirstFitSkipsHolesTooSmall) {
  auto a = alloc.allocate(4096, kRW), b = alloc.allocate(4096, kRW), c = alloc.allocate(4096, kRW);
  (void)c;
  ASSERT_EQ(alloc.release(a.addr, 4096), 0);
  auto big = alloc.allocate(2 * 4096, kRW);
  EXPECT_EQ(big.addr, b.addr + 2 * 4096) << "a one-page hole cannot take two pages";
  auto small = alloc.allocate(4096, kRW);
  EXPECT_EQ(small.addr, a.addr);
}

TEST_F(RegionAllocatorTest, CapAndWindowGiveEnomem) {
  auto whole = alloc.allocate(256 * 1024, kRW);
  ASSERT_EQ(whole.error, 0);
  EXPECT_EQ(alloc.allocate(1, kRW).error, KV_ENOMEM);
  ASSERT_EQ(alloc.release(whole.addr + 4096, 4096), 0);
  EXPECT_EQ(alloc.allocate(1, kRW).error, 0) << "room again after a release";

  RegionAllocator unlimited(m.memory, 0x70000000, 0x70010000, UINT64_MAX);
  EXPECT_EQ(unlimited.allocate(0x10001, kRW).error, KV_ENOMEM) << "larger than the window";
  EXPECT_EQ(unlimited.allocate(0xFFFFFFFF, kRW).error, KV_ENOMEM);
  EXPECT_EQ(unlimited.allocate(0x10000, kRW).error, 0);
  EXPECT_EQ(unlimited.allocate(1, kRW).error, KV_ENOMEM) << "window full";
}

TEST_F(RegionAllocatorTest, BadArgumentsGiveEinval) {
  EXPECT_EQ(alloc.allocate(0, kRW).error, KV_EINVAL);
  EXPECT_EQ(alloc.release(kLo + 1, 4096), KV_EINVAL);
  EXPECT_EQ(alloc.release(kLo, 0), KV_EINVAL);
  EXPECT_EQ(alloc.release(0x10000, 4096), KV_EINVAL) << "outside the window";
  EXPECT_EQ(alloc.release(kHi - 4096, 8192), KV_EINVAL) << "past the window";
  EXPECT_EQ(alloc.allocate_at(kLo + 8, 4096, kRW).error, KV_EINVAL);
  EXPECT_EQ(alloc.allocate_at(0x10000, 4096, kRW).error, KV_EINVAL);
}

TEST_F(RegionAllocatorTest, FixedMappingReplacesWhatWasThere) {
  auto r = alloc.allocate(4 * 4096, kRW);
  fill(r.addr, 4 * 4096);
  auto f = alloc.allocate_at(r.addr + 4096, 2 * 4096, kProtRead);
  ASSERT_EQ(f.error, 0);
  EXPECT_EQ(f.addr, r.addr + 4096);
  EXPECT_TRUE(zero(f.addr, 2 * 4096));
  EXPECT_FALSE(m.memory.accessible(f.addr, 1, kProtWrite));
  EXPECT_EQ(alloc.in_use(), 4u * 4096) << "the replaced pages are not counted twice";
  uint8_t b = 0;
  m.memory.read(r.addr, &b, 1);
  EXPECT_EQ(b, 0x77) << "pages outside the fixed range keep their contents";
}

} // namespace
