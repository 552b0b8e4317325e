# Builds the project in alone/ for one library and runs its program.
#   cmake -DULMIRA=... -DSOURCE=... -DLIBRARY=... -DWORK=... -DCOMPILER=... -DFLAGS=...
#     -DTOOLCHAIN=... -DEMULATOR=... -DENDING=... -P alone_test.cmake
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK} -G Ninja -DULMIRA=${ULMIRA} -DLIBRARY=${LIBRARY}
  -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS} -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}
  -DCMAKE_BUILD_TYPE=Debug -DCMAKE_RUNTIME_OUTPUT_DIRECTORY=${WORK}/bin)
run(${CMAKE_COMMAND} --build ${WORK} --target alone -j 1)
execute_process(COMMAND ${EMULATOR} ${WORK}/bin/alone${ENDING} RESULT_VARIABLE result
  OUTPUT_VARIABLE output ERROR_VARIABLE output)
# The font example asks for a font.
if(NOT result EQUAL 0 AND NOT output MATCHES "usage:")
  message(FATAL_ERROR "the example ended with ${result}:\n${output}")
endif()
file(STRINGS ${WORK}/others.txt others)
foreach(other ${others})
  if(EXISTS ${other})
    message(FATAL_ERROR "${LIBRARY} alone builds ${other} as well")
  endif()
endforeach()
file(REMOVE_RECURSE ${WORK})
