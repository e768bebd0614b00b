# SPDX-License-Identifier: GPL-3.0-or-later
# Compiler flags shared by every target.

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

# NDEBUG is left undefined on purpose: contract assertions stay on in every build type.
# Level 3 for its loop vectoriser: the one of level 2 gives up on loops whose length is known at run time only.
set(CMAKE_CXX_FLAGS_RELEASE "-O3")
if(ORV_SANITIZE)
  # What is checked is the same at either level; level 3 compiles the checks for twice as long.
  set(CMAKE_CXX_FLAGS_RELEASE "-O1")
endif()
set(CMAKE_CXX_FLAGS_DEBUG "-O0 -g")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O3 -g")

if(ORV_ARCH)
  add_compile_options(-march=${ORV_ARCH})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(ORV_WERROR)
  add_compile_options(-Werror)
endif()
if(ORV_SANITIZE)
  add_compile_options(-fsanitize=${ORV_SANITIZE} -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=${ORV_SANITIZE})
endif()

# Qt's keywords are words that other libraries use as names; they are spelled Q_SIGNALS, Q_SLOTS, Q_EMIT throughout.
add_compile_definitions(QT_NO_KEYWORDS QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050F00)

# Reports name files relative to the root (XTNT/xtnt_matrix.h), whichever way the header was reached.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # Of precompiled headers it otherwise distrusts macros and times, and then stores nothing.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess> "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
endif()

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
# Relative, so that neither a name nor its length enters a program.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
# The libraries are this program's own, so they lie in a folder of their own.
set(ORV_INSTALL_LIBDIR ${CMAKE_INSTALL_LIBDIR}/orvspum)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${ORV_INSTALL_LIBDIR}:$ORIGIN")
