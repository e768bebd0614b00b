// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/SmallAnalysis.h"
#include "workbench/cli/TruthComparison.h"

#include <cmath>

namespace {

class TruthComparisonTest : public SmallAnalysis
{
protected:
    void writeTruth(const QString& strName, const std::function<float(int)>& value, int nSide = side) const
    {
        writeTiffFile("truth/" + strName + ".tif", imageOf(nSide, nSide, value));
    }
    std::vector<MapComparison> compare() { return compareWithTruth(engine(), path("truth/")); }
};

} // namespace

TEST_F(TruthComparisonTest, AMapIsComparedWithTheTruthOfItsName)
{
    analyse();
    writeTruth("Dye A", [](int i) { return mapA(i); });
    writeTruth("Dye B", [](int i) { return 2.0F * mapB(i); });
    const auto list = compare();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_TRUE(list[0].known);
    EXPECT_NEAR(list[0].correlation, 1.0, 1e-12);
    EXPECT_NEAR(list[0].relativeError, 0.0, 1e-12);
    EXPECT_TRUE(list[1].known);
    EXPECT_NEAR(list[1].correlation, 1.0, 1e-12);
    EXPECT_NEAR(list[1].relativeError, 0.5, 1e-12);
}

TEST_F(TruthComparisonTest, OnlyPixelsOfTheMaskCount)
{
    analyse([](int i) { return i % 3 == 0 ? 1.0F : 0.0F; });
    writeTruth("Dye A", [](int i) { return i % 3 == 0 ? mapA(i) : 1e6F; });
    const auto list = compare();
    EXPECT_TRUE(list[0].known);
    EXPECT_NEAR(list[0].relativeError, 0.0, 1e-12);
}

TEST_F(TruthComparisonTest, WithoutATruthOfThatNameNothingIsKnown)
{
    analyse();
    writeTruth("Dye B", [](int i) { return mapB(i); });
    const auto list = compare();
    ASSERT_EQ(list.size(), 2u);
    EXPECT_FALSE(list[0].known);
    EXPECT_TRUE(list[1].known);
    EXPECT_EQ(compareWithTruth(engine(), QString()).size(), 2u);
    EXPECT_FALSE(compareWithTruth(engine(), QString())[1].known);
}

TEST_F(TruthComparisonTest, ATruthOfAnotherSizeIsNotCompared)
{
    analyse();
    writeTruth(
        "Dye A", [](int i) { return mapA(i); }, 2 * side);
    writeTruth(
        "Dye B", [](int i) { return mapB(i); }, side - 1);
    for (const auto& comparison : compare())
        EXPECT_FALSE(comparison.known);
}

TEST_F(TruthComparisonTest, ABrokenTruthIsNotCompared)
{
    analyse();
    write("truth/Dye A.tif", "no image");
    EXPECT_FALSE(compare()[0].known);
}

TEST_F(TruthComparisonTest, AConstantTruthHasNoCorrelation)
{
    analyse();
    writeTruth("Dye A", [](int) { return 3.0F; });
    EXPECT_TRUE(compare()[0].known);
    EXPECT_TRUE(std::isnan(compare()[0].correlation));
}

// As the simulator names its files.
TEST_F(TruthComparisonTest, ANameThatNoFileCanHaveFindsItsTruth)
{
    analyse();
    engine().m_spectrumPlots[0]->settings.name = "Dye A/B*";
    writeTruth("Dye A_B_", [](int i) { return mapA(i); });
    EXPECT_TRUE(compare()[0].known);
}
