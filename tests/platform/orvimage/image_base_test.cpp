// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ImageSupport.h"

#include <cmath>
#include <limits>
#include <utility>

TEST(CILImageBaseTest, NewImageIsEmptyAtBinningOne)
{
    const CILImage image;
    EXPECT_TRUE(image.isEmpty());
    EXPECT_EQ(nullptr, image.m_pData);
    EXPECT_EQ(ORVTYPE_NONE, image.dataType());
    EXPECT_EQ(1.0F, image.m_fBinning);
    EXPECT_EQ(0U, image.pixelCount());
}

TEST(CILImageBaseTest, InitWithTypeGivesZeros)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        CILImage image;
        ASSERT_EQ(EIL_SUCCESS, image.InitWithType(type, 3, 2));
        EXPECT_EQ(3, image.m_lWidth);
        EXPECT_EQ(2, image.m_lHeight);
        EXPECT_EQ(type, image.dataType());
        EXPECT_EQ(std::vector<double>(6, 0.0), valuesOf(image));
    }
}

TEST(CILImageBaseTest, BytesOfAPixel)
{
    EXPECT_EQ(1U, CILImage::bytesPerPixel(ORVTYPE_BYTE));
    EXPECT_EQ(2U, CILImage::bytesPerPixel(ORVTYPE_USHORT));
    EXPECT_EQ(4U, CILImage::bytesPerPixel(ORVTYPE_INT));
    EXPECT_EQ(4U, CILImage::bytesPerPixel(ORVTYPE_FLOAT));
    EXPECT_EQ(8U, CILImage::bytesPerPixel(ORVTYPE_DOUBLE));
    EXPECT_EQ(0U, CILImage::bytesPerPixel(ORVTYPE_NONE));
}

TEST(CILImageBaseTest, RefusedInitLeavesAnEmptyImage)
{
    CILImage image = makeImage(ORVTYPE_BYTE, 1, 1, {7});
    EXPECT_EQ(EIL_INVALID_ARGUMENT, image.InitWithType(ORVTYPE_BYTE, 0, 5));
    EXPECT_TRUE(image.isEmpty());
    EXPECT_EQ(EIL_INVALID_ARGUMENT, image.InitWithType(ORVTYPE_BYTE, 5, -1));
    EXPECT_EQ(EIL_INVALID_ARGUMENT, image.InitWithType(ORVTYPE_NONE, 5, 5));
    const long longest = std::numeric_limits<long>::max();
    EXPECT_EQ(EIL_NO_MEMORY, image.InitWithType(ORVTYPE_DOUBLE, longest, longest));
    EXPECT_TRUE(image.isEmpty());
    EXPECT_EQ(nullptr, image.m_pData);
}

TEST(CILImageBaseTest, InitWithTypeKeepsTheBinning)
{
    CILImage image;
    image.m_fBinning = 4.0F;
    ASSERT_EQ(EIL_SUCCESS, image.InitWithType(ORVTYPE_FLOAT, 2, 2));
    EXPECT_EQ(4.0F, image.m_fBinning);
}

TEST(CILImageBaseTest, InitWithDataCopies)
{
    float data[] = {1.5F, -2.0F};
    CILImage image;
    ASSERT_EQ(EIL_SUCCESS, image.initWithData(ORVTYPE_FLOAT, 1, 2, data));
    data[0] = 9.0F;
    EXPECT_EQ((std::vector<double>{1.5, -2.0}), valuesOf(image));
    EXPECT_EQ(EIL_INVALID_ARGUMENT, image.initWithData(ORVTYPE_FLOAT, 1, 2, nullptr));
    EXPECT_TRUE(image.isEmpty());
}

TEST(CILImageBaseTest, CopiesShareNothing)
{
    CILImage image = makeImage(ORVTYPE_DOUBLE, 2, 1, {1, 2});
    image.m_fBinning = 8.0F;
    CILImage copy(image);
    copy.setValue(0, 5.0);
    EXPECT_EQ(1.0, image.value(0));
    EXPECT_EQ(8.0F, copy.m_fBinning);
    EXPECT_EQ(2.0, copy.Max());
    image = copy;
    copy.setValue(1, 6.0);
    EXPECT_EQ((std::vector<double>{5, 2}), valuesOf(image));
    const CILImage& same = image;
    image = same;
    EXPECT_EQ((std::vector<double>{5, 2}), valuesOf(image));
}

TEST(CILImageBaseTest, MovedFromImageIsEmpty)
{
    CILImage image = makeImage(ORVTYPE_BYTE, 2, 1, {1, 2});
    const void* pixels = image.m_pData;
    CILImage moved(std::move(image));
    EXPECT_EQ(pixels, moved.m_pData);
    EXPECT_TRUE(image.isEmpty()); // NOLINT: what is left is told in the header
    EXPECT_EQ(nullptr, image.m_pData);
    CILImage assigned = makeImage(ORVTYPE_DOUBLE, 1, 1, {3});
    assigned = std::move(moved);
    EXPECT_EQ((std::vector<double>{1, 2}), valuesOf(assigned));
    EXPECT_TRUE(moved.isEmpty()); // NOLINT
    EXPECT_TRUE(moved.toQImage().isNull());
    EXPECT_EQ(qRgb(0, 0, 0), moved.getPalette()->colorAt(1.0));
}

TEST(CILImageBaseTest, WritingLimitsToTheTypeAndRoundsHalvesAway)
{
    CILImage image = makeImage(ORVTYPE_BYTE, 6, 1, {-3, 300, 2.5, 2.4999, kNaN, kInfinity});
    EXPECT_EQ((std::vector<double>{0, 255, 3, 2, 0, 255}), valuesOf(image));
    image = makeImage(ORVTYPE_USHORT, 4, 1, {-kInfinity, 70000, 65534.5, 0.5});
    EXPECT_EQ((std::vector<double>{0, 65535, 65535, 1}), valuesOf(image));
    image = makeImage(ORVTYPE_INT, 5, 1, {-3e9, 3e9, -2.5, -0.4, kNaN});
    EXPECT_EQ((std::vector<double>{-2147483648.0, 2147483647.0, -3, 0, 0}), valuesOf(image));
    image = makeImage(ORVTYPE_FLOAT, 2, 1, {0.1, kInfinity});
    EXPECT_EQ(static_cast<double>(0.1F), image.value(0));
    EXPECT_EQ(kInfinity, image.value(1));
}

TEST(CILImageBaseTest, ClearDropsAllButTheBinning)
{
    CILImage image = makeImage(ORVTYPE_BYTE, 2, 1, {1, 2});
    image.m_fBinning = 2.0F;
    image.clear();
    EXPECT_TRUE(image.isEmpty());
    EXPECT_EQ(0.0, image.Max());
    EXPECT_EQ(2.0F, image.m_fBinning);
}
