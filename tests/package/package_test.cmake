# Installs the build into a folder of its own, builds the consumer against it and runs it; then runs the
# installed command from there.
#   cmake -DBUILD=... -DSOURCE=... -DWORK=... -DCOMPILER=... -DFLAGS=...
#     -DTOOLCHAIN=... -DEMULATOR=... -DENDING=... -P package_test.cmake
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN} ended with ${result}:\n${output}")
  endif()
endfunction()

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE}/consumer -B ${WORK}/consumer -G Ninja
  -DCMAKE_PREFIX_PATH=${WORK}/prefix -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS}
  -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DULM_WINDOWS_PACKAGES=${WORK}/prefix
  -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${WORK}/prefix/bin)
run(${CMAKE_COMMAND} --build ${WORK}/consumer -j 1)
run(${EMULATOR} ${WORK}/prefix/bin/consumer${ENDING})
run(${EMULATOR} ${WORK}/prefix/bin/ulmira${ENDING} host --json)
file(REMOVE_RECURSE ${WORK})
