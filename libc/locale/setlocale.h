// The library's own ways into the locale selection.
#pragma once

namespace kv::locale {

// "*" and five 8-digit slot values, and the terminator.
constexpr int composite_size = 42;

// Sets the categories of `mask` to `name` (a null name only asks) and answers the name of the
// one category, or the composite name of all five in `buffer`; null when refused.
char *set_locale(char *buffer, int mask, const char *name);

// The native-locale variant: the empty name means each category's native locale.
char *set_native_locale(int mask, const char *name);

} // namespace kv::locale

extern "C" char *setlocale(int mask, const char *name);
