# Interval arithmetic straight from the sources by each compiler, fully optimised and without a word to it
# that rounding modes change: nothing but the pins in the operations keeps arithmetic in its place.
option(ZUL_SECOND_COMPILER "Test interval arithmetic with GCC and Clang, whichever builds the project" ON)
find_program(ZUL_GCC NAMES g++)
find_program(ZUL_CLANG NAMES clang++ clang++-14)
mark_as_advanced(ZUL_GCC ZUL_CLANG)
set(ENCLOSURE_SOURCES ${CMAKE_CURRENT_SOURCE_DIR}/ZULExpEnclosureProgram.cpp ${ZUL_PLATFORM}/src/ZULExpInterval.cpp)
file(GLOB ENCLOSURE_HEADERS CONFIGURE_DEPENDS ${ZUL_PLATFORM}/include/ZULExp*.h ZULExpReference.h ZULExpEnclosureCases.h)
foreach(KIND GCC CLANG)
  foreach(VARIANT native portable rounding-math)
    set(NAME ZULExpEnclosure-${KIND}-${VARIANT})
    set(OPTIONS -std=c++20 -O3 -Wall -Wextra -Wconversion -Werror -ffp-contract=off)
    if(VARIANT STREQUAL portable)
      list(APPEND OPTIONS -DZUL_FORCE_PORTABLE)
    elseif(VARIANT STREQUAL rounding-math)
      list(APPEND OPTIONS -frounding-math)
    endif()
    if(ZUL_${KIND})
      add_custom_command(OUTPUT ${NAME}
        COMMAND ${ZUL_${KIND}} ${OPTIONS} -I${ZUL_PLATFORM}/include -isystem ${GMP_INCLUDE_DIR}
          ${ENCLOSURE_SOURCES} ${GMP_LIBRARY} -o ${NAME}
        DEPENDS ${ENCLOSURE_SOURCES} ${ENCLOSURE_HEADERS} VERBATIM)
      add_custom_target(${NAME}-program ALL DEPENDS ${NAME})
      add_test(NAME ${NAME} COMMAND ${CMAKE_CURRENT_BINARY_DIR}/${NAME} 1000000)
    elseif(ZUL_SECOND_COMPILER)
      add_test(NAME ${NAME} COMMAND ${CMAKE_COMMAND} -E cat "no ${KIND} compiler found, see ZUL_SECOND_COMPILER")
    endif()
    if(TEST ${NAME})
      set_tests_properties(${NAME} PROPERTIES TIMEOUT 900)
    endif()
  endforeach()
endforeach()

set(PUBLIC_FOLDERS)
foreach(MODULE ZULPlatform ZULMRSPlaneBasedInfra ZULMRSCutting)
  list(APPEND PUBLIC_FOLDERS ${PROJECT_SOURCE_DIR}/${MODULE}.m/include)
endforeach()
foreach(MODULE ZULPlatform ZULMRSPlaneBasedInfra ZULMRSCutting)
  add_test(NAME ${MODULE}Headers COMMAND ${CMAKE_COMMAND}
    -DCOMPILER=${CMAKE_CXX_COMPILER} -DFOLDER=${PROJECT_SOURCE_DIR}/${MODULE}.m/include
    "-DINCLUDES=${PUBLIC_FOLDERS}" -DSCRATCH=${CMAKE_CURRENT_BINARY_DIR}/headers/${MODULE}
    -P ${CMAKE_CURRENT_SOURCE_DIR}/CheckHeaders.cmake)
endforeach()

foreach(KIND GCC CLANG)
  if(ZUL_${KIND})
    add_test(NAME ZULSourcesBy-${KIND} COMMAND ${CMAKE_COMMAND} -DCOMPILER=${ZUL_${KIND}} -DROOT=${PROJECT_SOURCE_DIR}
      -DGMP=${GMP_INCLUDE_DIR} -P ${CMAKE_CURRENT_SOURCE_DIR}/CheckSources.cmake)
    set_tests_properties(ZULSourcesBy-${KIND} PROPERTIES TIMEOUT 900)
  elseif(ZUL_SECOND_COMPILER)
    add_test(NAME ZULSourcesBy-${KIND}
      COMMAND ${CMAKE_COMMAND} -E cat "no ${KIND} compiler found, see ZUL_SECOND_COMPILER")
  endif()
endforeach()
