# Read by ctest: adds a test for each test suite of a program. quorvel_add_suites in TestProgram.cmake
# sets the variables used here.

execute_process(COMMAND "${program}" --gtest_list_tests
  OUTPUT_VARIABLE listing ERROR_VARIABLE errors RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  # Fails, and shows why.
  add_test("${prefix}.not_built" "${program}" --gtest_list_tests)
endif()

set(except_filter "")
if(except)
  string(REPLACE ";" ":" except_filter "-${except}")
endif()

# Whoever expects tests that never end sets the variable, in seconds.
set(timeout 600)
if(DEFINED ENV{QUORVEL_TEST_TIMEOUT})
  set(timeout "$ENV{QUORVEL_TEST_TIMEOUT}")
endif()

# A line that names a suite ends in a dot, which a comment may follow; its tests are indented.
string(REGEX MATCHALL "(^|\n)[A-Za-z0-9_/]+\\.[ \n]" lines "${listing}")
foreach(line IN LISTS lines)
  string(REGEX MATCH "[A-Za-z0-9_/]+" suite "${line}")
  if(suite MATCHES "${matching}")
    set(name "${prefix}.${suite}")
    add_test("${name}" ${launcher} "${program}" "--gtest_filter=${suite}.*${except_filter}")
    set_tests_properties("${name}" PROPERTIES TIMEOUT ${timeout} ENVIRONMENT "${environment}")
  endif()
endforeach()
