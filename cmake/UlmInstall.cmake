# What an installation holds: the facilities with their headers, for find_package(Ulmira), and, where
# they are built, the module with the stand-in host in a folder of their own, and the command.

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

set(host_folder ${CMAKE_INSTALL_LIBDIR}/ulmira)
set(folders)
if(ULM_MODULE)
  install(TARGETS ULM_Main QlHostApp qlview qlsupport qlcore qlhostcmd TD_Root_qld TD_Alloc_qld ulmwin32
    RUNTIME DESTINATION ${host_folder} LIBRARY DESTINATION ${host_folder})
  list(APPEND folders ${host_folder})
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
