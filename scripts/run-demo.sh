#!/usr/bin/env bash
# The main job on its built-in default: builds the release preset and lets
# the host simulator load frequency_measurement.plugin and run it.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc 2>/dev/null || echo 2)" >/dev/null

exec build/release/host_sim/zelvar-sim "$@"
