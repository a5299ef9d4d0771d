// Tokenising: _strtok_r and the library's own strtok share one body.
#include "string/strtok.h"

#include "support/export.h"

namespace kv {

namespace {
bool is_delimiter(char c, const char *delimiters) {
  for (; *delimiters; ++delimiters)
    if (*delimiters == c)
      return true;
  return false;
}
} // namespace

char *strtok_internal(char *text, const char *delimiters, char **save) {
  static char empty[1] = "";
  if (!text)
    text = *save ? *save : empty; // a null cell continues from an empty string
  while (*text && is_delimiter(*text, delimiters))
    ++text;
  if (!*text) {
    *save = text;
    return nullptr;
  }
  char *token = text;
  while (*text && !is_delimiter(*text, delimiters))
    ++text;
  if (*text)
    *text++ = 0;
  *save = text;
  return token;
}

} // namespace kv

KV_FUNCTION(protected, char *, _strtok_r, (char *text, const char *delimiters, char **save)) {
  return kv::strtok_internal(text, delimiters, save);
}

namespace {
char *strtok_save = nullptr;
}

extern "C" char *strtok(char *text, const char *delimiters) {
  return kv::strtok_internal(text, delimiters, &strtok_save);
}
