# What is precompiled for the tests must not hide that a file forgets to include it. Fails, naming
# every such file.
#
# cmake -D ROOT=source-folder -P PrecompiledHeaders.cmake
cmake_minimum_required(VERSION 3.25)

set(looked_at 0)
file(GLOB_RECURSE files "${ROOT}/tests/*.cpp")
foreach(file IN LISTS files)
  file(READ "${file}" text)
  if(NOT text MATCHES "\n(TEST|TEST_F|TEST_P)\\(")
    continue()
  endif()
  math(EXPR looked_at "${looked_at} + 1")
  if(text MATCHES "(EXPECT|ASSERT)_THAT\\(")
    set(header "gmock/gmock.h")
  else()
    set(header "(gtest/gtest|gmock/gmock).h")
  endif()
  if(NOT text MATCHES "#include <${header}>")
    message(SEND_ERROR "${file} does not include <${header}>")
  endif()
endforeach()
message(STATUS "looked at ${looked_at} files")
if(looked_at EQUAL 0)
  message(FATAL_ERROR "no tests in ${ROOT}")
endif()
