// What the division helpers do with a zero divisor before returning their fixed result.
#pragma once

namespace kv {

// Sends SIGFPE to this process through raise; the assembly helpers call it by this name.
void raise_div0() asm("__kv_raise_div0");

} // namespace kv
