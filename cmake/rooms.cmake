# What every target of the project is compiled with.
add_library(facet_options INTERFACE)
target_include_directories(facet_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(facet_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Werror
  -ffp-contract=off)  # model values are computed in single precision, step by step
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(facet_options INTERFACE -Wno-restrict)  # GCC 12 sees overlaps in string operator+
endif()
if(FACET_SANITIZE)
  target_compile_options(facet_options INTERFACE
    -fsanitize=${FACET_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(facet_options INTERFACE -fsanitize=${FACET_SANITIZE})
  add_library(facet_keep_modules OBJECT ${CMAKE_CURRENT_LIST_DIR}/keep_modules.cpp)
  target_link_libraries(facet_options INTERFACE $<TARGET_OBJECTS:facet_keep_modules>)
  target_link_options(facet_options INTERFACE LINKER:--export-dynamic-symbol=dlclose)
endif()
if(FACET_FUZZ)
  target_compile_options(facet_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# facet_room(NAME [rooms and libraries it stands on...]): one static library of every unit in src/NAME.
function(facet_room name)
  file(GLOB units CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${name}/*.cpp ${PROJECT_SOURCE_DIR}/src/${name}/*/*.cpp)
  add_library(facet_${name} STATIC ${units})
  target_link_libraries(facet_${name} PUBLIC facet_options ${ARGN})
endfunction()

# facet_test(NAME [rooms and libraries...]): the tests of one room, every unit in tests/NAME.
function(facet_test name)
  file(GLOB units CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${name}/*_test.cpp)
  if(NOT units)
    return()
  endif()
  add_executable(${name}_tests ${units})
  target_link_libraries(${name}_tests PRIVATE facet_test_support ${ARGN} GTest::gmock_main)
  gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
