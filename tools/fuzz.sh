#!/bin/bash
# Looks for inputs that harm: feeds the targets of tests/fuzz with what their seeds grow into.
#
#   tools/fuzz.sh [TARGET...] [--seconds N] [--runs N]    all targets, 60 seconds each
#
# What an earlier call has learned is kept in build/fuzz and used again. Names what it finds with the command that repeats
# it, and fails then. Copy a finding to tests/fuzz/findings/TARGET: ctest replays it from then on.
set -euo pipefail
cd "$(dirname "$(dirname "$(realpath "${BASH_SOURCE[0]}")")")"
program=build/native/bin/kwfuzz
work=build/fuzz

seconds=60 runs=-1 targets=()
while [ $# -gt 0 ]; do
  case $1 in
    --seconds | --runs) printf -v "${1#--}" %s "${2:?$1 needs a number}" && shift ;;
    -*) echo "fuzz.sh: unknown argument $1" >&2 && exit 2 ;;
    *) targets+=("$1") ;;
  esac
  shift
done
tools/build.sh native >/dev/null
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <($program || true)

run_one() {  # TARGET
  local target=$1 corpus=$work/$1/corpus found=$work/$1/found log=$work/$1/log code=0 file
  mkdir -p "$corpus" "$found"
  TIMEFORMAT=%U
  { time $program --target="$target" -dict=tests/fuzz/formats.dict -max_total_time="$seconds" -runs="$runs" -timeout=5 \
    -rss_limit_mb=1024 -print_final_stats=1 -artifact_prefix="$found/" \
    "$corpus" "build/native/tests/fuzz/seeds/$target" >"$log" 2>&1; } 2>"$log.time" || code=$?
  awk -v target="$target" -v time="$(cat "$log.time")" '/stat::number_of_executed_units/ {runs = $2}
    /stat::peak_rss_mb/ {memory = $2} / cov: / {sub(/.* cov: /, ""); cov = $1}
    END {printf "%-12s %10d runs %8d a processor second %6d edges %5d MB\n", target, runs, runs / (time + 0.001), cov, memory}' "$log"
  [ $code != 0 ] || return 0
  file=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n1)
  grep -m1 -E 'ERROR: |runtime error: |SUMMARY: ' "$log" || tail -n5 "$log"
  echo "FOUND in $target. To repeat it: $program --target=$target ${file:-(see $log)}"
  return 1
}
export -f run_one
export program work seconds runs
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'run_one {}'
