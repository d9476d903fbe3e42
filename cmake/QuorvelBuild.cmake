# Compiler settings that every room shares, and the function that declares a room.

math(EXPR QUORVEL_WORD_SIZE "${CMAKE_SIZEOF_VOID_P} * 8")

option(QUORVEL_WERROR "Treat compiler warnings as errors" OFF)
# No compiler extensions. The linters need the compile commands.
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

option(QUORVEL_FUZZ "Build the fuzz targets instead of the tests; needs clang" OFF)
option(QUORVEL_BUNDLE "Link the C++ runtime and pugixml in, as the packages have it" OFF)
set(QUORVEL_SANITIZE "" CACHE STRING "Sanitizers to build with, as given to -fsanitize=")

# The build that tests and measures whatever needs it only once.
set(QUORVEL_IS_PRODUCT OFF)
if(QUORVEL_WORD_SIZE EQUAL 32 AND NOT QUORVEL_SANITIZE)
  set(QUORVEL_IS_PRODUCT ON)
endif()

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)

# QuorvelVersion.h gives the sources the version that project() names.
configure_file("${CMAKE_SOURCE_DIR}/cmake/QuorvelVersion.h.in"
  "${CMAKE_BINARY_DIR}/generated/QuorvelVersion.h" @ONLY)

add_library(quorvel_build INTERFACE)
target_compile_features(quorvel_build INTERFACE cxx_std_20)
target_include_directories(quorvel_build INTERFACE
  "${CMAKE_SOURCE_DIR}" "${CMAKE_BINARY_DIR}/generated")
target_compile_options(quorvel_build INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  -fPIC -fvisibility=hidden -fvisibility-inlines-hidden
  -fstack-protector-strong -fstack-clash-protection)
# A container used beyond its bounds ends the process instead of reading or writing there.
target_compile_definitions(quorvel_build INTERFACE _GLIBCXX_ASSERTIONS)
if(QUORVEL_WORD_SIZE EQUAL 64 AND CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  # Linux has control-flow protection for 64-bit programs only.
  target_compile_options(quorvel_build INTERFACE -fcf-protection=full)
endif()
if(QUORVEL_WERROR)
  target_compile_options(quorvel_build INTERFACE -Werror)
endif()
# A target sets this property where compiling takes longer than running: the tests. Fortified functions
# need optimization; checks for undefined behaviour take half as long to compile as all else, and are of
# use in what is shipped. In the build type Debug a debugger shows the variables as well.
set(quickly "$<BOOL:$<TARGET_PROPERTY:QUORVEL_COMPILED_QUICKLY>>")
target_compile_options(quorvel_build INTERFACE "$<$<AND:${quickly},$<CONFIG:RelWithDebInfo>>:-O0;-g1>")
if(QUORVEL_SANITIZE)
  target_compile_options(quorvel_build INTERFACE
    -fsanitize=${QUORVEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
    "$<${quickly}:-fno-sanitize=undefined>")
  target_link_options(quorvel_build INTERFACE -fsanitize=${QUORVEL_SANITIZE})
  # For tests that take longer then; each compiler has macros of its own.
  target_compile_definitions(quorvel_build INTERFACE QUORVEL_SANITIZED)
  if(QUORVEL_FUZZ)
    target_compile_options(quorvel_build INTERFACE -fsanitize=fuzzer-no-link)
  endif()
else()
  # Not with sanitizers: both intercept the same calls. Headers older than the compiler, or a compiler
  # older than they, may warn of level 3 or take it for 2.
  include(CheckCXXSourceCompiles)
  set(CMAKE_REQUIRED_FLAGS "-O2 -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=3 -Werror")
  check_cxx_source_compiles("#include <cstdlib>
    #if __USE_FORTIFY_LEVEL < 3
    #error
    #endif
    int main() {}" QUORVEL_FORTIFY_3)
  unset(CMAKE_REQUIRED_FLAGS)
  set(QUORVEL_FORTIFY_LEVEL "$<IF:$<BOOL:${QUORVEL_FORTIFY_3}>,3,2>")
  target_compile_options(quorvel_build INTERFACE -U_FORTIFY_SOURCE
    "$<$<NOT:${quickly}>:-D_FORTIFY_SOURCE=${QUORVEL_FORTIFY_LEVEL}>")
endif()
if(QUORVEL_BUNDLE)
  # A host may bring a C++ runtime of its own, older than the one this was built with. Its symbols
  # stay inside, or the two would be mixed up.
  target_link_options(quorvel_build INTERFACE
    -static-libstdc++ -static-libgcc LINKER:--exclude-libs,ALL)
endif()
target_link_libraries(quorvel_build INTERFACE Threads::Threads)

# quorvel_require_headers(LIBRARY HEADER PACKAGE)
#
# Makes a header-only library available everywhere, or fails and names the Debian package to install.
function(quorvel_require_headers library header package)
  find_path(QUORVEL_${library}_INCLUDE_DIR "${header}")
  mark_as_advanced(QUORVEL_${library}_INCLUDE_DIR)
  if(NOT QUORVEL_${library}_INCLUDE_DIR)
    message(FATAL_ERROR "${library} is missing: no <${header}>. Install ${package}.")
  endif()
  target_include_directories(quorvel_build SYSTEM INTERFACE "${QUORVEL_${library}_INCLUDE_DIR}")
endfunction()

quorvel_require_headers(Boost boost/locale/encoding_utf.hpp libboost-dev)
quorvel_require_headers(nlohmann_json nlohmann/json.hpp nlohmann-json3-dev)

# quorvel_room(NAME SOURCES file... [USES target...])
#
# Declares the object library quorvel_NAME. The unit tests link these objects, since the shared
# library exports four names only.
function(quorvel_room name)
  cmake_parse_arguments(PARSE_ARGV 1 room "" "" "SOURCES;USES")
  add_library(quorvel_${name} OBJECT ${room_SOURCES})
  target_link_libraries(quorvel_${name} PUBLIC quorvel_build ${room_USES})
endfunction()

set(QUORVEL_HARD_LINK LINKER:-z,relro,-z,now,-z,noexecstack)

# quorvel_tool(NAME SOURCES file... USES target...)
#
# Declares a program that is shipped.
function(quorvel_tool name)
  cmake_parse_arguments(PARSE_ARGV 1 tool "" "" "SOURCES;USES")
  add_executable(${name} ${tool_SOURCES})
  target_link_libraries(${name} PRIVATE ${tool_USES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")
  target_link_options(${name} PRIVATE -pie ${QUORVEL_HARD_LINK})
endfunction()

# quorvel_component(TARGET FILE-NAME)
#
# Turns a shared library into a component that a host can load: links all rooms and limits the exports
# to four names.
function(quorvel_component target file)
  target_link_libraries(${target} PRIVATE
    quorvel_util quorvel_devices quorvel_parameters quorvel_dialog quorvel_performer quorvel_addin)
  set_target_properties(${target} PROPERTIES
    PREFIX ""
    OUTPUT_NAME "${file}"
    LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}"
    LINKER_LANGUAGE CXX
    LINK_DEPENDS "${CMAKE_SOURCE_DIR}/cmake/exports.map")
  # nodelete: the clipboard may still be serving other programs after the host unloads the library.
  target_link_options(${target} PRIVATE
    "LINKER:--version-script=${CMAKE_SOURCE_DIR}/cmake/exports.map"
    ${QUORVEL_HARD_LINK} LINKER:-z,nodelete)
  if(NOT QUORVEL_SANITIZE)
    target_link_options(${target} PRIVATE "LINKER:--no-undefined")
  endif()
endfunction()
