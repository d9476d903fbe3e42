# How a built file, a library or a program, is hardened.
#
# cmake -D FILE=file -D NM=program -D READELF=program -D COMPILER=GNU|Clang -D WORD_SIZE=32|64
#       [-D KIND=program] -P Hardening.cmake
cmake_minimum_required(VERSION 3.25)

function(run result)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

function(expect text pattern what)
  if(NOT text MATCHES "${pattern}")
    message(SEND_ERROR "has no ${what}")
  endif()
endfunction()

run(header "${READELF}" --file-header "${FILE}")
run(imported "${NM}" -D --undefined-only "${FILE}")
run(dynamic "${READELF}" --dynamic --wide "${FILE}")
run(segments "${READELF}" --program-headers --wide "${FILE}")

expect("${segments}" "GNU_RELRO" "read-only relocations")
expect("${dynamic}" "\\(FLAGS\\)[^\n]*BIND_NOW" "binding at load time")
expect("${segments}" "GNU_STACK( +0x[0-9a-f]+)+ RW +0x" "stack that cannot be executed")
if(KIND STREQUAL "program")
  expect("${header}" "Type: +DYN" "address that changes from run to run")
  expect("${dynamic}" "\\(FLAGS_1\\)[^\n]*PIE" "mark of a position-independent program")
endif()
expect("${imported}" " __stack_chk_fail" "guarded stack frames")
expect("${imported}" " __[a-z]+_chk(@|\n)" "fortified functions")
file(STRINGS "${FILE}" assertions REGEX "__(glibcxx_assert_fail|replacement_assert)|%s:%d: %s: Assertion")
expect("${assertions}" "ssert" "containers that check their bounds")

# GCC writes down the options of each source; equal lines are one in the file.
if(COMPILER STREQUAL "GNU")
  set(options -fstack-protector-strong -fstack-clash-protection)
  if(WORD_SIZE EQUAL 64)
    list(APPEND options -fcf-protection=full)
  endif()
  file(STRINGS "${FILE}" compiled REGEX "^GNU C\\+\\+(20|2a) [0-9.]+ .* -g")
  expect("${compiled}" "." "record of how it was compiled")
  foreach(option IN LISTS options)
    set(without ${compiled})
    list(FILTER without EXCLUDE REGEX " ${option}( |$)")
    if(without OR NOT compiled)
      message(SEND_ERROR "has sources compiled without ${option}: ${without}")
    endif()
  endforeach()
endif()
