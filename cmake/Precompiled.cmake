# SPDX-License-Identifier: GPL-3.0-or-later
# Headers that are compiled once: the parsing of Qt's is more than half of the time that a file takes.
if(NOT ORV_PCH)
  return()
endif()

file(WRITE ${CMAKE_BINARY_DIR}/precompiled/empty.cpp.in "// Only carries the precompiled headers.\n")
configure_file(${CMAKE_BINARY_DIR}/precompiled/empty.cpp.in ${CMAKE_BINARY_DIR}/precompiled/empty.cpp COPYONLY)

# orv_precompiled(NAME LINK <libraries> OPTIONS <compile options> HEADERS <headers>)
function(orv_precompiled name)
  cmake_parse_arguments(A "" "" "LINK;OPTIONS;HEADERS" ${ARGN})
  add_library(${name} STATIC ${CMAKE_BINARY_DIR}/precompiled/empty.cpp)
  target_link_libraries(${name} PRIVATE ${A_LINK})
  target_compile_options(${name} PRIVATE ${A_OPTIONS})
  target_precompile_headers(${name} PRIVATE ${A_HEADERS})
endfunction()

set(headers
  <algorithm> <array> <cmath> <cstddef> <cstdint> <functional> <limits> <map> <memory> <numeric> <optional> <set> <string>
  <tuple> <utility> <vector>
  <QByteArray> <QColor> <QCoreApplication> <QDateTime> <QDir> <QFile> <QFileInfo> <QHash> <QImage> <QLocale> <QMap>
  <QMutex> <QObject> <QPainter> <QPointer> <QRegularExpression> <QSet> <QSharedPointer> <QString> <QStringList>
  <QTextStream> <QThread> <QVariant> <QVector>)

orv_precompiled(precompiled LINK Qt5::Widgets HEADERS ${headers})
if(ORV_TESTS)
  orv_precompiled(precompiled_tests LINK Qt5::Widgets Qt5::Test GTest::gmock GTest::gtest rapidcheck OPTIONS -O1
    HEADERS ${headers} <QApplication> <QProcess> <QTemporaryDir> <gtest/gtest.h> <gmock/gmock.h>)
endif()
