// The trap routine and the glue that turns an entry point's arguments into argument words.
#pragma once

#include <stdint.h>

extern "C" int32_t __kv_trap(int32_t number, uint32_t w1, uint32_t w2, uint32_t w3, uint32_t w4,
                             uint32_t w5, uint32_t w6, uint32_t w7)
    __attribute__((visibility("hidden")));

namespace kv::bridge {

template <typename T> inline uint32_t word(T value) {
  if constexpr (__is_pointer(T))
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(value));
  else
    return static_cast<uint32_t>(value);
}

// Issues call `number` with the given arguments as w1, w2, ... and zeros in the unused words.
template <typename... Args>
__attribute__((always_inline)) inline int32_t trap(int32_t number, Args... args) {
  static_assert(sizeof...(Args) <= 7, "a request carries seven words");
  uint32_t w[7] = {word(args)...};
  return __kv_trap(number, w[0], w[1], w[2], w[3], w[4], w[5], w[6]);
}

template <typename R> inline R result(int32_t r) {
  if constexpr (__is_pointer(R))
    return reinterpret_cast<R>(static_cast<uintptr_t>(static_cast<uint32_t>(r)));
  else
    return static_cast<R>(r);
}

} // namespace kv::bridge

// Defines an entry point that passes its parameters, in order, as the request's words.
#define KV_SYSCALL(binding, ret, name, number, params, ...)                                      \
  KV_FUNCTION(binding, ret, name, params) {                                                      \
    return kv::bridge::result<ret>(kv::bridge::trap(number __VA_OPT__(, ) __VA_ARGS__));          \
  }
