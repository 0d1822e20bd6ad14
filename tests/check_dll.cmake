# Fails unless the DLL exports exactly the documented names and needs nothing that Windows does not bring along.
#   cmake -D OBJDUMP=... -D DLL=... -P check_dll.cmake
cmake_minimum_required(VERSION 3.25)

set(wanted_exports kwDlgBoxCtrl kwSelectDirectryName kwSelectFileGUI kwSelectFileName)
set(system_dlls advapi32 comctl32 comdlg32 gdi32 kernel32 msimg32 msvcrt ole32 shell32 shlwapi user32 version)

execute_process(COMMAND ${OBJDUMP} -p ${DLL} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "[][]" "|" headers "${headers}")  # brackets keep CMake's lists together

# "|Ordinal/Name Pointer| Table", perhaps a heading, then "<tab>| 0| ... name" for each export and an empty line.
string(REGEX MATCH "\\|Ordinal/Name Pointer\\| Table[^\n]*\n([^\n]+\n)*" name_table "${headers}")
string(REGEX MATCHALL "\t\\|[^\n]*\n" lines "${name_table}")
set(exports)
foreach(line IN LISTS lines)
  string(REGEX REPLACE ".* ([^ ]+)\n" "\\1" name "${line}")
  list(APPEND exports ${name})
endforeach()
list(SORT exports)
if(NOT exports STREQUAL wanted_exports)
  message(SEND_ERROR "exports: ${exports}\nwanted: ${wanted_exports}")
endif()

string(REGEX MATCHALL "DLL Name: [^\n]+" lines "${headers}")
if(NOT lines)
  message(SEND_ERROR "no imports found in the output of ${OBJDUMP}")
endif()
foreach(line IN LISTS lines)
  string(REGEX REPLACE "DLL Name: (.*)\\.[dD][lL][lL]" "\\1" name "${line}")
  string(TOLOWER "${name}" name)
  if(NOT name IN_LIST system_dlls)
    message(SEND_ERROR "needs ${name}.dll, which is not one of the system's: ${system_dlls}")
  endif()
endforeach()
message("exports: ${exports}")
