# The files of an installation. The component "programs" has what users of the programs need,
# "development" the libraries for other projects.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(programs_directory ${CMAKE_INSTALL_BINDIR})
set(documents_directory ${CMAKE_INSTALL_DOCDIR})
if(WIN32)
  # The programs are at the root of the extracted archive.
  set(programs_directory .)
  set(documents_directory .)
endif()

install(TARGETS ${programs} DESTINATION ${programs_directory}
        COMPONENT programs)
install(DIRECTORY examples DESTINATION ${documents_directory} COMPONENT programs)
if(WIN32)
  # As HTML pages, which every Windows can show.
  if(PANDOC)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/ DESTINATION . COMPONENT programs
            FILES_MATCHING PATTERN "*.html")
  endif()
  install(DIRECTORY docs DESTINATION . COMPONENT programs FILES_MATCHING PATTERN "*.svg")
  install(FILES LICENSE DESTINATION . COMPONENT programs)
else()
  install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${documents_directory} COMPONENT programs)
  install(DIRECTORY docs DESTINATION ${documents_directory} COMPONENT programs)
  if(PANDOC)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
            COMPONENT programs FILES_MATCHING PATTERN "*.1" PATTERN docs EXCLUDE)
  endif()
  # Bash looks for a file with the name of the program.
  foreach(program IN LISTS programs)
    install(FILES completions/ravelink.bash RENAME ${program} COMPONENT programs
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  endforeach()
  install(FILES completions/_ravelink COMPONENT programs
          DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
endif()

# What other projects link: ravelink::core, the foundation library, and ravelink::session.
set(foundation sys_platform core_object core_text core_time core_console core_crc core_stream
               sys core_runtime core_net core_archive)
add_library(foundation INTERFACE)
add_library(ravelink::core ALIAS foundation)
target_link_libraries(foundation INTERFACE ${foundation})
set_target_properties(foundation PROPERTIES EXPORT_NAME core)
add_library(session INTERFACE)
add_library(ravelink::session ALIAS session)
target_link_libraries(session INTERFACE update_session)

# In its own directories: names like "core/text/String.h" could clash.
set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/ravelink)
install(TARGETS ${foundation} foundation update_protocol update_session session EXPORT ravelink
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}/ravelink COMPONENT development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ravelink COMPONENT development)
install(EXPORT ravelink NAMESPACE ravelink:: FILE ravelinkTargets.cmake
        DESTINATION ${package_directory} COMPONENT development)
write_basic_package_version_file(ravelinkConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/ravelinkConfig.cmake ${PROJECT_BINARY_DIR}/ravelinkConfigVersion.cmake
        DESTINATION ${package_directory} COMPONENT development)
