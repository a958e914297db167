# What `cmake --install` puts where, in the places a Debian system keeps them (GNUInstallDirs):
# the programs, their manual pages (compressed as Debian ships them when gzip is there), bash
# completion, the vim syntax and file-type detection, the TextMate grammar and the examples.
# Honours CMAKE_INSTALL_PREFIX and DESTDIR.
include(GNUInstallDirs)

set(KVEXEC_PROGRAMS kvexec)
if(TARGET kvcheck)
  list(APPEND KVEXEC_PROGRAMS kvcheck)
endif()

find_program(KVEXEC_GZIP gzip)
set(KVEXEC_MAN_OUTPUTS)
foreach(program ${KVEXEC_PROGRAMS})
  install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${PROJECT_SOURCE_DIR}/completions/${program}.bash
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program})
  set(page ${PROJECT_SOURCE_DIR}/man/${program}.1)
  if(KVEXEC_GZIP)
    # -n keeps the name and time out of the archive, so the page is the same on every build.
    set(compressed ${PROJECT_BINARY_DIR}/man/${program}.1.gz)
    add_custom_command(OUTPUT ${compressed}
                       COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/man
                       COMMAND sh -c "\"${KVEXEC_GZIP}\" -9 -n -c \"${page}\" > \"${compressed}\""
                       DEPENDS ${page} VERBATIM)
    list(APPEND KVEXEC_MAN_OUTPUTS ${compressed})
    install(FILES ${compressed} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  else()
    install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endforeach()
if(KVEXEC_MAN_OUTPUTS)
  add_custom_target(kvexec_man ALL DEPENDS ${KVEXEC_MAN_OUTPUTS})
endif()

install(FILES ${PROJECT_SOURCE_DIR}/editors/vim/syntax/kvexec.vim
        DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles/syntax)
install(FILES ${PROJECT_SOURCE_DIR}/editors/vim/ftdetect/kvexec.vim
        DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles/ftdetect)
install(FILES ${PROJECT_SOURCE_DIR}/editors/textmate/kvexec.tmLanguage.json
        DESTINATION ${CMAKE_INSTALL_DATADIR}/kvexec/textmate)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/
        DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
        FILES_MATCHING PATTERN "*.kvx"
        PATTERN expected EXCLUDE)
