# Loading a library at its first use instead of with the target that calls it.
#
#   kelo_delay_load(<target> NAME <name> LIBRARY <soname>... [LOCAL] FUNCTIONS <function>...)
#
# Each function becomes a jump stub of the target, so that its sources call it as the library's own headers declare it.
# Variables of the library cannot be had this way. The stubs are filled by the generated function
#
#   std::string DelayLoad_<name>();
#
# which opens the first of the libraries that can be opened and looks every function up there. Its symbols are in the
# global scope; LOCAL keeps them out of it. It returns the empty string, or the reason why the first library or one of
# the functions cannot be had; then no stub may be called, and a later call tries again. [any thread]

set(KELO_DELAY_LOAD_TEMPLATE ${CMAKE_CURRENT_LIST_DIR}/DelayLoad.cpp.in)

function(kelo_delay_load target)
  cmake_parse_arguments(PARSE_ARGV 1 DELAY "LOCAL" "NAME" "LIBRARY;FUNCTIONS")
  set(DELAY_LIBRARIES "")
  foreach(library IN LISTS DELAY_LIBRARY)
    string(APPEND DELAY_LIBRARIES "    \"${library}\",\n")
  endforeach()
  list(JOIN DELAY_LIBRARY ", " DELAY_LIBRARY)
  set(DELAY_SCOPE RTLD_GLOBAL)
  set(DELAY_SEARCH RTLD_DEFAULT)
  if(DELAY_LOCAL)
    set(DELAY_SCOPE RTLD_LOCAL)
    set(DELAY_SEARCH library)
  endif()
  set(DELAY_STUBS "")
  set(DELAY_NAMES "")
  set(index 0)
  foreach(function IN LISTS DELAY_FUNCTIONS)
    math(EXPR offset "8 * ${index}")
    string(APPEND DELAY_STUBS "    KELO_DELAY_STUB(\"${function}\", \"${offset}\")\n")
    string(APPEND DELAY_NAMES "    \"${function}\",\n")
    math(EXPR index "${index} + 1")
  endforeach()
  set(source ${CMAKE_CURRENT_BINARY_DIR}/DelayLoad_${DELAY_NAME}.cpp)
  configure_file(${KELO_DELAY_LOAD_TEMPLATE} ${source} @ONLY)
  target_sources(${target} PRIVATE ${source})
  target_link_libraries(${target} PRIVATE ${CMAKE_DL_LIBS})
endfunction()
