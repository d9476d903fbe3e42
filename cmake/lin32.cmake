# Builds for 32-bit x86 on a 64-bit system that has the 32-bit packages beside its own: in a folder
# of the architecture on Debian, in lib32 on Arch, in lib (beside lib64) on Fedora and openSUSE.
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_CXX_FLAGS_INIT -m32)
if(EXISTS /usr/lib/i386-linux-gnu)
  set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
  set(quorvel_pkgconfig /usr/lib/i386-linux-gnu/pkgconfig)
elseif(EXISTS /usr/lib32/pkgconfig)
  set(quorvel_pkgconfig /usr/lib32/pkgconfig)
else()
  set(quorvel_pkgconfig /usr/lib/pkgconfig)
endif()
set(ENV{PKG_CONFIG_LIBDIR} "${quorvel_pkgconfig}:/usr/share/pkgconfig")
