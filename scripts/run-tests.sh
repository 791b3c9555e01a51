#!/usr/bin/env bash
# Builds and runs every test suite: first the release build, then the build
# with AddressSanitizer and UndefinedBehaviorSanitizer, then a short fuzzing
# smoke run when clang is there. Works on a fresh Debian 12 machine as root.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/install-deps.sh

jobs=$(nproc 2>/dev/null || echo 2)

for preset in release asan; do
  echo "=== ${preset}: configure and build"
  cmake --preset "${preset}" >/dev/null
  cmake --build --preset "${preset}" -j "${jobs}"
  echo "=== ${preset}: tests"
  ctest --preset "${preset}" -j "${jobs}"
done

if command -v clang++-14 >/dev/null 2>&1 && [ -f fuzz/CMakeLists.txt ]; then
  echo "=== fuzz: smoke run"
  bash scripts/fuzz-smoke.sh
fi
