#!/usr/bin/env bash
# Builds the peer of a guest benchmark: the same benchmark source, compiled with -DKV_BENCH_PEER
# and linked statically against a mainstream embedded C library for arm-none-eabi and its
# compiler run-time (libgcc), Thumb armv7-a soft-float multilib: Debian's newlib with its libm
# (the default) or picolibc. Installs the packages when they are missing.
#   bench/peer.sh OUTPUT [SOURCE [newlib|picolibc]]
set -euo pipefail
out=$1
source=${2:-runtime.cpp}
peer=${3:-newlib}
here=$(cd "$(dirname "$0")" && pwd)

install() {
  echo "installing $* for the peer build" >&2
  local sudo=; [ "$(id -u)" = 0 ] || sudo=sudo
  $sudo apt-get update -qq >&2
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "$@" >&2
}
if ! command -v arm-none-eabi-gcc >/dev/null || [ ! -d /usr/lib/arm-none-eabi/newlib ]; then
  install gcc-arm-none-eabi libnewlib-arm-none-eabi
fi

flags=(-mthumb -march=armv7-a -mfloat-abi=soft)
multilib=$(arm-none-eabi-gcc "${flags[@]}" -print-multi-directory)
libgcc=$(arm-none-eabi-gcc "${flags[@]}" -print-libgcc-file-name)
case $peer in
newlib)
  libs=(/usr/lib/arm-none-eabi/newlib/$multilib/libm.a /usr/lib/arm-none-eabi/newlib/$multilib/libc.a) ;;
picolibc)
  pico=/usr/lib/picolibc/arm-none-eabi/lib/release/$multilib
  [ -d "$pico" ] || install picolibc-arm-none-eabi
  libs=("$pico/libc.a") ;;
*) echo "peer: unknown library $peer" >&2; exit 2 ;;
esac
for lib in "${libs[@]}"; do
  [ -f "$lib" ] || { echo "peer: no $lib" >&2; exit 1; }
done

obj=$(mktemp --suffix=.o)
trap 'rm -f "$obj"' EXIT
clang --target=armv7a-none-eabi "${flags[@]}" -O2 -std=c++20 -nostdlibinc \
  -fno-exceptions -fno-rtti -fno-builtin -DKV_BENCH_PEER -c "$here/$source" -o "$obj"
ld.lld -static -e main --build-id=none "$obj" --start-group "${libs[@]}" "$libgcc" --end-group -o "$out"
