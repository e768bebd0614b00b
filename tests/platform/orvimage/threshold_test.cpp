// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ImageSupport.h"

#include "host/CSLComposite.h"

#include <cmath>

namespace {

// `low` pixels of one value and `high` of another, in a row.
CILImage twoValues(ORVDataTypes type, int low, double lowValue, int high, double highValue)
{
    std::vector<double> values(static_cast<std::size_t>(low), lowValue);
    values.insert(values.end(), static_cast<std::size_t>(high), highValue);
    return makeImage(type, low + high, 1, values);
}

// Two bell-shaped modes of the histogram, at 60 and at 180 of 0 to 255.
CILImage twoModes(ORVDataTypes type)
{
    std::vector<double> values{0, 255};
    for (int v = 0; v < 256; ++v) {
        const double height =
            400 * std::exp(-(v - 60) * (v - 60) / 400.0) + 200 * std::exp(-(v - 180) * (v - 180) / 400.0);
        values.insert(values.end(), static_cast<std::size_t>(height), v);
    }
    return makeImage(type, static_cast<long>(values.size()), 1, values);
}

} // namespace

TEST(OtsuTest, TwoValuesAreParted)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        const CILImage image = twoValues(type, 30, 10, 10, 200);
        EXPECT_FLOAT_EQ(50.0F, CSLComposite::AutomaticThresholdOtsu(&image)) << "all splits between are as good";
    }
}

TEST(OtsuTest, TwoModesArePartedBetweenThem)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        const CILImage image = twoModes(type);
        const float percent = CSLComposite::AutomaticThresholdOtsu(&image);
        EXPECT_GT(percent, 100.0F * 100 / 256);
        EXPECT_LT(percent, 100.0F * 150 / 256);
    }
}

TEST(OtsuTest, HandCase)
{
    // Values 0, 1, 2, 100 with counts 3, 2, 1, 2: the largest variance between classes parts the last value off.
    const CILImage image = makeImage(ORVTYPE_BYTE, 8, 1, {0, 0, 0, 1, 1, 2, 100, 100});
    const double threshold = CSLComposite::AutomaticThresholdOtsu(&image);
    EXPECT_GT(threshold, 2.0);
    EXPECT_LT(threshold, 100.0);
}

TEST(OtsuTest, ScaleAndOffsetChangeNothing)
{
    const CILImage image = twoModes(ORVTYPE_DOUBLE);
    CILImage scaled = image;
    for (std::size_t i = 0; i < scaled.pixelCount(); ++i) {
        scaled.setValue(i, image.value(i) * 0.125 - 20.0);
    }
    EXPECT_FLOAT_EQ(CSLComposite::AutomaticThresholdOtsu(&image), CSLComposite::AutomaticThresholdOtsu(&scaled));
}

TEST(OtsuTest, NotANumberAndInfinityDoNotCount)
{
    const CILImage image = makeImage(ORVTYPE_FLOAT, 6, 1, {kNaN, 1, 1, 3, kInfinity, -kInfinity});
    EXPECT_FLOAT_EQ(50.0F, CSLComposite::AutomaticThresholdOtsu(&image));
}

TEST(OtsuTest, ConstantAndEmptyImagesGiveTheLowerEnd)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        const CILImage constant = makeImage(type, 2, 1, {7, 7});
        EXPECT_EQ(0.0F, CSLComposite::AutomaticThresholdOtsu(&constant));
        EXPECT_EQ(7.0F, CSLComposite::AutomaticThresholdBimodal(&constant));
    }
    const CILImage empty;
    const CILImage none = makeImage(ORVTYPE_DOUBLE, 1, 1, {kNaN});
    for (const CILImage* image : {&empty, &none, static_cast<const CILImage*>(nullptr)}) {
        EXPECT_EQ(0.0F, CSLComposite::AutomaticThresholdOtsu(image));
        EXPECT_EQ(0.0F, CSLComposite::AutomaticThresholdBimodal(image));
    }
}

TEST(BimodalTest, TwoValuesAreParted)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        const CILImage image = twoValues(type, 30, 10, 10, 200);
        const float threshold = CSLComposite::AutomaticThresholdBimodal(&image);
        EXPECT_GT(threshold, 10.0F);
        EXPECT_LT(threshold, 200.0F);
    }
}

TEST(BimodalTest, TheValleyBetweenTwoModesIsFoundInTheImagesValues)
{
    CILImage image = twoModes(ORVTYPE_DOUBLE);
    EXPECT_NEAR(121.0, CSLComposite::AutomaticThresholdBimodal(&image), 15.0);
    image /= 0.001;
    EXPECT_NEAR(121000.0, CSLComposite::AutomaticThresholdBimodal(&image), 15000.0);
}

TEST(BimodalTest, OneModeFallsBackOnOtsu)
{
    std::vector<double> values;
    for (int v = 0; v < 256; ++v) {
        values.insert(values.end(), static_cast<std::size_t>(256 - v), v);
    }
    const CILImage image = makeImage(ORVTYPE_BYTE, static_cast<long>(values.size()), 1, values);
    const double otsu = 255.0 * CSLComposite::AutomaticThresholdOtsu(&image) / 100.0;
    EXPECT_NEAR(otsu, CSLComposite::AutomaticThresholdBimodal(&image), 1e-3);
}

TEST(CloseHolesTest, FillsWhatNoPathOfZerosJoinsToTheBorder)
{
    CILImage mask = makeImage(ORVTYPE_BYTE, 5, 4, {1, 1, 1, 0, 0, //
                                                   1, 0, 1, 0, 1, //
                                                   1, 1, 1, 1, 0, //
                                                   0, 0, 1, 0, 0});
    CSLComposite::closeHolesInBinaryImage(mask);
    EXPECT_EQ((std::vector<double>{1, 1, 1, 0, 0, //
                                   1, 1, 1, 0, 1, //
                                   1, 1, 1, 1, 0, //
                                   0, 0, 1, 0, 0}),
              valuesOf(mask));
}

TEST(CloseHolesTest, ADiagonalGapDoesNotOpenAHole)
{
    CILImage mask = makeImage(ORVTYPE_FLOAT, 4, 4,
                              {0, 2, 2, 2, //
                               2, 0, 0, 2, //
                               2, 0, 3, 2, //
                               2, 2, 2, 2});
    CSLComposite::closeHolesInBinaryImage(mask);
    EXPECT_EQ((std::vector<double>{0, 2, 2, 2, //
                                   2, 3, 3, 2, //
                                   2, 3, 3, 2, //
                                   2, 2, 2, 2}),
              valuesOf(mask))
        << "the corner is border, the hole takes the largest value";
}

TEST(CloseHolesTest, NothingToFillStaysAsItIs)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        CILImage zeros = makeImage(type, 3, 3, std::vector<double>(9, 0.0));
        CSLComposite::closeHolesInBinaryImage(zeros);
        EXPECT_EQ(std::vector<double>(9, 0.0), valuesOf(zeros));
        CILImage one = makeImage(type, 1, 1, {1});
        CSLComposite::closeHolesInBinaryImage(one);
        EXPECT_EQ(1.0, one.value(0));
    }
    CILImage empty;
    CSLComposite::closeHolesInBinaryImage(empty);
    EXPECT_TRUE(empty.isEmpty());
}
