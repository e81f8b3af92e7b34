# A plug-in as a plug-in directory wants it, for whoever finds the installed package.
#
#   kelo_add_plugin(<name> <source>...)
#
# makes the module <name>.so, which sees the library's public headers and the SDK and links the library. It shows its
# two entry symbols alone, and none that is unique in the process: such a symbol would keep it in memory for good.

set(KELO_PLUGIN_EXPORTS ${CMAKE_CURRENT_LIST_DIR}/plugin-exports.map CACHE INTERNAL "The symbols of a plug-in")

function(kelo_add_plugin name)
  add_library(${name} MODULE ${ARGN})
  set_target_properties(${name} PROPERTIES
    PREFIX ""
    C_VISIBILITY_PRESET hidden
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON
    LINK_DEPENDS ${KELO_PLUGIN_EXPORTS})
  target_compile_options(${name} PRIVATE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-gnu-unique>)
  target_link_options(${name} PRIVATE LINKER:--version-script=${KELO_PLUGIN_EXPORTS})
  target_link_libraries(${name} PRIVATE KeloAudioPluginMgr::KeloAudioPluginSdk)
endfunction()
