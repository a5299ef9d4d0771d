#!/usr/bin/env bash
# Builds the peer of a guest benchmark (bench_runtime by default, or bench_fp): the same
# benchmark source linked statically against a mainstream embedded C library (Debian's newlib
# for arm-none-eabi, with its libm) and its compiler run-time (libgcc), Thumb armv7-a
# soft-float multilib. Installs the packages when they are missing.
#   bench/peer.sh OUTPUT [SOURCE]
set -euo pipefail
out=$1
source=${2:-runtime.cpp}
here=$(cd "$(dirname "$0")" && pwd)

if ! command -v arm-none-eabi-gcc >/dev/null || [ ! -d /usr/lib/arm-none-eabi/newlib ]; then
  echo "installing gcc-arm-none-eabi and libnewlib-arm-none-eabi for the peer build" >&2
  sudo=; [ "$(id -u)" = 0 ] || sudo=sudo
  $sudo apt-get update -qq >&2
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq gcc-arm-none-eabi libnewlib-arm-none-eabi >&2
fi

flags=(-mthumb -march=armv7-a -mfloat-abi=soft)
multilib=$(arm-none-eabi-gcc "${flags[@]}" -print-multi-directory)
libgcc=$(arm-none-eabi-gcc "${flags[@]}" -print-libgcc-file-name)
newlib=/usr/lib/arm-none-eabi/newlib/$multilib/libc.a
libm=/usr/lib/arm-none-eabi/newlib/$multilib/libm.a
[ -f "$newlib" ] && [ -f "$libm" ] || { echo "peer: no $newlib or $libm" >&2; exit 1; }

obj=$(mktemp --suffix=.o)
trap 'rm -f "$obj"' EXIT
clang --target=armv7a-none-eabi "${flags[@]}" -O2 -std=c++20 -nostdlibinc \
  -fno-exceptions -fno-rtti -fno-builtin -DKV_BENCH_PEER -c "$here/$source" -o "$obj"
ld.lld -static -e main --build-id=none "$obj" --start-group "$libm" "$newlib" "$libgcc" --end-group -o "$out"
