// What the formatting engines read of the current locale.
#pragma once

namespace kv::locale {

// The current numeric locale's decimal-point character.
char decimal_point();

} // namespace kv::locale
