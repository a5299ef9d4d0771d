// The driver of the benchmarks that call one entry point with four argument words: a table of
// 256 argument sets, filled by the benchmark, is cycled through N calls by function pointer.
#pragma once

#include <stdint.h>

#include "bench_args.h"

using Fn = void (*)(uint32_t, uint32_t, uint32_t, uint32_t);

extern "C" __attribute__((noinline)) void bench_empty(uint32_t, uint32_t, uint32_t, uint32_t) {
  asm volatile("");
}

namespace {

struct Args {
  uint32_t a[4];
};
Args table[256];

// argv: OPERATION (or "empty:OPERATION" for the calibration run) and N. `prepare` fills the
// table for the operation and names its entry point, or null for an unknown one.
int run_word_calls(int argc, char **argv, const void *(*prepare)(const char *op)) {
  if (argc < 3)
    return 2;
  const char *op = argv[1];
  bool calibrate = calibration(op);
  const void *entry = prepare(op);
  if (!entry)
    return 2;
  Fn volatile fn = calibrate ? bench_empty : reinterpret_cast<Fn>(const_cast<void *>(entry));
  unsigned n = parse(argv[2]);
  for (unsigned i = 0; i < n; ++i) {
    const Args &t = table[i & 255];
    fn(t.a[0], t.a[1], t.a[2], t.a[3]);
  }
  return 0;
}

} // namespace
