# Compile options of every target of this project: warnings, visibility, no unique symbols.

find_package(Threads REQUIRED)

# Everything is hidden unless KELO_EXPORT shows it; a unique symbol would keep a plug-in in memory for good.
function(kelo_compile_options target)
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>
    $<$<BOOL:${KELO_WARNINGS_AS_ERRORS}>:-Werror>)
  target_link_libraries(${target} PRIVATE Threads::Threads)
endfunction()

# Adds the headers of one folder to the library's public header set.
function(kelo_public_headers)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(KeloAudioPluginMgr PUBLIC
    FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARGN})
endfunction()

# Adds the sources of one folder to the library.
function(kelo_sources)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(KeloAudioPluginMgr PRIVATE ${ARGN})
endfunction()

# A plug-in of this project: a module without the "lib" prefix that sees the library's public headers and the SDK.
function(kelo_plugin target)
  add_library(${target} MODULE ${ARGN})
  kelo_compile_options(${target})
  set_target_properties(${target} PROPERTIES PREFIX "")
  target_link_libraries(${target} PRIVATE KeloAudioPluginSdk)
endfunction()
