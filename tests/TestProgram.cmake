# How a program of tests is built, and what ctest runs of it.

# The product is tested as it is shipped; the tests themselves compile in half the time when they are
# not optimized. What is precompiled fits only programs with the same options.
function(quorvel_test_options target)
  set_property(TARGET ${target} PROPERTY QUORVEL_COMPILED_QUICKLY ON)
  target_compile_options(${target} PRIVATE -pthread)
endfunction()

# The largest headers, precompiled once for all programs. None of the project's: it would hide that a
# test forgets to include it.
add_library(test_headers STATIC TestHeaders.cpp)
quorvel_test_options(test_headers)
target_link_libraries(test_headers PRIVATE quorvel_build GTest::gmock)
target_precompile_headers(test_headers PRIVATE
  <gmock/gmock.h> <gtest/gtest.h> <nlohmann/json.hpp>)

# quorvel_test_program(NAME SOURCES file... [USES target...])
function(quorvel_test_program name)
  cmake_parse_arguments(PARSE_ARGV 1 test "" "" "SOURCES;USES")
  add_executable(${name} ${test_SOURCES})
  quorvel_test_options(${name})
  target_link_libraries(${name} PRIVATE ${test_USES} GTest::gmock GTest::gtest_main)
  target_precompile_headers(${name} REUSE_FROM test_headers)
endfunction()

# quorvel_add_suites(PROGRAM PREFIX [LAUNCHER word...] [ENVIRONMENT variable=value...]
#                    [MATCHING regex] [EXCEPT test...])
#
# Makes each test suite of the program a test of ctest's, called PREFIX.Suite: suites run side by
# side, each in a process of its own. ctest asks the program for them when it starts.
function(quorvel_add_suites program prefix)
  cmake_parse_arguments(PARSE_ARGV 2 suites "" "MATCHING" "LAUNCHER;ENVIRONMENT;EXCEPT")
  set(file "${CMAKE_CURRENT_BINARY_DIR}/${prefix}_of_${program}.cmake")
  file(GENERATE OUTPUT "${file}" CONTENT "\
set(program \"$<TARGET_FILE:${program}>\")
set(prefix \"${prefix}\")
set(launcher \"${suites_LAUNCHER}\")
set(environment \"${suites_ENVIRONMENT}\")
set(matching \"${suites_MATCHING}\")
set(except \"${suites_EXCEPT}\")
include(\"${PROJECT_SOURCE_DIR}/tests/AddSuites.cmake\")
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${file}")
endfunction()
