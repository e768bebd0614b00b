// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/FilterPlan.h"
#include "workbench/simulator/OptionCheck.h"
#include "workbench/simulator/ProbeChoice.h"
#include "workbench/simulator/SimulationOptions.h"
#include "workbench/simulator/SourceList.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <set>

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Refusal
{
    const char* what;
    std::function<void(SimulationOptions&)> change;
    const char* word; // that the answer holds
};

void PrintTo(const Refusal& refusal, std::ostream* pStream)
{
    *pStream << refusal.what;
}

class RefusedOptions : public ::testing::TestWithParam<Refusal>
{
};

QList<FilterPair> pairsFor(int count, const QStringList& names = SimulationOptions().probes)
{
    QList<Probe> probes;
    QList<FilterPair> pairs;
    QString error;
    EXPECT_TRUE(resolveProbes(names, &probes, &error)) << qPrintable(error);
    EXPECT_TRUE(FilterPlan::choose(count, {}, probes, &pairs, &error)) << qPrintable(error);
    return pairs;
}

QList<int> excitationsFor(int count, const char* pProbe)
{
    QList<int> excitations;
    for (const FilterPair& pair : pairsFor(count, {QString::fromLatin1(pProbe)})) {
        if (!excitations.contains(pair.excitation)) {
            excitations.append(pair.excitation);
        }
    }
    return excitations;
}

} // namespace

TEST(SimulationOptionsTest, DefaultsAreValid)
{
    const SimulationOptions options;
    EXPECT_TRUE(validate(options).isEmpty()) << qPrintable(validate(options));
    EXPECT_EQ(probeDepthMm(options, 0), 2.0);
    EXPECT_EQ(probeDepthMm(options, 1), 6.0);
}

TEST(SimulationOptionsTest, OneDepthServesForAllProbes)
{
    SimulationOptions options;
    options.depthsMm = {3.5};
    EXPECT_TRUE(validate(options).isEmpty());
    EXPECT_EQ(probeDepthMm(options, 1), 3.5);
    options.probes = QStringList{QStringLiteral("AF680")};
    options.depthsMm.clear();
    EXPECT_EQ(probeDepthMm(options, 0), 2.0);
}

TEST_P(RefusedOptions, AreToldInOneSentence)
{
    SimulationOptions options;
    GetParam().change(options);
    const QString answer = validate(options);
    EXPECT_TRUE(answer.contains(QString::fromLatin1(GetParam().word), Qt::CaseInsensitive)) << qPrintable(answer);
    EXPECT_FALSE(answer.contains(QLatin1Char('\n')));
}

INSTANTIATE_TEST_SUITE_P(
    All, RefusedOptions,
    ::testing::Values(
        Refusal{"size 15", [](SimulationOptions& o) { o.size = 15; }, "size"},
        Refusal{"size 100000", [](SimulationOptions& o) { o.size = 100000; }, "size"},
        Refusal{"size -1", [](SimulationOptions& o) { o.size = -1; }, "size"},
        Refusal{"one band", [](SimulationOptions& o) { o.bands = 1; }, "bands"},
        Refusal{"bands 201", [](SimulationOptions& o) { o.bands = 201; }, "bands"},
        Refusal{"no probes", [](SimulationOptions& o) { o.probes.clear(); }, "probes"},
        Refusal{"gain 0", [](SimulationOptions& o) { o.gain = 0.0; }, "gain"},
        Refusal{"gain NaN", [](SimulationOptions& o) { o.gain = kNan; }, "gain"},
        Refusal{"read noise -1", [](SimulationOptions& o) { o.readNoise = -1.0; }, "read noise"},
        Refusal{"offset -5", [](SimulationOptions& o) { o.offset = -5.0; }, "offset"},
        Refusal{"offset 70000", [](SimulationOptions& o) { o.offset = 70000.0; }, "offset"},
        Refusal{"peak 0", [](SimulationOptions& o) { o.peakElectrons = 0.0; }, "brightest"},
        Refusal{"peak infinite", [](SimulationOptions& o) { o.peakElectrons = kInfinity; }, "brightest"},
        Refusal{"ratio 0", [](SimulationOptions& o) { o.ratio = 0.0; }, "ratio"},
        Refusal{"ratio NaN", [](SimulationOptions& o) { o.ratio = kNan; }, "ratio"},
        Refusal{"food ratio -1", [](SimulationOptions& o) { o.foodRatio = -1.0; }, "food"},
        Refusal{"binning 0", [](SimulationOptions& o) { o.binning = 0; }, "binning"},
        Refusal{"depth 0", [](SimulationOptions& o) { o.depthsMm = {0.0}; }, "depth"},
        Refusal{"depth NaN", [](SimulationOptions& o) { o.depthsMm = {2.0, kNan}; }, "depth"},
        Refusal{"three depths", [](SimulationOptions& o) { o.depthsMm = {2.0, 3.0, 4.0}; }, "depths"},
        Refusal{"no exposure", [](SimulationOptions& o) { o.exposuresSeconds.clear(); }, "exposures"},
        Refusal{"exposure 0", [](SimulationOptions& o) { o.exposuresSeconds = {0.0}; }, "exposure"},
        Refusal{"two exposures", [](SimulationOptions& o) { o.exposuresSeconds = {1.0, 2.0}; }, "exposures"},
        Refusal{"excitation 200", [](SimulationOptions& o) { o.excitationsNm = {200}; }, "excitation"},
        Refusal{"excitation twice", [](SimulationOptions& o) { o.excitationsNm = {640, 640}; }, "twice"},
        Refusal{"no room",
                [](SimulationOptions& o) {
                    o.excitationsNm = {800};
                    o.bands = 100;
                },
                "room"},
        Refusal{"a name of two lines", [](SimulationOptions& o) { o.name = QStringLiteral("a\nb"); }, "name"},
        Refusal{"mixed without noise",
                [](SimulationOptions& o) {
                    o.mixedBinning = true;
                    o.noise = false;
                },
                "mixed"},
        Refusal{"mixed, odd size",
                [](SimulationOptions& o) {
                    o.mixedBinning = true;
                    o.size = 65;
                },
                "even"},
        Refusal{"mixed, four bands",
                [](SimulationOptions& o) {
                    o.mixedBinning = true;
                    o.bands = 4;
                },
                "bands"}));

TEST(ProbeChoiceTest, UnknownProbeIsNamedWithSuggestions)
{
    SimulationOptions options;
    options.probes = QStringList{QStringLiteral("AlexFluor 68O")};
    const QString answer = validate(options);
    EXPECT_TRUE(answer.contains(QStringLiteral("\"AlexFluor 68O\""))) << qPrintable(answer);
    EXPECT_TRUE(answer.contains(QStringLiteral("\"AlexaFluor 680\""))) << qPrintable(answer);
}

TEST(ProbeChoiceTest, OtherNamesOfAProbeWillDo)
{
    QList<Probe> probes;
    QString error;
    ASSERT_TRUE(resolveProbes({QStringLiteral("af750"), QStringLiteral("QD800")}, &probes, &error))
        << qPrintable(error);
    EXPECT_EQ(probes.at(0).name, QStringLiteral("AlexaFluor 750"));
    EXPECT_FALSE(probes.at(0).excitationIsEstimate);
    EXPECT_EQ(probes.at(1).name, QStringLiteral("QDot 800"));
    EXPECT_TRUE(probes.at(1).excitationIsEstimate);
}

TEST(ProbeChoiceTest, ProbeGivenTwiceAndLuciferaseAreRefused)
{
    QList<Probe> probes;
    QString error;
    EXPECT_FALSE(resolveProbes({QStringLiteral("AF680"), QStringLiteral("AlexaFluor 680")}, &probes, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("twice"))) << qPrintable(error);
    EXPECT_FALSE(resolveProbes({QStringLiteral("Firefly Luciferase")}, &probes, &error));
    EXPECT_TRUE(error.contains(QStringLiteral("no fluorophore"))) << qPrintable(error);
    EXPECT_TRUE(probes.isEmpty());
}

TEST(ProbeChoiceTest, EstimatedExcitationLiesBeforeTheEmission)
{
    QList<Probe> probes;
    QString error;
    ASSERT_TRUE(resolveProbes({QStringLiteral("AF680"), QStringLiteral("QD800")}, &probes, &error));
    EXPECT_NEAR(probes.at(0).excitation.peak(), probes.at(0).emission.peak() - 23.0, 1.0);
    EXPECT_GT(probes.at(1).excitation.at(450.0), 2.0 * probes.at(1).excitation.at(650.0));
    EXPECT_LT(probes.at(1).excitation.at(850.0), 1e-3 * probes.at(1).excitation.at(650.0));
}

TEST(ProbeChoiceTest, TextOfASequenceTurnsIntoTheNameAgain)
{
    EXPECT_EQ(probeText(QStringLiteral("AlexaFluor 680")), QStringLiteral("AF680"));
    EXPECT_EQ(probeText(QStringLiteral("QDot 800")), QStringLiteral("QD800"));
    EXPECT_EQ(probeText(QStringLiteral("ICG")), QStringLiteral("ICG"));
}

TEST(FilterPlanTest, DefaultHasTwoExcitationsWithNineEmissionsEach)
{
    const QList<FilterPair> pairs = pairsFor(SimulationOptions().bands);
    ASSERT_EQ(pairs.size(), 18);
    EXPECT_EQ(pairs.at(0).excitation, 605);
    EXPECT_EQ(pairs.at(0).emission, 640);
    EXPECT_EQ(pairs.at(8).excitation, 605);
    EXPECT_EQ(pairs.at(8).emission, 800);
    EXPECT_EQ(pairs.at(9).excitation, 675);
    EXPECT_EQ(pairs.at(9).emission, 700);
    EXPECT_EQ(pairs.at(17).excitation, 675);
    EXPECT_EQ(pairs.at(17).emission, 860);
}

TEST(FilterPlanTest, MoreBandsCallForMoreExcitations)
{
    EXPECT_EQ(excitationsFor(8, "AF750"), (QList<int>{675}));
    EXPECT_EQ(excitationsFor(9, "AF750"), (QList<int>{605, 675}));
    EXPECT_EQ(excitationsFor(20, "AF750"), (QList<int>{605, 675}));
    EXPECT_EQ(excitationsFor(21, "AF750"), (QList<int>{535, 605, 675}));
    EXPECT_EQ(excitationsFor(31, "AF750"), (QList<int>{465, 535, 605, 675}));
    EXPECT_EQ(excitationsFor(200, "AF750"), (QList<int>{465, 535, 605, 675}));
}

// The reddest dyes are told apart by what lies beyond their peaks.
TEST(FilterPlanTest, EmissionsReachOverThePeaksAsLongAsExcitationsCanBeAdded)
{
    for (int count = 9; count <= 40; ++count) {
        const QList<FilterPair> pairs = pairsFor(count);
        for (int i = 1; i < pairs.size(); ++i) {
            if (pairs[i].excitation == pairs[i - 1].excitation) {
                EXPECT_EQ(pairs[i].emission - pairs[i - 1].emission, 20) << count;
            }
        }
    }
}

TEST(FilterPlanTest, ExcitationsEndBeforeTheBluestEmission)
{
    EXPECT_EQ(excitationsFor(18, "AF594"), (QList<int>{525, 595})); // peak at 619 nm
    EXPECT_EQ(excitationsFor(8, "AF488"), (QList<int>{495}));       // 520 nm
    EXPECT_EQ(excitationsFor(18, "AF488"), (QList<int>{425, 495}));
}

TEST(FilterPlanTest, ExcitationsForABlueDyeMoveUpToTheShortestFilter)
{
    EXPECT_EQ(excitationsFor(30, "AF488"), (QList<int>{410, 480, 550}));
    EXPECT_EQ(excitationsFor(8, "NADH"), (QList<int>{445})); // peak at 469 nm
    EXPECT_EQ(excitationsFor(18, "NADH"), (QList<int>{410, 480}));
}

TEST(FilterPlanTest, EveryNumberOfBandsGivesDistinctPairsBeyondTheExcitation)
{
    for (const char* pProbe : {"NADH", "AF488", "AF680", "AF790", "ICG"}) {
        for (int count = FilterPlan::kFewest; count <= FilterPlan::kMost; ++count) {
            const QList<FilterPair> pairs = pairsFor(count, {QString::fromLatin1(pProbe)});
            ASSERT_EQ(pairs.size(), count);
            std::set<std::pair<int, int>> seen;
            for (const FilterPair& pair : pairs) {
                EXPECT_GT(pair.emission, pair.excitation + FilterPlan::kBandwidthNm);
                EXPECT_LE(pair.emission, FilterPlan::kLongestNm);
                EXPECT_GE(pair.excitation, 410);
                EXPECT_LE(pair.excitation, 675);
                EXPECT_TRUE(seen.insert({pair.excitation, pair.emission}).second);
            }
        }
    }
}

TEST(FilterPlanTest, GivenExcitationsAreTakenInOrder)
{
    QList<FilterPair> pairs;
    QString error;
    ASSERT_TRUE(FilterPlan::choose(5, {675, 640}, {}, &pairs, &error)) << qPrintable(error);
    EXPECT_EQ(pairs.at(0).excitation, 640);
    EXPECT_EQ(pairs.at(4).excitation, 675);
}
