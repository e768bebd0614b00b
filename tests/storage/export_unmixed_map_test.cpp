// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/unmixedMap.h"

#include "host/CILImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

XTNT::Matrix<double> matrixOf(const std::vector<std::vector<double>>& rows)
{
    XTNT::Matrix<double> matrix(static_cast<long long>(rows.size()), static_cast<long long>(rows.front().size()));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows[i].size(); ++j) {
            matrix[static_cast<long long>(i)][static_cast<long long>(j)] = rows[i][j];
        }
    }
    return matrix;
}

std::vector<float> pixelsOf(const CILImage& image)
{
    return std::vector<float>(image.floats(), image.floats() + image.pixelCount());
}

UnmixedMapPlace place(int nComponent, int nSpot, const std::vector<int>* pPixels = nullptr)
{
    UnmixedMapPlace result;
    result.component = nComponent;
    result.spot = nSpot;
    result.width = 3;
    result.height = 2;
    result.binning = 4;
    result.pixels = pPixels;
    return result;
}

} // namespace

TEST(ExportUnmixedMapTest, TheFirstOfEqualMaximaIsTheBrightestImage)
{
    const auto spectra = matrixOf({{0.2, 1.0, 1.0, 0.5}, {3.0, 1.0, 2.0, 3.0}, {-5.0, -2.0, -3.0, -2.0}});
    EXPECT_EQ(spectrumPeak(spectra, 0).image, 1);
    EXPECT_EQ(spectrumPeak(spectra, 0).value, 1.0);
    EXPECT_EQ(spectrumPeak(spectra, 1).image, 0);
    EXPECT_EQ(spectrumPeak(spectra, 1).value, 3.0);
    EXPECT_EQ(spectrumPeak(spectra, 2).image, 1);
}

TEST(ExportUnmixedMapTest, ASpectrumThatIsNotThereHasNoPeak)
{
    EXPECT_LT(spectrumPeak(matrixOf({{1.0}}), 1).image, 0);
    EXPECT_LT(spectrumPeak(matrixOf({{1.0}}), -1).image, 0);
    EXPECT_LT(spectrumPeak(XTNT::Matrix<double>(), 0).image, 0);
    EXPECT_LT(spectrumPeak(XTNT::Matrix<double>(1, 0), 0).image, 0);
}

TEST(ExportUnmixedMapTest, ConcentrationsAreDividedByTheSpectrumsMaximum)
{
    const auto concentrations = matrixOf({{9, 9, 9, 9, 9, 9}, {1, 2, 3, 4, 5, -6}});
    CILImage map;
    ASSERT_TRUE(unmixedMap(concentrations, place(1, 0), 2.0, map));
    EXPECT_EQ(map.dataType(), ORVTYPE_FLOAT);
    EXPECT_EQ(map.m_lWidth, 3);
    EXPECT_EQ(map.m_lHeight, 2);
    EXPECT_EQ(map.m_fBinning, 4.0F);
    EXPECT_EQ(pixelsOf(map), (std::vector<float>{0.5F, 1.0F, 1.5F, 2.0F, 2.5F, -3.0F}));
    EXPECT_EQ(map.getMin(), -3.0);
    EXPECT_EQ(map.getMax(), 2.5);
}

TEST(ExportUnmixedMapTest, AValueIsNarrowedBeforeItIsDivided)
{
    // 2^24 + 1 is no float; narrowed first it is 2^24, and a third of that is not what a third of it rounds to.
    const double dValue = 16777217.0;
    const double dMaximum = 1e-3;
    CILImage map;
    ASSERT_TRUE(unmixedMap(matrixOf({{dValue, 0, 0, 0, 0, 0}}), place(0, 0), dMaximum, map));
    EXPECT_EQ(map.floats()[0], static_cast<float>(16777216.0 / dMaximum));
    EXPECT_NE(map.floats()[0], static_cast<float>(dValue / dMaximum));
}

TEST(ExportUnmixedMapTest, TheSpotsLieOneAfterTheOther)
{
    const auto concentrations = matrixOf({{1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, 16}});
    CILImage map;
    ASSERT_TRUE(unmixedMap(concentrations, place(0, 1), 1.0, map));
    EXPECT_EQ(pixelsOf(map), (std::vector<float>{11, 12, 13, 14, 15, 16}));
    EXPECT_FALSE(unmixedMap(concentrations, place(0, 2), 1.0, map));
    EXPECT_TRUE(map.isEmpty());
}

TEST(ExportUnmixedMapTest, OutsideTheMaskIsZero)
{
    const std::vector<int> mask{1, 5};
    const auto concentrations = matrixOf({{7, 8, 17, 18}});
    CILImage map;
    ASSERT_TRUE(unmixedMap(concentrations, place(0, 1, &mask), 1.0, map));
    EXPECT_EQ(pixelsOf(map), (std::vector<float>{0, 17, 0, 0, 0, 18}));
}

TEST(ExportUnmixedMapTest, AnEmptyMaskGivesZerosAlone)
{
    const std::vector<int> mask;
    CILImage map;
    ASSERT_TRUE(unmixedMap(XTNT::Matrix<double>(1, 0), place(0, 0, &mask), 1.0, map));
    EXPECT_EQ(pixelsOf(map), std::vector<float>(6, 0.0F));
}

TEST(ExportUnmixedMapTest, WhatDoesNotFitTheImageIsRefused)
{
    const auto concentrations = matrixOf({{1, 2}});
    const std::vector<int> outside{0, 6};
    const std::vector<int> negative{-1, 0};
    CILImage map;
    EXPECT_FALSE(unmixedMap(concentrations, place(0, 0, &outside), 1.0, map));
    EXPECT_FALSE(unmixedMap(concentrations, place(0, 0, &negative), 1.0, map));
    EXPECT_FALSE(unmixedMap(concentrations, place(0, 0), 1.0, map)); // too few for all pixels
    EXPECT_FALSE(unmixedMap(matrixOf({{1, 2, 3, 4, 5, 6}}), place(1, 0), 1.0, map));
    EXPECT_FALSE(unmixedMap(matrixOf({{1, 2, 3, 4, 5, 6}}), place(0, -1), 1.0, map));
    UnmixedMapPlace empty = place(0, 0);
    empty.width = 0;
    EXPECT_FALSE(unmixedMap(concentrations, empty, 1.0, map));
}

TEST(ExportUnmixedMapTest, NotANumberStaysWhereItIsAndOutOfTheRange)
{
    const double dNan = std::numeric_limits<double>::quiet_NaN();
    CILImage map;
    ASSERT_TRUE(unmixedMap(matrixOf({{dNan, 1, 2, 3, 4, 5}}), place(0, 0), 1.0, map));
    EXPECT_TRUE(std::isnan(map.floats()[0]));
    EXPECT_EQ(map.getMin(), 1.0);
    EXPECT_EQ(map.getMax(), 5.0);
}
