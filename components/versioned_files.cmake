# Program files whose one content is a version resource, made at build time
# with the mingw-w64 resource compiler and linker, for machines that the
# component collector reads versions from. Nothing binary is kept in the
# sources.
find_program(VRX_WINDRES x86_64-w64-mingw32-windres)
find_program(VRX_MINGW_GCC x86_64-w64-mingw32-gcc)
if(VRX_WINDRES AND VRX_MINGW_GCC)
  set(VRX_CAN_MAKE_VERSIONED_FILES TRUE)
else()
  set(VRX_CAN_MAKE_VERSIONED_FILES FALSE)
endif()

# vrx_versioned_file(OUTPUT file [FILE_VERSION text] [DESCRIPTION text]
#                    [PRODUCT text] [NO_TRANSLATION])
# A value whose text is not given is left out of the string table;
# NO_TRANSLATION leaves out the table of languages and code pages. An
# OUTPUT ending in .dll gives a DLL, anything else a program. The texts go
# into the resource script as they are: no double quotes, no backslashes.
function(vrx_versioned_file)
  cmake_parse_arguments(PE "NO_TRANSLATION" "OUTPUT;FILE_VERSION;DESCRIPTION;PRODUCT" "" ${ARGN})
  get_filename_component(name ${PE_OUTPUT} NAME)
  set(work ${CMAKE_CURRENT_BINARY_DIR}/versioned_files/${name})
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
  file(WRITE ${work}.rc.new
    "1 VERSIONINFO\nFILEVERSION ${numbers}\nPRODUCTVERSION ${numbers}\n"
    "FILEOS 0x40004\nFILETYPE 0x2\nBEGIN\n"
    "  BLOCK \"StringFileInfo\"\n  BEGIN\n    BLOCK \"040904B0\"\n    BEGIN\n"
    "${values}    END\n  END\n${translation}END\n")
  # Rewritten only on change, so that the file is not made again for nothing.
  configure_file(${work}.rc.new ${work}.rc COPYONLY)
  set(kind)
  if(name MATCHES "\\.[dD][lL][lL]$")
    set(kind -shared)
  endif()
  get_filename_component(directory ${PE_OUTPUT} DIRECTORY)
  add_custom_command(OUTPUT ${PE_OUTPUT}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${directory}
    COMMAND ${VRX_WINDRES} ${work}.rc -O coff -o ${work}.o
    COMMAND ${VRX_MINGW_GCC} ${kind} -nostdlib -s -Wl,-e,0 -o ${PE_OUTPUT} ${work}.o
    DEPENDS ${work}.rc
    COMMENT "Making ${name} with its version resource"
    VERBATIM)
endfunction()
