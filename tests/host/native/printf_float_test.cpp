// The floating conversions against the host's printf, which rounds exactly: up to 17
// significant digits the text must be the host's; beyond them the digits are the correctly
// rounded 17 followed by zeros. KV_PRINTF_CASES sets the number of random doubles.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "locale/locale_access.h"
#include "printf/state.h"

char kv::locale::decimal_point() { return '.'; }

namespace {

using namespace kv::printf;

struct Buffer {
  std::string text;
};
void append(int ch, void *sink) { static_cast<Buffer *>(sink)->text.push_back(static_cast<char>(ch)); }

// One conversion through the handler, the double in the target's two argument words.
std::string convert(char letter, uint32_t flags, int precision, double v, int width = 0) {
  Buffer out;
  _printf_state s{};
  s.put_char = append;
  s.sink = &out;
  s.flags = flags;
  s.precision = precision;
  s.width = width;
  alignas(8) uint32_t words[2];
  std::memcpy(words, &v, 8);
  if (flags & PF_UPPER)
    letter = static_cast<char>(letter - 'A' + 'a');
  int used = letter == 'a' ? _printf_fp_hex_real(&s, letter, words) : _printf_fp_dec_real(&s, letter, words);
  EXPECT_EQ(used, 2);
  EXPECT_EQ(s.count, static_cast<int>(out.text.size()));
  return out.text;
}

std::string host(const char *format, double v) {
  char b[1200];
  std::snprintf(b, sizeof b, format, v);
  return b;
}

// The value's correctly rounded 17 significant digits and the decimal exponent of the first.
struct Digits {
  std::string d;
  int exponent;
};
Digits seventeen(double v) {
  std::string t = host("%.16e", std::fabs(v));
  Digits r;
  r.d = t.substr(0, 1) + t.substr(2, 16);
  r.exponent = std::atoi(t.c_str() + t.find('e') + 1);
  return r;
}

char digit_at(const Digits &r, int power) {
  int i = r.exponent - power;
  return i >= 0 && i < 17 ? r.d[i] : '0';
}

// The layouts of %e and %f written from 17 digits; %g's is the host's own for the decimal
// number those digits form.
std::string layout_e(const Digits &r, int precision) {
  std::string s(1, r.d[0]);
  if (precision > 0)
    s += '.';
  for (int i = 1; i <= precision; ++i)
    s += i < 17 ? r.d[i] : '0';
  char e[8];
  std::snprintf(e, sizeof e, "e%+03d", r.exponent);
  return s + e;
}
std::string layout_f(const Digits &r, int precision) {
  std::string s;
  for (int p = r.exponent > 0 ? r.exponent : 0; p >= 0; --p)
    s += digit_at(r, p);
  if (precision > 0)
    s += '.';
  for (int p = -1; p >= -precision; --p)
    s += digit_at(r, p);
  return s;
}

int significant_digits(const std::string &text) {
  int n = 0;
  bool started = false;
  for (char c : text) {
    if (c == 'e')
      break;
    if (c >= '1' && c <= '9')
      started = true;
    n += started && c >= '0' && c <= '9';
  }
  return n;
}

std::string expected(char letter, int precision, double v) {
  std::string sign = std::signbit(v) ? "-" : "";
  char format[16];
  std::snprintf(format, sizeof format, "%%.%d%c", precision, letter);
  if (letter == 'e')
    return precision <= 16 ? host(format, v) : sign + layout_e(seventeen(v), precision);
  if (letter == 'f') {
    std::string h = host(format, v);
    return significant_digits(h) <= 17 ? h : sign + layout_f(seventeen(v), precision);
  }
  if (precision <= 17)
    return host(format, v);
  // 17 digits, trailing zeros dropped: the host's %.17g, except where the larger precision
  // keeps an integer of more than 17 digits in fixed form.
  Digits r = seventeen(v);
  if (r.exponent < 17 || r.exponent >= precision)
    return host("%.17g", v);
  return sign + layout_f(r, 0);
}

double random_double(std::mt19937_64 &rng) {
  uint64_t bits = rng();
  switch (bits % 4) {
  case 0: { // any finite pattern
    double d;
    uint64_t b = rng();
    if ((b >> 52 & 0x7FF) == 0x7FF)
      b ^= 1ull << 62;
    std::memcpy(&d, &b, 8);
    return d;
  }
  case 1: // ordinary magnitudes
    return std::ldexp(static_cast<double>(rng() >> 11), static_cast<int>(rng() % 140) - 110);
  case 2: // short decimals, where ties and carries live
    return static_cast<double>(static_cast<int64_t>(rng() % 2000001) - 1000000) /
           std::pow(10.0, static_cast<int>(rng() % 9));
  default: // subnormals
    return std::ldexp(static_cast<double>(rng() >> (12 + rng() % 40)), -1074);
  }
}

long cases() {
  const char *env = std::getenv("KV_PRINTF_CASES");
  return env ? std::atol(env) : 50000;
}

TEST(PrintfFloat, DecimalMatchesExactRounding) {
  std::mt19937_64 rng(42);
  long n = cases(), failures = 0;
  for (long i = 0; i < n && failures < 20; ++i) {
    double v = random_double(rng);
    for (char letter : {'e', 'f', 'g'}) {
      int precision = static_cast<int>((i + letter) % 21);
      if (letter == 'f' && std::fabs(v) > 1e30)
        precision %= 4; // the host's %f of huge values is long; the cases are the same
      std::string got = convert(letter, PF_PRECISION, precision, v);
      std::string want = expected(letter, precision, v);
      if (got != want) {
        ++failures;
        ADD_FAILURE() << "%." << precision << letter << " of " << host("%a", v) << ": got " << got
                      << ", want " << want;
      }
    }
  }
}

TEST(PrintfFloat, SeventeenDigitsRoundTrip) {
  std::mt19937_64 rng(7);
  long n = cases(), failures = 0;
  for (long i = 0; i < n && failures < 20; ++i) {
    double v = random_double(rng);
    std::string got = convert('g', PF_PRECISION, 17, v);
    double back = std::strtod(got.c_str(), nullptr);
    if (std::memcmp(&back, &v, 8) != 0) {
      ++failures;
      ADD_FAILURE() << host("%a", v) << " printed " << got;
    }
  }
}

// %a of a rounded precision means the value rounded to that many hexadecimal digits, ties to
// even; the default and wide precisions print exactly what the host prints.
TEST(PrintfFloat, HexadecimalValues) {
  std::mt19937_64 rng(9);
  long n = cases(), failures = 0;
  for (long i = 0; i < n && failures < 20; ++i) {
    double v = random_double(rng);
    int precision = static_cast<int>(i % 16);
    std::string got = convert('a', PF_PRECISION, precision, v);
    if (precision >= 13) {
      char format[16];
      std::snprintf(format, sizeof format, "%%.%da", precision);
      if (got != host(format, v) && ++failures)
        ADD_FAILURE() << got << " vs " << host(format, v);
      continue;
    }
    uint64_t bits;
    std::memcpy(&bits, &v, 8);
    uint64_t field = bits >> 52 & 0x7FF, m = bits & ((1ull << 52) - 1);
    if (field)
      m |= 1ull << 52;
    int drop = 52 - 4 * precision;
    uint64_t kept = m >> drop, rest = m & ((1ull << drop) - 1), half = 1ull << (drop - 1);
    if (rest > half || (rest == half && (kept & 1)))
      ++kept;
    double want = std::ldexp(static_cast<double>(kept), (field ? static_cast<int>(field) : 1) - 1075 + drop);
    if (std::signbit(v))
      want = -want;
    double back = std::strtod(got.c_str(), nullptr);
    if (back != want && ++failures)
      ADD_FAILURE() << host("%a", v) << " %." << precision << "a printed " << got;
  }
  EXPECT_EQ(convert('a', 0, 0, 0.1), host("%a", 0.1));
  EXPECT_EQ(convert('A', PF_UPPER, 0, -3e-310), host("%A", -3e-310));
}

TEST(PrintfFloat, FlagsAndWidth) {
  const struct {
    char letter;
    uint32_t flags;
    int precision, width;
    double v;
    const char *format;
  } cases[] = {
      {'e', PF_PLUS, 0, 0, 1.5, "%+e"},
      {'f', PF_SPACE | PF_PRECISION, 3, 10, -2.0, "% 10.3f"},
      {'g', PF_ZERO | PF_PRECISION, 3, 12, 1234567.0, "%012.3g"},
      {'g', PF_ALT | PF_PRECISION, 0, 0, 0.5, "%#.0g"},
      {'e', PF_ALT | PF_PRECISION, 0, 0, 5.0, "%#.0e"},
      {'f', PF_LEFT | PF_PRECISION, 2, 9, 3.14159, "%-9.2f"},
      {'E', PF_UPPER, 0, 0, 1e100, "%E"},
      {'G', PF_UPPER | PF_ALT, 0, 0, 1e-10, "%#G"},
      {'f', PF_ZERO, 0, 8, -__builtin_inf(), "%08f"},
      {'g', PF_LEFT | PF_UPPER, 0, 6, __builtin_nan(""), "%-6G"},
  };
  for (const auto &c : cases) {
    std::string want = host(c.format, c.v);
    EXPECT_EQ(convert(c.letter, c.flags, c.precision, c.v, c.width), want) << c.format;
  }
}

} // namespace
