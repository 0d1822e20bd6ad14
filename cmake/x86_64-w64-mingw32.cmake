# Builds 64-bit Windows programs on Linux with the distribution's MinGW-w64 compiler.
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(triple x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
