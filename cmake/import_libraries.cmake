# Import libraries for both compiler families, made from frame/kwdialogs.imports.def right after the DLL is linked.
#
# A host's compiler asks for _kwSelectFileName@16, the DLL exports kwSelectFileName. The linker's own import library
# knows only the exported spelling, so dlltool makes one that maps the first to the second.
if(MSVC)
  return()  # link.exe makes exactly that from the .def file by itself
endif()

set(imports ${CMAKE_CURRENT_SOURCE_DIR}/frame/kwdialogs.imports.def)
get_filename_component(bin_dir ${CMAKE_CXX_COMPILER} DIRECTORY)
find_program(KWDIALOGS_DLLTOOL NAMES i686-w64-mingw32-dlltool HINTS ${bin_dir} REQUIRED)
find_program(KWDIALOGS_LLVM_DLLTOOL NAMES llvm-dlltool
  DOC "Makes kwdialogs.lib for MSVC hosts (of the llvm package); without it there is no such library")

target_link_options(kwdialogs PRIVATE -Wl,--enable-stdcall-fixup)
set_property(TARGET kwdialogs APPEND PROPERTY LINK_DEPENDS ${imports} ${CMAKE_CURRENT_SOURCE_DIR}/frame/kwdialogs.def)
add_custom_command(TARGET kwdialogs POST_BUILD
  COMMAND ${KWDIALOGS_DLLTOOL} --kill-at -d ${imports} -D kwdialogs.dll -l $<TARGET_LINKER_FILE:kwdialogs>
  VERBATIM)

if(KWDIALOGS_LLVM_DLLTOOL)
  set(msvc_library ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/kwdialogs.lib)
  add_custom_command(TARGET kwdialogs POST_BUILD
    COMMAND ${KWDIALOGS_LLVM_DLLTOOL} -m i386 -k -d ${imports} -D kwdialogs.dll -l ${msvc_library}
    BYPRODUCTS ${msvc_library}
    VERBATIM)
  install(FILES ${msvc_library} TYPE LIB)
else()
  message(WARNING "llvm-dlltool was not found: kwdialogs.lib, the import library for MSVC hosts, is not made.")
endif()
