// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/Kinetics.h"
#include "workbench/simulator/TimeCourse.h"
#include "workbench/simulator/simulated_kind.h"

#include <cmath>

TEST(TemporalSimulationTest, ACourseArrivesIsTakenUpAndCleared)
{
    const TimeCourse course{10.0, 5.0, 50.0};
    EXPECT_EQ(course.at(0.0), 0.0);
    EXPECT_EQ(course.at(10.0), 0.0);
    EXPECT_NEAR(course.at(20.0), std::exp(-0.2) - std::exp(-2.0), 1e-15);
    // Its largest value lies where both slopes agree: ln(50 / 5) / (1 / 5 - 1 / 50) behind the arrival.
    const double top = 10.0 + std::log(10.0) / (0.2 - 0.02);
    EXPECT_GT(course.at(top), course.at(top - 0.1));
    EXPECT_GT(course.at(top), course.at(top + 0.1));
}

TEST(TemporalSimulationTest, TruthHoldsTheOrgansCoursesOverTime)
{
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    options.noise = false;
    options.exposuresSeconds = {2.0};
    Simulated simulated(options);
    EXPECT_TRUE(simulated.sequence.isKyvoSequence());
    EXPECT_TRUE(simulated.sequence.isFluorescence);
    const ReadTruth truth(simulated.path(), DISPLAYUNIT_RADIANT_EFFICIENCY);
    EXPECT_EQ(truth.names, (QStringList{QStringLiteral("TissueAF"), QStringLiteral("Liver"), QStringLiteral("Kidneys"),
                                        QStringLiteral("Tumour")}));
    EXPECT_EQ(truth.pairs.at(3), QStringLiteral("Int1,120"));
    for (std::size_t j = 0; j < 7; ++j) {
        EXPECT_EQ(truth.spectra[0][j], 1.0);
        expectSum(simulated.image(static_cast<int>(j), DISPLAYUNIT_RADIANT_EFFICIENCY), truth, j);
    }
    for (std::size_t k = 0; k < 3; ++k) {
        const TimeCourse course = Kinetics::organs().at(static_cast<int>(k)).course;
        EXPECT_NEAR(truth.spectra[k + 1][2] / truth.spectra[k + 1][5], course.at(61.0) / course.at(481.0), 1e-12);
    }
}

TEST(TemporalSimulationTest, TimesStandInTheImagesUnlessTheyAreLeftOut)
{
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    {
        Simulated simulated(options);
        EXPECT_EQ(simulated.section(2, ClickKeys::kClickNumber, ClickKeys::kKyVoTime), QStringLiteral("60"));
        EXPECT_EQ(simulated.section(2, ClickKeys::kClickNumber, ClickKeys::kKyVoInterval), QStringLiteral("1"));
        double first = 0.0;
        double third = 0.0;
        simulated.sequence.getDatasets().at(0)->getExposureStart(&first);
        simulated.sequence.getDatasets().at(2)->getExposureStart(&third);
        EXPECT_NEAR(third - first, 60.0, 1e-6);
    }
    options.timeKeys = false;
    Simulated simulated(options);
    EXPECT_EQ(simulated.section(2, ClickKeys::kClickNumber, ClickKeys::kKyVoTime), QString());
    EXPECT_TRUE(simulated.sequence.isKyvoSequence());
    EXPECT_EQ(ReadTruth(simulated.path(), DISPLAYUNIT_COUNTS).pairs.at(3), QStringLiteral("Int1,3"));
}

TEST(TemporalSimulationTest, ChosenTimesHaveTwoIntervals)
{
    const QList<double> times = Kinetics::standardTimes();
    EXPECT_EQ(times.size(), 27);
    EXPECT_EQ(times.last(), 3600.0);
    EXPECT_EQ(Kinetics::standardInterval(300.0), 1);
    EXPECT_EQ(Kinetics::standardInterval(600.0), 2);
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    options.timesSeconds.clear();
    Simulated simulated(options);
    EXPECT_EQ(simulated.section(26, ClickKeys::kClickNumber, ClickKeys::kKyVoInterval), QStringLiteral("2"));
}

TEST(TemporalSimulationTest, SeveralTracersHaveAPlaceAndACourseEach)
{
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    options.probes = QStringList{QStringLiteral("AlexaFluor 680"), QStringLiteral("AlexaFluor 700")};
    Simulated simulated(options);
    const ReadTruth truth(simulated.path(), DISPLAYUNIT_COUNTS);
    EXPECT_EQ(truth.names, (QStringList{QStringLiteral("TissueAF"), QStringLiteral("AlexaFluor 680"),
                                        QStringLiteral("AlexaFluor 700")}));
    EXPECT_NE(indexOfMaximum(truth.spectra[1]), indexOfMaximum(truth.spectra[2]));
    EXPECT_NE(indexOfMaximum(truth.maps[1]), indexOfMaximum(truth.maps[2]));
}

// In the temporal kind each probe must shine through the one filter.
TEST(TemporalSimulationTest, TracerThatShowsNothingIsNamed)
{
    SimulationOptions options = smallKind(SimulationKind::Temporal);
    options.timesSeconds = {0, 4};
    SimulationFolder folder;
    QString error;
    EXPECT_FALSE(simulate(folder.path(QStringLiteral("seq")), options, {}, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("\"Liver\" gives no light"))) << qPrintable(error);
    EXPECT_TRUE(folder.entries().isEmpty());
}
