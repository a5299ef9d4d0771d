// %e, %f and %g: at most 17 significant digits from _printf_fp_digits, '0' beyond them, the
// current locale's decimal point.
#include "locale/locale_access.h"
#include "printf/state.h"

using namespace kv::printf;

namespace {

// Positions [from, to) of the printed digit string: '0' before `lead`, then the `count`
// digits, then '0' again.
void digit_run(_printf_state *state, const char *digits, int32_t count, int32_t lead,
               int32_t from, int32_t to) {
  int32_t zeros = (lead < to ? lead : to) - from;
  if (zeros > 0) {
    fill(state, '0', zeros);
    from += zeros;
  }
  int32_t end = lead + count < to ? lead + count : to;
  if (end > from) {
    emit(state, digits + (from - lead), end - from);
    from = end;
  }
  fill(state, '0', to - from);
}

} // namespace

KV_PRINTF_HANDLER(_printf_fp_dec_real) {
  uint64_t bits = double_word(args);
  uint32_t flags = state->flags;
  char sign = fp_sign(flags, bits);
  double magnitude = __builtin_bit_cast(double, bits & ~(1ull << 63));
  int cls = _fp_classify(magnitude);
  if (cls == fp_infinite || cls == fp_nan) {
    _printf_fp_infnan(state, letter, cls, sign);
    return 2;
  }
  bool alt = flags & PF_ALT;
  int32_t precision = (flags & PF_PRECISION) ? state->precision : 6;
  char digits[32];
  _fp_digits_result r;
  int32_t length;       // digit positions printed
  int32_t lead = 0;     // positions printed as '0' before the first digit
  int32_t point_after;  // positions before the decimal point
  bool exponent_form = false;
  if (letter == 'e') {
    _printf_fp_digits(&r, digits, magnitude, precision + 1 < 17 ? precision + 1 : 17, 0);
    length = precision + 1;
    point_after = 1;
    exponent_form = true;
  } else if (letter == 'f') {
    _printf_fp_digits(&r, digits, magnitude, precision, 1);
    length = r.fixed ? r.count : r.exponent + precision + 1;
    if (length <= precision) {
      lead = precision + 1 - length;
      length = precision + 1;
    }
    point_after = length - precision;
  } else {
    if (precision < 1)
      precision = 1;
    _printf_fp_digits(&r, digits, magnitude, precision < 17 ? precision : 17, 0);
    length = precision;
    if (!alt) {
      if (r.count < length)
        length = r.count;
      while (length > 1 && digits[length - 1] == '0')
        --length;
    }
    if (r.exponent >= precision || r.exponent < -4) {
      exponent_form = true;
      point_after = 1;
    } else if (r.exponent <= 0) {
      lead = -r.exponent;
      length += lead;
      point_after = 1;
    } else {
      if (length < r.exponent + 1)
        length = r.exponent + 1;
      point_after = r.exponent + 1;
    }
  }
  bool point = alt || point_after < length;

  char exp_text[8];
  int exp_len = 0;
  if (exponent_form) {
    int32_t e = r.exponent;
    uint32_t m = e < 0 ? -e : e;
    char reversed[6];
    int n = 0;
    do {
      reversed[n++] = static_cast<char>('0' + m % 10);
      m /= 10;
    } while (m);
    if (n < 2)
      reversed[n++] = '0';
    exp_text[exp_len++] = (flags & PF_UPPER) ? 'E' : 'e';
    exp_text[exp_len++] = e < 0 ? '-' : '+';
    while (n)
      exp_text[exp_len++] = reversed[--n];
  }

  int32_t total = (sign != 0) + length + point + exp_len;
  state->width -= total;
  state->count += total;
  if (state->width > 0 && !(flags & PF_ZERO))
    pre_padding(state);
  if (sign)
    emit(state, &sign, 1);
  if (state->width > 0 && (flags & PF_ZERO))
    pre_padding(state);
  char decimal_point = kv::locale::decimal_point();
  if (point_after < length) {
    digit_run(state, digits, r.count, lead, 0, point_after);
    emit(state, &decimal_point, 1);
    digit_run(state, digits, r.count, lead, point_after, length);
  } else {
    digit_run(state, digits, r.count, lead, 0, length);
    if (point)
      emit(state, &decimal_point, 1);
  }
  emit(state, exp_text, exp_len);
  if (state->width > 0)
    post_padding(state);
  return 2;
}
