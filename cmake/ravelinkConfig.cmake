# For find_package(ravelink): defines ravelink::core, the foundation library, and a target for each of
# its directories, such as ravelink::core_text.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/ravelinkTargets.cmake)
