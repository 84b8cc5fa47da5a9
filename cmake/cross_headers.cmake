# Header-only libraries (Boost, nlohmann-json, CLI11) come from Debian's
# /usr/include. A cross build must not see /usr/include itself, so it gets a
# folder of links to exactly those libraries.
if(CMAKE_CROSSCOMPILING)
  set(VRX_CROSS_HEADERS ${CMAKE_BINARY_DIR}/cross-include)
  file(MAKE_DIRECTORY ${VRX_CROSS_HEADERS})
  foreach(lib boost nlohmann CLI)
    if(NOT EXISTS ${VRX_CROSS_HEADERS}/${lib})
      file(CREATE_LINK /usr/include/${lib} ${VRX_CROSS_HEADERS}/${lib} SYMBOLIC)
    endif()
  endforeach()
  include_directories(SYSTEM ${VRX_CROSS_HEADERS})
endif()
