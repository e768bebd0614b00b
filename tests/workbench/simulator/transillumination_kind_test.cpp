// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/MouseShape.h"
#include "workbench/simulator/ScanSpots.h"
#include "workbench/simulator/TissueOptics.h"
#include "workbench/simulator/simulated_kind.h"

#include <cmath>
#include <limits>

TEST(TransilluminationSimulationTest, EverySpotIsTheSumOfItsTruthInEveryUnit)
{
    SimulationOptions options = smallKind(SimulationKind::Transillumination);
    options.noise = false;
    options.foodRatio = 1.0;
    Simulated simulated(options);
    ASSERT_EQ(simulated.sequence.getDatasets().size(), 12);
    for (const tag_edisplayunit unit :
         {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY, DISPLAYUNIT_EFFICIENCY}) {
        for (int spot = 0; spot < 3; ++spot) {
            const ReadTruth truth = simulated.truthOfSpot(unit, spot);
            ASSERT_EQ(truth.names.size(), 4);
            ASSERT_EQ(truth.pairs.size(), 4);
            for (int j = 0; j < 4; ++j) {
                expectSum(simulated.image(4 * spot + j, unit), truth, static_cast<std::size_t>(j));
            }
        }
    }
}

TEST(TransilluminationSimulationTest, EverySpotHasEveryPairAndSpotsLieApart)
{
    Simulated simulated(smallKind(SimulationKind::Transillumination));
    EXPECT_TRUE(simulated.sequence.isFluorescence);
    EXPECT_TRUE(simulated.sequence.isTransillumination);
    QStringList spots;
    QStringList images;
    for (int i = 0; i < 12; ++i) {
        const QString spot =
            simulated.luminescent(i, ClickKeys::kFLXSpot) + ',' + simulated.luminescent(i, ClickKeys::kFLYSpot);
        if (!spots.contains(spot)) {
            spots.append(spot);
        }
        images.append(spot + ',' + simulated.luminescent(i, ClickKeys::kEmissionFilter));
    }
    EXPECT_EQ(spots.size(), 3);
    EXPECT_EQ(images.removeDuplicates(), 0);
    for (int count = 2; count <= ScanSpots::kMost; ++count) {
        const QList<ScanSpot> planned = ScanSpots::plan(count, MouseShape(1));
        for (int i = 1; i < count; ++i) {
            EXPECT_GT(std::hypot(planned.at(i).x - planned.at(i - 1).x, planned.at(i).y - planned.at(i - 1).y), 0.6);
        }
    }
}

TEST(TransilluminationSimulationTest, ASourceIsBrightestFromTheNearestSpot)
{
    SimulationOptions options = smallKind(SimulationKind::Transillumination);
    options.noise = false;
    Simulated simulated(options);
    for (int k = 1; k <= 2; ++k) {
        double x = 0.0;
        double y = 0.0;
        double nearest = std::numeric_limits<double>::infinity();
        int expected = -1;
        double brightest = 0.0;
        int found = -1;
        for (int spot = 0; spot < 3; ++spot) {
            const std::vector<double> map =
                simulated.truthOfSpot(DISPLAYUNIT_COUNTS, spot).maps[static_cast<std::size_t>(k)];
            const std::size_t peak = indexOfMaximum(map);
            if (map[peak] > brightest) {
                brightest = map[peak];
                found = spot;
                x = (static_cast<double>(peak % 40) + 0.5) * 12.0 / 40.0 - 6.0;
                y = (static_cast<double>(peak / 40) + 0.5) * 12.0 / 40.0 - 6.0;
            }
        }
        for (int spot = 0; spot < 3; ++spot) {
            const double distance = std::hypot(simulated.luminescent(4 * spot, ClickKeys::kFLXSpot).toDouble() - x,
                                               simulated.luminescent(4 * spot, ClickKeys::kFLYSpot).toDouble() - y);
            if (distance < nearest) {
                nearest = distance;
                expected = spot;
            }
        }
        EXPECT_EQ(found, expected) << "component " << k;
    }
}

TEST(TransilluminationSimulationTest, EfficiencyComesFromTheTransmittedReference)
{
    Simulated simulated(smallKind(SimulationKind::Transillumination));
    CORVDataset* pDataset = simulated.sequence.getDatasets().at(5);
    EXPECT_TRUE(QFile::exists(pDataset->folderPath() + QStringLiteral("/transmission.tif")));
    EXPECT_EQ(simulated.luminescent(5, ClickKeys::kReferenceRadiance), QString());
    CILImage* pReference = pDataset->getCoreImage(IMAGETYPE_FLUORESCENT_REFERENCE);
    ASSERT_NE(pReference, nullptr);
    // The brightest pixel of the scan has 40,000 counts over the offset, the bed a tenth of that.
    EXPECT_NEAR(pReference->value(0), 300.0 + 4000.0, 400.0);
    EXPECT_GT(pReference->Max(), 10000.0);
    EXPECT_LT(pReference->Max(), 42000.0);
}

TEST(TransilluminationSimulationTest, FluenceFallsWithTheDistanceFromTheSpot)
{
    TissueOptics tissue;
    ASSERT_TRUE(tissue.load(QStringLiteral("Muscle")));
    const double mu = tissue.effectiveAttenuation(700.0);
    EXPECT_NEAR(ScanSpots::fluence(tissue, 3.0, 4.0), std::exp(-5.0 * mu) / 5.0, 1e-15);
    EXPECT_EQ(ScanSpots::fluence(tissue, -2.0, 0.0), ScanSpots::fluence(tissue, 1.0, 0.0));
}
