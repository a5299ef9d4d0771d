#!/usr/bin/env bash
# Runs the guest benchmarks under kvrun and prints guest instructions per operation, with wall
# times for the figures that are about the host (trap round trip, instruction rate).
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
kvrun="$build/host/kvrun"
bench="$build/guest/bench"
[ -x "$kvrun" ] && [ -f "$bench/bench_trap" ] || { echo "build first: scripts/build.sh" >&2; exit 1; }

calc() { awk "BEGIN { print $1 }"; }
count() { # prints the guest instruction count of one run
  "$kvrun" --count "$@" 2>&1 >/dev/null | sed -n 's/^kvrun: \([0-9]*\) guest instructions$/\1/p'
}
seconds() { # wall seconds of one run
  local t0 t1
  t0=$(date +%s.%N); "$kvrun" "$@" >/dev/null; t1=$(date +%s.%N)
  calc "$t1 - $t0"
}

n=100000
c_trap=$(count "$bench/bench_trap" getpid $n)
c_empty=$(count "$bench/bench_trap" empty $n)
# The empty function is one instruction (bx lr); the loop overhead cancels out.
per_call=$(calc "($c_trap - $c_empty) / $n + 1")
t_trap=$(seconds "$bench/bench_trap" getpid $n)
t_empty=$(seconds "$bench/bench_trap" empty $n)
us_per_trap=$(calc "($t_trap - $t_empty) * 1000000 / $n")
spin=20000000
c_spin=$(count "$bench/bench_trap" spin $spin)
t_spin=$(seconds "$bench/bench_trap" spin $spin)
rate=$(calc "$c_spin / $t_spin / 1000000")

printf '%-44s %12s\n' "measure" "value"
printf '%-44s %12.1f\n' "guest instructions per entry-point call" "$per_call"
printf '%-44s %12.2f\n' "microseconds per trap round trip" "$us_per_trap"
printf '%-44s %12.1f\n' "kvrun guest instruction rate (million/s)" "$rate"
