#!/usr/bin/env bash
# Builds everything and runs every test (host, native and guest).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/build.sh
ctest --preset "${KV_PRESET:-default}" "$@"
