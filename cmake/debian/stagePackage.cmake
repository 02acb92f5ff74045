# Adapts the installation in CPACK_TEMPORARY_INSTALL_DIRECTORY to Debian's policy before cpack packs
# it: manual pages are compressed without a timestamp, and zsh reads the completions of packages from
# another directory. If SOURCE_DATE_EPOCH is set, it becomes the time of all files.
file(GLOB share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share)
file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${share}/doc/ravelink)
file(REMOVE ${share}/doc/ravelink/LICENSE)  # the copyright file contains it
file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9n ${pages} COMMAND_ERROR_IS_FATAL ANY)
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND find ${share}/.. -exec touch -d @$ENV{SOURCE_DATE_EPOCH} {} +
                  COMMAND_ERROR_IS_FATAL ANY)
endif()
