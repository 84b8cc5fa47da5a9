# The sample machine as vrxhost sees it by default: a copy of
# examples/machines/sample in the build tree, completed with the component
# DLLs and the backup program, whose version resources are made here.
include(${CMAKE_SOURCE_DIR}/cmake/versioned_files.cmake)

set(VRX_SAMPLE_SOURCE ${CMAKE_SOURCE_DIR}/examples/machines/sample)
set(VRX_SAMPLE_BUILT ${CMAKE_BINARY_DIR}/machines/sample)
set(files_dir ${CMAKE_CURRENT_BINARY_DIR}/sample_files)

# Path under drive_c, file version, description. Setup DLLs of most families
# lie in system32\Setup; netoc.dll only in system32, found along PATH;
# msmqocm.dll has a description but no version; zoneoc.dll is missing.
set(sample_files
  "Windows/system32/Setup/ocgen.dll|5.1.2600.5512 (xpsp.080413-0852)|Windows Optional Component Setup"
  "Windows/system32/Setup/fxsocm.dll|5.2.2600.5512 (xpsp.080413-2111)|Fax Setup"
  "Windows/system32/netoc.dll|5.1.2600.5512 (xpsp.080413-2111)|Network Optional Components"
  "Windows/system32/Setup/iis.dll|6.0.2600.5512|IIS Setup"
  "Windows/system32/Setup/setupqry.dll|5.1.2600.5512 (xpsp.080413-2111)|Indexing Service Setup"
  "Windows/system32/Setup/tsoc.dll|5.1.2600.5512 (xpsp.080413-2111)|Terminal Server Setup"
  "Windows/system32/Setup/msmqocm.dll||Message Queuing Setup"
  "Windows/system32/ntbackup.exe|5.1.2600.5512 (xpsp.080413-2111)|Backup Utility")

set(made_files)
set(copy_commands)
if(VRX_CAN_MAKE_VERSIONED_FILES)
  foreach(row IN LISTS sample_files)
    string(REPLACE "|" ";" row "${row}")
    list(GET row 0 path)
    list(GET row 1 version)
    list(GET row 2 description)
    set(output ${files_dir}/${path})
    if(version)
      vrx_versioned_file(OUTPUT ${output} FILE_VERSION "${version}" DESCRIPTION "${description}"
        PRODUCT "Microsoft Windows Operating System")
    else()
      vrx_versioned_file(OUTPUT ${output} DESCRIPTION "${description}")
    endif()
    list(APPEND made_files ${output})
  endforeach()
  set(copy_commands COMMAND ${CMAKE_COMMAND} -E copy_directory ${files_dir} ${VRX_SAMPLE_BUILT}/drive_c)
else()
  message(STATUS "No mingw-w64 resource compiler: the sample machine's component files are left out")
endif()

# Made anew on each build, so that nothing removed from the sources lingers.
add_custom_target(vrx_sample_machine ALL
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${VRX_SAMPLE_BUILT}
  COMMAND ${CMAKE_COMMAND} -E copy_directory ${VRX_SAMPLE_SOURCE} ${VRX_SAMPLE_BUILT}
  ${copy_commands}
  DEPENDS ${made_files}
  COMMENT "Putting the sample machine together in ${VRX_SAMPLE_BUILT}"
  VERBATIM)
