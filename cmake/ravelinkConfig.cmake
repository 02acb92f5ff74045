# For find_package(ravelink): the foundation library is ravelink::core, each of its folders a target
# of its own, such as ravelink::core_text.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(${CMAKE_CURRENT_LIST_DIR}/ravelinkTargets.cmake)
