// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/FilterPlan.h"
#include "workbench/simulator/simulated_kind.h"

TEST(LuminescentSimulationTest, DataAreTheSumOfTheTruthInCountsAndRadiance)
{
    SimulationOptions options = smallKind(SimulationKind::Luminescent);
    options.noise = false;
    Simulated simulated(options);
    for (const tag_edisplayunit unit : {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE}) {
        const ReadTruth truth(simulated.path(), unit);
        EXPECT_EQ(truth.names, (QStringList{QStringLiteral("TissueAF"), QStringLiteral("Click-Beetle Green Luciferase"),
                                            QStringLiteral("Click-Beetle Red Luciferase")}));
        EXPECT_EQ(truth.pairs.first(), QStringLiteral("Block,500"));
        for (std::size_t j = 0; j < truth.spectra.front().size(); ++j) {
            expectSum(simulated.image(static_cast<int>(j), unit), truth, j);
        }
    }
    EXPECT_EQ(foldersOfTruth(simulated.path()), (QStringList{QStringLiteral("counts"), QStringLiteral("radiance")}));
}

TEST(LuminescentSimulationTest, IsNotExcitedAndHasNoUnitThatAsksForIt)
{
    Simulated simulated(smallKind(SimulationKind::Luminescent));
    EXPECT_FALSE(simulated.sequence.isFluorescence);
    EXPECT_FALSE(simulated.sequence.isTransillumination);
    EXPECT_FALSE(simulated.sequence.isKyvoSequence());
    CORVDataset* pDataset = simulated.sequence.getDatasets().first();
    EXPECT_EQ(pDataset->getExcitationFilter(), QStringLiteral("Block"));
    EXPECT_EQ(pDataset->getEmissionFilter(), QStringLiteral("500nm"));
    EXPECT_EQ(pDataset->unitUnavailableReason(DISPLAYUNIT_RADIANCE), QString());
    EXPECT_NE(pDataset->unitUnavailableReason(DISPLAYUNIT_RADIANT_EFFICIENCY), QString());
    EXPECT_NE(pDataset->unitUnavailableReason(DISPLAYUNIT_EFFICIENCY), QString());
    EXPECT_EQ(simulated.luminescent(0, ClickKeys::kProbe),
              QStringLiteral("Click-Beetle Green Luciferase, Click-Beetle Red Luciferase"));
}

// Blood takes the green: the deeper a luciferase, the redder its light.
TEST(LuminescentSimulationTest, DepthTurnsALuciferaseRed)
{
    double centroids[2] = {0.0, 0.0};
    for (int i = 0; i < 2; ++i) {
        SimulationOptions options = smallKind(SimulationKind::Luminescent);
        options.probes = QStringList{QStringLiteral("Firefly Luciferase")};
        options.depthsMm = {i == 0 ? 1.0 : 6.0};
        Simulated simulated(options);
        const ReadTruth truth(simulated.path(), DISPLAYUNIT_COUNTS);
        double sum = 0.0;
        for (std::size_t j = 0; j < truth.spectra[1].size(); ++j) {
            sum += truth.spectra[1][j];
            centroids[i] += truth.spectra[1][j] * truth.pairs.at(static_cast<int>(j)).section(',', 1).toDouble();
        }
        centroids[i] /= sum;
    }
    EXPECT_GT(centroids[1], centroids[0] + 15.0);
}

TEST(LuminescentSimulationTest, EmissionsAreAsCoarseAsTheirNumberAllows)
{
    QList<FilterPair> pairs;
    QString error;
    ASSERT_TRUE(FilterPlan::chooseEmissions(12, 500, &pairs, &error));
    EXPECT_EQ(pairs.last().emission, 720);
    EXPECT_EQ(pairs.last().excitation, 0);
    ASSERT_TRUE(FilterPlan::chooseEmissions(60, 500, &pairs, &error));
    EXPECT_EQ(pairs.last().emission, 500 + 59 * 5);
    EXPECT_FALSE(FilterPlan::chooseEmissions(382, 500, &pairs, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("no room"))) << qPrintable(error);
}
