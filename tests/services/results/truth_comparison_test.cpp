// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/TruthComparison.h"
#include "services/support/SmallAnalysis.h"

#include <cmath>

namespace {

class TruthComparisonTest : public SmallAnalysis
{
protected:
    void writeTruth(const QString& strName, const std::function<float(int)>& value, int nSide = side) const
    {
        writeTiffFile("truth/" + strName + ".tif", imageOf(nSide, nSide, value));
    }
    // Values at 700, 720 and 740 nm, a column a component.
    void writeSpectra(const QByteArray& names, const QList<QByteArray>& rows) const
    {
        const QByteArray commas(names.count(','), ',');
        QByteArray text = "$,NumSpec," + QByteArray::number(commas.size() + 1) + "\n$,Color," + commas +
                          "\n$,Select,1" + QByteArray(",1").repeated(commas.size()) + "\nExcitation,Emission," + names +
                          '\n';
        for (int j = 0; j < rows.size(); ++j) {
            text += "640," + QByteArray::number(700 + 20 * j) + ',' + rows[j] + '\n';
        }
        write("truth/spectra.csv", text);
    }
    // As after an automatic run by number alone.
    void nameless()
    {
        engine().m_eMode = RUNMODE_AUTOMATIC;
        for (int k = 0; k < 2; ++k) {
            engine().m_spectrumPlots[k]->settings.name = QStringLiteral("UMX%1").arg(k + 1);
        }
    }
    std::vector<TrueComparison> compare() { return compareWithTruth(engine(), path("truth/")); }
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
    for (const auto& comparison : compare()) {
        EXPECT_FALSE(comparison.known);
    }
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

TEST_F(TruthComparisonTest, SpectraAreComparedByTheirAngle)
{
    analyse();
    writeTruth("Dye A", [](int i) { return mapA(i); });
    writeTruth("Dye B", [](int i) { return mapB(i); });
    // Of {1, 0.5, 0} beside {0.5, 0.25, 0} and of {0, 0.25, 1} beside {0, 1, 0.25}: 1 and 0.5 over 1.0625.
    writeSpectra("Dye A,Dye B", {"0.5,0", "0.25,1", "0,0.25"});
    const auto list = compare();
    EXPECT_EQ(list[0].trueName, "Dye A");
    EXPECT_NEAR(list[0].cosine, 1.0, 1e-12);
    EXPECT_NEAR(list[1].cosine, 0.5 / 1.0625, 1e-12);
}

TEST_F(TruthComparisonTest, WithoutTrueSpectraTheAngleIsNotKnown)
{
    analyse();
    writeTruth("Dye A", [](int i) { return mapA(i); });
    EXPECT_TRUE(compare()[0].known);
    EXPECT_TRUE(std::isnan(compare()[0].cosine));
}

// The fit's spectra have a largest value of 1 at the images of the analysis; the true one has its maximum elsewhere.
TEST_F(TruthComparisonTest, AMapBelongsToASpectrumWhoseLargestValueIsOne)
{
    analyse();
    writeTruth("Dye A", [](int i) { return 4.0F * mapA(i); });
    writeSpectra("Dye A,Dye B", {"0.25,0", "0.125,0.25", "0,1"});
    EXPECT_NEAR(compare()[0].relativeError, 0.0, 1e-12);
}

// By number alone: the plots' names say nothing.
TEST_F(TruthComparisonTest, ComponentsOfNoNameBelongWhereTheyLookLike)
{
    analyse();
    nameless();
    writeTruth("Dye B", [](int i) { return mapB(i); });
    writeTruth("Dye A", [](int i) { return mapA(i); });
    writeTruth("Dye C", [](int i) { return static_cast<float>(i % 3); });
    writeSpectra("Dye B,Dye C,Dye A", {"0,1,1", "0.25,1,0.5", "1,0.9,0"});
    const auto list = compare();
    EXPECT_EQ(list[0].trueName, "Dye A");
    EXPECT_EQ(list[1].trueName, "Dye B");
    EXPECT_NEAR(list[0].correlation, 1.0, 1e-12);
    EXPECT_NEAR(list[1].cosine, 1.0, 1e-12);
}

TEST_F(TruthComparisonTest, OneKnownNameIsEnoughToGoByNames)
{
    analyse();
    nameless();
    engine().m_spectrumPlots[1]->settings.name = "Dye A";
    writeTruth("Dye B", [](int i) { return mapB(i); });
    writeTruth("Dye A", [](int i) { return mapA(i); });
    writeSpectra("Dye B,Dye A", {"0,1", "0.25,0.5", "1,0"});
    const auto list = compare();
    EXPECT_FALSE(list[0].known);
    EXPECT_EQ(list[1].trueName, "Dye A");
    EXPECT_LT(list[1].cosine, 0.5);
}

// Whoever gave the spectra gave the names: another name is another component.
TEST_F(TruthComparisonTest, KnownSpectraGoByNamesAlone)
{
    analyse();
    nameless();
    engine().m_eMode = RUNMODE_LIBRARY;
    writeTruth("Dye A", [](int i) { return mapA(i); });
    writeTruth("Dye B", [](int i) { return mapB(i); });
    writeSpectra("Dye B,Dye A", {"0,1", "0.25,0.5", "1,0"});
    for (const auto& comparison : compare()) {
        EXPECT_FALSE(comparison.known);
    }
}

TEST_F(TruthComparisonTest, TrueSpectraThatLackAnImageAreNotUsed)
{
    analyse();
    writeTruth("Dye A", [](int i) { return mapA(i); });
    writeSpectra("Dye A,Dye B", {"1,0"});
    EXPECT_TRUE(compare()[0].known);
    EXPECT_TRUE(std::isnan(compare()[0].cosine));
}
