# Installs the udev rule with the paths of this installation, and the configuration that it reads.
# `source` and `binary` are the folders of packaging/.
if(CMAKE_INSTALL_PREFIX MATCHES "^/usr(/local)?/?$")
  set(sysconfdir /etc)
else()
  set(sysconfdir "${CMAKE_INSTALL_PREFIX}/etc")
endif()
set(helper "${CMAKE_INSTALL_PREFIX}/lib/quorvel/quorvel-frame-line")
set(lines_conf "${sysconfdir}/quorvel/lines.conf")

configure_file("${source}/61-quorvel.rules.in" "${binary}/61-quorvel.rules" @ONLY)
file(INSTALL "${binary}/61-quorvel.rules" DESTINATION "${CMAKE_INSTALL_PREFIX}/lib/udev/rules.d")
if(NOT EXISTS "$ENV{DESTDIR}${lines_conf}")
  file(INSTALL "${source}/lines.conf" DESTINATION "${sysconfdir}/quorvel")
endif()
