#!/usr/bin/env bash
# valgrind memcheck of the release build: the main job (`zelvar-sim` with no
# arguments) and `zelvar-sim validate` on the plug-in, every check's child
# process included. Passes when no process has an error or a definitely lost
# block; prints one line per process log and the logs of those that fail.
#   MEMCHECK_BUILD_DIR   the release build (default build/release)
#   MEMCHECK_NO_BUILD=1  take the programs as they are built
#   MEMCHECK_LONG_RUN    seconds of data of validate's long run (default 60)
set -euo pipefail
cd "$(dirname "$0")/.."

build="${MEMCHECK_BUILD_DIR:-build/release}"
long_run="${MEMCHECK_LONG_RUN:-60}"
jobs=$(nproc 2>/dev/null || echo 2)

if ! command -v valgrind >/dev/null 2>&1; then
  apt-get install -y --no-install-recommends valgrind >/dev/null
fi
if [ "${MEMCHECK_NO_BUILD:-0}" != 1 ]; then
  cmake --preset release -B "${build}" >/dev/null
  cmake --build "${build}" --target zelvar-sim frequency_measurement -j "${jobs}" >/dev/null
fi
sim="${build}/host_sim/zelvar-sim"
plugin="${build}/software_channels/frequency_measurement/frequency_measurement.plugin"

logs="${build}/memcheck"
rm -rf "${logs}"
mkdir -p "${logs}"
# A check's child ends with _exit, which valgrind still follows to its leak
# summary; only definitely lost blocks count as errors, since a child that
# skips the static destructors on purpose leaves reachable ones behind.
memcheck=(valgrind --tool=memcheck --leak-check=full --errors-for-leak-kinds=definite
          --error-exitcode=1 --trace-children=yes --num-callers=30)

status=0
echo "=== memcheck: zelvar-sim (the main job)"
"${memcheck[@]}" --log-file="${logs}/main.%p.log" "${sim}" >"${logs}/main.out" 2>&1 || status=1
echo "=== memcheck: zelvar-sim validate (every check, long run ${long_run} s)"
# valgrind runs the plug-in some fifty times slower: the time limit grows to match.
"${memcheck[@]}" --log-file="${logs}/validate.%p.log" "${sim}" validate "${plugin}" --seed 1 \
  --long-run "${long_run}" --time-limit 1200 >"${logs}/validate.out" 2>&1 || status=1
tail -n 1 "${logs}/validate.out"
grep -E "^FAIL" "${logs}/validate.out" && status=1

printf '%-28s %8s %18s\n' process errors "definitely lost"
for log in "${logs}"/*.log; do
  errors=$(sed -nE 's/.*ERROR SUMMARY: ([0-9]+) errors.*/\1/p' "${log}" | tail -n 1)
  lost=$(sed -nE 's/.*definitely lost: ([0-9,]+) bytes.*/\1/p' "${log}" | tail -n 1 | tr -d ,)
  printf '%-28s %8s %18s\n' "$(basename "${log}" .log)" "${errors:-?}" "${lost:-0}"
  if [ "${errors:-1}" != 0 ] || [ "${lost:-0}" != 0 ]; then
    status=1
    sed -n '1,80p' "${log}"
  fi
done
echo "=== memcheck: $(ls "${logs}"/*.log | wc -l) processes, $([ "${status}" = 0 ] && echo clean || echo "NOT clean")"
exit "${status}"
