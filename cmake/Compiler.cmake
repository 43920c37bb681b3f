# Language level, warnings and sanitizers of every target.

# g++ 12 miscompiles coroutines: it destroys temporaries of a co_await expression twice.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    message(FATAL_ERROR "Brindle needs g++ 13 or newer, or clang 16 or newer: older ones miscompile coroutines. "
                        "Use a preset: cmake --preset release")
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "^Clang$" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 16)
    message(FATAL_ERROR "Brindle needs clang 16 or newer, or g++ 13 or newer.")
endif()

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

# A build from nothing is done sooner with them. Off by default: they hide that a source doesn't include what it uses.
option(BRINDLE_PRECOMPILE "Precompile the headers that most sources read" OFF)
if(BRINDLE_PRECOMPILE AND CMAKE_CXX_COMPILER_ID MATCHES "^Clang$")
    # Whoever reads a precompiled header must be compiled with its -pthread, which GLib asks for; and ccache knows the
    # header by its content, so the time must not be part of it.
    add_compile_options(-pthread "SHELL:-Xclang -fno-pch-timestamp")
    list(PREPEND CMAKE_CXX_COMPILER_LAUNCHER env CCACHE_SLOPPINESS=pch_defines,time_macros)
endif()

set(BRINDLE_SANITIZE "" CACHE STRING "Sanitizers of all targets, as -fsanitize takes them")
if(BRINDLE_SANITIZE)
    add_compile_options(-fsanitize=${BRINDLE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${BRINDLE_SANITIZE})
endif()

add_library(brindle_options INTERFACE)
target_compile_options(brindle_options INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
    -Woverloaded-virtual -Wnull-dereference -Wimplicit-fallthrough)
target_compile_definitions(brindle_options INTERFACE
    QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
