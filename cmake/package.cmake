# What a host developer gets: kwdialogs-VERSION-win32.zip, made by ./package.sh or by the target "package".
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# ---- The DLL and its symbols

# The import libraries stand in src/ and cmake/import_libraries.cmake.
install(TARGETS kwdialogs)
install(FILES include/kwdialogs.h TYPE INCLUDE)
if(MSVC)
  install(FILES $<TARGET_PDB_FILE:kwdialogs> TYPE BIN)
else()
  # The symbols go into a file of their own, which the DLL names, so that debuggers find it.
  set(symbols $<TARGET_FILE:kwdialogs>.debug)
  add_custom_command(OUTPUT kwdialogs.symbols
    COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:kwdialogs> ${symbols}
    COMMAND ${CMAKE_COMMAND} -E touch kwdialogs.symbols
    DEPENDS kwdialogs BYPRODUCTS ${PROJECT_BINARY_DIR}/bin/kwdialogs.dll.debug
    VERBATIM)
  add_custom_target(kwdialogs_symbols ALL DEPENDS kwdialogs.symbols)
  install(FILES ${symbols} TYPE BIN)
  install(CODE "
    set(dll \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/kwdialogs.dll\")
    execute_process(COMMAND \"${CMAKE_OBJCOPY}\" --strip-debug --add-gnu-debuglink=\${dll}.debug \${dll}
      COMMAND_ERROR_IS_FATAL ANY)")
endif()

# ---- How builds find it

configure_package_config_file(cmake/package/kwdialogsConfig.cmake.in ${PROJECT_BINARY_DIR}/kwdialogsConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kwdialogs
  PATH_VARS CMAKE_INSTALL_BINDIR CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kwdialogsConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kwdialogsConfig.cmake ${PROJECT_BINARY_DIR}/kwdialogsConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/kwdialogs)
configure_file(cmake/package/kwdialogs.pc.in kwdialogs.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kwdialogs.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# ---- Programs, samples and papers

foreach(program IN ITEMS kwdemo kwpreview)
  install(TARGETS ${program})
  if(NOT MSVC)
    install(CODE "
      execute_process(COMMAND \"${CMAKE_STRIP}\"
        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/${program}.exe\" COMMAND_ERROR_IS_FATAL ANY)")
  endif()
endforeach()
install(DIRECTORY samples bindings docs DESTINATION . OPTIONAL PATTERN __pycache__ EXCLUDE)
install(FILES README.md CHANGELOG.md LICENSE DESTINATION .)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME kwdialogs)
set(CPACK_PACKAGE_VENDOR "the kwdialogs developers")
set(CPACK_PACKAGE_FILE_NAME kwdialogs-${PROJECT_VERSION}-win32)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
