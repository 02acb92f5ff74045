# The packages of "./dev package": a Debian package of the programs and a tar.gz of programs and
# libraries for Linux, a ZIP and an installer of the programs for Windows.
set(CPACK_PACKAGE_VENDOR ravelink)
set(CPACK_PACKAGE_CONTACT "ravelink maintainers <maintainers@ravelink.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "installs updates on networked devices over Ethernet")
set(CPACK_PACKAGE_DESCRIPTION
"ravelink sends an update archive to a device by TCP and follows it until the
device has installed it. ravelink-job does the same for scripts, with exit
statuses, JSON lines and retries. ravelink-pack builds, lists, checks and
extracts update archives. ravelink-device simulates a device, to rehearse
updates and their failures.")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
# One package of all its components.
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)

set(platform linux)
if(WIN32)
  set(platform windows)
  set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
  set(CPACK_COMPONENTS_ALL programs)
endif()
set(CPACK_PACKAGE_FILE_NAME ravelink-${PROJECT_VERSION}-${platform}-${CMAKE_SYSTEM_PROCESSOR})
if(CPACK_DEBIAN_PACKAGE_ARCHITECTURE STREQUAL "armhf")
  # "arm" would include processors without floating-point numbers.
  string(APPEND CPACK_PACKAGE_FILE_NAME hf)
endif()

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
if(CMAKE_CROSSCOMPILING)
  # The packages of cross compilers do not record which version of a library each function needs. This is
  # the version that they link; the release check compares it with the programs.
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.36)")
else()
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
# What docs/fleet.md uses.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "ansible-core, jq, parallel")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Where cpack finds the template of the installer.
list(APPEND CMAKE_MODULE_PATH ${PROJECT_SOURCE_DIR}/cmake/windows)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/PackageGenerator.cmake)

include(CPack)
