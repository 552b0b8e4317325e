# What a build for Windows has besides: resources, and the language's run-time as libraries beside the
# programs. Host and module share that run-time; with one in each, a new-handler of the host's would not
# be seen by the module.
enable_language(RC)
set(CMAKE_RC_FLAGS "${CMAKE_RC_FLAGS} -c 65001")

set(ULM_RUNTIME_LIBRARIES)
foreach(library libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${library}
    OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT IS_ABSOLUTE "${path}")
    message(FATAL_ERROR "the compiler has no ${library}: is it the flavour of posix threads?")
  endif()
  list(APPEND ULM_RUNTIME_LIBRARIES ${path})
endforeach()
file(COPY ${ULM_RUNTIME_LIBRARIES} DESTINATION ${CMAKE_RUNTIME_OUTPUT_DIRECTORY} FOLLOW_SYMLINK_CHAIN)
