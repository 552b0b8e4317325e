# The flags that every target of the tree is built with, and the functions that make its targets.

# The order of static initialisers, the exports and the exact arithmetic are stated in the language of
# these two; with any other compiler the build would pass and the result would not hold.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES "^(GNU|Clang|AppleClang)$"
    OR CMAKE_CXX_COMPILER_FRONTEND_VARIANT STREQUAL "MSVC")
  message(FATAL_ERROR "Ulmira is built with GCC or Clang, not with ${CMAKE_CXX_COMPILER_ID} "
    "(${CMAKE_CXX_COMPILER}). For Windows use mingw-w64: cmake --preset windows")
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_VERIFY_INTERFACE_HEADER_SETS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
# Programs and libraries lie side by side, as a host's folder has them.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN")
if(WIN32)
  include(${CMAKE_CURRENT_LIST_DIR}/UlmWindows.cmake)
endif()

add_library(ulm_flags INTERFACE)
set(flags
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wundef -Wvla
  # Rounding is the same on every machine: no fused operations.
  -ffp-contract=off)
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(i.86|x86|x86_64|AMD64)$")
  # The processor's older unit keeps more digits than a double has, until it stores one.
  list(APPEND flags -msse2 -mfpmath=sse)
endif()
if(ULM_WERROR)
  list(APPEND flags -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # A unique symbol would pin its library in the process for good: unloading must unload.
  list(APPEND flags -fno-gnu-unique -Wduplicated-cond -Wlogical-op)
endif()
# The resource compiler takes none of these.
target_compile_options(ulm_flags INTERFACE "$<$<COMPILE_LANGUAGE:CXX>:${flags}>")
if(ULM_SANITIZE)
  target_compile_options(ulm_flags INTERFACE
    -fsanitize=${ULM_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(ulm_flags INTERFACE -fsanitize=${ULM_SANITIZE})
endif()

# What makes a fault harder to use, at next to no cost: checks of the stack and of the sizes of buffers, and
# tables of addresses that are read-only before the first instruction of the program. The checks of
# buffers need optimisation, and the sanitizers have checks of their own.
set(hardening_link)
if(ULM_HARDENING)
  set(hardening)
  if(WIN32)
    # The checks would take one more run-time library in every program that links ours.
    set(hardening_link LINKER:--dynamicbase,--nxcompat,--high-entropy-va)
  else()
    list(APPEND hardening -fstack-protector-strong)
    if(NOT ULM_SANITIZE)
      set(fortified "$<CONFIG:Release,RelWithDebInfo,MinSizeRel>")
      list(APPEND hardening "$<${fortified}:-U_FORTIFY_SOURCE>" "$<${fortified}:-D_FORTIFY_SOURCE=2>")
    endif()
  endif()
  if(UNIX AND NOT APPLE)
    set(hardening_link LINKER:-z,relro,-z,now,-z,noexecstack)
    list(APPEND hardening -fstack-clash-protection)
    if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64|i.86)$")
      list(APPEND hardening -fcf-protection)
    endif()
  endif()
  target_compile_options(ulm_flags INTERFACE "$<$<COMPILE_LANGUAGE:CXX>:${hardening}>")
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
endif()

# A library or program that is linked with -ffast-math, -funsafe-math-optimizations or -Ofast gets start-up
# code that flushes denormal numbers. These options come after an enclosing project's flags and revoke them;
# only another level of optimisation revokes -Ofast.
set(ulm_exact_link -fno-fast-math -fno-unsafe-math-optimizations -O2)
set(ULM_NO_OVERRIDE_WARNING)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # Clang warns when -fno-fast-math resets the contraction that -ffast-math has set.
  set(ULM_NO_OVERRIDE_WARNING -Wno-overriding-t-option)
endif()

# What every target of the tree shares: the flags and the include root.
function(ulm_common target)
  get_target_property(type ${target} TYPE)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:ulm_flags>)
  if(type MATCHES "^(SHARED_LIBRARY|MODULE_LIBRARY|EXECUTABLE)$")
    target_link_options(${target} PRIVATE ${ulm_exact_link} ${ULM_NO_OVERRIDE_WARNING} ${hardening_link})
  endif()
  if(type STREQUAL "EXECUTABLE")
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR})
  else()
    target_compile_features(${target} PUBLIC cxx_std_20)  # users of the headers need it as well
    target_include_directories(${target} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
      $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/ulmira>)
  endif()
endfunction()

# The public headers of a target; each is compiled alone by the target all_verify_interface_header_sets.
function(ulm_headers target)
  target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${ARGN})
endfunction()

# ulm_add_room(clip SOURCES segment.cpp HEADERS vertex.h segment.h [LINKS Ulmira::x]) makes the
# static library ulm_clip, alias Ulmira::clip, of one facility: installed, exported and linked whole
# into the module.
function(ulm_add_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;HEADERS;LINKS" ${ARGN})
  add_library(ulm_${name} STATIC ${ROOM_SOURCES})
  add_library(Ulmira::${name} ALIAS ulm_${name})
  set_target_properties(ulm_${name} PROPERTIES EXPORT_NAME ${name})
  ulm_common(ulm_${name})
  ulm_headers(ulm_${name} ${ROOM_HEADERS})
  target_link_libraries(ulm_${name} PUBLIC ${ROOM_LINKS})
  set_property(GLOBAL APPEND PROPERTY ULM_EXPORTED ulm_${name})
endfunction()

# Sets `out` to the facilities that the module links whole: those that are exported, with the big
# integers of the plain kernel.
function(ulm_facilities_of_module out)
  get_property(facilities GLOBAL PROPERTY ULM_EXPORTED)
  get_property(bignum GLOBAL PROPERTY ULM_BIGNUM_OF_MODULE)
  list(TRANSFORM facilities REPLACE "^ulm_bignum$" ${bignum})
  set(${out} ${facilities} PARENT_SCOPE)
endfunction()

# ulm_add_host_library(qlcore SOURCES ... [HEADERS ...] [LINKS ...]) makes a shared library that
# carries its own name, without a prefix, as the module and its host look for it.
function(ulm_add_host_library name)
  cmake_parse_arguments(HOST "" "" "SOURCES;HEADERS;LINKS" ${ARGN})
  add_library(${name} SHARED ${HOST_SOURCES})
  set_target_properties(${name} PROPERTIES PREFIX "")
  ulm_common(${name})
  if(HOST_HEADERS)
    ulm_headers(${name} ${HOST_HEADERS})
  endif()
  target_link_libraries(${name} PUBLIC ${HOST_LINKS})
  if(NOT ULM_SANITIZE)  # the sanitizers leave their run-time to the program
    target_link_options(${name} PRIVATE LINKER:--no-undefined)
  endif()
endfunction()

# ulm_add_objects(ulm_core SOURCES ... [LINKS ...]) makes an object library of module code, to be
# linked into the module and, without it, into test programs.
function(ulm_add_objects name)
  cmake_parse_arguments(OBJ "" "" "SOURCES;HEADERS;LINKS" ${ARGN})
  add_library(${name} OBJECT ${OBJ_SOURCES})
  ulm_common(${name})
  if(OBJ_HEADERS)
    ulm_headers(${name} ${OBJ_HEADERS})
  endif()
  target_link_libraries(${name} PUBLIC ${OBJ_LINKS})
endfunction()

# ulm_resources(ULM_Main resources) gives a library or program its resources: resources.rc where the
# system has a resource compiler, resources.cpp with the same as constants elsewhere.
function(ulm_resources target name)
  if(WIN32)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${name}.rc)
  else()
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/${name}.cpp)
  endif()
endfunction()
