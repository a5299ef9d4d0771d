#!/usr/bin/env bash
# Configures and builds everything (kvrun, its tests, the guest library, tests and examples).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
preset=${KV_PRESET:-default}
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -- -j2
