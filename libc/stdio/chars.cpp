// The locking character operations and the state queries.
#include "stdio/retarget.h"
#include "stdio/runs.h"
#include "stdio/stream.h"
#include "string/string_internal.h"

using namespace kv::stdio;

extern "C" int fgetc(FILE *s) {
  lock(s);
  int ch = get_char(s);
  unlock(s);
  return ch;
}

extern "C" int fputc(int ch, FILE *s) {
  lock(s);
  int result = put_char(ch, s);
  unlock(s);
  return result;
}

extern "C" int fputs(const char *text, FILE *s) {
  size_t n = strlen(text);
  lock(s);
  int result = put_run(s, text, n);
  unlock(s);
  return result;
}

extern "C" void clearerr(FILE *s) {
  lock(s);
  s->flags &= ~(kEof | kError | kHandleEof);
  unlock(s);
}

extern "C" int feof(FILE *s) { return (s->flags & kEof) != 0; }
extern "C" int ferror(FILE *s) { return (s->flags & kError) != 0; }

KV_FUNCTION(protected, void, _ttywrch, (int ch)) { fputc(ch, stderr); }
