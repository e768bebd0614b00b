// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/MaskFile.h"
#include "services/support/CliFixture.h"

#include "engine/dataMask.h"

#include <QImage>

#include <limits>

namespace {

class MaskFileTest : public CliFixture
{
protected:
    QString file(long width, long height, const std::function<float(int)>& value) const
    {
        return writeTiffFile("mask.tif", imageOf(width, height, value));
    }
    QString refusal(const QString& strPath, int nSide) const
    {
        return failureOf([&] { readMaskFile(strPath, nSide, 4); }).remove(path("mask.tif"));
    }
    // Pixels of the analysis that the mask file leaves.
    std::vector<int> indices(const QString& strPath, int nSide, int nBinning) const
    {
        const CILImage mask = readMaskFile(strPath, nSide, nBinning);
        std::vector<int> found;
        EXPECT_TRUE(maskIndicesAtBinning(mask, nBinning, nSide, nSide, MaskPixels::FloatsAboveZero, found))
            << nSide << " at " << nBinning;
        return found;
    }
};

} // namespace

TEST_F(MaskFileTest, PixelsAboveZeroCount)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> values = {0.0F, 1e-3F, 255.0F, -1.0F, nan, 0.0F, 7.0F, 0.0F, 0.0F};
    const QString name = file(3, 3, [&](int i) { return values[static_cast<std::size_t>(i)]; });
    EXPECT_EQ(indices(name, 3, 4), (std::vector<int>{1, 2, 6}));
}

// A pixel of the analysis counts when any of the mask's pixels in it does.
TEST_F(MaskFileTest, AFinerMaskFallsOnThePixelsOfTheAnalysis)
{
    const QString name = file(4, 4, [](int i) { return i == 3 || i == 13 ? 1.0F : 0.0F; });
    EXPECT_EQ(indices(name, 2, 4), (std::vector<int>{1, 2}));
}

TEST_F(MaskFileTest, EveryMultipleServesAtEveryBinning)
{
    for (int factor = 1; factor <= 25; ++factor) {
        const int side = 2 * factor;
        const QString name = file(side, side, [&](int i) { return i == side * side - 1 ? 1.0F : 0.0F; });
        for (const int binning : {1, 2, 3, 4, 7, 8, 16}) {
            EXPECT_EQ(indices(name, 2, binning), (std::vector<int>{3})) << factor << " at " << binning;
        }
    }
}

TEST_F(MaskFileTest, IntegersServe)
{
    CILImage mask = imageOf(2, 2, [](int i) { return i == 2 ? 255.0F : 0.0F; });
    ASSERT_EQ(mask.ChangeType(ORVTYPE_BYTE), EIL_SUCCESS);
    EXPECT_EQ(indices(writeTiffFile("mask.tif", mask), 2, 1), (std::vector<int>{2}));
}

TEST_F(MaskFileTest, AnotherShapeIsRefusedWithWhatIsNeeded)
{
    const auto ones = [](int) { return 1.0F; };
    EXPECT_EQ(refusal(file(4, 3, ones), 4),
              ": the mask has 4 x 3 pixels; the analysis needs 4 x 4 or a multiple of it");
    EXPECT_EQ(refusal(file(6, 6, ones), 4),
              ": the mask has 6 x 6 pixels; the analysis needs 4 x 4 or a multiple of it");
    EXPECT_EQ(refusal(file(2, 2, ones), 4),
              ": the mask has 2 x 2 pixels; the analysis needs 4 x 4 or a multiple of it");
}

TEST_F(MaskFileTest, AMaskWithoutAnyPixelIsRefused)
{
    EXPECT_EQ(refusal(file(4, 4, [](int) { return -1.0F; }), 4), ": the mask has no pixel above 0");
    EXPECT_EQ(refusal(file(4, 4, [](int) { return std::numeric_limits<float>::quiet_NaN(); }), 4),
              ": the mask has no pixel above 0");
}

TEST_F(MaskFileTest, WhatIsNoTiffIsRefusedByName)
{
    write("mask.tif", "no image at all");
    EXPECT_TRUE(failureOf([&] { readMaskFile(path("mask.tif"), 4, 4); }).startsWith(path("mask.tif") + ": "));
    EXPECT_TRUE(failureOf([&] { readMaskFile(path("absent.tif"), 4, 4); }).startsWith(path("absent.tif") + ": "));
}

// A result's "mask.png" is white where pixels were analysed.
TEST_F(MaskFileTest, APngServes)
{
    QImage white(4, 4, QImage::Format_Grayscale8);
    white.fill(0);
    white.setPixel(3, 0, 0xFFFFFFFF);
    white.setPixel(1, 3, 0xFF010101);
    const QString name = path("mask.png");
    ASSERT_TRUE(white.save(name));
    EXPECT_EQ(indices(name, 4, 4), (std::vector<int>{3, 13}));
    EXPECT_EQ(indices(name, 2, 4), (std::vector<int>{1, 2}));
}

TEST_F(MaskFileTest, APngOfSixteenBitsWithANameThatTellsNothingServes)
{
    QImage faint(2, 2, QImage::Format_Grayscale16);
    faint.fill(0);
    reinterpret_cast<quint16*>(faint.scanLine(1))[0] = 1;
    ASSERT_TRUE(faint.save(path("mask"), "PNG"));
    EXPECT_EQ(indices(path("mask"), 2, 1), (std::vector<int>{2}));
}

TEST_F(MaskFileTest, APngThatDoesNotServeIsRefused)
{
    QImage black(4, 4, QImage::Format_Grayscale8);
    black.fill(0);
    const QString name = path("mask.png");
    ASSERT_TRUE(black.save(name));
    const auto refusalOf = [&](int nSide) { return failureOf([&] { readMaskFile(name, nSide, 4); }).remove(name); };
    EXPECT_EQ(refusalOf(4), ": the mask has no pixel above 0");
    EXPECT_EQ(refusalOf(3), ": the mask has 4 x 4 pixels; the analysis needs 3 x 3 or a multiple of it");
    const QByteArray whole = contentOf(name);
    write("mask.png", whole.left(whole.size() - 20));
    EXPECT_EQ(refusalOf(4), ": the mask is broken or cut short");
    write("mask.png", whole.left(12));
    EXPECT_EQ(refusalOf(4), ": the mask is broken or cut short");
}
