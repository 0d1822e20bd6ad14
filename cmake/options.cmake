# kwdialogs_options: how the project's own sources are compiled and linked (GoogleTest's are not).
add_library(kwdialogs_options INTERFACE)

# Windows 7 is the oldest system. The A functions are called by name, so UNICODE stays undefined.
if(WIN32)
  target_compile_definitions(kwdialogs_options INTERFACE WINVER=0x0601 _WIN32_WINNT=0x0601 NOMINMAX)
endif()

if(MSVC)
  target_compile_definitions(kwdialogs_options INTERFACE _CRT_SECURE_NO_WARNINGS _CRT_NONSTDC_NO_WARNINGS)
  target_compile_options(kwdialogs_options INTERFACE
    $<$<COMPILE_LANGUAGE:C,CXX>:/W4 /WX /utf-8>
    $<$<COMPILE_LANGUAGE:CXX>:/permissive- /Zc:__cplusplus /EHsc>)
else()
  target_compile_options(kwdialogs_options INTERFACE
    $<$<COMPILE_LANGUAGE:C,CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wno-sign-conversion -Werror>
    $<$<COMPILE_LANGUAGE:C,CXX>:-ffunction-sections -fdata-sections>)
  # No -fstack-protector: this compiler's runtime draws its cookie from a crypto provider, which would be loaded
  # while the DLL is attached, under the loader lock.
  if(KWDIALOGS_TRAP_UNDEFINED)
    # Windows has no sanitizer runtime for this compiler, so a finding is an illegal instruction. Alignment is left out:
    # Windows enters a callback with a stack aligned to 4 bytes, and the compiler then leaves a local record with doubles
    # at such an address wherever no instruction minds, but reports it all the same.
    target_compile_options(kwdialogs_options INTERFACE
      $<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=undefined -fno-sanitize=alignment -fsanitize-undefined-trap-on-error>)
    target_compile_definitions(kwdialogs_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
  endif()
endif()
