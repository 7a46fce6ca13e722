find_package(GTest REQUIRED)
include(GoogleTest)

# regmill_test(name SOURCES ... DEPS ...): one GoogleTest executable registered with CTest.
# Tests find the shared real-world material through REGMILL_SHARED_DIR.
set(REGMILL_SHARED_DIR "${CMAKE_SOURCE_DIR}/../shared" CACHE PATH "Folder with shared test material (corpus)")
function(regmill_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE regmill_options ${ARG_DEPS} regmill_test_support GTest::gtest GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE
    REGMILL_SHARED_DIR="${REGMILL_SHARED_DIR}"
    REGMILL_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 600)
endfunction()
