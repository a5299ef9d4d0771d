// The standard string functions the library uses itself: declared as programs see them, defined
// in this folder, and not exported (programs get theirs from the front-door archive). The
// aligned paths go a word at a time.
#pragma once

#include <string.h>
