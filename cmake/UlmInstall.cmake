# What an installation holds: the facilities with their headers, for find_package(Ulmira).

include(CMakePackageConfigHelpers)

get_property(exported GLOBAL PROPERTY ULM_EXPORTED)
install(TARGETS ${exported} TD_Root_qld TD_Alloc_qld EXPORT UlmiraTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
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
