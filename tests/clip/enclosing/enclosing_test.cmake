# Builds the enclosing project with link-time optimisation, fused instructions and fast arithmetic, and
# finds the clipper unchanged: no fused instruction in the program, no library that flushes denormals when
# it is loaded, and, where the processor has the instructions, the bits of the plain build.
#   cmake -DTREE=... -DSOURCE=... -DWORK=... -DCOMPILER=... -DPLAIN=program -DOBJDUMP=... -DNM=...
#     -DFLAGS=... -P enclosing_test.cmake
function(run outVariable)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGN} ended with ${result}:\n${output}${errors}")
  endif()
  set(${outVariable} "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
run(ignored ${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK} -G Ninja -DTREE=${TREE} -DCMAKE_BUILD_TYPE=None
  -DCMAKE_CXX_COMPILER=${COMPILER} "-DCMAKE_CXX_FLAGS=-Ofast -ffast-math -funsafe-math-optimizations -flto ${FLAGS}"
  -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON)
run(ignored ${CMAKE_COMMAND} --build ${WORK} --target exact_results -j 1)

file(GLOB_RECURSE program LIST_DIRECTORIES OFF ${WORK}/exact_results)
file(GLOB_RECURSE libraries LIST_DIRECTORIES OFF ${WORK}/*.so)
if(NOT program OR NOT libraries)
  message(FATAL_ERROR "nothing was built")
endif()
run(code ${OBJDUMP} -d --no-show-raw-insn ${program})
if(code MATCHES "\t(v?fn?m(add|sub)|v?fml[as])[^\n]*")
  message(FATAL_ERROR "a fused instruction: ${CMAKE_MATCH_0}")
endif()
foreach(library ${libraries})
  run(symbols ${NM} ${library})
  if(symbols MATCHES "set_fast_math")
    message(FATAL_ERROR "${library} flushes denormals when it is loaded")
  endif()
endforeach()

set(canRun TRUE)
if(FLAGS MATCHES "-mfma")
  file(STRINGS /proc/cpuinfo canRun REGEX "^flags.* fma " LIMIT_COUNT 1)
endif()
if(canRun)
  run(plain ${PLAIN})
  run(built ${program})
  if(NOT built STREQUAL plain)
    message(FATAL_ERROR "the results differ from those of the plain build: ${built} and ${plain}")
  endif()
endif()
file(REMOVE_RECURSE ${WORK})
