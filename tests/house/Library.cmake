# What the built library looks like from outside: its symbols, and that it stays loaded.
#
# cmake -D LIBRARY=file -D NM=program -D READELF=program -P Library.cmake
cmake_minimum_required(VERSION 3.25)

function(run result)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

run(exported "${NM}" -D --defined-only "${LIBRARY}")
run(dynamic "${READELF}" --dynamic --wide "${LIBRARY}")

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

if(NOT dynamic MATCHES "\\(FLAGS_1\\)[^\n]*NODELETE")
  message(SEND_ERROR "has no mark that it stays loaded")
endif()
if(dynamic MATCHES "TEXTREL")
  message(SEND_ERROR "has relocations in its code")
endif()
