// How the library exports a name. Every exported function or variable is defined through one of
// these macros, so searching for KV_FUNCTION / KV_VARIABLE / KV_ALIAS finds every export; the
// binding (global, weak, or protected for run-time helpers that the library calls directly)
// is part of the definition. libc/exports.map lists the same names for the linker.
#pragma once

#define KV_BINDING_global __attribute__((visibility("default")))
#define KV_BINDING_weak __attribute__((visibility("default"), weak))
// Exported but bound inside the library: calls from our own code are direct, never through the
// GOT. Only for run-time helpers that are not replaceable hooks.
#define KV_BINDING_protected __attribute__((visibility("protected")))

#define KV_FUNCTION(binding, ret, name, params) extern "C" KV_BINDING_##binding ret name params
#define KV_VARIABLE(binding, type, name) extern "C" KV_BINDING_##binding type name
#define KV_ALIAS(binding, ret, name, params, target)                                              \
  extern "C" KV_BINDING_##binding ret name params __attribute__((alias(#target)))
