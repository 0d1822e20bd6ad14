# What a host developer gets: kwdialogs-VERSION-windows.zip, made by ./package.sh. What depends on the width stands in
# x86/ and x64/; the build of one width packs that of the other too.
set(KWDIALOGS_OTHER_WIDTH "" CACHE STRING "Build folder of the other width, which goes into the same package")
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(width x86)
else()
  set(width x64)
endif()
set(CMAKE_INSTALL_BINDIR ${width}/bin)
set(CMAKE_INSTALL_LIBDIR ${width}/lib)
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
add_custom_target(kwdialogs_shipped DEPENDS kwdialogs)  # all that the package holds of this width

# ---- The DLL and its symbols

install(TARGETS kwdialogs)
if(NOT MSVC AND KWDIALOGS_LLVM_DLLTOOL)
  install(FILES ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/kwdialogs.lib TYPE LIB)
endif()
install(FILES include/kwdialogs.h TYPE INCLUDE)
if(MSVC)
  install(FILES $<TARGET_PDB_FILE:kwdialogs> TYPE BIN)
else()
  # All symbols go into a file of their own, which the DLL names, so that debuggers find it.
  set(symbols $<TARGET_FILE:kwdialogs>.debug)
  add_custom_command(OUTPUT kwdialogs.symbols
    COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:kwdialogs> ${symbols}
    COMMAND ${CMAKE_COMMAND} -E touch kwdialogs.symbols
    DEPENDS kwdialogs BYPRODUCTS ${PROJECT_BINARY_DIR}/bin/kwdialogs.dll.debug
    VERBATIM)
  add_custom_target(kwdialogs_symbols ALL DEPENDS kwdialogs.symbols)
  add_dependencies(kwdialogs_shipped kwdialogs_symbols)
  install(FILES ${symbols} TYPE BIN)
  install(CODE "
    set(dll \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/kwdialogs.dll\")
    execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --strip-all --add-gnu-debuglink=\${dll}.debug \${dll}
      COMMAND_ERROR_IS_FATAL ANY)")
endif()

# ---- How builds find it

configure_package_config_file(cmake/package/kwdialogsConfig.cmake.in ${PROJECT_BINARY_DIR}/kwdialogsConfig.cmake
  INSTALL_DESTINATION lib/cmake/kwdialogs)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kwdialogsConfigVersion.cmake
  COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)  # the configuration file itself looks at the width
install(FILES ${PROJECT_BINARY_DIR}/kwdialogsConfig.cmake ${PROJECT_BINARY_DIR}/kwdialogsConfigVersion.cmake
  DESTINATION lib/cmake/kwdialogs)
configure_file(cmake/package/kwdialogs.pc.in kwdialogs.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kwdialogs.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# ---- Programs, samples and papers

foreach(program IN ITEMS kwdemo kwpreview)
  if(TARGET ${program})
    install(TARGETS ${program})
    add_dependencies(kwdialogs_shipped ${program})
    if(NOT MSVC)
      install(CODE "
        execute_process(COMMAND \"${CMAKE_STRIP}\"
          \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/${program}.exe\" COMMAND_ERROR_IS_FATAL ANY)")
    endif()
  endif()
endforeach()
install(DIRECTORY samples bindings docs DESTINATION . OPTIONAL PATTERN __pycache__ EXCLUDE)
install(FILES cmake/package/README.md CHANGELOG.md LICENSE DESTINATION .)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME kwdialogs)
set(CPACK_PACKAGE_VENDOR "the kwdialogs developers")
set(CPACK_PACKAGE_FILE_NAME kwdialogs-${PROJECT_VERSION}-windows)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_CMAKE_PROJECTS "${PROJECT_BINARY_DIR};kwdialogs;ALL;/")
if(KWDIALOGS_OTHER_WIDTH)
  list(APPEND CPACK_INSTALL_CMAKE_PROJECTS "${KWDIALOGS_OTHER_WIDTH};kwdialogs;ALL;/")
endif()
include(CPack)
