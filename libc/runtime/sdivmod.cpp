// Signed division on top of the unsigned kernels. Magnitudes are taken in unsigned arithmetic,
// so the most negative value needs no special case and its division by -1 wraps.
#include "runtime/divide.h"

namespace kv::rt {

sdivmod32_t sdivmod32(int32_t n, int32_t d) {
  uint32_t un = static_cast<uint32_t>(n), ud = static_cast<uint32_t>(d);
  if (n < 0)
    un = 0 - un;
  if (d < 0)
    ud = 0 - ud;
  udivmod32_t r = udivmod32(un, ud);
  if ((n < 0) != (d < 0))
    r.quot = 0 - r.quot;
  if (n < 0)
    r.rem = 0 - r.rem;
  return {static_cast<int32_t>(r.quot), static_cast<int32_t>(r.rem)};
}

sdivmod64_t sdivmod64(int64_t n, int64_t d) {
  uint64_t un = static_cast<uint64_t>(n), ud = static_cast<uint64_t>(d);
  if (n < 0)
    un = 0 - un;
  if (d < 0)
    ud = 0 - ud;
  udivmod64_t r = udivmod64(un, ud);
  if ((n < 0) != (d < 0))
    r.quot = 0 - r.quot;
  if (n < 0)
    r.rem = 0 - r.rem;
  return {static_cast<int64_t>(r.quot), static_cast<int64_t>(r.rem)};
}

} // namespace kv::rt
