include(CMakeFindDependencyMacro)
find_dependency(TBB)
include(${CMAKE_CURRENT_LIST_DIR}/ZULMRSPlaneBasedInfraTargets.cmake)
