# What makes a memory error of the shipped files harder to exploit.
#
#   kelo_harden(<target>)
#
# The addresses of imported functions are bound at the start and then read-only, no stack is executable, overrun
# buffers on the stack end the process, big stack frames cannot jump over the guard page, indirect jumps land on marked
# places alone, and the C library checks the sizes that an optimising compiler knows. The sanitizers check those sizes
# themselves. Plug-ins are opened with RTLD_NOW in any case, so that binding at the start costs them nothing; functions
# that are loaded at their first use go through jump stubs and are not bound by the linker.

include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

function(kelo_harden target)
  target_compile_options(${target} PRIVATE -fstack-protector-strong -fstack-clash-protection -fcf-protection=full)
  if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    # Undefined first, for compilers that come with a value of their own.
    target_compile_options(${target} PRIVATE
      $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE>
      $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-D_FORTIFY_SOURCE=2>)
  endif()
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL "STATIC_LIBRARY")
    target_link_options(${target} PRIVATE LINKER:-z,relro,-z,now,-z,noexecstack)
  endif()
endfunction()
