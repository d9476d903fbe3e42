# Compiler settings that every room shares, and the function that declares a room.

math(EXPR QUORVEL_WORD_SIZE "${CMAKE_SIZEOF_VOID_P} * 8")

option(QUORVEL_WERROR "Treat compiler warnings as errors" OFF)
set(QUORVEL_SANITIZE "" CACHE STRING "Sanitizers to build with, as given to -fsanitize=")

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)

add_library(quorvel_build INTERFACE)
target_compile_features(quorvel_build INTERFACE cxx_std_20)
target_include_directories(quorvel_build INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(quorvel_build INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  -fPIC -fvisibility=hidden -fvisibility-inlines-hidden -fstack-protector-strong)
if(QUORVEL_WERROR)
  target_compile_options(quorvel_build INTERFACE -Werror)
endif()
if(QUORVEL_SANITIZE)
  target_compile_options(quorvel_build INTERFACE
    -fsanitize=${QUORVEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quorvel_build INTERFACE -fsanitize=${QUORVEL_SANITIZE})
else()
  # Fortified functions and sanitizers intercept the same calls: one or the other.
  target_compile_options(quorvel_build INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
endif()
target_link_libraries(quorvel_build INTERFACE Threads::Threads)

# quorvel_room(NAME SOURCES file... [USES target...])
#
# Declares the object library quorvel_NAME. Objects, so that the unit tests reach inside while the
# shared library exports four names.
function(quorvel_room name)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "" "SOURCES;USES")
  add_library(quorvel_${name} OBJECT ${room_SOURCES})
  target_link_libraries(quorvel_${name} PUBLIC quorvel_build ${room_USES})
endfunction()
