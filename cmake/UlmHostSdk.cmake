# Takes the closed side from a folder of the user's, ULM_HOST_SDK, instead of the stand-ins:
#   DIR/host_adapter/  alloc.h odrx.h qlcore.h hostcmd.h interfaces.h, and win32.h but for Windows: each includes the
#                      host's header of that library and maps its names to those that the module uses
#   DIR/include/       the headers of the host that the adapters include
#   DIR/lib/           the import libraries; where one has another name, its variable below names the file
# docs/module.md lists what each of them has to offer.

if(NOT ULM_MODULE OR ULM_TOOLS OR ULM_TESTS OR ULM_BENCH OR ULM_FUZZ)
  message(FATAL_ERROR "ULM_HOST_SDK builds ULM_Main alone: it needs ULM_MODULE, and ULM_TOOLS, ULM_TESTS, "
    "ULM_BENCH and ULM_FUZZ need the stand-ins")
endif()

set(adapters alloc odrx qlcore hostcmd interfaces)
set(libraries TD_Alloc_qld TD_Root_qld qlcore qlhostcmd)
if(NOT WIN32)
  list(APPEND adapters win32)
  list(APPEND libraries ulmwin32)
endif()

foreach(adapter ${adapters})
  if(NOT EXISTS ${ULM_HOST_SDK}/host_adapter/${adapter}.h)
    message(FATAL_ERROR "ULM_HOST_SDK: there is no ${ULM_HOST_SDK}/host_adapter/${adapter}.h")
  endif()
endforeach()

foreach(library ${libraries})
  find_library(ULM_HOST_LIBRARY_${library} NAMES ${library} ${library}${CMAKE_SHARED_LIBRARY_SUFFIX}
    PATHS ${ULM_HOST_SDK}/lib NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
    DOC "The import library of ${library}")
  if(NOT ULM_HOST_LIBRARY_${library})
    message(FATAL_ERROR "ULM_HOST_SDK: there is no library ${library} in ${ULM_HOST_SDK}/lib; "
      "ULM_HOST_LIBRARY_${library} can name its file")
  endif()
  add_library(${library} UNKNOWN IMPORTED)
  set_target_properties(${library} PROPERTIES IMPORTED_LOCATION ${ULM_HOST_LIBRARY_${library}})
endforeach()
if(WIN32)
  add_library(ulmwin32 INTERFACE IMPORTED)
  set_target_properties(ulmwin32 PROPERTIES INTERFACE_LINK_LIBRARIES version)
endif()

add_compile_definitions(ULM_HOST_SDK)
include_directories(SYSTEM ${ULM_HOST_SDK} ${ULM_HOST_SDK}/include)
