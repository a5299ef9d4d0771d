// A process with a small guest address space, its errno and h_errno cells registered, and a
// sandbox root of its own: the setting in which single services are driven through the
// dispatcher.
#pragma once

#include <gtest/gtest.h>
#include <kv/abi.h>

#include <cstring>
#include <string>
#include <vector>

#include "memory/layout.h"
#include "memory/protection.h"
#include "memory/region_allocator.h"
#include "services/dispatcher.h"
#include "services/process.h"
#include "test_support.h"

namespace kvtest_host {

class ServiceFixture : public ::testing::Test {
protected:
  static constexpr uint32_t kData = 0x10000;     // read-write, four pages
  static constexpr uint32_t kReadOnly = 0x14000; // read-only page after them
  static constexpr uint32_t kUnmapped = 0x20000;
  static constexpr uint32_t kCell = 0x10ff0;  // errno
  static constexpr uint32_t kHCell = 0x10ff8; // h_errno
  static constexpr uint32_t kFailed = 0xFFFFFFFF;
  static constexpr uint8_t kGuard = 0xEE;

  void SetUp() override {
    ASSERT_TRUE(m.memory.map(kData, 0x4000, kvrun::kProtRead | kvrun::kProtWrite));
    ASSERT_TRUE(m.memory.map(kReadOnly, 0x1000, kvrun::kProtRead));
    process.root = dir.path();
    ASSERT_EQ(call(KV_SYS_set_errno_addr, kCell).value, 0u);
    ASSERT_EQ(call(KV_SYS_set_h_errno_addr, kHCell).value, 0u);
  }

  // One request, with both cells cleared first so that a stale value cannot pass for a new one.
  kvrun::Outcome call(int32_t number, uint32_t w1 = 0, uint32_t w2 = 0, uint32_t w3 = 0,
                      uint32_t w4 = 0, uint32_t w5 = 0, uint32_t w6 = 0, uint32_t w7 = 0) {
    m.memory.write_u32(kCell, 0);
    m.memory.write_u32(kHCell, 0);
    return kvrun::dispatch(process, kvrun::Request{number, {w1, w2, w3, w4, w5, w6, w7}});
  }
  uint32_t word(uint32_t addr) {
    uint32_t v = 0xBADBAD;
    m.memory.read_u32(addr, v);
    return v;
  }
  int err() { return static_cast<int>(word(kCell)); }
  int herr() { return static_cast<int>(word(kHCell)); }
  void put(uint32_t addr, const void *data, uint32_t size) {
    ASSERT_TRUE(m.memory.poke(addr, data, size));
  }
  void put_string(uint32_t addr, const std::string &s) {
    put(addr, s.c_str(), static_cast<uint32_t>(s.size() + 1));
  }
  void put_word(uint32_t addr, uint32_t v) { put(addr, &v, 4); }
  std::vector<uint8_t> bytes(uint32_t addr, uint32_t size) {
    std::vector<uint8_t> v(size);
    EXPECT_EQ(m.memory.read(addr, v.data(), size), 0) << std::hex << addr;
    return v;
  }
  std::string string_at(uint32_t addr) {
    std::string s;
    m.memory.read_string(addr, 4096, s);
    return s;
  }
  // Fills [addr, addr + size) with guard bytes.
  void guard(uint32_t addr, uint32_t size) {
    std::vector<uint8_t> g(size, kGuard);
    put(addr, g.data(), size);
  }
  bool guarded(uint32_t addr, uint32_t size) {
    for (uint8_t b : bytes(addr, size))
      if (b != kGuard)
        return false;
    return true;
  }

  TempDir dir;
  GuestMemory m;
  kvrun::RegionAllocator mappings{m.memory, kvrun::layout::kMmapBase, kvrun::layout::kMmapEnd,
                                  64 * 1024};
  kvrun::Process process{m.memory, mappings};
};

} // namespace kvtest_host
