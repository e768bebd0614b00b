// SPDX-License-Identifier: GPL-3.0-or-later
// The numbers of a region over an image.
#include "RoiSupport.h"

#include "host/CILImage.h"
#include "host/CPLClickInfo.h"
#include "platform/orvapi/ROIStatistics.h"

#include <limits>

using namespace roisupport;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

CILImage imageOf(long width, const std::vector<double>& values, ORVDataTypes type = ORVTYPE_DOUBLE,
                 float binning = 1.0F)
{
    CILImage image;
    EXPECT_EQ(image.InitWithType(type, width, static_cast<long>(values.size()) / width), EIL_SUCCESS);
    for (std::size_t i = 0; i < values.size(); ++i) {
        image.setValue(i, values[i]);
    }
    image.m_fBinning = binning;
    return image;
}

tagROIStatistics measured(const QString& strShape, const CILImage& image,
                          std::optional<double> pixelSize = std::nullopt)
{
    return measureROI(regionFrom(strShape), image, QStringLiteral("Counts"), pixelSize);
}

} // namespace

TEST(RoiStatisticsTest, TellsSumMeanRangeAndDeviationOfItsPixels)
{
    for (const ORVDataTypes type : {ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE}) {
        const tagROIStatistics s = measured("rect:0,0,2,2", imageOf(3, {2, 4, 99, 4, 6, 99}, type));
        EXPECT_EQ(s.unit, "Counts");
        EXPECT_EQ(s.pixels, 4);
        EXPECT_EQ(s.invalidPixels, 0);
        EXPECT_EQ(s.sum, 16.0);
        EXPECT_EQ(s.mean, 4.0);
        EXPECT_EQ(s.minimum, 2.0);
        EXPECT_EQ(s.maximum, 6.0);
        EXPECT_DOUBLE_EQ(s.deviation, std::sqrt(2.0)); // of 2, 4, 4, 6 around 4: (4 + 0 + 0 + 4) / 4
        EXPECT_TRUE(std::isnan(s.area));
    }
}

TEST(RoiStatisticsTest, OnePixelDeviatesByNothing)
{
    const tagROIStatistics s = measured("rect:1,0,1,1", imageOf(2, {3, -7.5}));
    EXPECT_EQ(s.pixels, 1);
    EXPECT_EQ(s.sum, -7.5);
    EXPECT_EQ(s.mean, -7.5);
    EXPECT_EQ(s.minimum, -7.5);
    EXPECT_EQ(s.maximum, -7.5);
    EXPECT_EQ(s.deviation, 0.0);
}

TEST(RoiStatisticsTest, PixelsWithoutAValueAreLeftOutAndCounted)
{
    const tagROIStatistics s =
        measured("rect:0,0,3,2", imageOf(3, {notANumber, 1, infinity, 3, -infinity, notANumber}), 0.5);
    EXPECT_EQ(s.pixels, 2);
    EXPECT_EQ(s.invalidPixels, 4);
    EXPECT_EQ(s.sum, 4.0);
    EXPECT_EQ(s.mean, 2.0);
    EXPECT_EQ(s.minimum, 1.0);
    EXPECT_EQ(s.maximum, 3.0);
    EXPECT_EQ(s.deviation, 1.0);
    EXPECT_EQ(s.area, 0.5); // of the two that count
}

TEST(RoiStatisticsTest, ARegionWithoutAPixelHasASumAndNoMean)
{
    for (const auto& image : {imageOf(2, {notANumber, notANumber}), imageOf(1, {7})}) {
        const tagROIStatistics s = measured(image.m_lWidth == 2 ? "rect:0,0,2,1" : "rect:5,5,2,2", image, 0.5);
        EXPECT_TRUE(s.isMeasured());
        EXPECT_EQ(s.pixels, 0);
        EXPECT_EQ(s.invalidPixels, image.m_lWidth == 2 ? 2 : 0);
        EXPECT_EQ(s.sum, 0.0);
        EXPECT_EQ(s.area, 0.0);
        for (const double number : {s.mean, s.minimum, s.maximum, s.deviation}) {
            EXPECT_TRUE(std::isnan(number));
        }
    }
    EXPECT_EQ(measured("rect:0,0,2,1", CILImage()).pixels, 0);
}

TEST(RoiStatisticsTest, AreaFollowsFromPixelSizeAndBinning)
{
    const CILImage image = imageOf(4, std::vector<double>(16, 1.0), ORVTYPE_FLOAT, 4.0F);
    EXPECT_DOUBLE_EQ(measured("rect:0,0,8,8", image, 0.01).area, 4 * 0.04 * 0.04);
    EXPECT_EQ(measured("rect:0,0,8,8", image, 0.01).pixels, 4);
}

TEST(RoiStatisticsTest, LargeAndCloseNumbersAreKeptApart)
{
    const tagROIStatistics close = measured("rect:0,0,3,1", imageOf(3, {1e9, 1e9 + 1.0, 1e9 + 2.0}));
    EXPECT_EQ(close.mean, 1e9 + 1.0);
    EXPECT_DOUBLE_EQ(close.deviation, std::sqrt(2.0 / 3.0));
    const tagROIStatistics large = measured("rect:0,0,2,1", imageOf(2, {1.5e308, 1.5e308}));
    EXPECT_EQ(large.mean, 1.5e308);
    EXPECT_EQ(large.deviation, 0.0);
    EXPECT_EQ(large.sum, infinity);
}

TEST(RoiStatisticsTest, PixelSizeThatIsNoneIsNotKnown)
{
    CPLClickInfo info;
    EXPECT_FALSE(pixelSizeOf(info));
    CPLSection camera(QStringLiteral("Camera System Info"));
    camera.setValue(QStringLiteral("Pixel Size cm"), QStringLiteral("0.0125 cm"));
    info.addSection(&camera);
    EXPECT_EQ(pixelSizeOf(info), 0.0125);
    for (const char* wrong : {"0", "-1", "small", ""}) {
        info[QStringLiteral("Camera System Info")]->setValue(QStringLiteral("Pixel Size cm"), QString(wrong));
        EXPECT_FALSE(pixelSizeOf(info)) << wrong;
    }
}

RC_GTEST_PROP(RoiStatisticsTest, TheMeanLiesInTheRangeAndPartsAddUp, ())
{
    const auto values = *rc::gen::container<std::vector<int>>(64, rc::gen::inRange(-100000, 100000));
    const int cut = *rc::gen::inRange(1, 8);
    const CILImage image = imageOf(8, std::vector<double>(values.begin(), values.end()));
    const tagROIStatistics whole = measured("rect:0,0,8,8", image);
    const tagROIStatistics left = measured(QStringLiteral("rect:0,0,%1,8").arg(cut), image);
    const tagROIStatistics right = measured(QStringLiteral("rect:%1,0,8,8").arg(cut), image);
    RC_ASSERT(left.pixels + right.pixels == whole.pixels);
    RC_ASSERT(left.sum + right.sum == whole.sum);
    RC_ASSERT(std::min(left.minimum, right.minimum) == whole.minimum);
    RC_ASSERT(std::max(left.maximum, right.maximum) == whole.maximum);
    RC_ASSERT(whole.minimum <= whole.mean && whole.mean <= whole.maximum);
    RC_ASSERT(whole.deviation >= 0.0 && whole.deviation <= whole.maximum - whole.minimum);
}

TEST(RoiStatisticsTest, OfAPartOfAnImageAndItsPixelsWithAValueNothingElseCounts)
{
    const CILImage image = imageOf(3, {1, 2, 30, 4, 0, 60, 70, 80, 90});
    MeasuredPixels pixels;
    pixels.size = QSize(2, 2);
    pixels.valid = imageOf(3, {1, 1, 1, 1, 0, 1, 1, 1, 0}, ORVTYPE_BYTE);
    const auto of = [&](const char* pShape) {
        return measureROI(regionFrom(pShape), image, QStringLiteral("Counts"), 1.0, pixels);
    };
    const tagROIStatistics all = of("rect:0,0,3,3");
    EXPECT_EQ(all.pixels, 3);
    EXPECT_EQ(all.invalidPixels, 1) << "what lies beyond the part is not even that";
    EXPECT_EQ(all.sum, 7.0);
    EXPECT_EQ(all.minimum, 1.0);
    EXPECT_EQ(all.maximum, 4.0);
    EXPECT_EQ(all.area, 3.0);
    EXPECT_DOUBLE_EQ(all.deviation, std::sqrt(14.0 / 9.0)); // of 1, 2, 4 around 7 / 3
    EXPECT_EQ(of("rect:2,0,1,3").pixels, 0);
    EXPECT_EQ(of("rect:1,1,1,1").pixels, 0);
    EXPECT_EQ(of("rect:1,1,1,1").invalidPixels, 1);
    pixels.size = QSize();
    pixels.valid = imageOf(1, {0}, ORVTYPE_BYTE); // it ends sooner than the image
    EXPECT_EQ(of("rect:0,0,3,3").pixels, 8);
}
