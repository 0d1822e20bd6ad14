#!/bin/bash
# Builds everything and makes build/mingw/kwdialogs-VERSION-win32.zip: the DLL, its symbols, header and import
# libraries, the programs, samples, bindings and the guide. Installs what is missing first (tools/setup.sh).
set -euo pipefail
cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")"
tools/setup.sh
tools/build.sh mingw
cd build/mingw
cpack
