// SPDX-License-Identifier: GPL-3.0-or-later
// Composites and photo masks to the byte. The fingerprints were recorded from the plain loops that were here first.
#include "windows/CompositeScene.h"
#include "windows/maskPixels.h"
#include "windows/photoMask.h"

#include "support/PictureBytes.h"

#include <array>
#include <cmath>
#include <limits>

using testsupport::fingerprint;
using testsupport::FixedNumbers;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

enum class Odd
{
    None,
    NaNs,
    Infinities
};

std::vector<double> mapOf(int nWidth, int nHeight, FixedNumbers& numbers, Odd odd)
{
    std::vector<double> values;
    const double cx = numbers.fraction() * nWidth;
    const double cy = numbers.fraction() * nHeight;
    for (int y = 0; y < nHeight; ++y) {
        for (int x = 0; x < nWidth; ++x) {
            const double distance = (x - cx) * (x - cx) + (y - cy) * (y - cy);
            values.push_back(1000.0 / (1.0 + distance / 300.0) + numbers.fraction() - 0.5);
        }
    }
    if (odd != Odd::None) {
        for (int i = 0; i < 50; ++i) {
            values[static_cast<std::size_t>(numbers.below(nWidth * nHeight))] = odd == Odd::NaNs ? notANumber
                                                                                : i % 2 == 0     ? infinite
                                                                                                 : -infinite;
        }
    }
    return values;
}

CompositeScene sceneOf(int nWidth, int nHeight, int nComponents, FixedNumbers& numbers, Odd odd = Odd::None)
{
    std::vector<std::vector<double>> rows;
    for (int k = 0; k < nComponents; ++k) {
        rows.push_back(mapOf(nWidth, nHeight, numbers, k == 1 ? odd : Odd::None));
    }
    return CompositeScene(nWidth, nHeight, rows);
}

QList<CompositeChannel> fiveChannels(bool bLog)
{
    QList<CompositeChannel> channels = {channelOf("lime", 0.1, 0.9, 0.3), channelOf("red"), channelOf("#7f3b99"),
                                        channelOf("gold", 0.05, 0.4, 0.77), channelOf("white", 0.5, 0.5, 0.1)};
    for (int i = 0; bLog && i < channels.size(); i += 2) {
        channels[i].logScale = true;
    }
    return channels;
}

CILImage photoOf(ORVDataTypes eType, int nWidth, int nHeight, FixedNumbers& numbers)
{
    CILImage photo;
    EXPECT_EQ(photo.InitWithType(eType, nWidth, nHeight), EIL_SUCCESS);
    const double dTop = eType == ORVTYPE_BYTE ? 200.0 : 30000.0;
    for (int y = 0; y < nHeight; ++y) {
        for (int x = 0; x < nWidth; ++x) {
            const double u = 2.0 * (x + 0.5) / nWidth - 1.0;
            const double v = 2.0 * (y + 0.5) / nHeight - 1.0;
            const bool bBody = u * u / 0.2 + v * v / 0.6 < 1.0 && u * u + v * v > 0.02;
            const bool bSpeck = numbers.below(200) == 0;
            photo.setValue(static_cast<std::size_t>(y * nWidth + x),
                           dTop * ((bBody || bSpeck ? 0.6 + 0.3 * (1 - v * v) : 0.1) + 0.1 * numbers.fraction()));
        }
    }
    photo.RefreshImageStats();
    return photo;
}

QImage pictureOfMask(const CILImage& mask)
{
    QImage picture(static_cast<int>(mask.m_lWidth), static_cast<int>(mask.m_lHeight), QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            picture.setPixel(x, y, static_cast<QRgb>(mask.value(static_cast<std::size_t>(y * picture.width() + x))));
        }
    }
    return picture;
}

} // namespace

TEST(CompositeBytesTest, FingerprintsOfFiveComponentsStay)
{
    FixedNumbers numbers(21);
    for (const bool bLog : {false, true}) {
        CompositeScene scene = sceneOf(501, 483, 5, numbers);
        scene.start(fiveChannels(bLog), photoOf(ORVTYPE_USHORT, 301, 203, numbers));
        EXPECT_EQ(fingerprint(scene.mapPicture()), bLog ? 0xd5a98d4323811515U : 0xcacc8a727995be6fU);
        EXPECT_EQ(fingerprint(scene.picture()), bLog ? 0x9129b6cd3581c0aeU : 0xba4bbacf2ae8ec6eU);
        scene.layers.last().channel.logScale = true;
        scene.layers.last().channel.minFraction = 0.2;
        scene.layers.last().channel.maxFraction = 0.7;
        EXPECT_EQ(fingerprint(scene.picture()), bLog ? 0x2d05df23d98adca9U : 0x1d16fce8a428656cU);
        scene.layers[1].checked = Qt::Unchecked;
        scene.layers.last().checked = Qt::Unchecked;
        EXPECT_EQ(fingerprint(scene.picture()), bLog ? 0x85ad89aaad205509U : 0x27dff776e12e6149U);
    }
}

TEST(CompositeBytesTest, FingerprintsOfOddNumbersStay)
{
    FixedNumbers numbers(22);
    for (const Odd odd : {Odd::NaNs, Odd::Infinities}) {
        CompositeScene scene = sceneOf(480, 487, 3, numbers, odd);
        QList<CompositeChannel> channels = fiveChannels(true).mid(0, 3);
        scene.start(channels, photoOf(ORVTYPE_DOUBLE, 480, 487, numbers));
        EXPECT_EQ(fingerprint(scene.picture()), odd == Odd::NaNs ? 0x2f896dd9be7283abU : 0xf5d1f4461ea85f4U);
        scene.background.setValue(7, notANumber);
        scene.background.setValue(999, infinite);
        EXPECT_EQ(fingerprint(scene.picture()), odd == Odd::NaNs ? 0x8cd2746d12f0e6a7U : 0xb1da5f34d6b7bd76U);
    }
}

TEST(CompositeBytesTest, FingerprintsOfAMaskAndOfSpotsStay)
{
    FixedNumbers numbers(23);
    std::vector<int> indices;
    for (int i = 0; i < 500 * 490; ++i) {
        if (numbers.below(3) == 0) {
            indices.push_back(i);
        }
    }
    indices.push_back(500 * 490); // outside: no pixel of the picture
    indices.push_back(17);        // twice: the later one stays
    constexpr int nSpots = 2;
    std::vector<std::vector<double>> rows(2);
    for (std::vector<double>& row : rows) {
        for (std::size_t i = 0; i < nSpots * indices.size(); ++i) {
            row.push_back(numbers.fraction());
        }
    }
    CompositeScene scene(500, 490, rows, indices, nSpots);
    scene.start({channelOf("red"), channelOf("cyan", 0.1, 0.9)}, photoOf(ORVTYPE_BYTE, 500, 490, numbers));
    EXPECT_EQ(fingerprint(scene.picture(0)), 0xa9e391cf13c44ffaU);
    EXPECT_EQ(fingerprint(scene.picture(1)), 0xfe38b884a7a62059U);
}

TEST(PhotoMaskBytesTest, FingerprintsOfMasksStay)
{
    FixedNumbers numbers(24);
    std::uint64_t all = 0;
    std::size_t pixels = 0;
    for (const ORVDataTypes eType : {ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE}) {
        CILImage photo = photoOf(eType, 203, 157, numbers);
        if (eType == ORVTYPE_DOUBLE || eType == ORVTYPE_FLOAT) {
            photo.setValue(5000, notANumber);
            photo.setValue(6000, -infinite);
            photo.RefreshImageStats();
        }
        const float fRange = photoRange(photo);
        for (const float v : {0.0F, 17.0F, automaticThreshold(photo, fRange), 80.0F, 99.0F}) {
            CILImage mask;
            ASSERT_TRUE(makePhotoMask(photo, v, fRange, mask));
            all = all * 31U + fingerprint(pictureOfMask(mask));
            pixels += countMaskPixels(mask);
        }
    }
    EXPECT_EQ(all, 0x80c0587378d7aa1aU);
    EXPECT_EQ(pixels, 0x44d78U);
}
