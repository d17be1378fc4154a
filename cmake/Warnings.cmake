# Warnings of this project's own code. They are no part of what is installed.
option(TARNWICK_WERROR "Treat warnings as errors" OFF)

add_library(tarnwick-warnings INTERFACE)
target_compile_options(tarnwick-warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align -Wformat=2 -Wundef
  -Wimplicit-fallthrough -Wextra-semi
  $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wduplicated-branches -Wlogical-op>
  $<$<BOOL:${TARNWICK_WERROR}>:-Werror>)
