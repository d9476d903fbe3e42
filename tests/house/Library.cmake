# What the built library looks like from outside: its symbols and how it is hardened.
#
# cmake -D LIBRARY=file -D NM=program -D READELF=program [-D SANITIZERS=list] -P Library.cmake
cmake_minimum_required(VERSION 3.25)

function(run result)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

run(exported "${NM}" -D --defined-only "${LIBRARY}")
run(imported "${NM}" -D --undefined-only "${LIBRARY}")
run(dynamic "${READELF}" --dynamic --wide "${LIBRARY}")
run(segments "${READELF}" --program-headers --wide "${LIBRARY}")

# Four functions, whatever the objects inside define.
set(names "")
string(REPLACE "\n" ";" lines "${exported}")
foreach(line IN LISTS lines)
  if(line MATCHES "^[0-9a-f]* *([A-Za-z]) (.+)$")
    list(APPEND names "${CMAKE_MATCH_1} ${CMAKE_MATCH_2}")
  endif()
endforeach()
list(SORT names)
set(expected "T DestroyObject;T GetClassNames;T GetClassObject;T SetPlatformCapabilities")
if(NOT names STREQUAL expected)
  message(SEND_ERROR "exports ${names} and not ${expected}")
endif()

function(expect text pattern what)
  if(NOT text MATCHES "${pattern}")
    message(SEND_ERROR "has no ${what}")
  endif()
endfunction()

expect("${segments}" "GNU_RELRO" "read-only relocations")
expect("${dynamic}" "\\(FLAGS\\)[^\n]*BIND_NOW" "binding at load time")
expect("${dynamic}" "\\(FLAGS_1\\)[^\n]*NODELETE" "mark that it stays loaded")
expect("${segments}" "GNU_STACK( +0x[0-9a-f]+)+ RW +0x" "stack that cannot be executed")
if(dynamic MATCHES "TEXTREL")
  message(SEND_ERROR "has relocations in its code")
endif()
# Sanitizers and fortified functions intercept the same calls.
if(NOT SANITIZERS)
  expect("${imported}" " __stack_chk_fail" "guarded stack frames")
  expect("${imported}" " __[a-z]+_chk(@|\n)" "fortified functions")
endif()
