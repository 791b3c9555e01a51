#!/usr/bin/env bash
# Builds and runs every test suite: first the release build, then the build
# with AddressSanitizer and UndefinedBehaviorSanitizer, then a short fuzzing
# smoke run when clang is there. Works on a fresh Debian 12 machine as root.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

jobs=$(nproc 2>/dev/null || echo 2)
phase_start=${SECONDS}
lap() { echo "=== $1 took $((SECONDS - phase_start)) s"; phase_start=${SECONDS}; }

for preset in release asan; do
  echo "=== ${preset}: configure and build"
  cmake --preset "${preset}" >/dev/null
  cmake --build --preset "${preset}" -j "${jobs}"
  lap "${preset} build"
  echo "=== ${preset}: tests"
  ctest --preset "${preset}" -j "${jobs}"
  lap "${preset} tests"
done

if command -v clang++-14 >/dev/null 2>&1 && [ -f fuzz/CMakeLists.txt ]; then
  echo "=== fuzz: smoke run"
  # A smoke run: long runs are done by hand with a larger FUZZ_SECONDS.
  FUZZ_SECONDS="${FUZZ_SECONDS:-4}" bash scripts/fuzz-smoke.sh
  lap "fuzz build and smoke run"
fi
echo "=== all passed in ${SECONDS} s"
