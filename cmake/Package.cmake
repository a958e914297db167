# `cpack -G DEB` builds a Debian package of what cmake/Install.cmake installs.
set(KVEXEC_MAINTAINER "kvexec developers <kvexec@example.org>" CACHE STRING "Maintainer named in the package")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kvexec)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${KVEXEC_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "interpreter for line-oriented job-control scripts")
set(CPACK_PACKAGE_DESCRIPTION
    "kvexec runs job-control scripts (*.kvx) line by line: &-statements, variables, loops,
conditions, labels and subroutines, terminal output and command lines for /bin/sh. Existing
scripts run exactly as they always did: the same output, line numbers in errors and exit
statuses. The package holds the manual pages (man kvexec), bash completion, vim syntax
colouring, a TextMate grammar and example scripts.")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${KVEXEC_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_SECTION interpreters)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)

# Run-time libraries: the terminal library and the C and C++ runtimes, as dpkg-shlibdeps finds
# them; written out by hand where it is missing.
find_program(KVEXEC_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(KVEXEC_DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
else()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.34), libgcc-s1, libstdc++6, libtinfo6")
endif()

include(CPack)
