# Which folder may include which. Fails, naming every line, when a file includes upwards.
#
# cmake -D ROOT=source-folder -P Floors.cmake
cmake_minimum_required(VERSION 3.25)

# The folders that are looked at, and the folders from which each may include. The rooms of the
# product stand in their order, lowest first.
set(folders host util devices parameters dialog performer addin tools tests/rig tests/system)
set(host_may host)
set(util_may ${host_may} util)
set(devices_may ${util_may} devices)
set(parameters_may ${devices_may} parameters)
set(dialog_may ${devices_may} dialog)
set(performer_may ${devices_may} parameters dialog performer)
set(addin_may ${performer_may} addin)
# What stands outside sees the component through the host's interfaces only.
set(tools_may host tools)
set(tests/rig_may host tools tests/rig)
set(tests/system_may host tools tests/rig tests/system)

# The settings that all components of a process share are nobody else's business.
set(guarded_headers performer/AppSettings.h performer/KeyValue.h)
set(guarded_headers_in performer addin)

# The owners of C handles need nothing of the component, and serve outside it as well.
set(shared_header util/Handles.h)
set(shared_header_in tools tests/rig)

function(check_include folder file line included)
  get_filename_component(directory "${file}" DIRECTORY)
  if(included MATCHES "(^|/)\\.\\.?/")
    set(reason "goes by a relative path")
  elseif(included IN_LIST guarded_headers AND NOT folder IN_LIST guarded_headers_in)
    set(reason "is for ${guarded_headers_in} only")
  elseif(included STREQUAL shared_header AND folder IN_LIST shared_header_in)
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
foreach(folder IN LISTS folders)
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
