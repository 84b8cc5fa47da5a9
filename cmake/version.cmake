# The version the programs report: the project's one version number and the commit the build
# was configured from ("unknown" outside a git checkout).
execute_process(COMMAND git -C ${CMAKE_SOURCE_DIR} rev-parse --short=12 HEAD
                OUTPUT_VARIABLE VRX_COMMIT OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(NOT VRX_COMMIT)
  set(VRX_COMMIT unknown)
endif()
configure_file(${CMAKE_SOURCE_DIR}/cmake/vrx_build.h.in ${CMAKE_BINARY_DIR}/generated/vrx_build.h)
add_library(vrx_build_facts INTERFACE)
target_include_directories(vrx_build_facts INTERFACE ${CMAKE_BINARY_DIR}/generated)
