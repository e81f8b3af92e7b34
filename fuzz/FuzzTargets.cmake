# The fuzz targets, each of which becomes a fuzzer in this folder and a replay of stored inputs among the tests.
set(kelo_fuzz_folder ${CMAKE_CURRENT_LIST_DIR})

set(kelo_fuzz_source_basic_string BasicStringFuzzer.cpp)
set(kelo_fuzz_source_bounded_strings BoundedStringsFuzzer.cpp)
set(kelo_fuzz_source_code_pages CodePageFuzzer.cpp)
set(kelo_fuzz_source_match_mask MatchMaskFuzzer.cpp)
set(kelo_fuzz_source_paths PathFuzzer.cpp)
set(kelo_fuzz_source_portable_time PortableTimeFuzzer.cpp)
set(kelo_fuzz_source_source_texts SourceTextsFuzzer.cpp)
set(kelo_fuzz_source_url_type URLTypeFuzzer.cpp)
set(kelo_fuzz_targets
  basic_string bounded_strings code_pages match_mask paths portable_time source_texts url_type)

# What the URL handler takes from servers.
if(TARGET kelo_curl)
  list(APPEND kelo_fuzz_targets file_names)
  set(kelo_fuzz_source_file_names FileNamesFuzzer.cpp)
  foreach(source AudioTypes ContentDisposition FileName URLText)
    list(APPEND kelo_fuzz_subject_file_names ${PROJECT_SOURCE_DIR}/plugins/curl/${source}.cpp)
  endforeach()
endif()

# Each decoder plug-in by the same source.
set(kelo_fuzz_decoders)
foreach(plugin sndfile libav)
  if(TARGET kelo_${plugin} AND TARGET kelo_soxr)
    list(APPEND kelo_fuzz_decoders ${plugin}_decoder)
    set(kelo_fuzz_source_${plugin}_decoder DecoderFuzzer.cpp)
    set(kelo_fuzz_plugin_${plugin}_decoder kelo_${plugin})
  endif()
endforeach()

# A program of one target, of the sources that it looks at, and of what brings its main function along.
function(kelo_fuzz_program program target)
  add_executable(${program}
    ${kelo_fuzz_folder}/${kelo_fuzz_source_${target}} ${kelo_fuzz_subject_${target}} ${ARGN})
  kelo_compile_options(${program})
  target_link_libraries(${program} PRIVATE KeloAudioPluginMgr)
  if(DEFINED kelo_fuzz_plugin_${target})
    set(plugin ${kelo_fuzz_plugin_${target}})
    target_compile_definitions(${program} PRIVATE
      KELO_FUZZED_PLUGIN="$<TARGET_FILE:${plugin}>"
      KELO_GOOD_SOUND="${kelo_fuzz_folder}/corpus/${target}/mono.flac"
      KELO_SOXR_PLUGIN="$<TARGET_FILE:kelo_soxr>")
    add_dependencies(${program} ${plugin} kelo_soxr)
  endif()
endfunction()
