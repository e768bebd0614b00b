// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/resultFindings.h"

#include "services/results/ResultNumbers.h"
#include "services/support/SmallAnalysis.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ChannelInfo.h"
#include "platform/orvapi/ClickInfoKeys.h"

#include <cmath>

namespace {

class ResultFindingsTest : public SmallAnalysis
{
protected:
    RunFindings find(bool bResolved = false)
    {
        m_numbers = numbersOfResult(engine(), {});
        return findingsOfResult(engine(), m_pOpened->sequence(), bResolved, m_numbers);
    }
    void inCounts(const std::vector<std::function<float(int)>>& values)
    {
        for (int j = 0; j < m_sequence.images.size(); ++j) {
            m_sequence.images[j].calibratedUnit = DISPLAYUNIT_COUNTS;
            m_sequence.images[j].value = values[static_cast<std::size_t>(j)];
        }
    }
    ResultNumbers m_numbers;
};

} // namespace

TEST_F(ResultFindingsTest, AFitOfExactImagesFindsItsComponentsAndNothingElse)
{
    analyse();
    const RunFindings findings = find();
    EXPECT_EQ(findings.images, 3);
    EXPECT_EQ(findings.pixels, side * side);
    EXPECT_EQ(findings.givenNames, QStringList({"Dye A", "Dye B"}));
    ASSERT_EQ(findings.components.size(), 2);
    EXPECT_EQ(findings.alikeFirst, "Dye A");
    // (1, 1/2, 0) and (0, 1/4, 1).
    EXPECT_NEAR(findings.alikeCosine, 0.125 / std::sqrt(1.25 * 1.0625), 1e-12);
    EXPECT_NEAR(findings.components[0].amplification, 1.0 / std::sqrt(1.0 - std::pow(findings.alikeCosine, 2)), 1e-9);
    EXPECT_EQ(findings.cutElements, 0.0);
    EXPECT_TRUE(std::isnan(findings.cutOverNoise));
    EXPECT_EQ(findings.saturatedPixels, 0);
    EXPECT_EQ(findings.binning, 1);
    EXPECT_EQ(findings.smallestBinning, 1);
    EXPECT_EQ(findings.decaySpan, 1.0);
    for (const double unknown : {findings.maskLight, findings.maskArea, findings.darkestLevel, findings.residual}) {
        EXPECT_TRUE(std::isnan(unknown));
    }
    EXPECT_EQ(m_numbers.standardErrors.size(), 2U);
    EXPECT_TRUE(m_numbers.knownCosines.empty());
}

TEST_F(ResultFindingsTest, ElementsBelowZeroAreCountedWithTheImagesThatHaveMostOfThem)
{
    m_sequence.images[0].value = [](int i) { return i == 3 ? -1.0F : mapA(i); };
    m_sequence.images[2].value = [](int i) { return i < 5 ? -2.0F : mapB(i); };
    analyse();
    const RunFindings findings = find();
    EXPECT_NEAR(findings.cutElements, 6.0 / 48.0, 1e-12);
    EXPECT_EQ(findings.cutImages, QStringList({"640/740", "640/700"}));
}

// Whoever reads of an image finds it by its name, and leaves it out by its number.
TEST_F(ResultFindingsTest, NumberedChannelsAreCalledByTheirNames)
{
    m_sequence.fluorescence = false;
    for (int j = 0; j < 3; ++j) {
        m_sequence.images[j].excitation = "Block";
        m_sequence.images[j].emission = ChannelInfo::filterText(j + 1);
    }
    m_sequence.images[2].value = [](int i) { return i < 5 ? -2.0F : mapB(i); };
    analyse();
    CORVDataset* last = m_pOpened->sequence().getDataset(engine().m_imageList[2]);
    ChannelInfo{"far red", std::nullopt, std::nullopt}.write(
        *last->clickInfo[QLatin1String(ClickKeys::kLuminescentImage)]);
    EXPECT_EQ(find().cutImages, QStringList("far red (003)"));
}

TEST_F(ResultFindingsTest, DarkLevelsAreThoseOfCountsWithoutAMask)
{
    inCounts({[](int i) { return 50.0F + mapA(i); }, [](int i) { return 52.0F + 2.0F * mapA(i); },
              [](int i) { return 51.0F + 3.0F * mapA(i); }});
    analyse();
    const RunFindings findings = find();
    EXPECT_EQ(findings.darkestLevel, 50.0);
    EXPECT_EQ(findings.brightestLevel, 52.0);
    EXPECT_NEAR(findings.meanLight, 51.0 + 2.0 * 7.5, 1e-9);
}

TEST_F(ResultFindingsTest, AMaskHasNoDarkPixels)
{
    const auto lit = [](int i) { return 50.0F + mapA(i); };
    inCounts({lit, lit, lit});
    analyse([](int i) { return i > 2 ? 1.0F : 0.0F; });
    EXPECT_TRUE(std::isnan(find().darkestLevel));
}

TEST_F(ResultFindingsTest, AMasksPartOfThePixelsIsKnown)
{
    analyse([](int i) { return i == 5 || i == 6 ? 1.0F : 0.0F; });
    const RunFindings findings = find();
    EXPECT_EQ(findings.maskArea, 2.0 / 16.0);
    EXPECT_EQ(findings.pixels, 2);
}

TEST_F(ResultFindingsTest, TheLimitOfIterationsIsOneOfAResolution)
{
    analyse();
    engine().m_runFacts.ending = MCREnding::IterationLimit;
    EXPECT_TRUE(find(true).iterationLimit);
    EXPECT_EQ(m_numbers.knownCosines.size(), 2U);
    EXPECT_FALSE(find(false).iterationLimit);
    m_numbers.refinement = RefinementFacts();
    EXPECT_FALSE(findingsOfResult(engine(), m_pOpened->sequence(), true, m_numbers).iterationLimit);
    engine().m_runFacts.ending = MCREnding::Converged;
    EXPECT_FALSE(find(true).iterationLimit);
}

TEST_F(ResultFindingsTest, ErrorsOfThePixelsGoBeforeThoseOfTheFit)
{
    analyse();
    m_numbers = numbersOfResult(engine(), {});
    m_numbers.errors = XTNT::Matrix<double>(2, side * side, 3.0);
    m_numbers.errors[0][4] = INFINITY; // of a spectrum that depends on another there
    m_numbers.errors[1][0] = 5.0;
    findingsOfResult(engine(), m_pOpened->sequence(), false, m_numbers);
    EXPECT_NEAR(m_numbers.standardErrors[0], 3.0, 1e-12);
    EXPECT_NEAR(m_numbers.standardErrors[1], std::sqrt((15.0 * 9.0 + 25.0) / 16.0), 1e-12);
}
