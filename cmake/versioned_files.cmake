# Program files whose one content is a version resource, made at build time
# with the mingw-w64 resource compiler and linker, for the machines and tests
# that read versions from them. Nothing binary is kept in the sources.
find_program(VRX_WINDRES x86_64-w64-mingw32-windres)
find_program(VRX_MINGW_GCC x86_64-w64-mingw32-gcc)
find_program(VRX_MINGW32_GCC i686-w64-mingw32-gcc)
if(VRX_WINDRES AND VRX_MINGW_GCC)
  set(VRX_CAN_MAKE_VERSIONED_FILES TRUE)
else()
  set(VRX_CAN_MAKE_VERSIONED_FILES FALSE)
endif()

# vrx_versioned_file(OUTPUT file [FILE_VERSION text] [DESCRIPTION text]
#                    [PRODUCT text] [NO_TRANSLATION] [I386]
#                    [SCRIPT file.rc] [NO_RESOURCES])
# A value whose text is not given is left out of the string table;
# NO_TRANSLATION leaves out the table of languages and code pages. An
# OUTPUT ending in .dll gives a DLL, anything else a program; I386 makes it
# 32-bit (VRX_MINGW32_GCC must have been found). The texts go into the
# resource script as they are: no double quotes, no backslashes. SCRIPT
# takes the resources from a script of one's own instead; NO_RESOURCES
# makes a file without any.
function(vrx_versioned_file)
  cmake_parse_arguments(PE "NO_TRANSLATION;I386;NO_RESOURCES"
    "OUTPUT;FILE_VERSION;DESCRIPTION;PRODUCT;SCRIPT" "" ${ARGN})
  get_filename_component(name ${PE_OUTPUT} NAME)
  set(work ${CMAKE_CURRENT_BINARY_DIR}/versioned_files/${name})
  set(linker ${VRX_MINGW_GCC})
  set(format pe-x86-64)
  if(PE_I386)
    set(linker ${VRX_MINGW32_GCC})
    set(format pe-i386)
  endif()
  set(kind)
  if(name MATCHES "\\.[dD][lL][lL]$")
    set(kind -shared)
  endif()
  get_filename_component(directory ${PE_OUTPUT} DIRECTORY)
  if(PE_NO_RESOURCES)
    # An empty C unit stands in for the resources: the linker wants one input.
    add_custom_command(OUTPUT ${PE_OUTPUT}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${directory}
      COMMAND ${linker} ${kind} -nostdlib -s -Wl,-e,0 -o ${PE_OUTPUT} -x c /dev/null
      COMMENT "Making ${name} without resources"
      VERBATIM)
    return()
  endif()
  if(PE_SCRIPT)
    set(script ${PE_SCRIPT})
  else()
    set(script ${work}.rc)
    vrx_version_script(${script})
  endif()
  add_custom_command(OUTPUT ${PE_OUTPUT}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${directory} ${CMAKE_CURRENT_BINARY_DIR}/versioned_files
    COMMAND ${VRX_WINDRES} -F ${format} ${script} -O coff -o ${work}.o
    COMMAND ${linker} ${kind} -nostdlib -s -Wl,-e,0 -o ${PE_OUTPUT} ${work}.o
    DEPENDS ${script}
    COMMENT "Making ${name} with its resources"
    VERBATIM)
endfunction()

# The version resource of the caller's arguments (PE_*), written to `script`;
# rewritten only on change, so that the file is not made again for nothing.
function(vrx_version_script script)
  # The fixed part wants four numbers: those that the text begins with.
  set(numbers 0,0,0,0)
  if(PE_FILE_VERSION MATCHES "^([0-9]+)\\.([0-9]+)\\.([0-9]+)\\.([0-9]+)")
    set(numbers "${CMAKE_MATCH_1},${CMAKE_MATCH_2},${CMAKE_MATCH_3},${CMAKE_MATCH_4}")
  endif()
  set(values "      VALUE \"CompanyName\", \"Microsoft Corporation\"\n")
  foreach(entry FILE_VERSION:FileVersion DESCRIPTION:FileDescription PRODUCT:ProductName)
    string(REPLACE ":" ";" entry ${entry})
    list(GET entry 0 argument)
    list(GET entry 1 key)
    if(DEFINED PE_${argument})
      string(APPEND values "      VALUE \"${key}\", \"${PE_${argument}}\"\n")
    endif()
  endforeach()
  set(translation "")
  if(NOT PE_NO_TRANSLATION)
    set(translation "  BLOCK \"VarFileInfo\"\n  BEGIN\n    VALUE \"Translation\", 0x409, 1200\n  END\n")
  endif()
  file(WRITE ${script}.new
    "1 VERSIONINFO\nFILEVERSION ${numbers}\nPRODUCTVERSION ${numbers}\n"
    "FILEOS 0x40004\nFILETYPE 0x2\nBEGIN\n"
    "  BLOCK \"StringFileInfo\"\n  BEGIN\n    BLOCK \"040904B0\"\n    BEGIN\n"
    "${values}    END\n  END\n${translation}END\n")
  configure_file(${script}.new ${script} COPYONLY)
endfunction()
