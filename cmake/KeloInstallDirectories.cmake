# The directories of an installation, relative to its prefix unless a CMAKE_INSTALL_* variable is absolute.
set(CMAKE_INSTALL_DOCDIR share/doc/keloaudiopluginmgr CACHE STRING "Guides and examples")
include(GNUInstallDirs)

set(KELO_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/keloaudiopluginmgr)
set(KELO_INSTALL_PLUGINDIR ${CMAKE_INSTALL_LIBDIR}/keloaudiopluginmgr/plugins)
set(KELO_INSTALL_IMAGESDIR ${CMAKE_INSTALL_DATADIR}/keloaudiopluginmgr/images)

# Stores the way from the installed programs to a directory of the installation.
function(kelo_path_from_programs result directory)
  cmake_path(ABSOLUTE_PATH directory BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
  file(RELATIVE_PATH path ${CMAKE_INSTALL_FULL_BINDIR} ${directory})
  set(${result} ${path} PARENT_SCOPE)
endfunction()
