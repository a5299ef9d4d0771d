// What the division helpers do with a zero divisor before returning their fixed result.
#pragma once

namespace kv {

// Sends SIGFPE to this process.
void raise_div0();

} // namespace kv
