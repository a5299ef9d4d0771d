#include "loader/loader.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "loader/elf_error.h"
#include "loader/image_mapper.h"
#include "loader/init_order.h"
#include "loader/library_search.h"
#include "loader/load_error.h"
#include "loader/relocator.h"
#include "loader/symbol_scope.h"
#include "memory/layout.h"

namespace kvrun {
namespace {

std::string base_name(const std::string &path) {
  auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

ElfFile read_elf(const std::string &path, const std::string &what) {
  try {
    return ElfFile::read(path);
  } catch (const ElfError &e) {
    throw LoadError(kStatusCannotLoad, what + ": " + e.what());
  }
}

std::string joined(const std::vector<std::string> &dirs) {
  std::string s;
  for (auto &d : dirs)
    s += (s.empty() ? "" : ", ") + d;
  return s.empty() ? "(empty)" : s;
}

// The index of an already loaded object that answers to `name`, or objects.size().
size_t find_loaded(const std::vector<LoadedObject> &objects, const std::string &name,
                   const std::string &path) {
  for (size_t i = 0; i < objects.size(); ++i) {
    auto &o = objects[i];
    if (o.name == name || o.path == path ||
        (o.elf.dynamic() && !o.elf.dynamic()->soname.empty() && o.elf.dynamic()->soname == name))
      return i;
  }
  return objects.size();
}

} // namespace

LoadedProgram load_program(const std::string &path, const std::vector<std::string> &library_path,
                           AddressSpace &memory) {
  struct stat st;
  if (stat(path.c_str(), &st) != 0)
    throw LoadError(errno == ENOENT || errno == ENOTDIR ? kStatusNotFound : kStatusCannotLoad,
                    path + ": " + std::strerror(errno));
  if (!S_ISREG(st.st_mode))
    throw LoadError(kStatusCannotLoad, path + ": not a regular file");

  LoadedProgram program;
  auto &objects = program.objects;
  objects.push_back(LoadedObject{base_name(path), path, read_elf(path, path), 0, 0, 0, {}});

  // Breadth-first, so that the scope's order is the program, its needs, their needs...
  for (size_t i = 0; i < objects.size(); ++i) {
    if (!objects[i].elf.dynamic())
      continue;
    auto needed = objects[i].elf.dynamic()->needed;
    for (auto &name : needed) {
      auto found = find_library(name, library_path);
      if (!found)
        throw LoadError(kStatusCannotLoad, name + " (needed by " + objects[i].name +
                                               ") not found in the library path: " +
                                               joined(library_path));
      size_t at = find_loaded(objects, name, *found);
      if (at == objects.size()) {
        ElfFile elf = read_elf(*found, *found);
        if (!elf.is_shared())
          throw LoadError(kStatusCannotLoad, *found + ": not a shared library");
        objects.push_back(LoadedObject{name, *found, std::move(elf), 0, 0, 0, {}});
      }
      objects[i].needs.push_back(at);
    }
  }

  uint32_t next_base = layout::kImageBase;
  for (auto &o : objects) {
    uint32_t after = map_image(o, memory, next_base);
    if (o.elf.is_shared())
      next_base = after;
  }

  SymbolScope scope(objects);
  for (auto &o : objects)
    relocate(o, scope, memory);
  for (auto &o : objects)
    protect_image(o, memory);

  program.entry = objects[0].address(objects[0].elf.entry());
  order_init_and_fini(program, memory);
  return program;
}

} // namespace kvrun
