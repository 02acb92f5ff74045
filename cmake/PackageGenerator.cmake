# cpack reads this file once for each package format.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_COMPONENTS_ALL programs)
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/stagePackage.cmake)
elseif(CPACK_GENERATOR STREQUAL "NSIS")
  # Without components to choose from, but with those of the programs only.
  unset(CPACK_COMPONENTS_ALL)
  string(REPLACE ";ALL;" ";programs;" CPACK_INSTALL_CMAKE_PROJECTS "${CPACK_INSTALL_CMAKE_PROJECTS}")
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/windows/listFiles.cmake)
  string(APPEND CPACK_PACKAGE_FILE_NAME -setup)
endif()
