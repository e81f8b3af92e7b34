# What `cmake --install` puts where. Each component is one Debian package.
include(CMakePackageConfigHelpers)

set(KELO_INSTALL_PACKAGEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/KeloAudioPluginMgr)

# The modules of a directory and of those below it.
function(kelo_modules_below result directory)
  get_property(targets DIRECTORY ${directory} PROPERTY BUILDSYSTEM_TARGETS)
  get_property(subdirectories DIRECTORY ${directory} PROPERTY SUBDIRECTORIES)
  set(modules "")
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "MODULE_LIBRARY")
      list(APPEND modules ${target})
    endif()
  endforeach()
  foreach(subdirectory IN LISTS subdirectories)
    kelo_modules_below(below ${subdirectory})
    list(APPEND modules ${below})
  endforeach()
  set(${result} ${modules} PARENT_SCOPE)
endfunction()

# Fills in a pkg-config file whose prefix follows from where the file lies.
function(kelo_install_pkgconfig name)
  set(directory ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  cmake_path(ABSOLUTE_PATH directory BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE full)
  file(RELATIVE_PATH KELO_PC_PREFIX ${full} ${CMAKE_INSTALL_PREFIX})
  string(REGEX REPLACE "/$" "" KELO_PC_PREFIX ${KELO_PC_PREFIX})
  foreach(path INCLUDEDIR PLUGINDIR PACKAGEDIR)
    cmake_path(APPEND KELO_PC_${path} "\${prefix}" ${KELO_INSTALL_${path}})
  endforeach()
  cmake_path(APPEND KELO_PC_LIBDIR "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.in ${PROJECT_BINARY_DIR}/${name} @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name} DESTINATION ${directory} COMPONENT development)
endfunction()

install(TARGETS KeloAudioPluginMgr KeloAudioPluginSdk EXPORT KeloAudioPluginMgr
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development
  FILE_SET HEADERS DESTINATION ${KELO_INSTALL_INCLUDEDIR} COMPONENT development
  INCLUDES DESTINATION ${KELO_INSTALL_INCLUDEDIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/KeloAudioPluginMgrConfig.cmake.in
  ${PROJECT_BINARY_DIR}/KeloAudioPluginMgrConfig.cmake
  INSTALL_DESTINATION ${KELO_INSTALL_PACKAGEDIR}
  PATH_VARS KELO_INSTALL_PLUGINDIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KeloAudioPluginMgrConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(EXPORT KeloAudioPluginMgr
  FILE KeloAudioPluginMgrTargets.cmake
  NAMESPACE KeloAudioPluginMgr::
  DESTINATION ${KELO_INSTALL_PACKAGEDIR}
  COMPONENT development)
install(FILES
  ${PROJECT_BINARY_DIR}/KeloAudioPluginMgrConfig.cmake
  ${PROJECT_BINARY_DIR}/KeloAudioPluginMgrConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/KeloAddPlugin.cmake
  ${PROJECT_SOURCE_DIR}/cmake/plugin-exports.map
  DESTINATION ${KELO_INSTALL_PACKAGEDIR}
  COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/doc/ DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
  FILES_MATCHING PATTERN "*.md")
install(FILES ${PROJECT_SOURCE_DIR}/SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
kelo_install_pkgconfig(keloaudiopluginmgr.pc)
kelo_install_pkgconfig(keloaudiopluginmgr-plugin.pc)

if(KELO_BUILD_PLUGINS)
  kelo_modules_below(KELO_PLUGIN_TARGETS ${PROJECT_SOURCE_DIR}/plugins)
  install(TARGETS ${KELO_PLUGIN_TARGETS} LIBRARY DESTINATION ${KELO_INSTALL_PLUGINDIR} COMPONENT plugins)
endif()

if(KELO_BUILD_HOST)
  install(TARGETS keloaudio RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT keloaudio)
  install(FILES ${PROJECT_SOURCE_DIR}/doc/keloaudio.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT keloaudio)
  install(FILES ${PROJECT_SOURCE_DIR}/host/completion/keloaudio.bash RENAME keloaudio
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT keloaudio)
  # Where the dynamic loader does not look by itself, keloaudio tells it the way to the library.
  if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
    kelo_path_from_programs(libraries ${CMAKE_INSTALL_LIBDIR})
    set_target_properties(keloaudio PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  endif()
endif()
