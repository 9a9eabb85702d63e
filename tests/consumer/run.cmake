# Installs the build, then configures, builds and runs the consumer against it.
# cmake -DBUILD_DIR=... -DSOURCE_DIR=... -DWORK_DIR=... -DCXX_COMPILER=... -DCXX_FLAGS=... -P run.cmake
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(result)
    message(FATAL_ERROR "${ARGN}\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${WORK_DIR}/build -G Ninja -DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix
  -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_CXX_FLAGS=${CXX_FLAGS})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${WORK_DIR}/build/consumer)
