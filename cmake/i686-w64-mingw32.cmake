# Builds 32-bit Windows programs on Linux with the distribution's MinGW-w64 compiler.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(triple i686-w64-mingw32)
# SSE2 arithmetic gives the same doubles at every optimisation level (the x87 unit keeps extra bits), and the same as in
# 64 bits. Windows promises a stack aligned to 4 bytes only; functions that need more for SSE align it themselves.
set(arch_flags "-march=i686 -mtune=generic -msse2 -mfpmath=sse -mstackrealign")
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
