#!/bin/bash
# Configures and builds a preset: tools/build.sh [PRESET [TARGET...]]. Speaks of what it compiles, and of the rest only
# on failure.
set -euo pipefail
cd "$(dirname "$(dirname "$(realpath "${BASH_SOURCE[0]}")")")"
preset=${1:-mingw}
log=$(mktemp)
trap 'rm -f "$log"' EXIT
cmake --preset "$preset" >"$log" 2>&1 || {
  cat "$log" >&2
  exit 1
}
set -- "${@:2}"
cmake --build --preset "$preset" ${1:+--target "$@"}
