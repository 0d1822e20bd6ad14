# Makes the package, unpacks it into a new folder, and builds and runs hosts of both widths, in C and in C++, with nothing
# but it.
#   cmake -D BUILD=... -D OTHER=... -D WORK=... -D VERSION=... -D HOST_SOURCE=... -D PKG_CONFIG=... -D TOOLCHAINS=...
#         -D CONFIGURE=... -D LAUNCHER=... -P check_package.cmake
# OTHER is the build of the other width. TOOLCHAINS is, for MinGW, a list of the prefixes of both compilers, 32 bits first.
# PKG_CONFIG may be empty: what needs it is left out.
cmake_minimum_required(VERSION 3.25)
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

foreach(build IN ITEMS ${BUILD} ${OTHER})
  if(NOT EXISTS ${build}/bin/kwpreview.exe)
    message("skipped: needs a build in ${build}")
    return()
  endif()
endforeach()
file(REMOVE_RECURSE ${WORK})
run(${CMAKE_CPACK_COMMAND} --config ${BUILD}/CPackConfig.cmake -B ${WORK})
set(name kwdialogs-${VERSION}-windows)
file(ARCHIVE_EXTRACT INPUT ${WORK}/${name}.zip DESTINATION ${WORK}/unpacked)
set(package ${WORK}/unpacked/${name})

# The page names every file, or its folder, and no file that is not there.
file(READ ${package}/README.md page)
file(GLOB_RECURSE files RELATIVE ${package} ${package}/*)
foreach(file IN LISTS files)
  string(REGEX REPLACE "^((bindings/[a-z]+|samples|docs)/).*" "\\1" file ${file})
  string(FIND "${page}" "`${file}`" place)
  if(place EQUAL -1 AND NOT file MATCHES "^(CHANGELOG.md|LICENSE)$")
    message(SEND_ERROR "README.md does not name ${file}")
  endif()
endforeach()
string(REGEX MATCHALL "`[^` \\]*/[^` \\]*`" named "${page}")
foreach(file IN LISTS named)
  string(REPLACE "`" "" file ${file})
  if(NOT EXISTS ${package}/${file})
    message(SEND_ERROR "the package lacks ${file}")
  endif()
endforeach()
file(GLOB_RECURSE texts ${package}/lib/* ${package}/*.pc)
foreach(text IN LISTS texts)  # it has to work wherever it is unpacked
  file(STRINGS ${text} lines REGEX "${BUILD}")
  if(lines)
    message(SEND_ERROR "${text} names the folder of the build")
  endif()
endforeach()

foreach(width IN ITEMS x86 x64)
  set(bin ${package}/${width}/bin)
  set(compilers)
  if(TOOLCHAINS)
    list(POP_FRONT TOOLCHAINS prefix)
    set(compilers -D CMAKE_SYSTEM_NAME=Windows -D CMAKE_C_COMPILER=${prefix}gcc -D CMAKE_CXX_COMPILER=${prefix}g++
      -D CMAKE_RC_COMPILER=${prefix}windres)
  endif()
  if(prefix)
    execute_process(COMMAND ${prefix}objdump -ht ${bin}/kwdialogs.dll OUTPUT_VARIABLE dll COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ${prefix}objdump -ht ${bin}/kwdialogs.dll.debug OUTPUT_VARIABLE symbols
      COMMAND_ERROR_IS_FATAL ANY)
    if(NOT dll MATCHES "gnu_debuglink" OR dll MATCHES "debug_info|DllMain" OR NOT symbols MATCHES "debug_info.*DllMain")
      message(SEND_ERROR "${width}: the symbols are not where debuggers find them")
    endif()
  endif()

  set(host ${WORK}/host_${width})
  run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${host} -D CMAKE_PREFIX_PATH=${package}
    -D WANTED_VERSION=${VERSION} -D HOST_SOURCE=${HOST_SOURCE} ${CONFIGURE} ${compilers})
  run(${CMAKE_COMMAND} --build ${host})
  foreach(program IN ITEMS host_c host_cpp)
    run(${LAUNCHER} ${host}/${program}.exe)
  endforeach()

  if(PKG_CONFIG AND prefix)
    set(ENV{PKG_CONFIG_LIBDIR} ${package}/${width}/lib/pkgconfig)
    execute_process(COMMAND ${PKG_CONFIG} --cflags --libs "kwdialogs = ${VERSION}" OUTPUT_VARIABLE flags
      OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    separate_arguments(flags UNIX_COMMAND "${flags}")
    run(${prefix}gcc ${HOST_SOURCE} -o ${bin}/pkg_config_host.exe ${flags})
    run(${LAUNCHER} ${bin}/pkg_config_host.exe)
  endif()
  if(NOT TOOLCHAINS AND NOT prefix)
    break()  # one prompt of MSVC builds for one width
  endif()
endforeach()

# A package of one width says what it lacks.
if(prefix)
  file(REMOVE_RECURSE ${package}/x64 ${WORK}/host_x64)
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK}/host_x64 -D CMAKE_PREFIX_PATH=${package}
    -D WANTED_VERSION=${VERSION} -D HOST_SOURCE=${HOST_SOURCE} ${CONFIGURE} ${compilers}
    OUTPUT_QUIET ERROR_VARIABLE complaint)
  string(REGEX REPLACE "[ \n]+" " " complaint "${complaint}")
  if(NOT complaint MATCHES "has nothing for this width")
    message(SEND_ERROR "not said clearly: ${complaint}")
  endif()
endif()
