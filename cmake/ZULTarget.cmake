# What every target of the project has in common.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Contraction would fuse a product and a sum into one rounding and so break every error bound.
add_library(zul_build_options INTERFACE)
target_compile_options(zul_build_options INTERFACE
  -Wall -Wextra -Wconversion -ffp-contract=off -fno-fast-math
  $<$<BOOL:${ZUL_WARNINGS_AS_ERRORS}>:-Werror>)
if(ZUL_SANITIZE)
  target_compile_options(zul_build_options INTERFACE
    -fsanitize=${ZUL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(zul_build_options INTERFACE -fsanitize=${ZUL_SANITIZE})
endif()

# zul_add_module(NAME SOURCES ... PUBLIC ... PRIVATE ...): a shared library with its own include/ and src/.
function(zul_add_module NAME)
  cmake_parse_arguments(ARG "" "" "SOURCES;PUBLIC;PRIVATE" ${ARGN})
  add_library(${NAME} SHARED ${ARG_SOURCES})
  add_library(ZUL::${NAME} ALIAS ${NAME})
  # Consumers may still be on C++17; only our own sources need C++20.
  target_compile_features(${NAME} PUBLIC cxx_std_17)
  target_include_directories(${NAME}
    PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include/${NAME}>
    PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/src)
  target_compile_definitions(${NAME} PRIVATE ${NAME}_EXPORTS)
  target_link_libraries(${NAME} PUBLIC ${ARG_PUBLIC} PRIVATE $<BUILD_INTERFACE:zul_build_options> ${ARG_PRIVATE})
  # The modules are installed side by side and find each other there.
  set_target_properties(${NAME} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} INSTALL_RPATH "$ORIGIN")
  install(TARGETS ${NAME} EXPORT ZULMRSPlaneBasedInfraTargets)
  install(DIRECTORY include/ DESTINATION include/${NAME})
endfunction()

# zul_directed_rounding(SOURCES...): sources that compute under a rounding guard.
function(zul_directed_rounding)
  set_property(SOURCE ${ARGN} APPEND PROPERTY COMPILE_OPTIONS -frounding-math)
endfunction()

# zul_add_test(NAME SOURCES ... LIBRARIES ...): one GoogleTest executable, run as one CTest test.
function(zul_add_test NAME)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBRARIES" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 900)
  endif()
  add_executable(${NAME} ${ARG_SOURCES})
  target_include_directories(${NAME} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  target_link_libraries(${NAME} PRIVATE zul_build_options ${ARG_LIBRARIES} GTest::gtest GTest::gtest_main)
  add_test(NAME ${NAME} COMMAND ${NAME})
  set_tests_properties(${NAME} PROPERTIES TIMEOUT ${ARG_TIMEOUT})
endfunction()
