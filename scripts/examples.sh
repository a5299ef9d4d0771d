#!/usr/bin/env bash
# Builds everything and runs the examples under kvrun.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh
build=build
for example in build/guest/examples/*; do
  [ -f "$example" ] && [ -x "$example" ] || continue
  echo "== $(basename "$example")"
  "$build/host/kvrun" "$example" world
done
