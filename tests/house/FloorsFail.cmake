# Fails when Floors.cmake misses an include of a kind that it must refuse, or refuses a right one.
#
# cmake -D SCRATCH=folder -P FloorsFail.cmake
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE "${SCRATCH}")
foreach(header IN ITEMS
    util/Text.h util/Handles.h devices/InputDevice.h performer/AppSettings.h tests/rig/Rig.h
    tests/unit/addin/Component.h)
  file(WRITE "${SCRATCH}/${header}" "#pragma once\n")
endforeach()

file(WRITE "${SCRATCH}/performer/right.cpp"
  "#include <string>\n#include \"devices/InputDevice.h\"\n#include \"performer/AppSettings.h\"\n")
file(WRITE "${SCRATCH}/tools/right.cpp" "#include \"util/Handles.h\"\n")
file(WRITE "${SCRATCH}/tests/unit/addin/right.cpp"
  "#include \"performer/AppSettings.h\"\n#include \"tests/rig/Rig.h\"\n")

set(refused
  "util/upwards.cpp|\"devices/InputDevice.h\""
  "util/deeper/brackets.h|<devices/InputDevice.h>  // why"
  "util/relative.cpp|\"util/../devices/InputDevice.h\""
  "util/bare.cpp|\"Text.h\""
  "dialog/upwards.cpp|\"performer/AppSettings.h\""
  "tools/inside.cpp|\"util/Text.h\""
  "tests/rig/inside.h|\"devices/InputDevice.h\""
  "tests/unit/util/upwards.cpp|\"devices/InputDevice.h\""
  "tests/unit/util/fixture.cpp|\"tests/unit/addin/Component.h\""
  "bench/fixture.cpp|\"tests/unit/addin/Component.h\""
  "fuzz/rig.cpp|\"tests/rig/Rig.h\"")
foreach(case IN LISTS refused)
  string(REPLACE "|" ";" case "${case}")
  list(GET case 0 file)
  list(GET case 1 include)
  file(WRITE "${SCRATCH}/${file}" "#include ${include}\n")
endforeach()

execute_process(
  COMMAND "${CMAKE_COMMAND}" -D "ROOT=${SCRATCH}" -P "${CMAKE_CURRENT_LIST_DIR}/Floors.cmake"
  RESULT_VARIABLE result ERROR_VARIABLE errors OUTPUT_QUIET)
if(result EQUAL 0)
  message(SEND_ERROR "Floors.cmake succeeds")
endif()
foreach(case IN LISTS refused)
  string(REGEX REPLACE "\\|.*" "" file "${case}")
  if(NOT errors MATCHES "${file}:")
    message(SEND_ERROR "${case} was allowed")
  endif()
endforeach()
if(errors MATCHES "right.cpp")
  message(SEND_ERROR "a right include was refused: ${errors}")
endif()
file(REMOVE_RECURSE "${SCRATCH}")
