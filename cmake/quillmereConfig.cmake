# What find_package(quillmere) gives: the target quillmere::quillmere.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include("${CMAKE_CURRENT_LIST_DIR}/quillmereTargets.cmake")
