// %a: the double's bits in hexadecimal with a binary exponent. The point is always '.'.
#include "printf/state.h"

using namespace kv::printf;

namespace {

constexpr char kLower[] = "0123456789abcdefxp";
constexpr char kUpper[] = "0123456789ABCDEFXP";

} // namespace

KV_PRINTF_HANDLER(_printf_fp_hex_real) {
  uint64_t bits = double_word(args);
  uint32_t flags = state->flags;
  char sign = fp_sign(flags, bits);
  int cls = _fp_classify(__builtin_bit_cast(double, bits));
  if (cls == fp_infinite || cls == fp_nan) {
    _printf_fp_infnan(state, letter, cls, sign);
    return 2;
  }
  const char *table = (flags & PF_UPPER) ? kUpper : kLower;
  bool given = flags & PF_PRECISION;
  int32_t precision = given ? state->precision : 13;
  uint64_t raw = bits & ~(1ull << 63);
  if (precision < 13) {
    // Round to nearest, ties to even, on the raw pattern: a carry runs into the exponent.
    int dropped = 52 - 4 * precision;
    uint64_t unit = 1ull << dropped, low = raw & (unit - 1), half = unit >> 1;
    bool odd = dropped == 52 ? (raw >> 52) != 0 : (raw >> dropped) & 1;
    if (low > half || (low == half && odd))
      raw += unit;
    raw &= ~(unit - 1);
  }
  uint32_t field = static_cast<uint32_t>(raw >> 52);
  uint64_t frac = raw & ((1ull << 52) - 1);
  int32_t exp2 = field ? static_cast<int32_t>(field) - 1023 : (frac ? -1022 : 0);

  int fraction_digits = precision < 13 ? precision : 13;
  if (!given)
    while (fraction_digits > 0 && ((frac >> (52 - 4 * fraction_digits)) & 15) == 0)
      --fraction_digits;
  int32_t zeros = precision > 13 ? precision - 13 : 0;
  bool point = fraction_digits > 0 || zeros > 0 || (given ? (flags & PF_ALT) != 0 : false);

  char exp_text[8];
  int exp_len = 0;
  uint32_t magnitude = exp2 < 0 ? -exp2 : exp2;
  do {
    exp_text[exp_len++] = static_cast<char>('0' + magnitude % 10);
    magnitude /= 10;
  } while (magnitude);

  int32_t length = (sign != 0) + 2 + 1 + point + fraction_digits + zeros + 2 + exp_len;
  state->width -= length;
  state->count += length;
  if (!(flags & PF_ZERO))
    pre_padding(state);
  if (sign)
    put(state, sign);
  put(state, '0');
  put(state, table[16]);
  if (flags & PF_ZERO)
    pre_padding(state);
  put(state, field ? '1' : '0');
  if (point)
    put(state, '.');
  for (int i = 1; i <= fraction_digits; ++i)
    put(state, table[(frac >> (52 - 4 * i)) & 15]);
  for (int32_t i = 0; i < zeros; ++i)
    put(state, '0');
  put(state, table[17]);
  put(state, exp2 < 0 ? '-' : '+');
  while (exp_len)
    put(state, exp_text[--exp_len]);
  post_padding(state);
  return 2;
}
