#!/usr/bin/env bash
# Builds everything and runs the examples under kvrun. Each runs with a fresh scratch directory
# as its sandbox root, so files it writes land there.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh
build=build
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
for example in build/guest/examples/*; do
  [ -f "$example" ] && [ -x "$example" ] || continue
  echo "== $(basename "$example")"
  mkdir -p "$scratch/$(basename "$example")"
  "$build/host/kvrun" -r "$scratch/$(basename "$example")" "$example" world
done
