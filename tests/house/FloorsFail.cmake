# Builds small houses with one wrong include each, and fails when Floors.cmake lets one stand.
#
# cmake -D SCRATCH=folder -P FloorsFail.cmake
cmake_minimum_required(VERSION 3.25)

# Checks a house that has every header named here and one file with one include.
function(house_with file include expected)
  file(REMOVE_RECURSE "${SCRATCH}")
  foreach(header IN ITEMS
      host/Variant.h util/Handles.h util/Text.h devices/InputDevice.h parameters/Form.h dialog/Window.h
      performer/AppSettings.h performer/KeyValue.h performer/Performer.h addin/Component.h
      tools/Host.h tests/rig/Rig.h tests/system/Driver.h)
    file(WRITE "${SCRATCH}/${header}" "#pragma once\n")
  endforeach()
  file(WRITE "${SCRATCH}/${file}" "#include ${include}\n")
  execute_process(
    COMMAND "${CMAKE_COMMAND}" -D "ROOT=${SCRATCH}" -P "${CMAKE_CURRENT_LIST_DIR}/Floors.cmake"
    RESULT_VARIABLE result ERROR_VARIABLE errors OUTPUT_QUIET)
  if(expected STREQUAL "stands" AND NOT result EQUAL 0)
    message(SEND_ERROR "${file} was refused ${include}: ${errors}")
  elseif(expected STREQUAL "falls" AND result EQUAL 0)
    message(SEND_ERROR "${file} was allowed ${include}")
  elseif(expected STREQUAL "falls" AND NOT errors MATCHES "${file}")
    message(SEND_ERROR "${file} was refused ${include} without its name: ${errors}")
  endif()
endfunction()

house_with(util/a.cpp "\"util/Text.h\"" stands)
house_with(util/a.cpp "\"host/Variant.h\"" stands)
house_with(util/a.cpp "<string>" stands)
house_with(dialog/a.cpp "\"devices/InputDevice.h\"" stands)
house_with(performer/a.cpp "\"dialog/Window.h\"" stands)
house_with(performer/a.h "\"parameters/Form.h\"" stands)
house_with(addin/a.cpp "\"performer/AppSettings.h\"" stands)
house_with(performer/a.cpp "\"performer/KeyValue.h\"" stands)
house_with(tools/a.cpp "\"host/Variant.h\"" stands)
house_with(tools/a.cpp "\"util/Handles.h\"" stands)
house_with(tests/rig/a.cpp "\"util/Handles.h\"" stands)
house_with(tests/system/a.cpp "\"tools/Host.h\"" stands)
house_with(tests/system/a.cpp "\"tests/rig/Rig.h\"" stands)
house_with(tests/unit/a.cpp "\"performer/AppSettings.h\"" stands)

house_with(host/a.h "\"util/Text.h\"" falls)
house_with(util/a.cpp "\"devices/InputDevice.h\"" falls)
house_with(util/a.h "<devices/InputDevice.h>" falls)
house_with(util/deeper/a.cpp "\"devices/InputDevice.h\"" falls)
house_with(devices/a.cpp "\"parameters/Form.h\"" falls)
house_with(devices/a.cpp "\"performer/Performer.h\"" falls)
house_with(devices/a.cpp "\"performer/AppSettings.h\"" falls)
house_with(parameters/a.cpp "\"dialog/Window.h\"" falls)
house_with(dialog/a.cpp "\"parameters/Form.h\"" falls)
house_with(dialog/a.cpp "\"performer/AppSettings.h\"" falls)
house_with(performer/a.cpp "\"addin/Component.h\"" falls)
house_with(tools/a.cpp "\"util/Text.h\"" falls)
house_with(tools/a.cpp "\"tests/rig/Rig.h\"" falls)
house_with(tools/a.cpp "\"performer/KeyValue.h\"" falls)
house_with(tests/rig/a.h "\"devices/InputDevice.h\"" falls)
house_with(tests/system/a.cpp "\"addin/Component.h\"" falls)
house_with(util/a.cpp "\"../addin/Component.h\"" falls)
house_with(util/a.cpp "\"util/../addin/Component.h\"" falls)
house_with(util/a.cpp "\"Text.h\"" falls)
house_with(util/a.cpp "\"addin/Component.h\"  // why" falls)

file(REMOVE_RECURSE "${SCRATCH}")
