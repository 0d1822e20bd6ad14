#!/bin/bash
# Builds everything and runs every test, in English and in Japanese. Installs what is missing first (tools/setup.sh).
#
#   ./test.sh [CTEST ARGUMENTS...]     for instance: ./test.sh -R preview
#
#   KWDIALOGS_PRESET=mingw-debug       another preset of CMakePresets.json than mingw
set -euo pipefail
cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")"
tools/setup.sh
tools/build.sh "${KWDIALOGS_PRESET:-mingw}"

# shellcheck source=tools/places.sh
. tools/places.sh
for compiler in fpc mcs; do
  command -v $compiler >/dev/null || echo "test.sh: skipped: a binding's test needs $compiler (tools/setup.sh --checks)"
done
jobs=$(nproc)
[ ! -e "$machine_wine" ] || jobs=1  # the machine's own Wine runs one program at a time in a language
exec ctest --test-dir "build/${KWDIALOGS_PRESET:-mingw}" --output-on-failure --no-tests=error -j "$jobs" "$@"
