#!/usr/bin/env bash
# Runs every libFuzzer target (or the ones named) for a given time each and
# prints, per target, the executions, the coverage (cov: and ft:), the peak
# resident memory and the findings, then the totals. The corpus of each
# target is kept between runs, so that a long run goes on where the last
# ended; findings land in <build>/artifacts/.
#   scripts/fuzz-run.sh [SECONDS] [TARGET...]
#   FUZZ_SECONDS     time per target when no SECONDS is given (default 60)
#   FUZZ_BUILD_DIR   the fuzz build (default build/fuzz, preset `fuzz`)
#   FUZZ_NO_BUILD=1  take the targets as they are built
# Exit status 1 when any target found something.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${FUZZ_SECONDS:-60}"
if [ $# -gt 0 ] && [[ "$1" =~ ^[0-9]+$ ]]; then
  seconds="$1"
  shift
fi
build="${FUZZ_BUILD_DIR:-build/fuzz}"
jobs=$(nproc 2>/dev/null || echo 2)

if [ "${FUZZ_NO_BUILD:-0}" != 1 ]; then
  cmake --preset fuzz -B "${build}" >/dev/null
  cmake --build "${build}" --target zlr_fuzz_targets -j "${jobs}" >/dev/null
fi

artifacts="${build}/artifacts"
corpora="${build}/corpus"
logs="${build}/fuzz-run-logs"
mkdir -p "${artifacts}" "${corpora}" "${logs}"

targets=()
if [ $# -gt 0 ]; then
  for name in "$@"; do targets+=("${build}/fuzz/${name}"); done
else
  for target in "${build}"/fuzz/zlr_fuzz_*; do
    [ -x "${target}" ] && [ -f "${target}" ] && targets+=("${target}")
  done
fi

total_execs=0
total_findings=0
rows=()
for target in "${targets[@]}"; do
  name=$(basename "${target}")
  options=(-max_total_time="${seconds}" -print_final_stats=1 -timeout=25
           -artifact_prefix="${artifacts}/${name}-")
  [ -f "fuzz/${name}.dict" ] && options+=(-dict="fuzz/${name}.dict")
  corpus="${corpora}/${name}"
  mkdir -p "${corpus}"
  seeds=()
  [ -d "fuzz/seeds/${name}" ] && seeds+=("fuzz/seeds/${name}")
  log="${logs}/${name}.log"
  before=$(ls "${artifacts}" | grep -c "^${name}-" || true)
  echo "=== fuzz: ${name} for ${seconds} s" >&2
  "${target}" "${options[@]}" "${corpus}" "${seeds[@]}" >"${log}" 2>&1 || true
  after=$(ls "${artifacts}" | grep -c "^${name}-" || true)
  findings=$((after - before))
  execs=$(grep -oE "stat::number_of_executed_units: *[0-9]+" "${log}" | grep -oE "[0-9]+$" | tail -n1)
  rss=$(grep -oE "stat::peak_rss_mb: *[0-9]+" "${log}" | grep -oE "[0-9]+$" | tail -n1)
  # A run that stopped on a finding prints no final stats: its last status
  # line tells how far it got.
  last=$(grep -E "^#[0-9]+" "${log}" | tail -n1 || true)
  [ -n "${execs}" ] || execs=$(sed -nE 's/^#([0-9]+).*/\1/p' <<<"${last}")
  [ -n "${rss}" ] || rss=$(sed -nE 's/.*rss: ([0-9]+)Mb.*/\1/p' <<<"${last}")
  cov=$(sed -nE 's/.*cov: ([0-9]+).*/\1/p' <<<"${last}")
  ft=$(sed -nE 's/.*ft: ([0-9]+).*/\1/p' <<<"${last}")
  execs=${execs:-0}
  total_execs=$((total_execs + execs))
  total_findings=$((total_findings + findings))
  rows+=("$(printf '%-46s %14s %7s %7s %8s %9s' "${name}" "${execs}" "${cov:-?}" "${ft:-?}" "${rss:-?}" "${findings}")")
  if [ "${findings}" -gt 0 ]; then
    echo "fuzz: ${name} found a problem (see ${log}):" >&2
    grep -E "ERROR|runtime error|==[0-9]+==|expectation|SUMMARY" "${log}" | head -n 10 >&2 || true
  fi
done

printf '%-46s %14s %7s %7s %8s %9s\n' target executions cov ft "rss(MB)" findings
for row in "${rows[@]}"; do echo "${row}"; done
printf '%-46s %14s %7s %7s %8s %9s\n' "total (${#targets[@]} targets, ${seconds} s each)" \
  "${total_execs}" "" "" "" "${total_findings}"
[ "${total_findings}" -eq 0 ]
