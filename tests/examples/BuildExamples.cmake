# Installs the build into a scratch prefix and builds each example against it, on its own, as a stranger would.
#   cmake -DBUILD=<build tree> -DSOURCE=<examples> -DWORK=<scratch> -DGENERATOR=<generator> -DCOMPILER=<c++>
#     -DFLAGS=<flags> -P BuildExamples.cmake

file(REMOVE_RECURSE ${WORK}/prefix ${WORK}/build)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
foreach(example IN ITEMS decoder encoder convertor url-handler host writing-host)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -S ${SOURCE}/${example} -B ${WORK}/build/${example} -G ${GENERATOR}
      -DCMAKE_PREFIX_PATH=${WORK}/prefix -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_BUILD_TYPE=Debug
      "-DCMAKE_CXX_FLAGS=${FLAGS} -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror"
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/build/${example}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endforeach()
