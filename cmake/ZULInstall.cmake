# Installs the modules as the CMake package ZULMRSPlaneBasedInfra, with targets ZUL::<module>.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(ZUL_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZULMRSPlaneBasedInfra)
install(EXPORT ZULMRSPlaneBasedInfraTargets NAMESPACE ZUL:: DESTINATION ${ZUL_PACKAGE_DIR})
write_basic_package_version_file(ZULMRSPlaneBasedInfraConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_LIST_DIR}/ZULMRSPlaneBasedInfraConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/ZULMRSPlaneBasedInfraConfigVersion.cmake
  DESTINATION ${ZUL_PACKAGE_DIR})
