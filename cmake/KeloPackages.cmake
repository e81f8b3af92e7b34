# Debian packages of the installation's components; ./packages builds them.
set(KELO_PACKAGE_CONTACT "The Kelo developers <developers@kelo.example>" CACHE STRING "Maintainer of the packages")
set(KELO_DEBIAN_REVISION 0kelo1)

find_program(KELO_DPKG dpkg)
if(NOT KELO_DPKG)
  return()
endif()

# The date of this version in CHANGELOG.md, as Debian's changelogs write dates.
function(kelo_debian_date result)
  file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md headings REGEX "^## ")
  if(NOT headings MATCHES "## \\[${PROJECT_VERSION}\\] - ([0-9-]+)")
    message(FATAL_ERROR "CHANGELOG.md says nothing about version ${PROJECT_VERSION}")
  endif()
  execute_process(COMMAND date --utc --rfc-email --date=${CMAKE_MATCH_1}
    OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(${result} ${date} PARENT_SCOPE)
endfunction()

# Declares the package of a component. The descriptions' first lines are their short forms.
function(kelo_debian_package component)
  cmake_parse_arguments(PARSE_ARGV 1 PACKAGE "" "NAME;SECTION;DEPENDS;RECOMMENDS;DESCRIPTION" "")
  string(TOUPPER ${component} prefix)
  set(prefix CPACK_DEBIAN_${prefix})
  foreach(field NAME SECTION DEPENDS RECOMMENDS)
    set(${prefix}_PACKAGE_${field} ${PACKAGE_${field}} PARENT_SCOPE)
  endforeach()
  set(${prefix}_DESCRIPTION ${PACKAGE_DESCRIPTION} PARENT_SCOPE)
  # These belong into packages and into no other installation.
  set(directory ${CMAKE_INSTALL_DATAROOTDIR}/doc/${PACKAGE_NAME})
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright ${PROJECT_BINARY_DIR}/debian/changelog.Debian
    DESTINATION ${directory} COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md RENAME changelog
    DESTINATION ${directory} COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

kelo_debian_date(KELO_DEBIAN_DATE)
configure_file(cmake/debian/changelog.in debian/changelog.Debian @ONLY)
configure_file(cmake/debian/shlibs.in debian/shlibs @ONLY)

set(full_version ${PROJECT_VERSION}-${KELO_DEBIAN_REVISION})

kelo_debian_package(library
  NAME libkeloaudiopluginmgr0
  SECTION libs
  RECOMMENDS "libgtk2.0-0"
  DESCRIPTION "audio plug-in manager - library
Loads audio plug-ins (decoders, encoders, convertors and URL handlers) and
opens files and addresses through them: the host names the sample format that
it wants and reads plain PCM, or writes it into an encoder.
.
The settings dialog loads GTK 2 when it is first shown; everything else works
without GTK.")

kelo_debian_package(development
  NAME libkeloaudiopluginmgr-dev
  SECTION libdevel
  DEPENDS "libkeloaudiopluginmgr0 (= ${full_version})"
  DESCRIPTION "audio plug-in manager - development files
Headers, a CMake package and pkg-config files for hosts, which load audio
plug-ins, and for the plug-ins themselves.")

# Loaded at the first use of the plug-ins that need them.
set(loaded_by_plugins "")
if(TARGET kelo_curl)
  list(APPEND loaded_by_plugins "libcurl4 | libcurl3-gnutls")
endif()
if(TARGET kelo_libav)
  string(REGEX MATCH "^[0-9]+" libavformat_major ${KELO_LIBAV_libavformat_VERSION})
  list(APPEND loaded_by_plugins libavformat${libavformat_major})
endif()
list(JOIN loaded_by_plugins ", " loaded_by_plugins)

kelo_debian_package(plugins
  NAME kelo-audio-plugins
  SECTION sound
  DEPENDS "libkeloaudiopluginmgr0 (>= ${PROJECT_VERSION})"
  RECOMMENDS "${loaded_by_plugins}"
  DESCRIPTION "audio plug-in manager - reference plug-ins
Decoders, encoders, a convertor of sample formats and a URL handler for
programs that use the audio plug-in manager.")

kelo_debian_package(keloaudio
  NAME keloaudio
  SECTION sound
  DEPENDS "libkeloaudiopluginmgr0 (>= ${PROJECT_VERSION})"
  RECOMMENDS "kelo-audio-plugins"
  DESCRIPTION "convert audio files through plug-ins
A command-line program that lists audio plug-ins, converts audio files with
them to another format, sample rate, sample size or number of channels, and
shows the dialog of their settings.")

install(FILES cmake/debian/development.lintian-overrides RENAME libkeloaudiopluginmgr-dev
  DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT development EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development plugins keloaudio)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE keloaudiopluginmgr)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${KELO_DEBIAN_REVISION})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/cmake/debian/triggers
  ${PROJECT_BINARY_DIR}/debian/shlibs)
set(CPACK_PACKAGE_CONTACT ${KELO_PACKAGE_CONTACT})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/CompressDocuments.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/RelyOnTriggers.cmake)
include(CPack)
