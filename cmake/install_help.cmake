# Installs the manual page of a program, and its completion in bash, which looks for a file of its name.
function(quillmere_install_help program page)
  install(FILES ${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${PROJECT_SOURCE_DIR}/packaging/completion.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program})
endfunction()
