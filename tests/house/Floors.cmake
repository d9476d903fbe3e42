# Which folder may include which. Fails, naming every line, when a file includes upwards.
#
# cmake -D ROOT=source-folder -P Floors.cmake
cmake_minimum_required(VERSION 3.25)

# The rooms of the product, lowest first, and the rooms that each may include.
set(rooms host util devices parameters dialog performer addin)
set(host_may host)
set(util_may ${host_may} util)
set(devices_may ${util_may} devices)
set(parameters_may ${devices_may} parameters)
set(dialog_may ${devices_may} dialog)
set(performer_may ${devices_may} parameters dialog performer)
set(addin_may ${performer_may} addin)

# What stands outside sees the component through the host's interfaces only.
set(outside tools tests/rig tests/system)
set(tools_may host tools)
set(tests/rig_may ${tools_may} tests/rig)
set(tests/system_may ${tests/rig_may} tests/system)

# The owners of C handles need nothing of the component, and serve outside it as well.
set(shared_header util/Handles.h)

# These reach inside.
set(inside bench fuzz)
set(bench_may ${tests/rig_may} ${addin_may} bench)
set(fuzz_may ${addin_may} tools fuzz)
foreach(room IN LISTS rooms)
  # A test sees what its room sees, and the fixtures of the rooms below.
  list(APPEND inside tests/unit/${room})
  set(tests/unit/${room}_may ${tests/rig_may} ${${room}_may})
  foreach(below IN LISTS ${room}_may)
    list(APPEND tests/unit/${room}_may tests/unit/${below})
  endforeach()
endforeach()

function(check_include folder file line included)
  get_filename_component(directory "${file}" DIRECTORY)
  if(included MATCHES "(^|/)\\.\\.?/")
    set(reason "goes by a relative path")
  elseif(included STREQUAL shared_header AND folder IN_LIST outside)
    return()
  elseif(EXISTS "${ROOT}/${included}")
    foreach(allowed IN LISTS ${folder}_may)
      if(included MATCHES "^${allowed}/")
        return()
      endif()
    endforeach()
    set(reason "is out of reach of ${folder}/")
  elseif(EXISTS "${directory}/${included}")
    set(reason "does not name its folder")
  else()
    return()  # the system's
  endif()
  file(RELATIVE_PATH shown "${ROOT}" "${file}")
  message(SEND_ERROR "${shown}: ${line}: ${included} ${reason}")
endfunction()

set(looked_at 0)
foreach(folder IN LISTS rooms outside inside)
  file(GLOB_RECURSE files "${ROOT}/${folder}/*.h" "${ROOT}/${folder}/*.cpp")
  foreach(file IN LISTS files)
    math(EXPR looked_at "${looked_at} + 1")
    file(STRINGS "${file}" lines REGEX "^[ \t]*#[ \t]*include[ \t]*[<\"]")
    foreach(line IN LISTS lines)
      string(REGEX REPLACE "^[^<\"]*[<\"]([^>\"]*).*$" "\\1" included "${line}")
      check_include("${folder}" "${file}" "${line}" "${included}")
    endforeach()
  endforeach()
endforeach()
message(STATUS "looked at ${looked_at} files")
if(looked_at EQUAL 0)
  message(FATAL_ERROR "no source files in ${ROOT}")
endif()
