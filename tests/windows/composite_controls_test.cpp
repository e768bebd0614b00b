// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/compositeControls.h"

#include "spectra/DefaultColors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

TEST(CompositeControlsTest, EveryStepOfTheSliderComesBack)
{
    for (int nSlider = 0; nSlider <= 100; ++nSlider) {
        EXPECT_EQ(sliderOfFraction(nSlider / 100.0), nSlider);
    }
}

TEST(CompositeControlsTest, FractionsAreTruncatedAndLimited)
{
    EXPECT_EQ(sliderOfFraction(0.299), 29);
    EXPECT_EQ(sliderOfFraction(0.9999), 99);
    EXPECT_EQ(sliderOfFraction(-0.5), 0);
    EXPECT_EQ(sliderOfFraction(1.7), 100);
    EXPECT_EQ(sliderOfFraction(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(sliderOfFraction(std::numeric_limits<double>::infinity()), 100);
}

TEST(CompositeControlsTest, ValuesLieInTheRange)
{
    const DataRange range(50.0, 250.0);
    EXPECT_EQ(valueOfSlider(range, 0), 50.0);
    EXPECT_EQ(valueOfSlider(range, 25), 100.0);
    EXPECT_EQ(valueOfSlider(range, 100), 250.0);
    EXPECT_EQ(fractionOfValue(range, 100.0), std::optional<double>(0.25));
    EXPECT_EQ(sliderOfValue(range, 100.0), 25);
    EXPECT_EQ(sliderOfValue(range, 101.9), 25);
    EXPECT_EQ(spinStep(range), 10.0);
}

TEST(CompositeControlsTest, ARangeWithoutWidthDividesByNothing)
{
    const DataRange empty(7.0, 7.0);
    EXPECT_EQ(fractionOfValue(empty, 7.0), std::nullopt);
    EXPECT_EQ(sliderOfValue(empty, 7.0), 0);
    EXPECT_EQ(valueOfSlider(empty, 50), 7.0);
    EXPECT_EQ(spinStep(empty), 0.0);
}

TEST(CompositeControlsTest, UnitsButCountsHaveAnExponent)
{
    EXPECT_FALSE(showsExponent(0, false));
    for (const int nUnit : {1, 2, 3}) {
        EXPECT_TRUE(showsExponent(nUnit, false));
        EXPECT_FALSE(showsExponent(nUnit, true));
    }
    EXPECT_EQ(shownDecimals(0), 2);
    EXPECT_EQ(shownDecimals(2), 2);
    EXPECT_EQ(shownDecimals(3), 10);
}

TEST(CompositeControlsTest, TheButtonTakesTheColor)
{
    EXPECT_EQ(colorButtonStyle(QColor(1, 20, 255)), "QPushButton{ background-color: rgb(1,20,255) }");
}

// Figures that calculators of the guidelines show, to two digits.
TEST(ContrastTest, IsThatOfTheGuidelines)
{
    EXPECT_NEAR(contrast(Qt::black, Qt::white), 21.0, 0.005);
    EXPECT_NEAR(contrast(Qt::white, Qt::black), 21.0, 0.005);
    EXPECT_NEAR(contrast(QColor("#777777"), Qt::white), 4.48, 0.005);
    EXPECT_NEAR(contrast(Qt::red, Qt::white), 4.00, 0.005);
    EXPECT_NEAR(contrast(Qt::blue, Qt::white), 8.59, 0.005);
    EXPECT_EQ(contrast(Qt::red, Qt::red), 1.0);
}

TEST(CompositeControlsTest, EveryDefaultColorCanBeRead)
{
    for (const QColor& paper : {QColor(Qt::white), QColor(30, 30, 34), QColor(Qt::black), QColor(239, 239, 239)}) {
        for (const QString& strName : defaultSpectrumColors()) {
            EXPECT_GE(contrast(legibleColor(QColor(strName), paper), paper), 3.0) << qPrintable(strName);
        }
    }
    EXPECT_EQ(legibleColor(QColor(Qt::red), QColor(Qt::white)), QColor(Qt::red));
    EXPECT_EQ(legibleColor(QColor("lime"), QColor(Qt::black)), QColor("lime"));
}

} // namespace
