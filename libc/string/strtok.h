// The tokeniser behind _strtok_r and strtok: skips delimiters, cuts the token at the next one,
// and leaves in *save where the next call continues.
#pragma once

namespace kv {

char *strtok_internal(char *text, const char *delimiters, char **save) asm("__strtok_internal");

} // namespace kv

extern "C" char *strtok(char *text, const char *delimiters);
