# SPDX-License-Identifier: GPL-3.0-or-later
# The libraries we build on. Their Debian packages stand in packages.txt.

find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Xml Svg Charts PrintSupport)
find_package(OpenGL REQUIRED COMPONENTS OpenGL)
find_package(Eigen3 3.4 REQUIRED NO_MODULE)
find_package(TIFF REQUIRED)
find_package(PNG REQUIRED)
find_package(Threads REQUIRED)

# Debian's core and imgproc packages bring no CMake configuration of their own.
find_path(OPENCV_INCLUDE_DIR opencv2/core.hpp PATH_SUFFIXES opencv4 REQUIRED)
find_library(OPENCV_CORE_LIBRARY opencv_core REQUIRED)
find_library(OPENCV_IMGPROC_LIBRARY opencv_imgproc REQUIRED)
add_library(opencv_minimal INTERFACE)
target_include_directories(opencv_minimal SYSTEM INTERFACE ${OPENCV_INCLUDE_DIR})
target_link_libraries(opencv_minimal INTERFACE ${OPENCV_IMGPROC_LIBRARY} ${OPENCV_CORE_LIBRARY})

# Pictures as DICOM. The configuration that the package brings asks for the tools of another package.
find_path(DCMTK_INCLUDE_DIR dcmtk/dcmdata/dctk.h REQUIRED)
find_library(DCMTK_DATA_LIBRARY dcmdata REQUIRED)
find_library(DCMTK_LOG_LIBRARY oflog REQUIRED)
find_library(DCMTK_STANDARD_LIBRARY ofstd REQUIRED)
add_library(dcmtk_minimal INTERFACE)
target_include_directories(dcmtk_minimal SYSTEM INTERFACE ${DCMTK_INCLUDE_DIR})
target_link_libraries(dcmtk_minimal INTERFACE ${DCMTK_DATA_LIBRARY} ${DCMTK_LOG_LIBRARY} ${DCMTK_STANDARD_LIBRARY})

if(ORV_TESTS)
  find_package(GTest REQUIRED)
  find_package(rapidcheck REQUIRED)
  find_package(Qt5 5.15 REQUIRED COMPONENTS Test)
endif()
if(ORV_BENCH)
  find_package(benchmark REQUIRED)
endif()
