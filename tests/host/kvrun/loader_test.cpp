// The loader end to end: guest programs and libraries from tests/guest/loader run through
// kvrun in-process.
#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <regex>

#include "loader/elf_file.h"
#include "test_support.h"

using namespace kvtest_host;

namespace {

const std::string kLibDir = KV_LOADER_PROGRAMS;

Captured run_loader(const std::string &program, std::vector<std::string> args = {}) {
  std::vector<std::string> all{"-L", kLibDir, loader_program(program)};
  all.insert(all.end(), args.begin(), args.end());
  return run_kvrun(all);
}

TEST(Loader, RelocationsOfEachTypeAndWeakUndefined) {
  Captured c = run_loader("loader_reloc");
  EXPECT_EQ(c.status, 0) << c.out << c.err;
  auto lines = lines_of(c.out);
  EXPECT_EQ(lines.size(), 8u);
  for (auto &l : lines)
    EXPECT_EQ(l.rfind("ok ", 0), 0u) << l;
}

TEST(Loader, ProgramInterposesLibrariesAndFirstLibraryBeatsSecond) {
  Captured c = run_loader("loader_interpose");
  EXPECT_EQ(c.status, 0) << c.err;
  EXPECT_EQ(lines_of(c.out), (std::vector<std::string>{
                                 "who=program",
                                 "first_calls_who=program",
                                 "both=first",
                                 "first_calls_both=first",
                                 "second_calls_both=first",
                             }));
}

TEST(Loader, InitInDependencyOrderFiniInReverse) {
  Captured c = run_loader("loader_init_order");
  EXPECT_EQ(c.status, 0) << c.err;
  EXPECT_EQ(lines_of(c.out), (std::vector<std::string>{
                                 "preinit program", "dt_init b",   "init b 1",  "init b 2",
                                 "dt_init a",       "init a 1",    "init a 2",  "init program",
                                 "main",            "fini program", "fini a 2", "fini a 1",
                                 "dt_fini a",       "fini b 2",    "fini b 1",  "dt_fini b",
                             }));
}

TEST(Loader, StaticProgramRunsItsArraysFromSectionHeaders) {
  Captured c = run_kvrun({loader_program("loader_static")});
  EXPECT_EQ(c.status, 5) << c.err;
  EXPECT_EQ(lines_of(c.out), (std::vector<std::string>{"static init", "static main", "static fini"}));
}

TEST(Loader, MainsReturnValueIsTheStatusAndArgvReachesIt) {
  const struct {
    const char *arg;
    int status;
  } cases[] = {{"0", 0}, {"7", 7}, {"255", 255}, {"256", 0}, {"300", 44}};
  for (auto &c : cases) {
    Captured r = run_loader("loader_status", {c.arg, "two words", ""});
    EXPECT_EQ(r.status, c.status) << c.arg;
    EXPECT_EQ(lines_of(r.out), (std::vector<std::string>{
                                   "arg=" + loader_program("loader_status"),
                                   std::string("arg=") + c.arg,
                                   "arg=two words",
                                   "arg=",
                                   "argv ends with null",
                               }));
  }
}

TEST(Loader, ExitCallEndsAtOnceWithoutFinalisation) {
  Captured c = run_loader("loader_exit");
  EXPECT_EQ(c.status, 3);
  EXPECT_EQ(c.out, "before exit\n");
}

TEST(Loader, MissingLibraryIsAClearErrorWithStatus126) {
  Captured c = run_loader("loader_missing");
  EXPECT_EQ(c.status, 126);
  EXPECT_EQ(c.err, "kvrun: libloader_lib_gone.so (needed by loader_missing) not found in the "
                   "library path: " + kLibDir + ", " KV_GUEST_LIB_DIR "\n");
  EXPECT_EQ(c.out, "");
  // Found once its directory is on the path.
  Captured found = run_kvrun({"-L", kLibDir + "/hidden", "-L", kLibDir, loader_program("loader_missing")});
  EXPECT_EQ(found.status, 1) << found.err;
}

// A copy of a built program with its bytes changed by `patch`, in a directory of its own.
struct PatchedProgram {
  TempDir dir;
  std::string path;
  PatchedProgram(const std::string &name, const std::function<void(std::vector<uint8_t> &, const kvrun::ElfFile &)> &patch) {
    auto bytes = read_file(loader_program(name));
    kvrun::ElfFile elf = kvrun::ElfFile::parse(bytes);
    patch(bytes, elf);
    path = dir.path() + "/" + name;
    write_file(path, bytes);
  }
};

size_t file_offset(const kvrun::ElfFile &elf, const std::vector<uint8_t> &bytes, uint32_t vaddr) {
  auto span = elf.at_vaddr(vaddr, 1);
  return span ? static_cast<size_t>(span->data() - elf.bytes().data()) : bytes.size();
}

TEST(Loader, UnknownRelocationTypeIsAClearError) {
  PatchedProgram p("loader_reloc", [](std::vector<uint8_t> &bytes, const kvrun::ElfFile &elf) {
    // The first entry of the DT_REL table becomes a TLS module relocation.
    uint32_t rel = 0;
    for (auto &s : elf.segments())
      if (s.type == PT_DYNAMIC)
        for (uint32_t off = s.offset; off + 8 <= s.offset + s.filesz; off += 8) {
          int32_t tag;
          std::memcpy(&tag, bytes.data() + off, 4);
          if (tag == DT_REL)
            std::memcpy(&rel, bytes.data() + off + 4, 4);
        }
    ASSERT_NE(rel, 0u);
    bytes[file_offset(elf, bytes, rel) + 4] = R_ARM_TLS_DTPMOD32;
  });
  Captured c = run_kvrun({"-L", kLibDir, p.path});
  EXPECT_EQ(c.status, 126);
  EXPECT_NE(c.err.find("kvrun: loader_reloc: unsupported relocation type 17 (R_ARM_TLS_DTPMOD32) at 0x"),
            std::string::npos) << c.err;
  EXPECT_EQ(c.out, "");
}

TEST(Loader, StrongUndefinedSymbolIsAClearError) {
  PatchedProgram p("loader_reloc", [](std::vector<uint8_t> &bytes, const kvrun::ElfFile &) {
    // Rename the program's reference to lib_add: no library defines lib_adX.
    const char name[] = "lib_add";
    auto at = std::search(bytes.begin(), bytes.end(), name, name + sizeof name);
    ASSERT_NE(at, bytes.end());
    at[6] = 'X';
  });
  Captured c = run_kvrun({"-L", kLibDir, p.path});
  EXPECT_EQ(c.status, 126);
  EXPECT_NE(c.err.find("kvrun: loader_reloc: undefined symbol lib_adX"), std::string::npos) << c.err;
}

TEST(Loader, GuestFaultsAreOneLineReportsWithTheSymbol) {
  const struct {
    const char *arg;
    int status;
    const char *report;
  } cases[] = {
      {"read", 139,
       R"(kvrun: fault: read from unmapped address 0x00000000 at pc 0x[0-9a-f]{8} \(crash_here\+0x0 in loader_crash\))"},
      {"write", 139,
       R"(kvrun: fault: write to protected address 0x[0-9a-f]{8} at pc 0x[0-9a-f]{8} \(write_here\+0x2 in loader_crash\))"},
      {"jump", 139,
       R"(kvrun: fault: instruction fetch from unmapped address 0x00000000 at pc 0x00000000 \(unknown\), lr 0x[0-9a-f]{8} \(main\+0x[0-9a-f]+ in loader_crash\))"},
      {"undefined", 132,
       R"(kvrun: fault: undefined instruction 0x0000de01 at pc 0x[0-9a-f]{8} \(undefined_here\+0x0 in loader_crash\))"},
  };
  for (auto &c : cases) {
    Captured r = run_loader("loader_crash", {c.arg});
    EXPECT_EQ(r.status, c.status) << c.arg;
    auto lines = lines_of(r.err);
    ASSERT_EQ(lines.size(), 1u) << r.err;
    EXPECT_TRUE(std::regex_match(lines[0], std::regex(c.report))) << lines[0];
    EXPECT_EQ(r.out, "");
  }
}

TEST(Loader, ProgramsThatCannotRun) {
  TempDir dir;
  write_file(dir.path() + "/text", {'h', 'e', 'l', 'l', 'o', '\n'});
  const struct {
    std::string program;
    int status;
    std::string error;
  } cases[] = {
      {dir.path() + "/absent", 127, "kvrun: " + dir.path() + "/absent: No such file or directory\n"},
      {dir.path() + "/text", 126, "kvrun: " + dir.path() + "/text: not an ELF file\n"},
      {dir.path(), 126, "kvrun: " + dir.path() + ": not a regular file\n"},
      {std::string(KV_GUEST_LIB_DIR) + "/libc.a", 126, "kvrun: " KV_GUEST_LIB_DIR "/libc.a: not an ELF file\n"},
  };
  for (auto &c : cases) {
    Captured r = run_kvrun({c.program});
    EXPECT_EQ(r.status, c.status) << c.program;
    EXPECT_EQ(r.err, c.error);
  }
}

} // namespace
