// mmap of files through the dispatcher: private copies, shared pages that are the file's own,
// pages past the end of the file, and the descriptors that cannot be mapped.
#include <gtest/gtest.h>
#include <kv/abi.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "memory/layout.h"
#include "memory/protection.h"
#include "memory/region_allocator.h"
#include "services/dispatcher.h"
#include "services/process.h"
#include "test_support.h"

using namespace kvrun;

namespace {

constexpr uint32_t kData = 0x10000; // read-write page
constexpr uint32_t kCell = 0x10ff0;
constexpr uint32_t kPath = 0x10800;
constexpr uint32_t kFailed = 0xFFFFFFFF;
constexpr uint32_t kPage = layout::kPageSize;
constexpr uint32_t kRW = KV_PROT_READ | KV_PROT_WRITE;

class FileMappingTest : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(m.memory.map(kData, kPage, kProtRead | kProtWrite));
    process.root = dir.path();
    ASSERT_EQ(call(KV_SYS_set_errno_addr, kCell).value, 0u);
  }

  Outcome call(int32_t number, uint32_t w1 = 0, uint32_t w2 = 0, uint32_t w3 = 0, uint32_t w4 = 0,
               uint32_t w5 = 0, uint32_t w6 = 0) {
    m.memory.write_u32(kCell, 0);
    return dispatch(process, Request{number, {w1, w2, w3, w4, w5, w6, 0}});
  }
  int err() {
    uint32_t v = 0;
    m.memory.read_u32(kCell, v);
    return static_cast<int>(v);
  }
  uint32_t open(const std::string &path, uint32_t flags) {
    m.memory.poke(kPath, path.c_str(), static_cast<uint32_t>(path.size() + 1));
    return call(KV_SYS_open, kPath, flags, 0644).value;
  }
  uint32_t map(uint32_t length, uint32_t prot, uint32_t flags, uint32_t fd, uint32_t offset = 0,
               uint32_t addr = 0) {
    return call(KV_SYS_mmap, addr, length, prot, flags, fd, offset).value;
  }
  std::string guest(uint32_t addr, uint32_t n) {
    std::string s(n, '?');
    EXPECT_EQ(m.memory.read(addr, s.data(), n), 0);
    return s;
  }
  void store(uint32_t addr, const std::string &s) {
    ASSERT_EQ(m.memory.write(addr, s.data(), static_cast<uint32_t>(s.size())), 0);
  }
  std::string host(const std::string &name) { return dir.path() + "/" + name; }
  std::string file(const std::string &name) {
    auto b = kvtest_host::read_file(host(name));
    return {b.begin(), b.end()};
  }
  // Three pages: 'a' * 4096, 'b' * 4096, then "tail".
  void make_pages(const std::string &name) {
    std::string s = std::string(kPage, 'a') + std::string(kPage, 'b') + "tail";
    kvtest_host::write_file(host(name), {s.begin(), s.end()});
  }

  kvtest_host::TempDir dir;
  kvtest_host::GuestMemory m;
  RegionAllocator mappings{m.memory, layout::kMmapBase, layout::kMmapEnd, 1 << 20};
  Process process{m.memory, mappings};
};

TEST_F(FileMappingTest, PrivateMappingIsACopyFromTheOffset) {
  make_pages("p");
  uint32_t fd = open("p", KV_O_RDONLY);
  uint32_t a = map(2 * kPage, kRW, KV_MAP_PRIVATE, fd, kPage);
  ASSERT_NE(a, kFailed) << err();
  EXPECT_EQ(guest(a, 3), "bbb");
  EXPECT_EQ(guest(a + kPage, 5), std::string("tail\0", 5));
  EXPECT_EQ(guest(a + 2 * kPage - 4, 4), std::string(4, '\0')) << "the rest of the last page";
  // The guest's stores stay in its memory; later changes to the file do not show.
  store(a, "XY");
  ASSERT_EQ(::truncate(host("p").c_str(), kPage), 0);
  EXPECT_EQ(file("p"), std::string(kPage, 'a'));
  EXPECT_EQ(guest(a, 3), "XYb");
  EXPECT_EQ(guest(a + kPage, 4), "tail");
  EXPECT_EQ(call(KV_SYS_munmap, a, 2 * kPage).value, 0u);
  EXPECT_FALSE(m.memory.accessible(a, 1, kProtNone));
}

TEST_F(FileMappingTest, SharedWritableMappingIsTheFile) {
  make_pages("s");
  uint32_t fd = open("s", KV_O_RDWR);
  uint32_t a = map(3 * kPage, kRW, KV_MAP_SHARED, fd, 0);
  ASSERT_NE(a, kFailed) << err();
  EXPECT_EQ(guest(a + 2 * kPage, 6), std::string("tail\0\0", 6));
  // Guest stores are file contents at once, and file writes are guest memory at once.
  store(a + 1, "12");
  store(a + 2 * kPage, "TA");
  std::string f = file("s");
  EXPECT_EQ(f.substr(0, 4), "a12a");
  EXPECT_EQ(f.substr(2 * kPage), "TAil") << "and the file does not grow";
  int h = ::open(host("s").c_str(), O_WRONLY);
  ASSERT_GE(h, 0);
  ASSERT_EQ(::pwrite(h, "zz", 2, kPage + 10), 2);
  ::close(h);
  EXPECT_EQ(guest(a + kPage + 9, 4), "bzzb");

  // Closing the descriptor keeps the mapping; so does unmapping another page of it.
  EXPECT_EQ(call(KV_SYS_close, fd).value, 0u);
  EXPECT_EQ(call(KV_SYS_munmap, a, kPage).value, 0u);
  EXPECT_FALSE(m.memory.accessible(a, 1, kProtNone));
  store(a + kPage, "Q");
  store(a + 2 * kPage + 3, "L");
  f = file("s");
  EXPECT_EQ(f[kPage], 'Q');
  EXPECT_EQ(f.substr(2 * kPage), "TAiL");
  EXPECT_EQ(call(KV_SYS_munmap, a + kPage, 2 * kPage).value, 0u);
  EXPECT_EQ(mappings.in_use(), 0u);
  EXPECT_EQ(file("s").substr(0, 4), "a12a") << "unmapping keeps what was written";
}

TEST_F(FileMappingTest, SharedMappingsOfOneFileSeeEachOther) {
  make_pages("two");
  uint32_t fd = open("two", KV_O_RDWR);
  uint32_t a = map(kPage, kRW, KV_MAP_SHARED, fd, kPage);
  uint32_t b = map(kPage, KV_PROT_READ, KV_MAP_SHARED, fd, kPage);
  ASSERT_NE(a, kFailed);
  ASSERT_NE(b, kFailed);
  store(a + 100, "seen");
  EXPECT_EQ(guest(b + 100, 4), "seen");
  EXPECT_FALSE(m.memory.accessible(b, 1, kProtWrite));
  // A fixed shared mapping replaces what was there.
  uint32_t c = map(kPage, KV_PROT_READ, KV_MAP_SHARED | KV_MAP_FIXED, fd, 0, b);
  EXPECT_EQ(c, b);
  EXPECT_EQ(guest(c, 2), "aa");
}

TEST_F(FileMappingTest, PagesPastTheEndReadAsZeroAndLeaveTheFileAlone) {
  kvtest_host::write_file(host("short"), {'s', 'h'});
  uint32_t fd = open("short", KV_O_RDWR);
  uint32_t a = map(3 * kPage, kRW, KV_MAP_SHARED, fd, 0);
  ASSERT_NE(a, kFailed) << err();
  EXPECT_EQ(guest(a, 3), std::string("sh\0", 3));
  EXPECT_EQ(guest(a + kPage, 4), std::string(4, '\0')) << "a page wholly past the end";
  store(a + 2 * kPage, "lost");
  EXPECT_EQ(guest(a + 2 * kPage, 4), "lost");
  EXPECT_EQ(file("short"), "sh");

  // The file cut under a live mapping, by the guest or by anyone else.
  make_pages("cut");
  uint32_t cut = open("cut", KV_O_RDWR);
  uint32_t b = map(3 * kPage, kRW, KV_MAP_SHARED, cut, 0);
  ASSERT_NE(b, kFailed);
  EXPECT_EQ(call(KV_SYS_ftruncate, cut, 10).value, 0u);
  EXPECT_EQ(guest(b + 2 * kPage, 4), std::string(4, '\0'));
  ASSERT_EQ(::truncate(host("cut").c_str(), 0), 0);
  EXPECT_EQ(guest(b, 4), std::string(4, '\0'));
  store(b + kPage, "x");
  EXPECT_EQ(file("cut"), "");
  EXPECT_EQ(call(KV_SYS_munmap, b, 3 * kPage).value, 0u);
}

TEST_F(FileMappingTest, WhatCannotBeMapped) {
  make_pages("f");
  std::string sub = host("sub");
  ASSERT_EQ(::mkdir(sub.c_str(), 0755), 0);
  uint32_t ro = open("f", KV_O_RDONLY), wo = open("f", KV_O_WRONLY), rw = open("f", KV_O_RDWR);
  uint32_t dirfd = open("sub", KV_O_RDONLY);
  int pair[2];
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
  process.descriptors.set(9, {pair[0], false, true});
  ::close(pair[1]);
  const struct {
    const char *what;
    uint32_t prot, flags, fd, offset;
    int error; // 0: maps
  } cases[] = {
      {"read-only, private, writable", kRW, KV_MAP_PRIVATE, ro, 0, 0},
      {"read-only, shared, read-only", KV_PROT_READ, KV_MAP_SHARED, ro, 0, 0},
      {"read-only, shared, writable", kRW, KV_MAP_SHARED, ro, 0, KV_EACCES},
      {"write-only, private", KV_PROT_READ, KV_MAP_PRIVATE, wo, 0, KV_EACCES},
      {"write-only, shared", kRW, KV_MAP_SHARED, wo, 0, KV_EACCES},
      {"read-write, shared, offset past the end", kRW, KV_MAP_SHARED, rw, 16 * kPage, 0},
      {"unaligned offset", KV_PROT_READ, KV_MAP_PRIVATE, rw, 100, KV_EINVAL},
      {"negative offset", KV_PROT_READ, KV_MAP_PRIVATE, rw, 0x80000000u, KV_EINVAL},
      {"shared and private", KV_PROT_READ, KV_MAP_SHARED | KV_MAP_PRIVATE, rw, 0, KV_EINVAL},
      {"neither", KV_PROT_READ, 0, rw, 0, KV_EINVAL},
      {"the console", KV_PROT_READ, KV_MAP_PRIVATE, 1, 0, KV_ENODEV},
      {"the console, shared", kRW, KV_MAP_SHARED, 0, 0, KV_ENODEV},
      {"a directory", KV_PROT_READ, KV_MAP_PRIVATE, dirfd, 0, KV_ENODEV},
      {"a socket", KV_PROT_READ, KV_MAP_SHARED, 9, 0, KV_ENODEV},
      {"a closed descriptor", KV_PROT_READ, KV_MAP_PRIVATE, 12, 0, KV_EBADF},
      {"descriptor -1 without anonymous", KV_PROT_READ, KV_MAP_PRIVATE, kFailed, 0, KV_EBADF},
  };
  for (auto &c : cases) {
    uint32_t a = map(kPage, c.prot, c.flags, c.fd, c.offset);
    if (c.error) {
      EXPECT_EQ(a, kFailed) << c.what;
      EXPECT_EQ(err(), c.error) << c.what;
    } else {
      ASSERT_NE(a, kFailed) << c.what << ": " << err();
      EXPECT_EQ(call(KV_SYS_munmap, a, kPage).value, 0u);
    }
  }
  EXPECT_EQ(mappings.in_use(), 0u);
}

TEST_F(FileMappingTest, TheCapCountsFileMappingsAndAFailureKeepsTheOldPages) {
  make_pages("cap");
  uint32_t fd = open("cap", KV_O_RDWR);
  EXPECT_EQ(map(2u << 20, kRW, KV_MAP_SHARED, fd), kFailed);
  EXPECT_EQ(err(), KV_ENOMEM);
  EXPECT_EQ(map(2u << 20, kRW, KV_MAP_PRIVATE, fd), kFailed);
  EXPECT_EQ(err(), KV_ENOMEM);
  EXPECT_EQ(mappings.in_use(), 0u);
  // A fixed private mapping of a descriptor that cannot be read leaves the old pages alone.
  uint32_t a = map(kPage, kRW, KV_MAP_SHARED, fd);
  ASSERT_NE(a, kFailed);
  uint32_t wo = open("cap", KV_O_WRONLY);
  EXPECT_EQ(map(kPage, kRW, KV_MAP_PRIVATE | KV_MAP_FIXED, wo, 0, a), kFailed);
  EXPECT_EQ(guest(a, 2), "aa");
}

} // namespace
