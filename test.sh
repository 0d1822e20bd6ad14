#!/bin/bash
# Builds everything and runs every test: the portable part's natively, with sanitizers (seconds), then all of them under
# Wine, in English and in Japanese. Installs what is missing first (tools/setup.sh).
#
#   ./test.sh [CTEST ARGUMENTS...]     for instance: ./test.sh -R preview
#
#   KWDIALOGS_PRESET=mingw-debug       other presets of CMakePresets.json than "native mingw"
set -euo pipefail
cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")"
tools/setup.sh

# shellcheck source=tools/places.sh
. tools/places.sh
for compiler in fpc mcs; do
  command -v $compiler >/dev/null || echo "test.sh: skipped: a binding's test needs $compiler (tools/setup.sh --checks)"
done
ran=no
for preset in ${KWDIALOGS_PRESET:-native mingw}; do
  tools/build.sh "$preset"
  ! ctest --test-dir "build/$preset" -N "$@" | grep -q '^Total Tests: 0$' || continue
  jobs=$(nproc)
  [[ $preset = native* || ! -e "$machine_wine" ]] || jobs=1  # the machine's own Wine runs one program at a time in a language
  ctest --test-dir "build/$preset" --output-on-failure -j "$jobs" "$@"
  ran=yes
done
[ $ran = yes ] || {
  echo "test.sh: no test matches" >&2
  exit 1
}
