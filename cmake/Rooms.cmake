# SPDX-License-Identifier: GPL-3.0-or-later
# Rooms and floors. A room's headers are reached as "room/Header.h" through a folder of links that holds that room
# alone, so a target sees a room only when it links it, and an include from a room above does not compile.

# orv_room_headers(TARGET <target> ROOM <path> FILES <headers relative to the source root>)
# Gives <target> an include folder in which exactly FILES are visible under their path from the root.
function(orv_room_headers)
  cmake_parse_arguments(A "" "TARGET;SCOPE" "FILES" ${ARGN})
  if(NOT A_SCOPE)
    set(A_SCOPE PUBLIC)
  endif()
  set(root ${CMAKE_BINARY_DIR}/include/${A_TARGET})
  foreach(header ${A_FILES})
    file(RELATIVE_PATH path ${CMAKE_SOURCE_DIR} ${header})
    get_filename_component(folder ${root}/${path} DIRECTORY)
    file(MAKE_DIRECTORY ${folder})
    if(NOT EXISTS ${root}/${path})
      file(CREATE_LINK ${header} ${root}/${path} SYMBOLIC)
    endif()
  endforeach()
  target_include_directories(${A_TARGET} ${A_SCOPE} ${root})
  target_compile_options(${A_TARGET} ${A_SCOPE} -ffile-prefix-map=${root}/=)
endfunction()

# orv_precompile(<target> precompiled|precompiled_tests)
# Compiles the sources of <target> behind the precompiled headers of the rooms or of the test programs. Only headers of
# Qt and of the standard library are precompiled, so that the floors hold; what clang-tidy reads, without ORV_PCH,
# shows whether every file includes what it needs.
function(orv_precompile target headers)
  if(ORV_PCH)
    target_precompile_headers(${target} REUSE_FROM ${headers})
  endif()
endfunction()

# orv_forms(<target> <root> [PUBLIC|PRIVATE])
# The forms (.ui) of a target. "X.ui" of a folder below <root> is reached as "folder/ui_X.h", with PUBLIC also by whoever
# links the target; what uic writes counts as a header of the system, as it does not pass our warnings.
function(orv_forms target root)
  set(scope PRIVATE)
  if(ARGC GREATER 2)
    set(scope ${ARGV2})
  endif()
  # What moc and uic write needs no library first; the check by clang-tidy has it without building any.
  set_target_properties(${target} PROPERTIES AUTOUIC ON AUTOUIC_SEARCH_PATHS ${root} AUTOGEN_ORIGIN_DEPENDS OFF)
  target_include_directories(${target} SYSTEM ${scope} ${CMAKE_CURRENT_BINARY_DIR}/${target}_autogen/include)
endfunction()

# orv_room(NAME SHARED|STATIC LINK <public libraries> PRIVATE_LINK <private libraries> [MOC_HEADERS <headers>]
#          [FILES <patterns>] [EXCLUDE <patterns>] [FORMS PUBLIC|PRIVATE])
# One library from every .cpp and .h below the calling folder, or those that match FILES, but for those that match
# EXCLUDE. With FORMS PUBLIC its headers may include what uic writes.
function(orv_room name kind)
  cmake_parse_arguments(A "" "FORMS" "LINK;PRIVATE_LINK;MOC_HEADERS;FILES;EXCLUDE" ${ARGN})
  if(NOT A_FILES)
    set(A_FILES *.cpp *.h)
  endif()
  list(TRANSFORM A_FILES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS ${A_FILES})
  if(A_EXCLUDE)
    list(TRANSFORM A_EXCLUDE PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    file(GLOB_RECURSE excluded CONFIGURE_DEPENDS ${A_EXCLUDE})
    list(REMOVE_ITEM files ${excluded})
  endif()
  set(sources ${files})
  set(headers ${files})
  list(FILTER sources INCLUDE REGEX "\\.cpp$")
  list(FILTER headers INCLUDE REGEX "\\.h$")
  add_library(${name} ${kind} ${sources} ${headers} ${A_MOC_HEADERS})
  set_target_properties(${name} PROPERTIES AUTOMOC ON AUTORCC ON)
  orv_forms(${name} ${CMAKE_SOURCE_DIR} ${A_FORMS})
  orv_room_headers(TARGET ${name} FILES ${headers})
  target_link_libraries(${name} PUBLIC ${A_LINK} PRIVATE ${A_PRIVATE_LINK})
  if("host" IN_LIST A_LINK)
    orv_precompile(${name} precompiled)
  endif()
  if(kind STREQUAL "SHARED")
    install(TARGETS ${name} LIBRARY DESTINATION ${ORV_INSTALL_LIBDIR})
  endif()
endfunction()

# orv_program(NAME LINK <libraries>): a program from main.cpp of the calling folder, which asks workbench/start whether the
# processor suffices and so is compiled for any of the architecture.
function(orv_program name)
  cmake_parse_arguments(A "" "" "LINK" ${ARGN})
  add_executable(${name} main.cpp)
  target_link_libraries(${name} PRIVATE workbench_start ${A_LINK})
  if(ORV_ARCH STREQUAL "x86-64-v3")
    set_source_files_properties(main.cpp PROPERTIES COMPILE_OPTIONS "-march=x86-64")
  endif()
  install(TARGETS ${name} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

# What ends a test that hangs: far beyond the longest run under a sanitizer on a machine that others keep busy.
set(ORV_TEST_TIMEOUT 1800)

# orv_test(NAME <folder> LINK <libraries> [SHARDS <count>] [XVFB] [SCALE2]): one GoogleTest program from every .cpp of a
# folder of tests/, known to CTest. With XVFB it runs on an X server of its own, with OpenGL by Mesa's software renderer,
# with SCALE2 once more at another ratio of device pixels. A long one is cut into SHARDS runs, each with its share of the
# tests, for a machine of several processors.
function(orv_test name)
  cmake_parse_arguments(A "XVFB;SCALE2" "SHARDS" "LINK" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_executable(${name} ${sources} ${CMAKE_SOURCE_DIR}/tests/support/main.cpp)
  set_target_properties(${name} PROPERTIES AUTOMOC ON RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  orv_forms(${name} ${CMAKE_SOURCE_DIR}/tests)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE ORV_SOURCE_DIR="${CMAKE_SOURCE_DIR}" ORV_BINARY_DIR="${CMAKE_BINARY_DIR}")
  target_link_libraries(${name} PRIVATE ${A_LINK} GTest::gmock GTest::gtest rapidcheck rapidcheck_gtest Qt5::Widgets Qt5::Test)
  # A test is compiled more often than it is run; what it tests keeps its full optimisation.
  target_compile_options(${name} PRIVATE -O1)
  orv_precompile(${name} precompiled_tests)
  add_dependencies(${name} test_locales)
  set(command $<TARGET_FILE:${name}>)
  if(A_XVFB)
    set(command ${CMAKE_SOURCE_DIR}/scripts/with-xvfb.sh ${command})
  endif()
  if(NOT A_SHARDS)
    set(A_SHARDS 1)
  endif()
  set(variants ${name})
  if(A_SCALE2)
    list(APPEND variants ${name}_scale2)
  endif()
  math(EXPR last "${A_SHARDS} - 1")
  foreach(variant ${variants})
    foreach(shard RANGE ${last})
      set(test ${variant})
      if(A_SHARDS GREATER 1)
        math(EXPR number "${shard} + 1")
        set(test ${variant}_${number}_of_${A_SHARDS})
      endif()
      set(environment GTEST_TOTAL_SHARDS=${A_SHARDS} GTEST_SHARD_INDEX=${shard})
      if(variant MATCHES _scale2$)
        list(APPEND environment QT_SCALE_FACTOR=2)
      endif()
      add_test(NAME ${test} COMMAND ${command})
      set_tests_properties(${test} PROPERTIES TIMEOUT ${ORV_TEST_TIMEOUT} ENVIRONMENT "${environment}")
    endforeach()
  endforeach()
endfunction()

# orv_bench(NAME LINK <libraries>): one Google Benchmark program from <name>.cpp of the calling folder.
function(orv_bench name)
  cmake_parse_arguments(A "" "" "LINK" ${ARGN})
  add_executable(${name} ${CMAKE_CURRENT_SOURCE_DIR}/${name}.cpp)
  target_link_libraries(${name} PRIVATE ${A_LINK} benchmark::benchmark)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()
