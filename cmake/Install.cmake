# The files of an installation. The component "programs" has what users of the programs need,
# "development" the libraries for other projects.
include(CMakePackageConfigHelpers)

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
  # Once more, because administrators may leave out all documents.
  install(DIRECTORY examples/scenarios DESTINATION ${CMAKE_INSTALL_DATADIR}/ravelink
          COMPONENT programs)
  if(PANDOC)
    install(DIRECTORY ${PROJECT_BINARY_DIR}/manual/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
            COMPONENT programs FILES_MATCHING PATTERN "*.1" PATTERN docs EXCLUDE)
  endif()
  # Bash looks for a file with the name of the program.
  foreach(program IN LISTS programs)
    install(FILES completions/ravelink.bash RENAME ${program} COMPONENT programs
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  endforeach()
  # Where Ansible of Debian looks for collections.
  install(DIRECTORY fleet/ansible_collections COMPONENT programs
          DESTINATION ${CMAKE_INSTALL_DATADIR}/ansible/collections
          PATTERN __pycache__ EXCLUDE PATTERN .ansible-lint EXCLUDE)
  install(PROGRAMS fleet/verdicts DESTINATION ${CMAKE_INSTALL_DATADIR}/ravelink/fleet
          COMPONENT programs)
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

# In directories of their own, because names like "core/text/String.h" could clash.
set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/ravelink)
set(libraries ${foundation} update_protocol update_session)
install(TARGETS ${libraries} foundation session EXPORT ravelink
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}/ravelink COMPONENT development)
foreach(library IN LISTS libraries)
  get_target_property(source ${library} SOURCE_DIR)
  get_target_property(headers ${library} RAVELINK_HEADERS)
  file(RELATIVE_PATH directory ${PROJECT_SOURCE_DIR} ${source})
  list(TRANSFORM headers PREPEND ${source}/)
  install(FILES ${headers} DESTINATION ${headers_directory}/${directory} COMPONENT development)
endforeach()
install(EXPORT ravelink NAMESPACE ravelink:: FILE ravelinkTargets.cmake
        DESTINATION ${package_directory} COMPONENT development)
write_basic_package_version_file(ravelinkConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES cmake/ravelinkConfig.cmake ${PROJECT_BINARY_DIR}/ravelinkConfigVersion.cmake
        DESTINATION ${package_directory} COMPONENT development)

# The example of docs/embedding.md as files.
set(embedding ${PROJECT_SOURCE_DIR}/docs/embedding.md)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${embedding})
file(READ ${embedding} document)
foreach(file IN ITEMS cmake/CMakeLists.txt cpp/main.cpp)
  cmake_path(GET file PARENT_PATH language)
  cmake_path(GET file FILENAME name)
  string(REGEX MATCH "\n```${language}\n([^`]*)```" block "${document}")
  file(CONFIGURE OUTPUT embedding/${name} CONTENT "${CMAKE_MATCH_1}" @ONLY)
endforeach()
install(DIRECTORY ${PROJECT_BINARY_DIR}/embedding DESTINATION ${documents_directory}/examples
        COMPONENT development)
