# Tarnwick::Parser is the shared library, Tarnwick::ParserStatic the static one.
include(CMakeFindDependencyMacro)
find_dependency(Threads)
include("${CMAKE_CURRENT_LIST_DIR}/TarnwickParserTargets.cmake")
