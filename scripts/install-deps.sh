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
  binutils python3-numpy
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
# The package manager's progress goes to a log; a person sees it only when
# the installation fails.
log=$(mktemp)
if ! { $SUDO apt-get update -qq && \
       $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >"${log}" 2>&1; then
  echo "install-deps: installation failed; the package manager said:"
  tail -n 40 "${log}"
  rm -f "${log}"
  exit 1
fi
rm -f "${log}"
echo "install-deps: done"
