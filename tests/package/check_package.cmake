# Makes the package, unpacks it into a new folder, and builds and runs hosts in C and in C++ with nothing but it.
#   cmake -D BUILD=... -D WORK=... -D VERSION=... -D HOST_SOURCE=... -D CONFIGURE=... -D LAUNCHER=... -D CC=...
#         -D OBJDUMP=... -D PKG_CONFIG=... -P check_package.cmake
# CONFIGURE holds the arguments that choose the compiler. PKG_CONFIG and OBJDUMP may be empty: what needs them is left
# out.
cmake_minimum_required(VERSION 3.25)
function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_CPACK_COMMAND} --config ${BUILD}/CPackConfig.cmake -B ${WORK})
set(name kwdialogs-${VERSION}-win32)
file(ARCHIVE_EXTRACT INPUT ${WORK}/${name}.zip DESTINATION ${WORK}/unpacked)
set(package ${WORK}/unpacked/${name})

foreach(file IN ITEMS
    LICENSE README.md CHANGELOG.md bin/kwdialogs.dll bin/kwdemo.exe bin/kwpreview.exe include/kwdialogs.h
    lib/kwdialogs.lib lib/cmake/kwdialogs/kwdialogsConfig.cmake lib/pkgconfig/kwdialogs.pc samples/mounting_plate.dxf
    docs/guide.md bindings/python/kwdialogs.py)
  if(NOT EXISTS ${package}/${file})
    message(SEND_ERROR "the package lacks ${file}")
  endif()
endforeach()
file(GLOB_RECURSE texts ${package}/lib/*.cmake ${package}/lib/*.pc)
foreach(text IN LISTS texts)  # it has to work wherever it is unpacked
  file(STRINGS ${text} lines REGEX "${BUILD}")
  if(lines)
    message(SEND_ERROR "${text} names the folder of the build")
  endif()
endforeach()

if(OBJDUMP)
  execute_process(COMMAND ${OBJDUMP} -h ${package}/bin/kwdialogs.dll OUTPUT_VARIABLE dll COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${OBJDUMP} -h ${package}/bin/kwdialogs.dll.debug OUTPUT_VARIABLE symbols
    COMMAND_ERROR_IS_FATAL ANY)
  if(NOT dll MATCHES "gnu_debuglink" OR dll MATCHES "debug_info" OR NOT symbols MATCHES "debug_info")
    message(SEND_ERROR "the symbols are not where debuggers find them")
  endif()
endif()

run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK}/host -D CMAKE_PREFIX_PATH=${package}
  -D WANTED_VERSION=${VERSION} -D HOST_SOURCE=${HOST_SOURCE} ${CONFIGURE})
run(${CMAKE_COMMAND} --build ${WORK}/host)
foreach(host IN ITEMS host_c host_cpp)
  run(${LAUNCHER} ${WORK}/host/${host}.exe)
endforeach()

if(PKG_CONFIG)
  set(ENV{PKG_CONFIG_LIBDIR} ${package}/lib/pkgconfig)
  execute_process(COMMAND ${PKG_CONFIG} --cflags --libs "kwdialogs = ${VERSION}" OUTPUT_VARIABLE flags
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(${CC} ${HOST_SOURCE} -o ${package}/bin/pkg_config_host.exe ${flags})
  run(${LAUNCHER} ${package}/bin/pkg_config_host.exe)
endif()
