# SPDX-License-Identifier: GPL-3.0-or-later
# The moment that takes the place of __DATE__ and __TIME__, so that two builds of one commit have the same bytes: what
# SOURCE_DATE_EPOCH says, else that of the commit, else, in sources without their history, that of this tree's list.
set(moment $ENV{SOURCE_DATE_EPOCH})
if(moment STREQUAL "")
  execute_process(COMMAND git -C ${CMAKE_SOURCE_DIR} log -1 --format=%ct OUTPUT_VARIABLE moment
    OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT moment MATCHES "^[0-9]+$")
  file(TIMESTAMP ${CMAKE_SOURCE_DIR}/CMakeLists.txt moment "%s" UTC)
endif()
set(earlier $ENV{SOURCE_DATE_EPOCH})
set(ENV{SOURCE_DATE_EPOCH} ${moment})
string(TIMESTAMP ORV_BUILD_TIME "%H:%M:%S" UTC)
string(TIMESTAMP ORV_BUILD_DATE "%b %d %Y" UTC)
string(TIMESTAMP ORV_COMMIT_DATE "%Y-%m-%d" UTC)
set(ENV{SOURCE_DATE_EPOCH} ${earlier})
string(REPLACE " 0" "  " ORV_BUILD_DATE ${ORV_BUILD_DATE})
