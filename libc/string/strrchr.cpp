#include "string/string_internal.h"

// One pass over the string through strchr's word loop, remembering the last hit.
extern "C" char *strrchr(const char *s, int c) {
  if (static_cast<unsigned char>(c) == 0)
    return const_cast<char *>(s) + strlen(s);
  const char *last = nullptr;
  for (const char *p; (p = strchr(s, c)) != nullptr; s = p + 1)
    last = p;
  return const_cast<char *>(last);
}
