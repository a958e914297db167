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

# Run-time libraries, as dpkg-shlibdeps finds them for the dynamically linked programs; written
# out by hand where it is missing. A statically linked kvexec looks up an account with getent;
# where getent cannot run, it loads the name service's modules itself, which must come from the C
# library it was linked with: the package asks for that version of libc6.
set(KVEXEC_PACKAGE_DEPENDS "")
if(KV_STATIC_PROGRAM)
  execute_process(COMMAND getconf GNU_LIBC_VERSION OUTPUT_VARIABLE KVEXEC_LIBC OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(KVEXEC_LIBC MATCHES "^glibc ([0-9]+)\\.([0-9]+)")
    math(EXPR KVEXEC_LIBC_NEXT "${CMAKE_MATCH_2} + 1")
    set(KVEXEC_PACKAGE_DEPENDS
        "libc6 (>= ${CMAKE_MATCH_1}.${CMAKE_MATCH_2}), libc6 (<< ${CMAKE_MATCH_1}.${KVEXEC_LIBC_NEXT})")
  endif()
endif()
find_program(KVEXEC_DPKG_SHLIBDEPS dpkg-shlibdeps)
if(KVEXEC_DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "${KVEXEC_PACKAGE_DEPENDS}")
elseif(KVEXEC_PACKAGE_DEPENDS)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "${KVEXEC_PACKAGE_DEPENDS}, libgcc-s1, libstdc++6")
else()
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.34), libgcc-s1, libstdc++6, libtinfo6")
endif()

include(CPack)
