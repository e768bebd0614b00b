// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVDatabase.h"
#include "workbench/simulator/OptionCheck.h"
#include "workbench/simulator/simulated_kind.h"

TEST(CherenkovSimulationTest, DataAreTheSumOfTheTruthAsTheyStandAndCorrected)
{
    SimulationOptions options = smallKind(SimulationKind::Cherenkov);
    options.noise = false;
    options.depthsMm = {2.0, 5.0};
    Simulated simulated(options);
    QVector<QString> clicks;
    for (CORVDataset* pDataset : simulated.sequence.getDatasets()) {
        clicks.append(pDataset->getClickNumber());
    }
    QVector<double> factors;
    ASSERT_TRUE(simulated.sequence.calculateDecayCorrectFactor_CherenkovData(
        clicks, CORVDatabase::getCherenkovRADHalflife(QStringLiteral("F-18")), factors));
    const auto file = [](const QString& strName) { return truthMapFile(strName); };
    for (const tag_edisplayunit unit : {DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE}) {
        const ReadTruth truth(simulated.path(), unit);
        const ReadTruth corrected(simulated.path(), truthDecayFolder(unit), file);
        EXPECT_EQ(truth.names, (QStringList{QStringLiteral("TissueAF"), QStringLiteral("F-18 at 2 mm"),
                                            QStringLiteral("F-18 at 5 mm")}));
        for (int j = 0; j < 12; ++j) {
            expectSum(simulated.image(j, unit), truth, static_cast<std::size_t>(j));
            expectSum(simulated.image(j, unit), corrected, static_cast<std::size_t>(j), factors.at(j));
        }
    }
    EXPECT_EQ(foldersOfTruth(simulated.path()),
              (QStringList{QStringLiteral("counts"), QStringLiteral("counts-decay-corrected"),
                           QStringLiteral("radiance"), QStringLiteral("radiance-decay-corrected")}));
}

TEST(CherenkovSimulationTest, ImagesSpreadOverTheHalfLife)
{
    SimulationOptions options = smallKind(SimulationKind::Cherenkov);
    options.isotope = QStringLiteral("ga-68");
    options.spanHalfLives = 1.5;
    Simulated simulated(options);
    QString isotope;
    ASSERT_TRUE(simulated.sequence.isCherenkovIsotopeInData(isotope));
    EXPECT_EQ(isotope, QStringLiteral("Ga-68"));
    EXPECT_EQ(simulated.luminescent(0, ClickKeys::kProbe), QStringLiteral("RAD-Ga-68"));
    EXPECT_FALSE(simulated.sequence.isFluorescence);
    double first = 0.0;
    double last = 0.0;
    simulated.sequence.getDatasets().first()->getExposureStart(&first);
    simulated.sequence.getDatasets().last()->getExposureStart(&last);
    EXPECT_NEAR(last - first, 1.5 * CORVDatabase::getCherenkovRADHalflife(isotope), 0.01);
}

// Exposures end before the next image even for an isotope of two minutes.
TEST(CherenkovSimulationTest, ShortLivedIsotopeGetsShortExposures)
{
    SimulationOptions options = smallKind(SimulationKind::Cherenkov);
    options.isotope = QStringLiteral("O-15");
    EXPECT_EQ(validate(options), QString());
    EXPECT_LT(bandExposureSeconds(options, 0), bandStepSeconds(options));
    options.exposuresSeconds = {60.0};
    EXPECT_TRUE(validate(options).contains(QStringLiteral("longer"))) << qPrintable(validate(options));
}
