#!/bin/bash
# Builds what is shipped, for both widths, and makes build/kwdialogs-VERSION-windows.zip: the DLLs, their symbols, header
# and import libraries, the programs, samples, bindings and the guide. Installs what is missing first (tools/setup.sh).
set -euo pipefail
cd "$(dirname "$(realpath "${BASH_SOURCE[0]}")")"
tools/setup.sh
tools/build.sh mingw kwdialogs_shipped
tools/build.sh mingw64 kwdialogs_shipped
cd build
cpack --config mingw/CPackConfig.cmake
rm -r _CPack_Packages
