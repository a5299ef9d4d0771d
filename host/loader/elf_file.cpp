#include "loader/elf_file.h"

#include <elf.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "loader/elf_error.h"

namespace kvrun {
namespace {

std::string hex(uint64_t v) {
  char b[24];
  snprintf(b, sizeof b, "0x%llx", static_cast<unsigned long long>(v));
  return b;
}

bool within(uint64_t offset, uint64_t size, uint64_t limit) {
  return offset <= limit && size <= limit - offset;
}

template <typename T> T load(std::span<const uint8_t> bytes, uint64_t offset) {
  T v;
  std::memcpy(&v, bytes.data() + offset, sizeof v);
  return v;
}

// A NUL-terminated name at `offset` in a string table, or an error naming `what`.
std::string name_in(std::span<const uint8_t> table, uint32_t offset, const char *what) {
  if (offset >= table.size())
    throw ElfError(std::string(what) + " name offset " + hex(offset) + " outside its string table");
  auto begin = table.begin() + offset;
  auto end = std::find(begin, table.end(), 0);
  if (end == table.end())
    throw ElfError(std::string(what) + " name at " + hex(offset) + " is not terminated");
  return std::string(begin, end);
}

Symbol make_symbol(const Elf32_Sym &s, std::span<const uint8_t> strings) {
  Symbol sym;
  sym.name = name_in(strings, s.st_name, "symbol");
  sym.value = s.st_value;
  sym.size = s.st_size;
  sym.bind = ELF32_ST_BIND(s.st_info);
  sym.type = ELF32_ST_TYPE(s.st_info);
  sym.visibility = ELF32_ST_VISIBILITY(s.st_other);
  sym.shndx = s.st_shndx;
  return sym;
}

} // namespace

ElfFile ElfFile::read(const std::string &path) {
  std::ifstream in(path, std::ios::binary);
  if (!in)
    throw ElfError(std::strerror(errno));
  std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad())
    throw ElfError("read error");
  return parse(std::move(bytes));
}

ElfFile ElfFile::parse(std::vector<uint8_t> bytes) {
  ElfFile f;
  f.bytes_ = std::move(bytes);
  f.parse_header();
  f.parse_segments();
  f.parse_sections();
  f.parse_dynamic();
  return f;
}

void ElfFile::parse_header() {
  if (bytes_.size() < 4 || std::memcmp(bytes_.data(), ELFMAG, SELFMAG) != 0)
    throw ElfError("not an ELF file");
  if (bytes_.size() < sizeof(Elf32_Ehdr))
    throw ElfError("truncated: " + std::to_string(bytes_.size()) +
                   " bytes, the ELF header alone needs " + std::to_string(sizeof(Elf32_Ehdr)));
  auto h = load<Elf32_Ehdr>(bytes_, 0);
  if (h.e_ident[EI_CLASS] != ELFCLASS32)
    throw ElfError("not a 32-bit ELF file (class " + std::to_string(h.e_ident[EI_CLASS]) + ")");
  if (h.e_ident[EI_DATA] != ELFDATA2LSB)
    throw ElfError("not little-endian (data encoding " + std::to_string(h.e_ident[EI_DATA]) + ")");
  if (h.e_machine != EM_ARM)
    throw ElfError("machine " + std::to_string(h.e_machine) + " is not ARM (" +
                   std::to_string(EM_ARM) + ")");
  if (h.e_type != ET_EXEC && h.e_type != ET_DYN)
    throw ElfError("type " + std::to_string(h.e_type) +
                   " is neither an executable nor a shared object");
  type_ = h.e_type;
  entry_ = h.e_entry;
  phoff_ = h.e_phoff;
  phnum_ = h.e_phnum;
  phentsize_ = h.e_phentsize;
  shoff_ = h.e_shoff;
  shnum_ = h.e_shnum;
  shentsize_ = h.e_shentsize;
  shstrndx_ = h.e_shstrndx;
}

void ElfFile::parse_segments() {
  if (phnum_ == 0)
    throw ElfError("no program headers");
  if (phentsize_ != sizeof(Elf32_Phdr))
    throw ElfError("program header size " + std::to_string(phentsize_) + ", expected " +
                   std::to_string(sizeof(Elf32_Phdr)));
  if (!within(phoff_, uint64_t{phnum_} * sizeof(Elf32_Phdr), bytes_.size()))
    throw ElfError("program header table (offset " + hex(phoff_) + ", " + std::to_string(phnum_) +
                   " entries) outside the file");
  bool loadable = false;
  for (unsigned i = 0; i < phnum_; ++i) {
    auto p = load<Elf32_Phdr>(bytes_, phoff_ + uint64_t{i} * sizeof(Elf32_Phdr));
    Segment s{p.p_type, p.p_offset, p.p_vaddr, p.p_filesz, p.p_memsz, p.p_flags};
    if (s.type == PT_LOAD || s.type == PT_DYNAMIC) {
      if (!within(s.offset, s.filesz, bytes_.size()))
        throw ElfError("segment " + std::to_string(i) + " (offset " + hex(s.offset) + ", " +
                       std::to_string(s.filesz) + " bytes) outside the file");
      if (s.filesz > s.memsz || uint64_t{s.vaddr} + s.memsz > (uint64_t{1} << 32))
        throw ElfError("segment " + std::to_string(i) + " has impossible sizes");
    }
    loadable |= s.type == PT_LOAD && s.memsz > 0;
    segments_.push_back(s);
  }
  if (!loadable)
    throw ElfError("no loadable segment");
}

void ElfFile::parse_sections() {
  if (shoff_ == 0 || shnum_ == 0)
    return;
  if (shentsize_ != sizeof(Elf32_Shdr))
    throw ElfError("section header size " + std::to_string(shentsize_) + ", expected " +
                   std::to_string(sizeof(Elf32_Shdr)));
  if (!within(shoff_, uint64_t{shnum_} * sizeof(Elf32_Shdr), bytes_.size()))
    throw ElfError("section header table (offset " + hex(shoff_) + ", " + std::to_string(shnum_) +
                   " entries) outside the file");
  std::vector<Elf32_Shdr> raw(shnum_);
  for (unsigned i = 0; i < shnum_; ++i) {
    raw[i] = load<Elf32_Shdr>(bytes_, shoff_ + uint64_t{i} * sizeof(Elf32_Shdr));
    if (raw[i].sh_type != SHT_NOBITS && !within(raw[i].sh_offset, raw[i].sh_size, bytes_.size()))
      throw ElfError("section " + std::to_string(i) + " (offset " + hex(raw[i].sh_offset) + ", " +
                     std::to_string(raw[i].sh_size) + " bytes) outside the file");
  }
  std::span<const uint8_t> names;
  if (shstrndx_ != SHN_UNDEF) {
    if (shstrndx_ >= shnum_ || raw[shstrndx_].sh_type != SHT_STRTAB)
      throw ElfError("section name table index " + std::to_string(shstrndx_) + " is not a string table");
    names = std::span(bytes_).subspan(raw[shstrndx_].sh_offset, raw[shstrndx_].sh_size);
  }
  for (auto &r : raw)
    sections_.push_back(Section{names.empty() ? std::string() : name_in(names, r.sh_name, "section"),
                                r.sh_type, r.sh_flags, r.sh_addr, r.sh_offset, r.sh_size,
                                r.sh_link, r.sh_entsize});
  for (auto &s : sections_) {
    if (s.type != SHT_SYMTAB)
      continue;
    if (s.link >= sections_.size() || sections_[s.link].type != SHT_STRTAB)
      throw ElfError("symbol table " + s.name + " has no string table");
    auto strings = std::span(bytes_).subspan(sections_[s.link].offset, sections_[s.link].size);
    for (uint32_t off = 0; off + sizeof(Elf32_Sym) <= s.size; off += sizeof(Elf32_Sym))
      static_symbols_.push_back(make_symbol(load<Elf32_Sym>(bytes_, s.offset + off), strings));
    break;
  }
}

std::optional<std::span<const uint8_t>> ElfFile::at_vaddr(uint32_t vaddr, uint32_t size) const {
  for (auto &s : segments_) {
    if (s.type != PT_LOAD || vaddr < s.vaddr)
      continue;
    uint64_t off = uint64_t{vaddr} - s.vaddr;
    if (within(off, size, s.filesz))
      return std::span(bytes_).subspan(s.offset + off, size);
  }
  return std::nullopt;
}

void ElfFile::parse_dynamic() {
  const Segment *dyn = nullptr;
  for (auto &s : segments_)
    if (s.type == PT_DYNAMIC)
      dyn = &s;
  if (!dyn)
    return;
  DynamicInfo info;
  std::vector<uint32_t> needed_offsets;
  uint32_t strtab = 0, strsz = 0, symtab = 0, syment = sizeof(Elf32_Sym), hash = 0, gnu_hash = 0;
  uint32_t rel = 0, relsz = 0, relent = sizeof(Elf32_Rel), jmprel = 0, pltrelsz = 0,
           pltrel = DT_REL;
  std::optional<uint32_t> soname;
  bool has_rela = false;
  bool terminated = false;
  for (uint32_t off = 0; off + sizeof(Elf32_Dyn) <= dyn->filesz; off += sizeof(Elf32_Dyn)) {
    auto d = load<Elf32_Dyn>(bytes_, dyn->offset + off);
    uint32_t v = d.d_un.d_val;
    switch (d.d_tag) {
    case DT_NULL: terminated = true; break;
    case DT_NEEDED: needed_offsets.push_back(v); break;
    case DT_SONAME: soname = v; break;
    case DT_STRTAB: strtab = v; break;
    case DT_STRSZ: strsz = v; break;
    case DT_SYMTAB: symtab = v; break;
    case DT_SYMENT: syment = v; break;
    case DT_HASH: hash = v; break;
    case DT_GNU_HASH: gnu_hash = v; break;
    case DT_REL: rel = v; break;
    case DT_RELSZ: relsz = v; break;
    case DT_RELENT: relent = v; break;
    case DT_JMPREL: jmprel = v; break;
    case DT_PLTRELSZ: pltrelsz = v; break;
    case DT_PLTREL: pltrel = v; break;
    case DT_RELA: case DT_RELASZ: has_rela = true; break;
    case DT_INIT: info.init = v; break;
    case DT_FINI: info.fini = v; break;
    case DT_PREINIT_ARRAY: info.preinit_array.vaddr = v; break;
    case DT_PREINIT_ARRAYSZ: info.preinit_array.count = v / 4; break;
    case DT_INIT_ARRAY: info.init_array.vaddr = v; break;
    case DT_INIT_ARRAYSZ: info.init_array.count = v / 4; break;
    case DT_FINI_ARRAY: info.fini_array.vaddr = v; break;
    case DT_FINI_ARRAYSZ: info.fini_array.count = v / 4; break;
    default: break;
    }
    if (terminated)
      break;
  }
  if (!terminated)
    throw ElfError("dynamic section has no terminating entry");
  if (has_rela)
    throw ElfError("RELA relocations are not supported (ARM objects use REL)");
  if (syment != sizeof(Elf32_Sym) || relent != sizeof(Elf32_Rel))
    throw ElfError("unexpected symbol or relocation entry size");
  if (pltrelsz && pltrel != DT_REL)
    throw ElfError("PLT relocations are not REL");

  std::span<const uint8_t> strings;
  if (strtab || strsz) {
    auto s = at_vaddr(strtab, strsz);
    if (!s)
      throw ElfError("dynamic string table (" + hex(strtab) + ", " + std::to_string(strsz) +
                     " bytes) outside the file");
    strings = *s;
  }
  for (uint32_t o : needed_offsets)
    info.needed.push_back(name_in(strings, o, "needed library"));
  if (soname)
    info.soname = name_in(strings, *soname, "soname");

  // How many dynamic symbols there are: the SysV hash says it outright, the GNU hash through
  // its last chain, the section table when present.
  uint32_t count = 0;
  if (hash) {
    auto h = at_vaddr(hash, 8);
    if (!h)
      throw ElfError("hash table outside the file");
    count = load<uint32_t>(*h, 4);
  } else if (gnu_hash) {
    auto h = at_vaddr(gnu_hash, 16);
    if (!h)
      throw ElfError("GNU hash table outside the file");
    uint32_t nbuckets = load<uint32_t>(*h, 0), symoffset = load<uint32_t>(*h, 4),
             bloom = load<uint32_t>(*h, 8);
    uint64_t buckets_at = uint64_t{gnu_hash} + 16 + uint64_t{bloom} * 4;
    auto b = buckets_at + uint64_t{nbuckets} * 4 <= UINT32_MAX
                 ? at_vaddr(static_cast<uint32_t>(buckets_at), nbuckets * 4)
                 : std::nullopt;
    if (!b)
      throw ElfError("GNU hash buckets outside the file");
    uint32_t last = 0;
    for (uint32_t i = 0; i < nbuckets; ++i)
      last = std::max(last, load<uint32_t>(*b, uint64_t{i} * 4));
    count = last < symoffset ? symoffset : last + 1;
    if (last >= symoffset) {
      uint64_t chains_at = buckets_at + uint64_t{nbuckets} * 4;
      for (;; ++last) {
        uint64_t at = chains_at + uint64_t{last - symoffset} * 4;
        auto c = at <= UINT32_MAX ? at_vaddr(static_cast<uint32_t>(at), 4) : std::nullopt;
        if (!c)
          throw ElfError("GNU hash chain outside the file");
        if (load<uint32_t>(*c, 0) & 1)
          break;
      }
      count = last + 1;
    }
  } else {
    for (auto &s : sections_)
      if (s.type == SHT_DYNSYM)
        count = s.size / sizeof(Elf32_Sym);
  }
  if (count) {
    auto t = uint64_t{count} * sizeof(Elf32_Sym) <= UINT32_MAX
                 ? at_vaddr(symtab, count * sizeof(Elf32_Sym))
                 : std::nullopt;
    if (!t)
      throw ElfError("dynamic symbol table (" + std::to_string(count) + " entries) outside the file");
    for (uint32_t i = 0; i < count; ++i)
      info.symbols.push_back(make_symbol(load<Elf32_Sym>(*t, uint64_t{i} * sizeof(Elf32_Sym)), strings));
  }

  for (auto [at, size] : {std::pair{rel, relsz}, std::pair{jmprel, pltrelsz}}) {
    if (!size)
      continue;
    auto r = at_vaddr(at, size);
    if (!r)
      throw ElfError("relocation table (" + hex(at) + ", " + std::to_string(size) +
                     " bytes) outside the file");
    for (uint32_t off = 0; off + sizeof(Elf32_Rel) <= size; off += sizeof(Elf32_Rel)) {
      auto e = load<Elf32_Rel>(*r, off);
      Relocation reloc{e.r_offset, ELF32_R_TYPE(e.r_info), ELF32_R_SYM(e.r_info)};
      if (reloc.symbol >= info.symbols.size() && reloc.symbol != 0)
        throw ElfError("relocation at " + hex(reloc.offset) + " names symbol " +
                       std::to_string(reloc.symbol) + " of " + std::to_string(info.symbols.size()));
      info.relocations.push_back(reloc);
    }
  }
  dynamic_ = std::move(info);
}

std::string_view relocation_name(uint32_t type) {
  switch (type) {
  case R_ARM_NONE: return "R_ARM_NONE";
  case R_ARM_ABS32: return "R_ARM_ABS32";
  case R_ARM_REL32: return "R_ARM_REL32";
  case R_ARM_COPY: return "R_ARM_COPY";
  case R_ARM_GLOB_DAT: return "R_ARM_GLOB_DAT";
  case R_ARM_JUMP_SLOT: return "R_ARM_JUMP_SLOT";
  case R_ARM_RELATIVE: return "R_ARM_RELATIVE";
  case R_ARM_TLS_DTPMOD32: return "R_ARM_TLS_DTPMOD32";
  case R_ARM_TLS_DTPOFF32: return "R_ARM_TLS_DTPOFF32";
  case R_ARM_TLS_TPOFF32: return "R_ARM_TLS_TPOFF32";
  case R_ARM_IRELATIVE: return "R_ARM_IRELATIVE";
  case R_ARM_TLS_DESC: return "R_ARM_TLS_DESC";
  default: return "";
  }
}

} // namespace kvrun
