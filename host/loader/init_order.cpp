#include "loader/init_order.h"

#include <elf.h>

#include <algorithm>

namespace kvrun {
namespace {

struct Arrays {
  FunctionArray preinit, init, fini;
  std::optional<uint32_t> init_fn, fini_fn;
};

// Dynamic objects say where their arrays are; static programs only through their sections.
Arrays arrays_of(const LoadedObject &object) {
  Arrays a;
  if (auto &d = object.elf.dynamic()) {
    a.preinit = d->preinit_array;
    a.init = d->init_array;
    a.fini = d->fini_array;
    a.init_fn = d->init;
    a.fini_fn = d->fini;
    return a;
  }
  for (auto &s : object.elf.sections()) {
    FunctionArray f{s.addr, s.size / 4};
    if (s.type == SHT_PREINIT_ARRAY)
      a.preinit = f;
    else if (s.type == SHT_INIT_ARRAY)
      a.init = f;
    else if (s.type == SHT_FINI_ARRAY)
      a.fini = f;
  }
  return a;
}

std::vector<uint32_t> entries(const LoadedObject &object, FunctionArray array,
                              const AddressSpace &memory) {
  std::vector<uint32_t> out;
  for (uint32_t i = 0; i < array.count; ++i) {
    uint32_t fn = 0;
    memory.read_u32(object.address(array.vaddr) + 4 * i, fn);
    if (fn != 0 && fn != UINT32_MAX)
      out.push_back(fn);
  }
  return out;
}

void append(std::vector<uint32_t> &to, const std::vector<uint32_t> &from) {
  to.insert(to.end(), from.begin(), from.end());
}

void init_calls_of(const LoadedObject &o, const AddressSpace &memory, std::vector<uint32_t> &out) {
  Arrays a = arrays_of(o);
  if (a.init_fn)
    out.push_back(o.address(*a.init_fn));
  append(out, entries(o, a.init, memory));
}

void fini_calls_of(const LoadedObject &o, const AddressSpace &memory, std::vector<uint32_t> &out) {
  Arrays a = arrays_of(o);
  auto f = entries(o, a.fini, memory);
  out.insert(out.end(), f.rbegin(), f.rend());
  if (a.fini_fn)
    out.push_back(o.address(*a.fini_fn));
}

void visit(const std::vector<LoadedObject> &objects, size_t i, std::vector<bool> &seen,
           std::vector<size_t> &order) {
  seen[i] = true;
  for (size_t n : objects[i].needs)
    if (!seen[n])
      visit(objects, n, seen, order);
  order.push_back(i);
}

} // namespace

void order_init_and_fini(LoadedProgram &program, const AddressSpace &memory) {
  auto &objects = program.objects;
  std::vector<bool> seen(objects.size());
  std::vector<size_t> order; // dependency order; the program comes last
  visit(objects, 0, seen, order);

  program.init_calls = entries(objects[0], arrays_of(objects[0]).preinit, memory);
  for (size_t i : order)
    init_calls_of(objects[i], memory, program.init_calls);

  program.fini_calls.clear();
  for (auto it = order.rbegin(); it != order.rend(); ++it)
    fini_calls_of(objects[*it], memory, program.fini_calls);
}

} // namespace kvrun
