// The engine's exported entry points as a program linked against libc.so sees them: its own
// sink and format reader plugged into __printf, and a handler called directly.
#include <kvtest.h>
#include <stdarg.h>
#include <stdint.h>

extern "C" {
struct State {
  uint32_t flags;
  void (*put_char)(int, void *);
  void *sink;
  int (*next_format_char)(State *);
  const char *format_cursor;
  void *wide_hook;
  int32_t width, precision, count;
  char digits[24];
};
int __printf(State *state, const uint32_t *args);
int _printf_char_common(const char *format, void *sink, const uint32_t *args, void (*put)(int, void *));
void _snputc(int ch, void *sink);
int _printf_int_hex(State *state, int letter, const uint32_t *args);
int _printf_ll_hex(State *state, int letter, const uint32_t *args);
int _printf_percent_end(State *state, int letter, const uint32_t *args);
int _is_digit(int ch);
int _fp_classify(double value);
}

namespace {

struct Collected {
  char text[64];
  int length;
};
void collect(int ch, void *sink) {
  auto *c = static_cast<Collected *>(sink);
  c->text[c->length++] = static_cast<char>(ch);
  c->text[c->length] = 0;
}
// A format written backwards, read from its end.
int read_backwards(State *state) {
  const char *p = state->format_cursor;
  if (!p[0])
    return 0;
  state->format_cursor = p - 1;
  return static_cast<unsigned char>(p[0]);
}
int call_common(char *buffer, int size, const char *format, ...) {
  va_list args;
  va_start(args, format);
  struct {
    char *next, *end;
  } sink = {buffer, buffer + size - 1};
  int n = _printf_char_common(format, &sink, __builtin_bit_cast(const uint32_t *, args), _snputc);
  *sink.next = 0;
  va_end(args);
  return n;
}

} // namespace

TEST(PrintfExports, OwnReaderAndSink) {
  static const char backwards[] = "\0]d5-%[ x x4%";
  Collected out{};
  State s{};
  s.put_char = collect;
  s.sink = &out;
  s.next_format_char = read_backwards;
  s.format_cursor = backwards + sizeof backwards - 2;
  s.count = 99;
  const uint32_t args[] = {0xabcd, 42};
  EXPECT_EQ(__printf(&s, args), 14);
  EXPECT_STREQ(out.text, "abcd x [42   ]");
}

TEST(PrintfExports, CommonFrontEndWithBoundedSink) {
  char b[8];
  EXPECT_EQ(call_common(b, sizeof b, "%s|%d", "hello", 12345), 11);
  EXPECT_STREQ(b, "hello|1");
}

TEST(PrintfExports, HandlersReportTheWordsTheyUse) {
  Collected out{};
  State s{};
  s.put_char = collect;
  s.sink = &out;
  s.flags = 0x800 | 0x80; // upper case, long long
  const uint32_t words[] = {0x89abcdef, 0x1234567};
  EXPECT_EQ(_printf_ll_hex(&s, 'x', words), 2);
  s.flags = 0x800 | 0x80;
  // The 32-bit handler reads one word but still reports the double word 'll' asked for.
  EXPECT_EQ(_printf_int_hex(&s, 'x', words), 2);
  EXPECT_EQ(_printf_percent_end(&s, 'y', words), 0);
  EXPECT_STREQ(out.text, "123456789ABCDEF89ABCDEF");
  EXPECT_EQ(s.count, 23);
}

TEST(PrintfExports, SmallHelpers) {
  const struct {
    int ch, want;
  } digits[] = {{'0', 1}, {'9', 1}, {'/', 0}, {':', 0}, {0, 0}, {'0' + 256, 0}};
  for (auto &d : digits)
    EXPECT_EQ(_is_digit(d.ch), d.want);
  const struct {
    double v;
    int want;
  } classes[] = {{0.0, 0}, {-0.0, 0}, {1.0, 5}, {4.9e-324, 4}, {__builtin_inf(), 3},
                 {-__builtin_nan(""), 7}};
  for (auto &c : classes)
    EXPECT_EQ(_fp_classify(c.v), c.want);
}
