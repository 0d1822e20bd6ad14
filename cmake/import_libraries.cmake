# Import libraries for both compiler families, made right after the DLL is linked.
#
# The DLL exports kwSelectFileName. A 64-bit compiler asks for that name, a 32-bit one for _kwSelectFileName@16; the
# linker's own import library knows only the exported spelling, so dlltool makes one that maps the one to the other.
if(MSVC)
  return()  # link.exe makes exactly that from the .def file by itself
endif()

if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(imports ${CMAKE_CURRENT_SOURCE_DIR}/frame/kwdialogs.imports.def)
  set(machine i386)
  target_link_options(kwdialogs PRIVATE -Wl,--enable-stdcall-fixup)
else()
  set(imports ${CMAKE_CURRENT_SOURCE_DIR}/frame/kwdialogs.def)
  set(machine i386:x86-64)
endif()
get_filename_component(bin_dir ${CMAKE_CXX_COMPILER} DIRECTORY)
get_filename_component(prefix ${CMAKE_CXX_COMPILER} NAME)
string(REGEX REPLACE "g\\+\\+.*$" "" prefix ${prefix})
find_program(KWDIALOGS_DLLTOOL NAMES ${prefix}dlltool HINTS ${bin_dir} REQUIRED)
find_program(KWDIALOGS_LLVM_DLLTOOL NAMES llvm-dlltool
  DOC "Makes kwdialogs.lib for MSVC hosts (of the llvm package); without it there is no such library")

set_property(TARGET kwdialogs APPEND PROPERTY LINK_DEPENDS ${imports} ${CMAKE_CURRENT_SOURCE_DIR}/frame/kwdialogs.def)
add_custom_command(TARGET kwdialogs POST_BUILD
  COMMAND ${KWDIALOGS_DLLTOOL} --kill-at -d ${imports} -D kwdialogs.dll -l $<TARGET_LINKER_FILE:kwdialogs>
  VERBATIM)

if(KWDIALOGS_LLVM_DLLTOOL)
  set(msvc_library ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/kwdialogs.lib)
  add_custom_command(TARGET kwdialogs POST_BUILD
    COMMAND ${KWDIALOGS_LLVM_DLLTOOL} -m ${machine} -k -d ${imports} -D kwdialogs.dll -l ${msvc_library}
    BYPRODUCTS ${msvc_library}
    VERBATIM)
else()
  message(WARNING "llvm-dlltool was not found: kwdialogs.lib, the import library for MSVC hosts, is not made.")
endif()
