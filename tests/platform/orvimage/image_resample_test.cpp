// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvimage/ImageSupport.h"

#include <gmock/gmock.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

// Sums of doubles in another order differ by this part of the sum of magnitudes at most.
constexpr double kRounding = 1e-12;

CILImage randomImage(ORVDataTypes type, int w, int h, const std::vector<int>& values)
{
    CILImage image;
    image.InitWithType(type, w, h);
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        image.setValue(i, values[i]);
    }
    image.RefreshImageStats();
    return image;
}

rc::Gen<std::vector<int>> pixels(int count, int lowest, int highest)
{
    return rc::gen::container<std::vector<int>>(static_cast<std::size_t>(count), rc::gen::inRange(lowest, highest));
}

} // namespace

TEST(ChangeBinningTest, ToACoarserBinningSums)
{
    for (const ORVDataTypes type : kAllPixelTypes) {
        CILImage image = makeImage(type, 4, 2, {1, 2, 3, 4, 5, 6, 7, 8});
        image.m_fBinning = 2.0F;
        CILImage out;
        ASSERT_EQ(EIL_SUCCESS, image.changeBinning(4, out));
        EXPECT_EQ((std::vector<double>{14, 22}), valuesOf(out));
        EXPECT_EQ(4.0F, out.m_fBinning);
        EXPECT_EQ(22.0, out.Max());
        EXPECT_EQ(2, out.m_lWidth);
        EXPECT_EQ(1, out.m_lHeight);
        EXPECT_EQ(4, image.m_lWidth) << "the source stays";
    }
}

TEST(ChangeBinningTest, ToAFinerBinningShares)
{
    CILImage image = makeImage(ORVTYPE_USHORT, 2, 1, {4, 10});
    image.m_fBinning = 2.0F;
    CILImage out;
    ASSERT_EQ(EIL_SUCCESS, image.changeBinning(1, out));
    EXPECT_EQ((std::vector<double>{1, 1, 2.5, 2.5, 1, 1, 2.5, 2.5}), valuesOf(out));
}

TEST(ChangeBinningTest, PartialPixelsGoByArea)
{
    // From 2 to 3: new pixel 0 covers pixel 0 and half of pixel 1, new pixel 1 the other half and pixel 2.
    CILImage image = makeImage(ORVTYPE_DOUBLE, 3, 3, {4, 8, 16, 0, 0, 0, 0, 0, 0});
    image.m_fBinning = 2.0F;
    CILImage out;
    ASSERT_EQ(EIL_SUCCESS, image.changeBinning(3, out));
    EXPECT_EQ((std::vector<double>{8, 20, 0, 0}), valuesOf(out));
}

TEST(ChangeBinningTest, WhatIsBeyondTheLastWholePixelIsLeftOut)
{
    CILImage image = makeImage(ORVTYPE_FLOAT, 5, 3, std::vector<double>(15, 1.0));
    CILImage out;
    ASSERT_EQ(EIL_SUCCESS, image.changeBinning(2, out));
    EXPECT_EQ(2, out.m_lWidth);
    EXPECT_EQ(1, out.m_lHeight);
    EXPECT_EQ((std::vector<double>{4, 4}), valuesOf(out));
}

TEST(ChangeBinningTest, TypesHoldTheSums)
{
    const auto typeAfter = [](ORVDataTypes type) {
        CILImage out;
        makeImage(type, 2, 2, {1, 1, 1, 1}).changeBinning(2, out);
        return out.dataType();
    };
    EXPECT_EQ(ORVTYPE_FLOAT, typeAfter(ORVTYPE_BYTE));
    EXPECT_EQ(ORVTYPE_FLOAT, typeAfter(ORVTYPE_USHORT));
    EXPECT_EQ(ORVTYPE_DOUBLE, typeAfter(ORVTYPE_INT));
    EXPECT_EQ(ORVTYPE_FLOAT, typeAfter(ORVTYPE_FLOAT));
    EXPECT_EQ(ORVTYPE_DOUBLE, typeAfter(ORVTYPE_DOUBLE));
    CILImage out;
    makeImage(ORVTYPE_USHORT, 2, 2, {65535, 65535, 65535, 65535}).changeBinning(2, out);
    EXPECT_EQ(262140.0, out.value(0));
}

TEST(ChangeBinningTest, AtTheOwnBinningItIsACopyAndMayWriteToItself)
{
    CILImage image = makeImage(ORVTYPE_BYTE, 2, 2, {1, 2, 3, 4});
    CILImage out;
    ASSERT_EQ(EIL_SUCCESS, image.changeBinning(1, out));
    EXPECT_EQ(ORVTYPE_BYTE, out.dataType());
    EXPECT_EQ(valuesOf(image), valuesOf(out));
    EXPECT_NE(image.m_pData, out.m_pData);
    ASSERT_EQ(EIL_SUCCESS, image.changeBinning(2, image));
    EXPECT_EQ((std::vector<double>{10}), valuesOf(image));
}

TEST(ChangeBinningTest, FailuresLeaveTheOutputAsItWas)
{
    CILImage out = makeImage(ORVTYPE_BYTE, 1, 1, {7});
    CILImage empty;
    EXPECT_NE(EIL_SUCCESS, empty.changeBinning(2, out));
    CILImage image = makeImage(ORVTYPE_BYTE, 2, 2, {1, 2, 3, 4});
    EXPECT_NE(EIL_SUCCESS, image.changeBinning(0, out));
    EXPECT_NE(EIL_SUCCESS, image.changeBinning(-2, out));
    EXPECT_NE(EIL_SUCCESS, image.changeBinning(3, out)) << "no whole pixel is left";
    image.m_fBinning = 0.0F;
    EXPECT_NE(EIL_SUCCESS, image.changeBinning(2, out));
    EXPECT_EQ(7.0, out.value(0));
}

TEST(ChangeBinningTest, NaNReachesOnlyThePixelItFallsInto)
{
    CILImage out;
    ASSERT_EQ(EIL_SUCCESS, makeImage(ORVTYPE_FLOAT, 4, 2, {kNaN, 1, 1, 1, 1, 1, 1, 1}).changeBinning(2, out));
    EXPECT_TRUE(std::isnan(out.value(0)));
    EXPECT_EQ(4.0, out.value(1));
}

RC_GTEST_PROP(ChangeBinningLaws, TheSumStaysAndTheSideIsTheFloor, ())
{
    const int own = *rc::gen::inRange(1, 9);
    const int wanted = *rc::gen::inRange(1, 9);
    const int w = *rc::gen::inRange(1, 12);
    const int h = *rc::gen::inRange(1, 12);
    CILImage image = randomImage(ORVTYPE_DOUBLE, w, h, *pixels(w * h, -1000, 1000));
    image.m_fBinning = static_cast<float>(own);
    CILImage out;
    const EILSTATUS status = image.changeBinning(wanted, out);
    const int width = w * own / wanted;
    const int height = h * own / wanted;
    RC_ASSERT((status == EIL_SUCCESS) == (width > 0 && height > 0));
    if (status != EIL_SUCCESS) {
        return;
    }
    RC_ASSERT(out.m_lWidth == width);
    RC_ASSERT(out.m_lHeight == height);
    if (w * own % wanted == 0 && h * own % wanted == 0) {
        RC_ASSERT(std::fabs(sumOf(out) - sumOf(image)) <= kRounding * 1000 * w * h);
    }
}

TEST(ResampleTest, AreaTakesMeans)
{
    CILImage image = makeImage(ORVTYPE_FLOAT, 4, 2, {1, 3, 5, 7, 1, 3, 5, 7});
    ASSERT_EQ(EIL_SUCCESS, image.downSample(2, 1, IL_RESAMPLE_AREA));
    EXPECT_EQ((std::vector<double>{2, 6}), valuesOf(image));
    EXPECT_EQ(2.0F, image.m_fBinning) << "the binning follows the width";
    EXPECT_EQ(6.0, image.Max());
}

TEST(ResampleTest, AreaSharesPixelsThatLieAcross)
{
    CILImage image = makeImage(ORVTYPE_DOUBLE, 3, 1, {3, 6, 12});
    ASSERT_EQ(EIL_SUCCESS, image.downSample(2, 1, IL_RESAMPLE_AREA));
    EXPECT_THAT(valuesOf(image), near(1e-12, {4.0, 10.0})); // (3 + 6/2) / 1.5, (6/2 + 12) / 1.5
}

TEST(ResampleTest, LinearGoesThroughTheCentresOfPixels)
{
    for (const IL_RESAMPLEMODES mode : {IL_RESAMPLE_LINEAR, IL_RESAMPLE_SMOOTH}) {
        CILImage image = makeImage(ORVTYPE_DOUBLE, 2, 1, {0, 8});
        image.m_fBinning = 4.0F;
        ASSERT_EQ(EIL_SUCCESS, image.upSample(4, 2, mode));
        EXPECT_THAT(valuesOf(image), near(1e-12, {0, 2, 6, 8, 0, 2, 6, 8}));
        EXPECT_EQ(2.0F, image.m_fBinning);
    }
}

TEST(ResampleTest, NearestTakesThePixelUnderTheCentre)
{
    CILImage image = makeImage(ORVTYPE_BYTE, 2, 1, {3, 9});
    ASSERT_EQ(EIL_SUCCESS, image.upSample(5, 1, IL_RESAMPLE_NEAREST));
    EXPECT_EQ((std::vector<double>{3, 3, 9, 9, 9}), valuesOf(image));
}

TEST(ResampleTest, CubicIsSharperButStaysInTheRange)
{
    CILImage image = makeImage(ORVTYPE_DOUBLE, 4, 1, {0, 0, 1, 1});
    ASSERT_EQ(EIL_SUCCESS, image.upSample(8, 1, IL_RESAMPLE_CUBIC));
    // At a quarter from a step's near side Keys' kernel gives 0.203125; the overshoots beside it are cut.
    EXPECT_THAT(valuesOf(image), near(1e-12, {0, 0, 0, 0.203125, 0.796875, 1, 1, 1}));
}

TEST(ResampleTest, SmoothShrinksByMeans)
{
    CILImage image = makeImage(ORVTYPE_DOUBLE, 4, 1, {0, 4, 10, 20});
    ASSERT_EQ(EIL_SUCCESS, image.upSample(2, 1, IL_RESAMPLE_SMOOTH));
    EXPECT_EQ((std::vector<double>{2, 15}), valuesOf(image));
}

TEST(ResampleTest, RefusesWhatCannotBe)
{
    CILImage image = makeImage(ORVTYPE_BYTE, 1, 1, {5});
    EXPECT_EQ(EIL_INVALID_ARGUMENT, image.upSample(0, 1, IL_RESAMPLE_LINEAR));
    EXPECT_EQ(EIL_INVALID_ARGUMENT, image.downSample(1, -1, IL_RESAMPLE_AREA));
    EXPECT_EQ(EIL_INVALID_ARGUMENT, image.upSample(2, 2, static_cast<IL_RESAMPLEMODES>(7)));
    EXPECT_EQ(5.0, image.value(0));
    CILImage empty;
    EXPECT_EQ(EIL_FAILURE, empty.upSample(2, 2, IL_RESAMPLE_LINEAR));
}

TEST(ResampleTest, NaNStaysNearItsPlace)
{
    CILImage image = makeImage(ORVTYPE_DOUBLE, 4, 1, {kNaN, 1, 2, 3});
    ASSERT_EQ(EIL_SUCCESS, image.upSample(8, 1, IL_RESAMPLE_LINEAR));
    const std::vector<double> values = valuesOf(image);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_TRUE(std::isnan(values[i])) << i;
    }
    for (std::size_t i = 3; i < 8; ++i) {
        EXPECT_FALSE(std::isnan(values[i])) << i;
    }
}

RC_GTEST_PROP(ResampleLaws, EveryModeGivesTheSizeWithinTheRange, ())
{
    const int w = *rc::gen::inRange(1, 9);
    const int h = *rc::gen::inRange(1, 9);
    const int toW = *rc::gen::inRange(1, 20);
    const int toH = *rc::gen::inRange(1, 20);
    const ORVDataTypes type =
        *rc::gen::elementOf(std::vector<ORVDataTypes>(std::begin(kAllPixelTypes), std::end(kAllPixelTypes)));
    for (int mode = IL_RESAMPLE_NEAREST; mode <= IL_RESAMPLE_SMOOTH; ++mode) {
        CILImage image = randomImage(type, w, h, *pixels(w * h, 0, 256));
        const double lowest = image.Min();
        const double highest = image.Max();
        RC_ASSERT(image.upSample(toW, toH, static_cast<IL_RESAMPLEMODES>(mode)) == EIL_SUCCESS);
        RC_ASSERT(image.m_lWidth == toW);
        RC_ASSERT(image.m_lHeight == toH);
        RC_ASSERT(image.dataType() == type);
        RC_ASSERT(image.Min() >= lowest);
        RC_ASSERT(image.Max() <= highest);
    }
}

RC_GTEST_PROP(ResampleLaws, AConstantImageStaysThatConstant, ())
{
    const double constant = *rc::gen::inRange(-100000, 100000) / 7.0;
    const int mode = *rc::gen::inRange(0, 5);
    CILImage image;
    image.InitWithType(ORVTYPE_DOUBLE, *rc::gen::inRange(1, 9), *rc::gen::inRange(1, 9));
    image.setConstData(constant);
    image.upSample(*rc::gen::inRange(1, 20), *rc::gen::inRange(1, 20), static_cast<IL_RESAMPLEMODES>(mode));
    for (const double v : valuesOf(image)) {
        RC_ASSERT(v == constant);
    }
}
