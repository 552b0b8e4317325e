# Installs the build into a folder of its own, builds the consumer against it and runs it; then, where
# the tools are built, runs the installed command from there.
#   cmake -DBUILD=... -DSOURCE=... -DWORK=... -DCOMPILER=... -DFLAGS=...
#     -DTOOLCHAIN=... -DEMULATOR=... -DENDING=... -DTOOLS=... -P package_test.cmake
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/consumer -G Ninja
  -DCMAKE_PREFIX_PATH=${WORK}/prefix -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS}
  -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -DULM_WINDOWS_PACKAGES=${WORK}/prefix
  -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${WORK}/prefix/bin)
run(${CMAKE_COMMAND} --build ${WORK}/consumer -j 1)
run(${EMULATOR} ${WORK}/prefix/bin/consumer${ENDING})
if(TOOLS)
  run(${EMULATOR} ${WORK}/prefix/bin/ulmira${ENDING} host --json)
endif()
file(REMOVE_RECURSE ${WORK})
