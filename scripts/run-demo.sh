#!/usr/bin/env bash
# The main job on its built-in default: builds the release preset and lets
# the host simulator load frequency_measurement.plugin and run it.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc 2>/dev/null || echo 2)" >/dev/null

sim=build/release/host_sim/zelvar-sim
if [ -x "$sim" ]; then
  exec "$sim" "$@"
fi
# Until the simulator exists, show what the host would see of the module.
plugin=build/release/software_channels/frequency_measurement/frequency_measurement.plugin
echo "built $plugin; exported functions:"
readelf --dyn-syms -W "$plugin" | awk '$7 != "UND" && $8 ~ /^zv/ {print "  " $8}'
