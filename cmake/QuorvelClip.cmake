# Looks for the clip library. QUORVEL_CLIP names what to link; it is empty when the library is not
# installed and the test window needs its own clipboard.
include(CheckCXXSourceCompiles)

find_package(clip QUIET)
set(QUORVEL_CLIP "")
foreach(target IN ITEMS clip::clip clip)
  if(NOT QUORVEL_CLIP AND TARGET ${target})
    set(QUORVEL_CLIP ${target})
  endif()
endforeach()

if(NOT QUORVEL_CLIP)
  find_path(QUORVEL_CLIP_INCLUDE_DIR clip.h)
  find_library(QUORVEL_CLIP_LIBRARY clip)
  mark_as_advanced(QUORVEL_CLIP_INCLUDE_DIR QUORVEL_CLIP_LIBRARY)
  if(QUORVEL_CLIP_INCLUDE_DIR AND QUORVEL_CLIP_LIBRARY)
    # Linking it proves that it is the right library, in the right word size.
    set(CMAKE_REQUIRED_INCLUDES "${QUORVEL_CLIP_INCLUDE_DIR}")
    set(CMAKE_REQUIRED_LIBRARIES "${QUORVEL_CLIP_LIBRARY}" xcb)
    check_cxx_source_compiles(
      "#include <clip.h>\nint main() { return clip::set_text(\"\") ? 0 : 1; }" QUORVEL_CLIP_LINKS)
    unset(CMAKE_REQUIRED_INCLUDES)
    unset(CMAKE_REQUIRED_LIBRARIES)
    if(QUORVEL_CLIP_LINKS)
      set(QUORVEL_CLIP "${QUORVEL_CLIP_LIBRARY}" xcb)
    endif()
  endif()
endif()
