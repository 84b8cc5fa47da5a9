# Where an install puts things, and the packages made of it. Linux: programs in bin/, the plug-in
# and the libraries in lib/<multiarch>/vrx/ (the programs find them relative to themselves, so an
# install can be moved), the schema and the sample machine in share/vrx/, manual pages in
# share/man/man1/. Windows: everything in one folder, the mingw runtime DLLs included.
include(GNUInstallDirs)
if(WIN32)
  set(VRX_INSTALL_BINDIR .)
  set(VRX_INSTALL_LIBDIR .)
  set(VRX_INSTALL_DATADIR .)
elseif(CMAKE_LIBRARY_ARCHITECTURE)
  set(VRX_INSTALL_BINDIR ${CMAKE_INSTALL_BINDIR})
  set(VRX_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE}/vrx)
  set(VRX_INSTALL_DATADIR share/vrx)
else()
  set(VRX_INSTALL_BINDIR ${CMAKE_INSTALL_BINDIR})
  set(VRX_INSTALL_LIBDIR lib/vrx)
  set(VRX_INSTALL_DATADIR share/vrx)
endif()
# Installed programs find their libraries beside the plug-in; the libraries find each other.
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${VRX_INSTALL_LIBDIR};$ORIGIN")
