# What the toolchain files of both widths share; they set `triple`, and `arch_flags` where they need some.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${triple}-gcc)
set(CMAKE_CXX_COMPILER ${triple}-g++)
set(CMAKE_RC_COMPILER ${triple}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_C_FLAGS_INIT "${arch_flags}")
set(CMAKE_CXX_FLAGS_INIT "${arch_flags}")

# The programs carry their C and C++ runtime with them.
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -Wl,--nxcompat -Wl,--dynamicbase -Wl,--gc-sections")
endforeach()
