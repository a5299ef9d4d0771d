#include <kv/abi.h>
#include <kv/syscall.h>

#include "bridge/debug_log.h"
#include "stdio/retarget.h"

namespace kv::stdio {
namespace {

struct ConsoleName {
  const char *name;
  int handle;
};
// Checked in this order.
constexpr ConsoleName kConsoleNames[] = {
    {"__stdout__", kStdoutHandle},
    {"__stderr__", kStderrHandle},
    {"__stdin__", kStdinHandle},
};

struct ModeRow {
  int mode;
  int flags;
  const char *log;
};
constexpr ModeRow kModeRows[] = {
    {0, KV_O_RDONLY, "KV: (200) O_RDONLY\n"},
    {kModeUpdate, KV_O_RDWR, "KV: (212) O_RDWR"},
    {kModeWrite, KV_O_WRONLY | KV_O_TRUNC | KV_O_CREAT, "KV: (204) O_WRONLY | O_TRUNC | O_CREAT\n"},
    {kModeWrite | kModeUpdate, KV_O_RDWR | KV_O_TRUNC | KV_O_CREAT,
     "KV: (216) O_RDWR | O_TRUNC | O_CREAT\n"},
    {kModeAppend, KV_O_WRONLY | KV_O_APPEND | KV_O_CREAT,
     "KV: (208) O_WRONLY | O_APPEND | O_CREAT\n"},
    {kModeAppend | kModeUpdate, KV_O_RDWR | KV_O_APPEND | KV_O_CREAT,
     "KV: (220) O_RDWR | O_APPEND | O_CREAT\n"},
};

bool same_text(const char *a, const char *b) {
  while (*a && *a == *b)
    ++a, ++b;
  return *a == *b;
}

} // namespace
} // namespace kv::stdio

KV_FUNCTION(protected, int, _sys_open, (const char *name, int mode)) {
  using namespace kv::stdio;
  kv::debug_log("KV: (174) _sys_open( %s, %x )\n", name ? name : "<null>", mode);
  if (!name)
    return -1;
  for (const ConsoleName &console : kConsoleNames)
    if (same_text(name, console.name))
      return console.handle;
  int flags = 0;
  const char *log = "KV: (223) unknown mode\n";
  for (const ModeRow &row : kModeRows)
    if (row.mode == (mode & ~kModeBinary)) {
      flags = row.flags;
      log = row.log;
    }
  kv::debug_log("%s", log);
  return __syscall_open(name, flags, 0);
}
