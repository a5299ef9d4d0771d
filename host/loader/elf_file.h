// An ELF32 ARM little-endian file, parsed and checked: every table the loader uses is verified
// to lie inside the file before anything reads it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kvrun {

struct Segment {
  uint32_t type, offset, vaddr, filesz, memsz, flags;
};

struct Section {
  std::string name;
  uint32_t type, flags, addr, offset, size, link, entsize;
};

struct Symbol {
  std::string name;
  uint32_t value, size;
  uint8_t bind, type, visibility;
  uint16_t shndx;
  bool defined() const { return shndx != 0; }
};

struct Relocation {
  uint32_t offset;
  uint32_t type;
  uint32_t symbol;
};

// An array of function pointers given by address and entry count.
struct FunctionArray {
  uint32_t vaddr = 0;
  uint32_t count = 0;
};

struct DynamicInfo {
  std::vector<std::string> needed;
  std::string soname;
  std::optional<uint32_t> init, fini;
  FunctionArray preinit_array, init_array, fini_array;
  std::vector<Symbol> symbols;        // .dynsym, index 0 included
  std::vector<Relocation> relocations; // DT_REL then DT_JMPREL, in file order
};

class ElfFile {
public:
  // Throws ElfError with a message that says what is wrong.
  static ElfFile parse(std::vector<uint8_t> bytes);
  static ElfFile read(const std::string &path); // also throws ElfError on I/O errors

  bool is_shared() const { return type_ == 3; } // ET_DYN
  uint32_t entry() const { return entry_; }
  const std::vector<Segment> &segments() const { return segments_; }
  const std::vector<Section> &sections() const { return sections_; }
  const std::optional<DynamicInfo> &dynamic() const { return dynamic_; }
  // .symtab when present, else empty.
  const std::vector<Symbol> &static_symbols() const { return static_symbols_; }
  std::span<const uint8_t> bytes() const { return bytes_; }
  // File bytes that back [vaddr, vaddr + size), if one loadable segment holds them all.
  std::optional<std::span<const uint8_t>> at_vaddr(uint32_t vaddr, uint32_t size) const;

private:
  void parse_header();
  void parse_segments();
  void parse_sections();
  void parse_dynamic();

  std::vector<uint8_t> bytes_;
  uint16_t type_ = 0;
  uint32_t entry_ = 0;
  uint32_t phoff_ = 0, shoff_ = 0;
  uint16_t phnum_ = 0, shnum_ = 0, shstrndx_ = 0, phentsize_ = 0, shentsize_ = 0;
  std::vector<Segment> segments_;
  std::vector<Section> sections_;
  std::optional<DynamicInfo> dynamic_;
  std::vector<Symbol> static_symbols_;
};

// Names of relocation types, for messages ("R_ARM_TLS_DTPMOD32"), or "" when unknown.
std::string_view relocation_name(uint32_t type);

} // namespace kvrun
