// The front doors live in the program, not in libc.so: the engine's entry points that the
// library binds to itself are ordinary imports here, reached through the GOT.
#pragma once

#include "support/export.h"

#undef KV_BINDING_protected
#define KV_BINDING_protected __attribute__((visibility("default")))
