// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/CImageCube.h"

#include "XTNT/xtnt_exception.h"
#include "XTNT/xtnt_parallel.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace {

std::vector<float> ramp(int nPixels, float start = 0.0F)
{
    std::vector<float> pixels;
    for (int i = 0; i < nPixels; ++i) {
        pixels.push_back(start + static_cast<float>(i));
    }
    return pixels;
}

TEST(ImageCubeTest, MembersStartEmpty)
{
    const CImageCube cube;
    EXPECT_FALSE(cube.m_bValid);
    EXPECT_FALSE(cube.m_bHasMask);
    EXPECT_EQ(cube.m_nWidth, 0);
    EXPECT_EQ(cube.m_nHeight, 0);
    EXPECT_EQ(cube.m_nImages, 0);
    EXPECT_EQ(cube.m_nSpots, 0);
    EXPECT_EQ(cube.m_dShowMax, 0.0);
    EXPECT_EQ(cube.m_dShowMin, 0.0);
    EXPECT_EQ(cube.m_dMaxScale, 1.0);
    EXPECT_TRUE(cube.m_maskIndices.empty());
    EXPECT_TRUE(cube.m_data.empty());
    EXPECT_TRUE(cube.m_rgbImage.isNull());
    EXPECT_TRUE(cube.m_rawData.empty());
}

TEST(ImageCubeTest, InitWithoutMaskHasARowPerPixelAndSpot)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(3, 2, 2, 4, {}));
    EXPECT_TRUE(cube.m_bValid);
    EXPECT_FALSE(cube.m_bHasMask);
    EXPECT_EQ(cube.m_data.num_rows(), 12);
    EXPECT_EQ(cube.m_data.num_cols(), 4);
    EXPECT_EQ(cube.m_data.norm(0), 0.0);
}

TEST(ImageCubeTest, InitSortsTheMask)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(3, 2, 2, 4, {5, 0, 3}));
    EXPECT_TRUE(cube.m_bHasMask);
    EXPECT_EQ(cube.m_maskIndices, (std::vector<int>{0, 3, 5}));
    EXPECT_EQ(cube.m_data.num_rows(), 6);
}

TEST(ImageCubeTest, AMaskIndexOutsideTheImageIsRefused)
{
    for (const int nIndex : {6, 7, 1000, -1}) {
        CImageCube cube;
        EXPECT_FALSE(cube.init(3, 2, 1, 4, {0, nIndex})) << nIndex;
        EXPECT_TRUE(cube.m_data.empty());
        EXPECT_FALSE(cube.m_bValid);
        EXPECT_FALSE(cube.m_bHasMask);
        EXPECT_TRUE(cube.m_maskIndices.empty());
        EXPECT_EQ(cube.m_nWidth, 0);
        EXPECT_EQ(cube.m_nImages, 0);
    }
}

TEST(ImageCubeTest, AMaskOfMorePixelsThanTheImageIsRefused)
{
    CImageCube cube;
    EXPECT_TRUE(cube.init(3, 2, 1, 4, {0, 1, 2, 3, 4, 5}));
    EXPECT_FALSE(cube.init(3, 2, 1, 4, {0, 0, 1, 2, 3, 4, 5}));
    EXPECT_TRUE(cube.m_data.empty());
    EXPECT_FALSE(cube.m_bValid);
}

TEST(ImageCubeTest, ASecondInitForgetsTheFirst)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(3, 2, 1, 1, {5}));
    ASSERT_TRUE(cube.init(2, 2, 1, 3, {}));
    EXPECT_FALSE(cube.m_bHasMask);
    EXPECT_EQ(cube.m_data.num_rows(), 4);
    EXPECT_EQ(cube.m_data.num_cols(), 3);
}

TEST(ImageCubeTest, ClearKeepsOverviewAndRawData)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(3, 2, 1, 1, {5}));
    cube.m_rgbImage = QImage(3, 2, QImage::Format_RGB32);
    cube.m_rawData = cube.m_data.deepCopy();
    cube.clear();
    EXPECT_FALSE(cube.m_bValid);
    EXPECT_FALSE(cube.m_bHasMask);
    EXPECT_EQ(cube.m_nWidth, 0);
    EXPECT_EQ(cube.m_nHeight, 0);
    EXPECT_EQ(cube.m_nSpots, 0);
    EXPECT_EQ(cube.m_nImages, 0);
    EXPECT_EQ(cube.m_data.num_rows(), 0);
    EXPECT_EQ(cube.m_data.num_cols(), 0);
    EXPECT_FALSE(cube.m_rgbImage.isNull());
    EXPECT_EQ(cube.m_rawData.num_rows(), 1);
}

TEST(ImageCubeTest, SetImageFillsItsColumnOfItsSpot)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 2, 2, 3, {}));
    ASSERT_TRUE(cube.setImage(1, 2, ramp(4, 10.0F)));
    for (long long r = 0; r < 8; ++r) {
        for (long long c = 0; c < 3; ++c) {
            EXPECT_EQ(cube.m_data[r][c], r >= 4 && c == 2 ? static_cast<double>(r - 4 + 10) : 0.0);
        }
    }
}

TEST(ImageCubeTest, SetImageTakesTheMaskedPixelsOnly)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 3, 2, 1, {4, 1}));
    ASSERT_TRUE(cube.setImage(0, 0, ramp(6)));
    ASSERT_TRUE(cube.setImage(1, 0, ramp(6, 100.0F)));
    EXPECT_EQ(cube.m_data[0][0], 1.0);
    EXPECT_EQ(cube.m_data[1][0], 4.0);
    EXPECT_EQ(cube.m_data[2][0], 101.0);
    EXPECT_EQ(cube.m_data[3][0], 104.0);
}

TEST(ImageCubeTest, NegativePixelsAreStoredAsZeroAndNansStay)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 2, 1, 1, {}));
    ASSERT_TRUE(cube.setImage(0, 0, {-3.0F, 2.0F, std::numeric_limits<float>::quiet_NaN(), -0.25F}));
    EXPECT_EQ(cube.m_data[0][0], 0.0);
    EXPECT_EQ(cube.m_data[1][0], 2.0);
    EXPECT_TRUE(std::isnan(cube.m_data[2][0]));
    EXPECT_EQ(cube.m_data[3][0], 0.0);
}

TEST(ImageCubeTest, SetImageRefusesWhatDoesNotFit)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 2, 2, 3, {}));
    EXPECT_FALSE(cube.setImage(2, 0, ramp(4)));
    EXPECT_FALSE(cube.setImage(-1, 0, ramp(4)));
    EXPECT_FALSE(cube.setImage(0, 3, ramp(4)));
    EXPECT_FALSE(cube.setImage(0, -1, ramp(4)));
    EXPECT_FALSE(cube.setImage(0, 0, ramp(3)));
    EXPECT_FALSE(cube.setImage(0, 0, ramp(5)));
    EXPECT_FALSE(cube.setImage(0, 0, {}));
    EXPECT_EQ(cube.m_data.norm(0), 0.0);
    EXPECT_FALSE(CImageCube().setImage(0, 0, {}));
}

TEST(ImageCubeTest, SetImagesStoresAsTheImagesOneByOne)
{
    constexpr int nSide = 40;
    for (const std::vector<int>& mask : {std::vector<int>{}, std::vector<int>{0, 7, 1599}}) {
        CImageCube cubes[2];
        const std::vector<float> first = ramp(nSide * nSide, -10.0F);
        const std::vector<float> second = ramp(nSide * nSide, 5.0F);
        for (CImageCube& cube : cubes) {
            ASSERT_TRUE(cube.init(nSide, nSide, 2, 4, mask));
        }
        ASSERT_TRUE(cubes[0].setImage(1, 2, first));
        ASSERT_TRUE(cubes[0].setImage(1, 3, second));
        ASSERT_TRUE(cubes[1].setImages(1, 2, {first.data(), second.data()}, first.size()));
        EXPECT_EQ((cubes[0].m_data - cubes[1].m_data).norm(0), 0.0);
        // Not past the last column.
        EXPECT_FALSE(cubes[1].setImages(1, 3, {first.data(), second.data()}, first.size()));
    }
}

TEST(ImageCubeTest, StoringDoesNotDependOnTheThreads)
{
    constexpr int nSide = 300;
    CImageCube cubes[2];
    for (int t = 0; t < 2; ++t) {
        XTNT::setThreadCount(t + 1);
        ASSERT_TRUE(cubes[t].init(nSide, nSide, 1, 2, {}));
        ASSERT_TRUE(cubes[t].setImage(0, 1, ramp(nSide * nSide)));
    }
    XTNT::setThreadCount(0);
    EXPECT_EQ((cubes[0].m_data - cubes[1].m_data).norm(0), 0.0);
    EXPECT_EQ(cubes[0].m_data[nSide * nSide - 1][1], nSide * nSide - 1.0);
}

TEST(ImageCubeTest, GreyImageSpansTheWholeCube)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 1, 1, 2, {}));
    ASSERT_TRUE(cube.setImage(0, 0, {0.0F, 1.0F}));
    ASSERT_TRUE(cube.setImage(0, 1, {2.0F, 4.0F}));
    const QImage picture = cube.image(0);
    EXPECT_EQ(cube.m_dShowMin, 0.0);
    EXPECT_EQ(cube.m_dShowMax, 4.0);
    EXPECT_EQ(picture.format(), QImage::Format_RGB32);
    EXPECT_EQ(qRed(picture.pixel(0, 0)), 0);
    EXPECT_EQ(qRed(picture.pixel(1, 0)), 63); // 255 / 4, truncated
    EXPECT_EQ(qBlue(cube.image(1).pixel(1, 0)), 255);
}

TEST(ImageCubeTest, GreyImageIsLimitedWhenTheMaximumIsScaled)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 1, 1, 1, {}));
    ASSERT_TRUE(cube.setImage(0, 0, {0.0F, 4.0F}));
    cube.m_dMaxScale = 0.5;
    EXPECT_EQ(qGreen(cube.image(0).pixel(1, 0)), 255);
    EXPECT_EQ(cube.m_dShowMax, 2.0);
}

TEST(ImageCubeTest, GreyImageIsTheMeanOverTheSpotsAtTheMask)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 2, 2, 1, {3}));
    ASSERT_TRUE(cube.setImage(0, 0, {9.0F, 9.0F, 9.0F, 0.0F}));
    ASSERT_TRUE(cube.setImage(1, 0, {9.0F, 9.0F, 9.0F, 4.0F}));
    const QImage picture = cube.image(0);
    EXPECT_EQ(qRed(picture.pixel(1, 1)), 127); // half of 0 to 4
    EXPECT_EQ(qRed(picture.pixel(0, 0)), 0);
    EXPECT_EQ(qRed(picture.pixel(1, 0)), 0);
}

TEST(ImageCubeTest, NoSuchImageGivesANullPicture)
{
    CImageCube cube;
    EXPECT_TRUE(cube.image(0).isNull());
    ASSERT_TRUE(cube.init(2, 1, 1, 2, {}));
    EXPECT_TRUE(cube.image(2).isNull());
    EXPECT_TRUE(cube.image(-1).isNull());
    EXPECT_FALSE(cube.image(1).isNull());
}

TEST(ImageCubeTest, AConstantCubeGivesABlackPicture)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(1, 1, 1, 1, {}));
    ASSERT_TRUE(cube.setImage(0, 0, {5.0F}));
    EXPECT_EQ(qRed(cube.image(0).pixel(0, 0)), 0);
}

CImageCube spectrumCube(std::vector<int> mask)
{
    CImageCube cube;
    cube.init(2, 2, 1, 2, std::move(mask));
    cube.setImage(0, 0, {1.0F, 2.0F, 3.0F, 4.0F});
    cube.setImage(0, 1, {10.0F, 20.0F, 30.0F, 40.0F});
    return cube;
}

TEST(ImageCubeSpectrumTest, IsTheMeanPerColumn)
{
    bool bOk = false;
    const XTNT::Vector<double> mean = spectrumCube({}).spectrum({0, 3}, &bOk);
    EXPECT_TRUE(bOk);
    ASSERT_EQ(mean.size(), 2);
    EXPECT_EQ(mean[0], 2.5);
    EXPECT_EQ(mean[1], 25.0);
}

TEST(ImageCubeSpectrumTest, ASinglePixelIsItsRow)
{
    EXPECT_EQ(spectrumCube({}).spectrum({2})[1], 30.0);
}

TEST(ImageCubeSpectrumTest, PixelsOutsideTheMaskAreSkipped)
{
    bool bOk = false;
    const XTNT::Vector<double> mean = spectrumCube({3, 1}).spectrum({0, 3, 2, 1, 99, -5}, &bOk);
    EXPECT_TRUE(bOk);
    EXPECT_EQ(mean[0], 3.0);
    EXPECT_EQ(mean[1], 30.0);
}

TEST(ImageCubeSpectrumTest, NoPixelLeftGivesZerosAndSuccess)
{
    for (const std::vector<int>& mask : {std::vector<int>{}, std::vector<int>{3}}) {
        bool bOk = false;
        const XTNT::Vector<double> mean =
            spectrumCube(mask).spectrum(mask.empty() ? std::vector<int>{} : std::vector<int>{0}, &bOk);
        EXPECT_TRUE(bOk);
        ASSERT_EQ(mean.size(), 2);
        EXPECT_EQ(mean[0], 0.0);
    }
}

TEST(ImageCubeSpectrumTest, WithoutMaskAPixelOutsideTheImageFails)
{
    for (const int nPixel : {4, -1}) {
        bool bOk = true;
        const XTNT::Vector<double> mean = spectrumCube({}).spectrum({0, nPixel}, &bOk);
        EXPECT_FALSE(bOk);
        EXPECT_EQ(mean[0], 0.0);
    }
}

TEST(ImageCubeDecayTest, FactorsGoByColumnAloneAndCanBeTakenBack)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(1, 1, 2, 2, {}));
    cube.setImage(0, 0, {1.0F});
    cube.setImage(0, 1, {2.0F});
    cube.setImage(1, 0, {3.0F});
    cube.setImage(1, 1, {4.0F});
    cube.m_rawData = cube.m_data.deepCopy();
    // The factors of the second spot's images are ignored.
    cube.applyDecayFactors(cube.m_rawData, {10.0, 100.0, 1000.0, 10000.0}, true);
    EXPECT_EQ(cube.m_data[0][0], 10.0);
    EXPECT_EQ(cube.m_data[0][1], 200.0);
    EXPECT_EQ(cube.m_data[1][0], 30.0);
    EXPECT_EQ(cube.m_data[1][1], 400.0);
    cube.applyDecayFactors(cube.m_rawData, {10.0, 100.0}, false);
    EXPECT_EQ((cube.m_data - cube.m_rawData).norm(0), 0.0);
}

TEST(ImageCubeDecayTest, ACopyReachesTheSameElements)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(1, 1, 1, 1, {}));
    cube.setImage(0, 0, {2.0F});
    CImageCube copy = cube;
    copy.applyDecayFactors(copy.m_data.deepCopy(), {3.0}, true);
    EXPECT_EQ(cube.m_data[0][0], 6.0);
}

TEST(ImageCubeDecayTest, WhatDoesNotFitChangesNothing)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(1, 1, 1, 2, {}));
    cube.setImage(0, 0, {2.0F});
    cube.applyDecayFactors(XTNT::Matrix<double>(2, 2), {3.0, 3.0}, true);
    cube.applyDecayFactors(XTNT::Matrix<double>(1, 2), {3.0}, true);
    EXPECT_EQ(cube.m_data[0][0], 2.0);
}

XTNT::Matrix<double> identityWeights()
{
    XTNT::Matrix<double> weights(3, 3);
    for (long long i = 0; i < 3; ++i) {
        weights[i][i] = 1.0;
    }
    return weights;
}

TEST(ImageCubeRGBTest, WeightsOfAnotherNumberOfImagesAreRefused)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 2, 1, 2, {0}));
    EXPECT_FALSE(cube.buildRGBImage(identityWeights()));
    EXPECT_FALSE(cube.buildRGBImage(XTNT::Matrix<double>()));
    EXPECT_TRUE(cube.m_rgbImage.isNull());
}

TEST(ImageCubeRGBTest, ASizeMismatchIsPassedUp)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 2, 1, 2, {0}));
    EXPECT_THROW(cube.buildRGBImage(XTNT::Matrix<double>(2, 2)), XTNT::M_Exception);
}

TEST(ImageCubeRGBTest, ChannelsAreLogarithmicAtTheMask)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 2, 1, 3, {1, 2}));
    cube.setImage(0, 0, {9.0F, 8.0F, 0.0F, 9.0F});
    cube.setImage(0, 1, {9.0F, 4.0F, 0.0F, 9.0F});
    cube.setImage(0, 2, {9.0F, 0.0F, 2.0F, 9.0F});
    ASSERT_TRUE(cube.buildRGBImage(identityWeights()));
    const QImage& picture = cube.m_rgbImage;
    EXPECT_EQ(picture.format(), QImage::Format_RGB32);
    EXPECT_EQ(picture.size(), QSize(2, 2));
    // 255 x log10(value x 10 + 1) / log10(11), truncated: 1 gives 255, a half 190 (190.5), a quarter 133 (133.2).
    EXPECT_EQ(qRed(picture.pixel(1, 0)), 255);
    EXPECT_EQ(qGreen(picture.pixel(1, 0)), 190);
    EXPECT_EQ(qBlue(picture.pixel(1, 0)), 0);
    EXPECT_EQ(qBlue(picture.pixel(0, 1)), 133);
    EXPECT_EQ(qRed(picture.pixel(0, 0)), 0);
    EXPECT_EQ(qRed(picture.pixel(1, 1)), 0);
}

TEST(ImageCubeRGBTest, WithoutMaskTheBackgroundGoesBlack)
{
    constexpr int nSide = 32;
    CImageCube cube;
    ASSERT_TRUE(cube.init(nSide, nSide, 1, 3, {}));
    std::vector<float> pixels;
    for (int i = 0; i < nSide * nSide; ++i) {
        // Two modes of some width, a quarter of the picture in the bright one.
        const float spread = static_cast<float>(i % 7) * 0.01F;
        pixels.push_back((i < nSide * nSide / 4 ? 1.0F : 0.2F) - spread);
    }
    for (int c = 0; c < 3; ++c) {
        cube.setImage(0, c, pixels);
    }
    ASSERT_TRUE(cube.buildRGBImage(identityWeights()));
    EXPECT_EQ(qRed(cube.m_rgbImage.pixel(0, 0)), 255);
    EXPECT_EQ(qRed(cube.m_rgbImage.pixel(nSide - 1, nSide - 1)), 0);
    EXPECT_EQ(qRed(cube.m_rgbImage.pixel(0, nSide - 1)), 0);
}

TEST(ImageCubeRGBTest, AnEmptyPictureIsBlackAndDoesNotFail)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 2, 1, 3, {}));
    ASSERT_TRUE(cube.buildRGBImage(identityWeights()));
    EXPECT_EQ(qRed(cube.m_rgbImage.pixel(0, 0)), 0);
}

TEST(ImageCubeRGBTest, InAScanTheMeanOverTheSpotsIsShown)
{
    CImageCube cube;
    ASSERT_TRUE(cube.init(2, 1, 2, 3, {0, 1}));
    cube.setImage(0, 0, {4.0F, 4.0F});
    cube.setImage(1, 0, {4.0F, 0.0F});
    ASSERT_TRUE(cube.buildRGBImage(identityWeights()));
    EXPECT_EQ(qRed(cube.m_rgbImage.pixel(0, 0)), 255);
    EXPECT_EQ(qRed(cube.m_rgbImage.pixel(1, 0)), 190);
}

RC_GTEST_PROP(ImageCubeLawTest, AMaskedCubeHoldsTheRowsOfTheFullOne, (const std::vector<unsigned char>& bytes))
{
    constexpr int nSide = 8;
    std::set<int> chosen;
    for (const unsigned char b : bytes) {
        chosen.insert(b % (nSide * nSide));
    }
    const std::vector<int> mask(chosen.rbegin(), chosen.rend());
    CImageCube full;
    CImageCube masked;
    RC_ASSERT(full.init(nSide, nSide, 1, 1, {}));
    RC_ASSERT(masked.init(nSide, nSide, 1, 1, mask));
    RC_ASSERT(full.setImage(0, 0, ramp(nSide * nSide, -5.0F)));
    RC_ASSERT(masked.setImage(0, 0, ramp(nSide * nSide, -5.0F)));
    // An empty mask counts as none.
    RC_ASSERT(masked.m_data.num_rows() == (mask.empty() ? nSide * nSide : static_cast<long long>(mask.size())));
    for (long long j = 0; j < masked.m_data.num_rows() && !mask.empty(); ++j) {
        RC_ASSERT(masked.m_data[j][0] == full.m_data[masked.m_maskIndices[static_cast<std::size_t>(j)]][0]);
    }
}

} // namespace
