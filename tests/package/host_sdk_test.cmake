# Builds ULM_Main against a folder that a host of another make might offer, and runs it: no stand-in is built,
# none of our own declarations is read, and the module does in a host what the one of this build does.
#   cmake -DULMIRA=... -DBUILD=... -DWORK=... -DCOMPILER=... -DFLAGS=... -DTOOLCHAIN=... -DEMULATOR=...
#     -DENDING=... -DMODULE=ULM_Main.so -DNINJA=... -P host_sdk_test.cmake
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/host_sdk/fill.cmake)

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} --install ${BUILD} --component host_sdk --prefix ${WORK}/installed)
fill_host_sdk(${WORK}/installed ${WORK}/sdk)
file(REMOVE_RECURSE ${WORK}/installed)

run(${CMAKE_COMMAND} -S ${ULMIRA} -B ${WORK}/build -G Ninja -DULM_HOST_SDK=${WORK}/sdk
  -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS} -DCMAKE_TOOLCHAIN_FILE=${TOOLCHAIN}
  -DCMAKE_MAKE_PROGRAM=${NINJA} -DCMAKE_BUILD_TYPE=Debug)
run(${CMAKE_COMMAND} --build ${WORK}/build -j 1)

file(GLOB_RECURSE made RELATIVE ${WORK}/build ${WORK}/build/*.so ${WORK}/build/*.dll ${WORK}/build/*.exe)
list(FILTER made EXCLUDE REGEX "/(lib(gcc_s_seh|stdc|winpthread)[^/]*[.]dll|ULM_Main[.](so|dll))$|CMakeFiles/")
if(made)
  message(FATAL_ERROR "more was built than the module: ${made}")
endif()
execute_process(COMMAND ${NINJA} -C ${WORK}/build -t deps OUTPUT_VARIABLE read COMMAND_ERROR_IS_FATAL ANY)
if(NOT read MATCHES "sdk/include/runtime/objects.hpp")
  message(FATAL_ERROR "the folder's declarations were not read")
endif()
if(read MATCHES "[^\n]*/(core/iface|hostsdk/(odrx|qlcore|hostcmd)|standin)/[^\n]*")
  message(FATAL_ERROR "read of our own: ${CMAKE_MATCH_0}")
endif()

# The reports of both modules differ in the path of the module alone.
function(report_of folder outVariable)
  execute_process(COMMAND ${EMULATOR} ${BUILD}/bin/ulmira${ENDING} host --json --module ${folder}/${MODULE}
    OUTPUT_VARIABLE report COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "/" "\\\\" folder ${folder})
  string(REPLACE "${folder}" "FOLDER" report "${report}")
  set(${outVariable} "${report}" PARENT_SCOPE)
endfunction()
report_of(${BUILD}/bin own)
report_of(${WORK}/build/bin other)
if(NOT own STREQUAL other OR NOT own MATCHES "FOLDER")
  message(FATAL_ERROR "the reports differ:\n${own}\n${other}")
endif()
file(REMOVE_RECURSE ${WORK})
