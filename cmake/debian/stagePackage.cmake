# Run by cpack over what it is about to pack, in CPACK_TEMPORARY_INSTALL_DIRECTORY: what Debian's
# rules want beyond an installation. Manuals are compressed, without a time in them, and zsh looks for
# what a package brings in a folder of its own.
file(GLOB share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share)
file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${share}/doc/ravelink)
file(REMOVE ${share}/doc/ravelink/LICENSE)  # the copyright file contains it
file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9n ${pages} COMMAND_ERROR_IS_FATAL ANY)
