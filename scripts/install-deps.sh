#!/usr/bin/env bash
# Installs the Debian 12 packages that building, testing and running need.
# Idempotent: when everything is present it only checks and returns.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  libpugixml-dev libboost-log-dev
  libgtest-dev libgmock-dev libbenchmark-dev libfftw3-dev
  libsndfile1-dev libcli11-dev gnuplot-nox
  clang-14 libclang-rt-14-dev
  binutils
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
if [ "$(id -u)" -ne 0 ]; then
  SUDO=sudo
else
  SUDO=
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
