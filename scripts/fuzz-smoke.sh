#!/usr/bin/env bash
# Builds the libFuzzer targets (preset `fuzz`, clang 14) and runs each one for
# a short while from its seed inputs and dictionary. Fails when a target
# finds a crash; the input is left in build/fuzz/artifacts/.
#   FUZZ_SECONDS   time per target (default 20)
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${FUZZ_SECONDS:-20}"
jobs=$(nproc 2>/dev/null || echo 2)

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target zlr_fuzz_targets -j "${jobs}"

artifacts="build/fuzz/artifacts"
mkdir -p "${artifacts}"
work=$(mktemp -d)
trap 'rm -rf "${work}"' EXIT

status=0
for target in build/fuzz/fuzz/zlr_fuzz_*; do
  [ -x "${target}" ] && [ -f "${target}" ] || continue
  name=$(basename "${target}")
  options=(-max_total_time="${seconds}" -print_final_stats=1
           -artifact_prefix="${artifacts}/${name}-")
  [ -f "fuzz/${name}.dict" ] && options+=(-dict="fuzz/${name}.dict")
  corpus="${work}/${name}"
  mkdir -p "${corpus}"
  seeds=()
  [ -d "fuzz/seeds/${name}" ] && seeds+=("fuzz/seeds/${name}")
  echo "=== fuzz: ${name} for ${seconds} s"
  if ! "${target}" "${options[@]}" "${corpus}" "${seeds[@]}" >"${work}/${name}.log" 2>&1; then
    echo "fuzz: ${name} found a problem:"
    tail -n 40 "${work}/${name}.log"
    status=1
  else
    grep -E "stat::number_of_executed_units|stat::peak_rss_mb" "${work}/${name}.log" || true
  fi
done
exit "${status}"
