// The kernel's arithmetic entries: operate, then round once. A special operand (infinity or
// NaN) makes the result the first operand unchanged.
#include "convert/btod.h"

using namespace kv::convert;

namespace {

bool special(const _btod_ext &a, const _btod_ext &b) {
  return ((a.ext_sign_exp | b.ext_sign_exp) & kExtSpecial) != 0;
}

double as_double(const _btod_ext &a) {
  uint64_t sign = static_cast<uint64_t>(a.ext_sign_exp & kExtSign) << 32;
  return __builtin_bit_cast(double, sign | 0x7FFull << 52 | (mantissa(a) << 1 >> 12));
}

} // namespace

KV_FUNCTION(protected, _btod_ext, _btod_emul, (_btod_ext a, _btod_ext b, int direction)) {
  return special(a, b) ? a : _e2e(__btod_mult_common(a, b), direction);
}

KV_FUNCTION(protected, _btod_ext, _btod_ediv, (_btod_ext a, _btod_ext b, int direction)) {
  return special(a, b) ? a : _e2e(__btod_div_common(a, b), direction);
}

KV_FUNCTION(protected, double, _btod_emuld, (_btod_ext a, _btod_ext b, int direction)) {
  return special(a, b) ? as_double(a) : _e2d(__btod_mult_common(a, b), direction);
}

KV_FUNCTION(protected, double, _btod_edivd, (_btod_ext a, _btod_ext b, int direction)) {
  return special(a, b) ? as_double(a) : _e2d(__btod_div_common(a, b), direction);
}
