# What "cmake --install" lays where. The component "programs" is what a user of the programs wants,
# "development" the foundation library for other projects.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(programs_folder ${CMAKE_INSTALL_BINDIR})
set(documents_folder ${CMAKE_INSTALL_DOCDIR})
if(WIN32)
  # There the programs lie on top of what is unpacked anywhere, and everything else below.
  set(programs_folder .)
  set(documents_folder .)
endif()

install(TARGETS ${programs} DESTINATION ${programs_folder}
        COMPONENT programs)
install(DIRECTORY examples DESTINATION ${documents_folder} COMPONENT programs)
if(WIN32)
  # As pages of HTML, which every Windows can show.
  if(PANDOC)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/ DESTINATION . COMPONENT programs
            FILES_MATCHING PATTERN "*.html")
  endif()
  install(DIRECTORY docs DESTINATION . COMPONENT programs FILES_MATCHING PATTERN "*.svg")
  install(FILES LICENSE DESTINATION . COMPONENT programs)
else()
  install(FILES README.md CHANGELOG.md LICENSE DESTINATION ${documents_folder} COMPONENT programs)
  install(DIRECTORY docs DESTINATION ${documents_folder} COMPONENT programs)
  if(PANDOC)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
            COMPONENT programs FILES_MATCHING PATTERN "*.1" PATTERN docs EXCLUDE)
  endif()
  # Bash looks for a file of the program's name.
  foreach(program IN LISTS programs)
    install(FILES completions/ravelink.bash RENAME ${program} COMPONENT programs
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  endforeach()
  install(FILES completions/_ravelink COMPONENT programs
          DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
endif()

set(foundation sys_platform core_object core_text core_time core_console core_crc core_stream
               sys_services core_runtime core_net core_archive)
add_library(foundation INTERFACE)
target_link_libraries(foundation INTERFACE ${foundation})
set_target_properties(foundation PROPERTIES EXPORT_NAME core)

# Below folders of its own, because names like "core/text/String.h" are nobody's alone.
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/ravelink)
install(TARGETS ${foundation} foundation EXPORT ravelink
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}/ravelink COMPONENT development
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ravelink COMPONENT development)
install(EXPORT ravelink NAMESPACE ravelink:: FILE ravelinkTargets.cmake
        DESTINATION ${package_folder} COMPONENT development)
write_basic_package_version_file(ravelinkConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/ravelinkConfig.cmake ${PROJECT_BINARY_DIR}/ravelinkConfigVersion.cmake
        DESTINATION ${package_folder} COMPONENT development)
