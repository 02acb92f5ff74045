# For find_package(ravelink): defines ravelink::core, the foundation library, ravelink::session, the
# update of a device, and a target for each of their directories, such as ravelink::core_text.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/ravelinkTargets.cmake)
