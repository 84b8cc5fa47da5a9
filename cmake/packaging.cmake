# The install rules and the packages: a .deb on Linux (its dependencies computed by
# dpkg-shlibdeps), a .zip on Windows.
set(vrx_programs vrxhost)
if(TARGET vrxstore)
  list(APPEND vrx_programs vrxstore)
endif()
set(vrx_libraries installedapps kelmon vrxcore)
if(TARGET vrxwinapi)
  list(APPEND vrx_libraries vrxwinapi)
endif()
install(TARGETS ${vrx_programs} RUNTIME DESTINATION ${VRX_INSTALL_BINDIR})
install(TARGETS ${vrx_libraries} LIBRARY DESTINATION ${VRX_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${VRX_INSTALL_BINDIR})
install(FILES ${CMAKE_SOURCE_DIR}/schema/qelto.mof DESTINATION ${VRX_INSTALL_DATADIR})
if(WIN32)
  # The C and C++ runtimes are linked in (see cmake/mingw-w64-x86_64.cmake): the folder needs
  # no DLL of the cross compiler.
  set(CPACK_GENERATOR ZIP)
else()
  install(DIRECTORY ${CMAKE_BINARY_DIR}/machines/sample
          DESTINATION ${VRX_INSTALL_DATADIR}/examples USE_SOURCE_PERMISSIONS)
  # Manual pages go compressed, as Debian keeps them.
  set(vrx_man_pages)
  foreach(page vrxhost.1 vrxstore.1)
    add_custom_command(OUTPUT ${CMAKE_BINARY_DIR}/man/${page}.gz
      COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/man
      COMMAND gzip -9n -c ${CMAKE_SOURCE_DIR}/docs/man/${page} > ${CMAKE_BINARY_DIR}/man/${page}.gz
      DEPENDS ${CMAKE_SOURCE_DIR}/docs/man/${page})
    list(APPEND vrx_man_pages ${CMAKE_BINARY_DIR}/man/${page}.gz)
  endforeach()
  add_custom_target(vrx_man_pages ALL DEPENDS ${vrx_man_pages})
  install(FILES ${vrx_man_pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SECTION admin)
  set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Inventory collector developers <vrx@localhost>")
endif()
set(CPACK_PACKAGE_NAME vrx)
set(CPACK_PACKAGE_VENDOR "Inventory collector developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Inventories a Windows machine (live, a folder, a disk image) as CIM instances")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME_WIN vrx-${PROJECT_VERSION}-windows-x64)
if(WIN32)
  set(CPACK_PACKAGE_FILE_NAME ${CPACK_PACKAGE_FILE_NAME_WIN})
endif()
include(CPack)
