# Options that every target of the project is compiled with.
option(TARVO_WERROR "Warnings are errors" OFF)
set(TARVO_SANITIZE "" CACHE STRING "Sanitizers to build with, as for -fsanitize=")

add_library(tarvo_options INTERFACE)
target_compile_options(tarvo_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
                       -Wconversion -Wimplicit-fallthrough)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # g++ 12 takes a text put before a std::string for an overlap when it optimises. Goes with g++ 13.
  target_compile_options(tarvo_options INTERFACE -Wno-restrict)
  # And a short text that is assigned to one for boundless.
  target_compile_options(tarvo_options INTERFACE $<$<CONFIG:Release>:-Wno-stringop-overflow;-Wno-array-bounds>)
endif()
# Without tail calls a chain of coroutines that resume each other would grow the stack, so also in debug builds.
target_compile_options(tarvo_options INTERFACE -foptimize-sibling-calls)
if(TARVO_WERROR)
  target_compile_options(tarvo_options INTERFACE -Werror)
endif()
if(TARVO_SANITIZE)
  target_compile_options(tarvo_options INTERFACE -fsanitize=${TARVO_SANITIZE} -fno-omit-frame-pointer
                         -fno-sanitize-recover=all)
  target_link_options(tarvo_options INTERFACE -fsanitize=${TARVO_SANITIZE})
endif()

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()
