#!/bin/bash
# Builds everything and runs every test: of the 32-bit library in English and in Japanese, of the 64-bit one in English.
# Installs what is missing first (tools/setup.sh).
#
#   ./test.sh [CTEST ARGUMENTS...]     for instance: ./test.sh -R preview
#
#   KWDIALOGS_PRESET=mingw-debug       one preset of CMakePresets.json instead of mingw and mingw64
set -euo pipefail
cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")"
read -ra presets <<<"${KWDIALOGS_PRESET:-mingw mingw64}"
tools/setup.sh
for preset in "${presets[@]}"; do tools/build.sh "$preset"; done

# shellcheck source=tools/places.sh
. tools/places.sh
for compiler in fpc mcs; do
  command -v $compiler >/dev/null || echo "test.sh: skipped: a binding's test needs $compiler (tools/setup.sh --checks)"
done
jobs=$(nproc)
[ ! -e "$machine_wine" ] || jobs=1  # the machine's own Wine runs one program at a time in a language
code=0
without=error  # a selection without tests is a mistake, but it may hold none of the 64-bit ones
for preset in "${presets[@]}"; do
  ctest --test-dir "build/$preset" --output-on-failure --no-tests=$without -j "$jobs" "$@" || code=$?
  without=ignore
done
exit $code
