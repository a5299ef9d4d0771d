#!/usr/bin/env bash
# Runs the guest benchmarks under kvrun and prints guest instructions per operation, with wall
# times for the figures that are about the host (trap round trip, instruction rate, services
# against the host's own system calls).
#   bench/run.sh [BUILD [fp|heap|printf|streams]]   with one of these, only that table
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
only=${2:-}
kvrun="$build/host/kvrun"
bench="${KV_BENCH_DIR:-$build/guest/bench}"
[ -x "$kvrun" ] && [ -f "$bench/bench_trap" ] && [ -x "$build/bench/host/bench_services_native" ] || { echo "build first: scripts/build.sh" >&2; exit 1; }

calc() { awk "BEGIN { print $1 }"; }
count() { # prints the guest instruction count of one run
  "$kvrun" --count "$@" 2>&1 >/dev/null | sed -n 's/^kvrun: \([0-9]*\) guest instructions$/\1/p'
}
seconds() { # wall seconds of one run
  local t0 t1
  t0=$(date +%s.%N); "$kvrun" "$@" >/dev/null; t1=$(date +%s.%N)
  calc "$t1 - $t0"
}

# Guest instructions per call of OP in a calibrated benchmark program: two loop lengths and a
# calibration loop around an empty function cancel every cost outside the call.
per_call() { # program op -> instructions per call
  local n=2560 a1 a2 e1 e2
  a1=$(count "$1" "$2" $n); a2=$(count "$1" "$2" $((2 * n)))
  e1=$(count "$1" "empty:$2" $n); e2=$(count "$1" "empty:$2" $((2 * n)))
  calc "(($a2 - $a1) - ($e2 - $e1)) / $n + 1"
}

fp_table() {
  # Soft-float routines on finite normal random operands, this library's EABI entries against
  # libgcc's (and newlib libm's sqrt and sqrtf), both built from bench/fp.cpp.
  local peer="$build/bench-peer/bench_fp_peer"
  mkdir -p "$(dirname "$peer")"
  bench/peer.sh "$peer" fp.cpp
  echo
  printf '%-40s %10s %10s %8s\n' "per call (guest instructions)" "kvlibc" "libgcc" "goal"
  while read -r op label goal; do
    ours=$(per_call "$bench/bench_fp" "$op")
    theirs=$(per_call "$peer" "$op")
    printf '%-40s %10.1f %10.1f %8s\n' "${label//\~/ }" "$ours" "$theirs" "$goal"
  done <<'ROWS'
dadd __aeabi_dadd <=45
dsub __aeabi_dsub <=45
dmul __aeabi_dmul <=45
ddiv __aeabi_ddiv <=150
dsqrt _dsqrt~(peer:~libm~sqrt) <=250
dcmplt __aeabi_dcmplt <=20
cdcmple __aeabi_cdcmple <=20
d2iz __aeabi_d2iz <=15
i2d __aeabi_i2d <=34
d2f __aeabi_d2f <=14
f2d __aeabi_f2d <=9
fadd __aeabi_fadd <=35
fmul __aeabi_fmul <=30
fdiv __aeabi_fdiv <=60
fcmplt __aeabi_fcmplt <=20
cfcmple __aeabi_cfcmple <=20
fsqrt _fsqrt~(peer:~libm~sqrtf) -
ROWS
}
heap_table() {
  # The allocator on bench/heap.cpp's trace, this library against newlib's malloc built from
  # the same source. The trace's phases each hold one kind of call: runs that stop at
  # consecutive phase ends, less the same runs around an empty function, give each phase's cost.
  local peer="$build/bench-peer/bench_heap_peer"
  mkdir -p "$(dirname "$peer")"
  bench/peer.sh "$peer" heap.cpp
  local ours_stats theirs_stats
  ours_stats=$("$kvrun" "$bench/bench_heap" stats)
  theirs_stats=$("$kvrun" "$peer" stats)
  per_kind() { # program stats -> "per-malloc per-free"
    local prog=$1 stats=$2 phases i r0=0 e0=0 r e ops cost m=0 f=0
    phases=$(awk '$1 == "phases" { print $2 }' <<<"$stats")
    mapfile -t ops < <(awk '$1 ~ /_phase$/ { print $2 }' <<<"$stats")
    for ((i = 0; i < phases; i++)); do
      r=$(count "$prog" trace $((i + 1)))
      e=$(count "$prog" empty:trace $((i + 1)))
      if ((i > 0)); then
        cost=$(( (r - r0) - (e - e0) + ops[i] ))
        if ((i % 2)); then m=$((m + cost)); else f=$((f + cost)); fi
      else
        # The first phase frees nothing: its runs are the start-up both variants share.
        [ "${ops[0]}" = 0 ] || { echo "heap: the trace must open with an empty phase" >&2; exit 1; }
      fi
      r0=$r; e0=$e
    done
    local nm nf
    nm=$(awk '$1 == "mallocs" { print $2 }' <<<"$stats")
    nf=$(awk '$1 == "frees" { print $2 }' <<<"$stats")
    echo "$(calc "$m / $nm") $(calc "$f / $nf")"
  }
  per_step() { # program -> guest instructions per realloc growth step (4095 steps)
    local a e
    a=$(count "$1" realloc); e=$(count "$1" empty:realloc)
    calc "($a - $e) / 4095 + 1"
  }
  per_cycle() { # program size -> guest instructions per free and allocation of one block
    local a1 a2 e1 e2 n=2000
    a1=$(count "$1" cycle "$2" $n); a2=$(count "$1" cycle "$2" $((2 * n)))
    e1=$(count "$1" empty:cycle "$2" $n); e2=$(count "$1" empty:cycle "$2" $((2 * n)))
    calc "(($a2 - $a1) - ($e2 - $e1)) / $n + 2"
  }
  field() { awk -v k="$2" '$1 == k { print $2 }' <<<"$1"; }
  read -r om of < <(per_kind "$bench/bench_heap" "$ours_stats")
  read -r tm tf < <(per_kind "$peer" "$theirs_stats")
  local live
  live=$(field "$ours_stats" live_peak)
  echo
  printf '%-44s %10s %10s %16s\n' "heap (guest instructions, bytes, requests)" "kvlibc" "newlib" "goal"
  printf '%-44s %10.1f %10.1f %16s\n' "malloc, 10000-op trace" "$om" "$tm" "<=50"
  printf '%-44s %10.1f %10.1f %16s\n' "free, 10000-op trace" "$of" "$tf" "<=40"
  printf '%-44s %10.1f %10.1f %16s\n' "realloc growth step, 16 B to 64 KiB" \
    "$(per_step "$bench/bench_heap")" "$(per_step "$peer")" "<=50"
  printf '%-44s %10.1f %10.1f %16s\n' "free + malloc, 100 B block, bins" \
    "$(per_cycle "$bench/bench_heap" 100)" "$(per_cycle "$peer" 100)" ""
  printf '%-44s %10.1f %10.1f %16s\n' "free + malloc, 300 B block, tries" \
    "$(per_cycle "$bench/bench_heap" 300)" "$(per_cycle "$peer" 300)" ""
  printf '%-44s %10d %10d %16s\n' "peak footprint of the trace (bytes)" \
    "$(field "$ours_stats" footprint_peak)" "$(field "$theirs_stats" footprint_peak)" \
    "<=$(calc "int($live * 1.1 + 16384)")"
  printf '%-44s %10d %10s %16s\n' "  peak live bytes" "$live" "" ""
  printf '%-44s %10s %10s %16s\n' "map / unmap requests (newlib: sbrk)" \
    "$(field "$ours_stats" maps)/$(field "$ours_stats" unmaps)" \
    "$(field "$theirs_stats" maps)/$(field "$theirs_stats" unmaps)" ""
  printf '%-44s %10s %10s %16s\n' "  of them after the first round" \
    "$(field "$ours_stats" steady_maps)/$(field "$ours_stats" steady_unmaps)" \
    "$(field "$theirs_stats" steady_maps)/$(field "$theirs_stats" steady_unmaps)" "no thrashing"
}
printf_table() {
  # Formatted output: guest instructions per snprintf into a 64-byte buffer, beside newlib's and
  # picolibc's snprintf built from the same source.
  newlib_printf="$build/bench-peer/bench_printf_newlib"
  picolibc_printf="$build/bench-peer/bench_printf_picolibc"
  mkdir -p "$build/bench-peer"
  bench/peer.sh "$newlib_printf" printf.cpp newlib
  bench/peer.sh "$picolibc_printf" printf.cpp picolibc
  echo
  printf '%-40s %10s %10s %10s %8s\n' "per snprintf (guest instructions)" "kvlibc" "newlib" "picolibc" "goal"
  while read -r op label goal; do
    ours=$(per_call "$bench/bench_printf" "$op")
    newlib=$(per_call "$newlib_printf" "$op")
    picolibc=$(per_call "$picolibc_printf" "$op")
    printf '%-40s %10.1f %10.1f %10.1f %8s\n' "${label//\~/ }" "$ours" "$newlib" "$picolibc" "$goal"
  done <<'ROWS'
d %d~123456789 <=275
x %x~0xdeadbeef <=200
s %s~of~20~characters <=200
g17 %.17g~random~doubles <=2400
f %f~1234.5678 <=2400
e %e~6.02214076e23 <=2400
g %g~0.1 <=2400
ROWS
}
streams_table() {
  # Stream transfers (bench/streams.cpp): each row's run less the same program's loop around an
  # empty function, in guest instructions and in requests from the trace. The requests the
  # buffers dictate: a 512-byte buffer for a file, so 1 MiB is 2048 transfers; fwrite and fread
  # go straight through in one request per 4 KiB call, with a position query before and a
  # reposition after (fread also asks for the end); stdout, line-buffered, writes each line.
  # Every open adds the position query of fdopen. Requests are open/close/lseek/read/write.
  local work
  work=$(mktemp -d)
  local prog="$bench/bench_streams" mib=1048576
  tally() { # op -> "open close lseek read write" requests of one run
    "$kvrun" -r "$work" --trace "$work/trace.$1" "$prog" "$1" >/dev/null
    awk '$1 == "trap" { n[$3]++ }
      END { printf "%d %d %d %d %d\n", n["open"], n["close"], n["lseek"], n["read"], n["write"] }' "$work/trace.$1"
  }
  requests() { # op -> "open/close/lseek/read/write" of one run less its empty run
    paste -d' ' <(tally "$1" | tr ' ' '\n') <(tally "empty:$1" | tr ' ' '\n') |
      awk '{ printf "%s%d", (NR > 1 ? "/" : ""), $1 - $2 } END { print "" }'
  }
  # The read rows read what the fwrite row leaves behind.
  "$kvrun" -r "$work" "$prog" fwrite
  echo
  printf '%-40s %10s %20s %20s\n' "streams (guest instructions, requests)" "per unit" \
    "requests measured" "expected"
  while read -r op label units calls expected; do
    local a e
    a=$(count -r "$work" "$prog" "$op")
    e=$(count -r "$work" "$prog" "empty:$op")
    # The empty stand-in's one instruction per call belongs to the call.
    printf '%-40s %10.2f %20s %20s\n' "${label//\~/ }" "$(calc "($a - $e + $calls) / $units")" \
      "$(requests "$op")" "$expected"
  done <<ROWS
putc fputc~1~MiB,~per~byte $mib $mib 1/1/1/0/2048
puts fputs~80-byte~lines,~per~byte $mib 13108 1/1/1/0/2048
fwrite fwrite~4~KiB~blocks,~per~byte $mib 256 1/1/513/0/256
getc fgetc~1~MiB,~per~byte $mib $mib 1/1/1/2048/0
putc_unlocked putc_unlocked~1~MiB,~per~byte $mib 0 1/1/1/0/2048
getc_unlocked getc_unlocked~1~MiB,~per~byte $mib 0 1/1/1/2048/0
fread fread~4~KiB~blocks,~per~byte $mib 256 1/1/769/256/0
printf printf~10000~lines~to~stdout,~per~line 10000 10000 0/0/0/0/10000
ROWS
  rm -rf "$work"
}
if [ "$only" = streams ]; then
  streams_table
  exit 0
fi
if [ "$only" = printf ]; then
  printf_table
  exit 0
fi
if [ "$only" = heap ]; then
  heap_table
  exit 0
fi
if [ "$only" = fp ]; then
  fp_table
  exit 0
fi

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

# Host services through kvrun against the same system calls made directly on the host: guest
# operations per second from two runs (N and 2N operations, so start-up and set-up cancel), the
# host's from bench_services_native, and what kvrun adds to each request. The guest loop and
# its entry-point calls count as kvrun's cost here; they are a few dozen instructions.
native=$(realpath "$build/bench/host/bench_services_native")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
best_of_3() { # least wall seconds of three runs in the sandbox root
  local best=1e9 t
  for _ in 1 2 3; do
    t=$(seconds -r "$work" "$@")
    best=$(calc "$t < $best ? $t : $best")
  done
  echo "$best"
}
echo
printf '%-42s %8s %12s %12s %14s\n' "service (guest through kvrun vs host)" "requests" "guest op/s" "host op/s" "kvrun us/req"
while read -r op label requests n; do
  t1=$(best_of_3 "$bench/bench_services" "$op" "$n")
  t2=$(best_of_3 "$bench/bench_services" "$op" $((2 * n)))
  guest=$(calc "$n / ($t2 - $t1)")
  host=$(cd "$work" && "$native" "$op" "$n")
  over=$(calc "(1000000 / $guest - 1000000 / $host) / $requests")
  printf '%-42s %8d %12.0f %12.0f %14.2f\n' "${label//\~/ }" "$requests" "$guest" "$host" "$over"
done <<'ROWS'
write1 write~1~byte~to~a~file 1 100000
read4k read~4~KiB~from~a~file 1 100000
openclose open~+~close~of~a~file 2 50000
tcp TCP~loopback~round~trip,~1~byte~each~way 4 20000
ROWS

# Memory, string and division routines: guest instructions per call, this library against the
# peer (newlib with libgcc) built from the same source with the same inputs. Two loop lengths
# and a calibration loop around an empty function cancel every cost outside the call.
peer="$build/bench-peer/bench_runtime_peer"
mkdir -p "$(dirname "$peer")"
bench/peer.sh "$peer"
echo
printf '%-40s %10s %10s %8s\n' "per call (guest instructions)" "kvlibc" "newlib" "goal"
while read -r op label goal; do
  ours=$(per_call "$bench/bench_runtime" "$op")
  theirs=$(per_call "$peer" "$op")
  printf '%-40s %10.1f %10.1f %8s\n' "${label//\~/ }" "$ours" "$theirs" "$goal"
done <<'ROWS'
memcpy16 memcpy~16~B~aligned <=15
memcpy256 memcpy~256~B~aligned -
memcpy4k memcpy~4~KiB~aligned <=400
memcpy4k_s1d3 memcpy~4~KiB~src+1~dst+3 <=700
memcpy4k_s1d1 memcpy~4~KiB~src+1~dst+1 <=700
memmove_up memmove~4~KiB~dst=src+128 <=450
memmove_down memmove~4~KiB~dst=src-128 <=450
memset4k memset~4~KiB <=300
strlen8 strlen~8~chars~(offsets~0..7) -
strlen100 strlen~100~chars~(offsets~0..7) -
strlen1000 strlen~1000~chars~(offsets~0..7) <=400
strlen1000_text strlen~1000~chars~of~text~(offsets~0..7) -
strcmp10 strcmp~equal~10~chars~aligned -
strcmp100 strcmp~equal~100~chars~aligned <=100
strcmp100_tail strcmp~equal~100,~other~bytes~after -
strcmp100_text strcmp~equal~100~chars~of~text,~aligned -
strcmp100_s1s2 strcmp~equal~100~chars~s1+1~s2+2 -
strcmp100_d4 strcmp~100~chars~differing~at~byte~4 -
uidiv __aeabi_uidiv~(random~bit~lengths) -
uldivmod __aeabi_uldivmod~(random~bit~lengths) <=100
ROWS

fp_table
heap_table

printf_table

streams_table
