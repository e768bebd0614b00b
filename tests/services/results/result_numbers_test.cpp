// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultNumbers.h"

#include "services/support/SmallAnalysis.h"

namespace {

using Matrix = XTNT::Matrix<double>;

// A loaded result may go with other images or another mask than those at hand.
class ResultNumbersTest : public SmallAnalysis
{
protected:
    void SetUp() override
    {
        SmallAnalysis::SetUp();
        analyse();
        ASSERT_TRUE(hasMapsOfItsImages(engine()));
    }
};

TEST_F(ResultNumbersTest, MapsOfAnotherMaskAreNotThoseOfTheImages)
{
    engine().m_concentrations = Matrix(2, side * side - 1, 1.0);
    EXPECT_FALSE(hasMapsOfItsImages(engine()));
}

TEST_F(ResultNumbersTest, SpectraOfOtherImagesAreNotThoseOfTheImages)
{
    engine().m_spectra = Matrix(2, 2, 1.0);
    EXPECT_FALSE(hasMapsOfItsImages(engine()));
}

TEST_F(ResultNumbersTest, AMapTooFewIsNone)
{
    engine().m_concentrations = Matrix(1, side * side, 1.0);
    EXPECT_FALSE(hasMapsOfItsImages(engine()));
}

TEST_F(ResultNumbersTest, NothingGoesWithoutMaps)
{
    engine().m_concentrations = Matrix();
    EXPECT_FALSE(hasMapsOfItsImages(engine()));
}

TEST_F(ResultNumbersTest, NothingGoesWithoutImages)
{
    engine().m_cube.m_data = Matrix();
    EXPECT_FALSE(hasMapsOfItsImages(engine()));
}

TEST_F(ResultNumbersTest, AFitWithoutARestHasNoResidual)
{
    EXPECT_NEAR(numbersOfResult(engine(), {}).residual, 0.0, 1e-12);
}

} // namespace
