# What the built library looks like from outside: its symbols, what it needs, and that it stays
# loaded.
#
# cmake -D LIBRARY=file -D NM=program -D READELF=program [-D CLIP=library] -P Library.cmake
cmake_minimum_required(VERSION 3.25)

function(run result)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  set(${result} "${output}" PARENT_SCOPE)
endfunction()

run(exported "${NM}" -D --defined-only "${LIBRARY}")
run(imported "${NM}" -D --undefined-only "${LIBRARY}")
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

# A host that wants to know exports it; no other has to.
if(NOT imported MATCHES " w QuorvelMessageDropped\n")
  message(SEND_ERROR "does not tell hosts of the messages that it drops")
endif()

if(NOT dynamic MATCHES "\\(FLAGS_1\\)[^\n]*NODELETE")
  message(SEND_ERROR "has no mark that it stays loaded")
endif()
if(dynamic MATCHES "TEXTREL")
  message(SEND_ERROR "has relocations in its code")
endif()

# What only the test window needs is opened when that is, and not with the library. A clip library
# from elsewhere brings XCB.
set(window_libraries gtk gdk glib gobject gio gmodule pango cairo atk)
if(NOT CLIP)
  list(APPEND window_libraries xcb)
endif()
list(JOIN window_libraries "|" names)
if(dynamic MATCHES "\\(NEEDED\\)[^\n]*\\[(lib(${names})[^]]*)\\]")
  message(SEND_ERROR "is linked to ${CMAKE_MATCH_1}")
endif()
if(imported MATCHES " ((g|${names})_[^@\n]*)")
  message(SEND_ERROR "needs ${CMAKE_MATCH_1} at loading time")
endif()
