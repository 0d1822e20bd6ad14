# Builds 32-bit Windows programs on Linux with the distribution's MinGW-w64 compiler.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(triple i686-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc)
set(CMAKE_CXX_COMPILER ${triple}-g++)
set(CMAKE_RC_COMPILER ${triple}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# SSE2 arithmetic gives the same doubles at every optimisation level (the x87 unit keeps extra bits).
# Windows promises a stack aligned to 4 bytes only; functions that need more for SSE align it themselves.
set(arch_flags "-march=i686 -mtune=generic -msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_C_FLAGS_INIT "${arch_flags}")
set(CMAKE_CXX_FLAGS_INIT "${arch_flags}")

# The programs carry their C and C++ runtime with them.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -Wl,--nxcompat -Wl,--dynamicbase -Wl,--gc-sections")
endforeach()
