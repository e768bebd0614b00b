// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of the cube and of a result to the byte. The fingerprints were recorded from the plain loops that were here
// first.
#include "engine/CImageCube.h"
#include "engine/unmixedImages.h"
#include "support/PictureBytes.h"

#include <gtest/gtest.h>

#include <limits>

using testsupport::fingerprint;
using testsupport::FixedNumbers;

namespace {

CImageCube cubeOf(int nWidth, int nHeight, int nSpots, int nImages, const std::vector<int>& mask, FixedNumbers& numbers)
{
    CImageCube cube;
    EXPECT_TRUE(cube.init(nWidth, nHeight, nSpots, nImages, mask));
    std::vector<float> image(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight));
    for (int s = 0; s < nSpots; ++s) {
        for (int i = 0; i < nImages; ++i) {
            for (std::size_t p = 0; p < image.size(); ++p) {
                const auto x = static_cast<double>(p % static_cast<std::size_t>(nWidth)) / nWidth - 0.3 - 0.02 * i;
                const auto y = static_cast<double>(p) / static_cast<double>(image.size()) - 0.5;
                image[p] = static_cast<float>(1e7 * (1.0 / (1.0 + 60.0 * (x * x + y * y)) + 0.3 * numbers.fraction()));
            }
            EXPECT_TRUE(cube.setImage(s, i, image));
        }
    }
    return cube;
}

XTNT::Matrix<double> weightsOf(int nImages, FixedNumbers& numbers)
{
    XTNT::Matrix<double> weights(nImages, 3);
    for (long long i = 0; i < weights.storage.n_; ++i) {
        weights.storage.data[i] = numbers.fraction();
    }
    return weights;
}

std::vector<int> someOf(int nPixels, FixedNumbers& numbers)
{
    std::vector<int> mask;
    for (int i = 0; i < nPixels; ++i) {
        if (numbers.below(3) != 0) {
            mask.push_back(i);
        }
    }
    return mask;
}

void scale(CImageCube& cube, double factor)
{
    for (long long i = 0; i < cube.m_data.storage.n_; ++i) {
        cube.m_data.storage.data[i] *= factor;
    }
}

std::uint64_t overview(CImageCube& cube, const XTNT::Matrix<double>& weights)
{
    EXPECT_TRUE(cube.buildRGBImage(weights));
    return fingerprint(cube.m_rgbImage);
}

} // namespace

TEST(CubeBytesTest, FingerprintsOfOverviewsStay)
{
    FixedNumbers numbers(31);
    CImageCube whole = cubeOf(253, 201, 1, 18, {}, numbers);
    EXPECT_EQ(overview(whole, weightsOf(18, numbers)), 0x4b80518bafd9af74U);
    CImageCube scan = cubeOf(101, 67, 3, 5, {}, numbers);
    EXPECT_EQ(overview(scan, weightsOf(5, numbers)), 0xce0aedb87b0d4264U);
    CImageCube masked = cubeOf(253, 201, 1, 7, someOf(253 * 201, numbers), numbers);
    EXPECT_EQ(overview(masked, weightsOf(7, numbers)), 0x13f66a585bff1fc2U);
    CImageCube both = cubeOf(61, 43, 2, 4, someOf(61 * 43, numbers), numbers);
    EXPECT_EQ(overview(both, weightsOf(4, numbers)), 0x727539b7cccb4aa0U);
    CImageCube one = cubeOf(1, 1, 1, 1, {}, numbers);
    EXPECT_EQ(overview(one, weightsOf(1, numbers)), 0x9b04381cfa76bee3U);
}

TEST(CubeBytesTest, FingerprintsOfOverviewsWithOddNumbersStay)
{
    FixedNumbers numbers(32);
    CImageCube cube = cubeOf(97, 89, 1, 6, {}, numbers);
    const XTNT::Matrix<double> weights = weightsOf(6, numbers);
    cube.m_data[500][2] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(overview(cube, weights), 0x9c8561ca31f76ea7U);
    cube.m_data[600][3] = std::numeric_limits<double>::infinity();
    EXPECT_EQ(overview(cube, weights), 0x1314346ab18d5510U);
    cube.m_data[0][0] = std::numeric_limits<double>::quiet_NaN(); // a NaN that comes first stays the largest
    EXPECT_EQ(overview(cube, weights), 0x1314346ab18d5510U);
    CImageCube zero = cubeOf(31, 17, 1, 2, {}, numbers);
    scale(zero, 0.0);
    EXPECT_EQ(overview(zero, weightsOf(2, numbers)), 0x4584193669a54b2U);
    CImageCube negative = cubeOf(31, 17, 1, 2, {}, numbers);
    scale(negative, -1.0);
    EXPECT_EQ(overview(negative, weightsOf(2, numbers)), 0xfb533a1c4970b98fU);
}

TEST(CubeBytesTest, FingerprintsOfGreyImagesStay)
{
    FixedNumbers numbers(33);
    CImageCube whole = cubeOf(253, 201, 1, 18, {}, numbers);
    EXPECT_EQ(fingerprint(whole.image(0)), 0x7791471d0a6445cbU);
    EXPECT_EQ(fingerprint(whole.image(17)), 0xfb762b757e124adeU);
    EXPECT_EQ(whole.m_dShowMax, whole.m_data.storage.Max());
    EXPECT_EQ(whole.m_dShowMin, whole.m_data.storage.Min());
    whole.m_dMaxScale = 0.37;
    EXPECT_EQ(fingerprint(whole.image(9)), 0xb77ca8b5e1d7d99eU);
    whole.m_data[77][9] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(fingerprint(whole.image(9)), 0x4c967717a127632bU);
    whole.m_data[78][9] = std::numeric_limits<double>::infinity();
    EXPECT_EQ(fingerprint(whole.image(9)), 0x333f65589d1bcefcU);
    whole.m_data[0][0] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(fingerprint(whole.image(9)), 0x333f65589d1bcefcU);
    CImageCube scan = cubeOf(61, 43, 3, 4, someOf(61 * 43, numbers), numbers);
    EXPECT_EQ(fingerprint(scan.image(2)), 0x22a7a839cab1c732U);
    CImageCube one = cubeOf(1, 1, 1, 1, {}, numbers);
    EXPECT_EQ(fingerprint(one.image(0)), 0x7e1f2542cd31c948U);
}

TEST(SpotBytesTest, FingerprintsOfTilesStay)
{
    FixedNumbers numbers(34);
    constexpr int nWidth = 151;
    constexpr int nHeight = 97;
    CILImage photo;
    ASSERT_EQ(photo.InitWithType(ORVTYPE_USHORT, nWidth, nHeight), EIL_SUCCESS);
    for (std::size_t i = 0; i < photo.pixelCount(); ++i) {
        photo.setValue(i, numbers.below(30000));
    }
    photo.RefreshImageStats();
    UnmixedSource source;
    source.concentrations = XTNT::Matrix<double>(3, 2LL * nWidth * nHeight);
    for (long long i = 0; i < source.concentrations.storage.n_; ++i) {
        source.concentrations.storage.data[i] = numbers.fraction();
    }
    source.concentrations[1][40] = std::numeric_limits<double>::quiet_NaN();
    source.width = nWidth;
    source.height = nHeight;
    source.spots = 2;
    source.components = {{"TissueAF", "lime", ScaleRatio()}, {"B", "red", {0.2, 0.5, 1.0}}, {"C", "#4080ff", {}}};
    source.display.overlayOpacity = 63;
    source.photo = &photo;
    const CILImage picture = pictureOf(photo);
    source.photoPicture = &picture;
    std::uint64_t all = 0;
    for (const bool bLog : {false, true}) {
        source.display.logScale = bLog;
        for (int s = 0; s < 2; ++s) {
            const UnmixedSpot spot = unmixedSpot(source, s);
            ASSERT_EQ(spot.tiles.size(), 4);
            for (const UnmixedSpot::Tile& tile : spot.tiles) {
                all = all * 31U + fingerprint(tile.image->toQImage());
            }
            for (const std::unique_ptr<CILImage>& pImage : spot.images) {
                all = all * 31U + fingerprint(pImage->toQImage());
            }
        }
        EXPECT_EQ(all, bLog ? 0xcaf31855ffbe4210U : 0x35982dc0f03aa243U);
    }
}
