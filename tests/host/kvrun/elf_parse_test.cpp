// ELF parsing: real files from the guest build parse; broken ones give a clear error and never
// crash.
#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>

#include "loader/elf_error.h"
#include "loader/elf_file.h"
#include "loader/load_error.h"
#include "loader/loader.h"
#include "test_support.h"

using namespace kvrun;
using kvtest_host::loader_program;
using kvtest_host::read_file;

namespace {

std::string parse_error(std::vector<uint8_t> bytes) {
  try {
    ElfFile::parse(std::move(bytes));
  } catch (const ElfError &e) {
    return e.what();
  }
  return "";
}

template <typename T> void put(std::vector<uint8_t> &b, size_t offset, T value) {
  std::memcpy(b.data() + offset, &value, sizeof value);
}

// File offset of the dynamic entry with this tag's value.
size_t dynamic_value_offset(const std::vector<uint8_t> &bytes, int32_t tag) {
  ElfFile f = ElfFile::parse(bytes);
  for (auto &s : f.segments()) {
    if (s.type != PT_DYNAMIC)
      continue;
    for (uint32_t off = s.offset; off + 8 <= s.offset + s.filesz; off += 8) {
      int32_t t;
      std::memcpy(&t, bytes.data() + off, 4);
      if (t == tag)
        return off + 4;
    }
  }
  return 0;
}

TEST(ElfParse, DynamicProgramAndLibraries) {
  ElfFile program = ElfFile::read(loader_program("loader_reloc"));
  EXPECT_TRUE(program.is_shared());
  ASSERT_TRUE(program.dynamic());
  auto &needed = program.dynamic()->needed;
  EXPECT_EQ(needed.front(), "libloader_lib_reloc.so");
  EXPECT_NE(std::find(needed.begin(), needed.end(), "libc.so"), needed.end());
  std::set<uint32_t> types;
  for (auto &r : program.dynamic()->relocations)
    types.insert(r.type);
  // The relocation test covers every supported type only if the program really has them.
  EXPECT_EQ(types, (std::set<uint32_t>{R_ARM_ABS32, R_ARM_GLOB_DAT, R_ARM_JUMP_SLOT, R_ARM_RELATIVE}));
  EXPECT_NE(program.entry() & 1, 0u) << "main is Thumb code";

  ElfFile libc = ElfFile::read(std::string(KV_GUEST_LIB_DIR) + "/libc.so");
  ASSERT_TRUE(libc.dynamic());
  EXPECT_EQ(libc.dynamic()->soname, "libc.so");
  bool has_write = false;
  for (auto &s : libc.dynamic()->symbols)
    has_write |= s.name == "__syscall_write" && s.defined() && s.bind == STB_WEAK;
  EXPECT_TRUE(has_write);
}

TEST(ElfParse, StaticProgramHasSectionsAndNoDynamicSection) {
  ElfFile f = ElfFile::read(loader_program("loader_static"));
  EXPECT_FALSE(f.is_shared());
  EXPECT_FALSE(f.dynamic());
  bool init_array = false;
  for (auto &s : f.sections())
    init_array |= s.type == SHT_INIT_ARRAY && s.size >= 4;
  EXPECT_TRUE(init_array);
  EXPECT_FALSE(f.static_symbols().empty());
}

TEST(ElfParse, BrokenFilesGiveClearErrors) {
  const auto good = read_file(loader_program("loader_reloc"));
  ASSERT_GT(good.size(), 1000u);
  Elf32_Ehdr h;
  std::memcpy(&h, good.data(), sizeof h);
  // The first loadable segment's header.
  size_t load_ph = h.e_phoff;
  Elf32_Phdr first;
  for (;; load_ph += sizeof first) {
    std::memcpy(&first, good.data() + load_ph, sizeof first);
    if (first.p_type == PT_LOAD)
      break;
  }

  const struct {
    const char *name;
    std::function<void(std::vector<uint8_t> &)> damage;
    const char *message;
  } cases[] = {
      {"empty", [](auto &b) { b.clear(); }, "not an ELF file"},
      {"truncated header", [](auto &b) { b.resize(40); }, "truncated: 40 bytes"},
      {"wrong magic", [](auto &b) { b[1] = 'X'; }, "not an ELF file"},
      {"64-bit class", [](auto &b) { b[EI_CLASS] = ELFCLASS64; }, "not a 32-bit ELF file"},
      {"big-endian", [](auto &b) { b[EI_DATA] = ELFDATA2MSB; }, "not little-endian"},
      {"x86 machine", [](auto &b) { put<uint16_t>(b, 18, EM_386); }, "machine 3 is not ARM"},
      {"relocatable object", [](auto &b) { put<uint16_t>(b, 16, ET_REL); }, "neither an executable"},
      {"program headers past the end", [](auto &b) { put<uint32_t>(b, 28, 0xFFFFFF00); }, "program header table"},
      {"too many program headers", [](auto &b) { put<uint16_t>(b, 44, 0xFFFF); }, "program header table"},
      {"no program headers", [](auto &b) { put<uint16_t>(b, 44, 0); }, "no program headers"},
      {"odd program header size", [](auto &b) { put<uint16_t>(b, 42, 20); }, "program header size"},
      {"segment past the end", [&](auto &b) { put<uint32_t>(b, load_ph + 4, 0x7FFFFFFF); }, "outside the file"},
      {"segment wider than memory", [&](auto &b) { put<uint32_t>(b, load_ph + 16, 8); put<uint32_t>(b, load_ph + 20, 4); }, "impossible sizes"},
      {"section headers past the end", [](auto &b) { put<uint32_t>(b, 32, 0xFFFFFF00); }, "section header table"},
      {"bad section name table", [](auto &b) { put<uint16_t>(b, 50, 0x7FFF); }, "section name table"},
      {"string table outside", [&](auto &b) { put<uint32_t>(b, dynamic_value_offset(good, DT_STRTAB), 0x7FFF0000); }, "dynamic string table"},
      {"symbol table outside", [&](auto &b) { put<uint32_t>(b, dynamic_value_offset(good, DT_SYMTAB), 0x7FFF0000); }, "dynamic symbol table"},
      {"relocations outside", [&](auto &b) { put<uint32_t>(b, dynamic_value_offset(good, DT_REL), 0x7FFF0000); }, "relocation table"},
      {"needed name outside", [&](auto &b) { put<uint32_t>(b, dynamic_value_offset(good, DT_NEEDED), 0x7FFF); }, "needed library name offset"},
      {"RELA", [&](auto &b) { put<int32_t>(b, dynamic_value_offset(good, DT_RELSZ) - 4, DT_RELASZ); }, "RELA relocations"},
  };
  for (auto &c : cases) {
    SCOPED_TRACE(c.name);
    auto bytes = good;
    c.damage(bytes);
    std::string error = parse_error(bytes);
    EXPECT_NE(error.find(c.message), std::string::npos) << "got: " << error;
  }
}

TEST(ElfParse, TruncationAtAnyLengthIsAnErrorNotACrash) {
  const auto good = read_file(loader_program("loader_reloc"));
  size_t loadable_end = 0;
  ElfFile f = ElfFile::parse(good);
  for (auto &s : f.segments())
    if (s.type == PT_LOAD)
      loadable_end = std::max<size_t>(loadable_end, s.offset + s.filesz);
  for (size_t n = 0; n < loadable_end; n += 7) {
    auto bytes = std::vector<uint8_t>(good.begin(), good.begin() + n);
    EXPECT_NE(parse_error(bytes), "") << "truncated to " << n << " bytes";
  }
}

// Random damage to the headers and the dynamic data: each file either parses or is refused with
// an ElfError; the loader then either loads it or refuses it with a LoadError.
TEST(ElfParse, RandomDamageIsRefusedCleanly) {
  const auto good = read_file(loader_program("loader_status"));
  std::mt19937 rng(12345);
  kvtest_host::TempDir dir;
  std::string path = dir.path() + "/damaged";
  int refused = 0;
  for (int round = 0; round < 300; ++round) {
    auto bytes = good;
    int hits = 1 + static_cast<int>(rng() % 4);
    for (int i = 0; i < hits; ++i) {
      size_t at = rng() % std::min<size_t>(bytes.size(), 0x800);
      bytes[at] = static_cast<uint8_t>(rng());
    }
    if (parse_error(bytes) != "") {
      ++refused;
      continue;
    }
    kvtest_host::write_file(path, bytes);
    kvtest_host::GuestMemory m;
    try {
      load_program(path, {KV_GUEST_LIB_DIR}, m.memory);
    } catch (const LoadError &e) {
      EXPECT_EQ(e.status, kStatusCannotLoad);
      EXPECT_NE(std::string(e.what()), "");
    }
  }
  EXPECT_GT(refused, 0);
}

} // namespace
