// An additive generator over 55 values with two cursors, seeded by a linear congruence.
#include "posix/random.h"

#include "support/export.h"

namespace kv {
constexpr int kValues = 55;
constexpr uint32_t kFirstCursor = 31;
struct RandomState {
  uint32_t value[kValues];
  uint32_t *first;
  uint32_t *second;
};
} // namespace kv

KV_VARIABLE(global, kv::RandomState, _random_number_data) = {};

namespace kv {

void seed_random(uint32_t seed) {
  RandomState &r = _random_number_data;
  uint32_t x = seed;
  for (int i = kValues - 1; i >= 0; --i) {
    r.value[i] = x + (x >> 16);
    x = 69069u * x + 1725307361u;
  }
  r.first = &r.value[kFirstCursor];
  r.second = &r.value[0];
}

int32_t next_random() {
  RandomState &r = _random_number_data;
  uint32_t sum = *r.first + *r.second;
  *r.second = sum;
  if (++r.first == r.value + kValues)
    r.first = r.value;
  if (++r.second == r.value + kValues)
    r.second = r.value;
  return static_cast<int32_t>(sum & 0x7fffffffu);
}

} // namespace kv

KV_FUNCTION(global, long, random, (void)) { return kv::next_random(); }
KV_FUNCTION(global, void, srandom, (unsigned seed)) { kv::seed_random(seed); }
