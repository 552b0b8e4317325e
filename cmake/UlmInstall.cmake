# What an installation holds: the facilities with their headers, for find_package(Ulmira), and, where
# they are built, the module with the stand-in host in a folder of their own, and the command.

set(host_folder ${CMAKE_INSTALL_LIBDIR}/ulmira)
if(ULM_HOST_SDK)  # the libraries need the user's own; nothing but the module can be handed on
  install(TARGETS ULM_Main RUNTIME DESTINATION ${host_folder} LIBRARY DESTINATION ${host_folder})
  return()
endif()

include(CMakePackageConfigHelpers)

get_property(exported GLOBAL PROPERTY ULM_EXPORTED)
install(TARGETS ${exported} TD_Root_qld TD_Alloc_qld ulmwin32 EXPORT UlmiraTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ulmira)
install(EXPORT UlmiraTargets NAMESPACE Ulmira:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Ulmira)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/UlmiraConfig.cmake
  "include(\${CMAKE_CURRENT_LIST_DIR}/UlmiraTargets.cmake)\n")
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/UlmiraConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/UlmiraConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/UlmiraConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Ulmira)

set(folders)
if(ULM_MODULE)
  install(TARGETS ULM_Main QlHostApp qlview qlsupport qlcore qlhostcmd TD_Root_qld TD_Alloc_qld ulmwin32
    RUNTIME DESTINATION ${host_folder} LIBRARY DESTINATION ${host_folder})
  list(APPEND folders ${host_folder})

  # Our declarations of the closed side and the stand-ins to link: what a folder for ULM_HOST_SDK can
  # start from. Only on request: cmake --install BUILD --component host_sdk --prefix DIR
  install(DIRECTORY core/iface DESTINATION include/core COMPONENT host_sdk EXCLUDE_FROM_ALL
    FILES_MATCHING PATTERN "*.h")
  install(DIRECTORY hostsdk DESTINATION include COMPONENT host_sdk EXCLUDE_FROM_ALL
    FILES_MATCHING PATTERN "*.h" PATTERN adapter EXCLUDE)
  install(TARGETS TD_Alloc_qld TD_Root_qld qlcore qlhostcmd ulmwin32
    LIBRARY DESTINATION lib COMPONENT host_sdk EXCLUDE_FROM_ALL
    ARCHIVE DESTINATION lib COMPONENT host_sdk EXCLUDE_FROM_ALL
    RUNTIME DESTINATION lib COMPONENT host_sdk EXCLUDE_FROM_ALL)
endif()
if(ULM_TOOLS)
  install(TARGETS ulmira_host RUNTIME DESTINATION ${host_folder})
  install(TARGETS ulmira RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
# The language's run-time, shared by all libraries of a folder.
if(WIN32)
  list(APPEND folders ${CMAKE_INSTALL_BINDIR})
  foreach(folder ${folders})
    install(FILES ${ULM_RUNTIME_LIBRARIES} DESTINATION ${folder})
  endforeach()
endif()
