#include "runtime/div0.h"

#include "posix/signal_calls.h"

namespace kv {

namespace {
constexpr int sigfpe = 8;
}

void raise_div0() { raise(sigfpe); }

} // namespace kv
