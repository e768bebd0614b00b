// SPDX-License-Identifier: GPL-3.0-or-later
// Options that a kind cannot have.
#include "workbench/simulator/OptionCheck.h"
#include "workbench/simulator/simulated_kind.h"

#include <functional>
#include <limits>

namespace {

struct Refusal
{
    SimulationKind kind;
    const char* what;
    std::function<void(SimulationOptions&)> change;
    const char* word; // that the answer holds
};

void PrintTo(const Refusal& refusal, std::ostream* pStream)
{
    *pStream << refusal.what;
}

class RefusedKindOptions : public ::testing::TestWithParam<Refusal>
{
};

} // namespace

TEST_P(RefusedKindOptions, AreToldInOneSentence)
{
    SimulationOptions options = SimulationOptions::standard(GetParam().kind);
    GetParam().change(options);
    const QString answer = validate(options);
    EXPECT_TRUE(answer.contains(QString::fromLatin1(GetParam().word), Qt::CaseInsensitive)) << qPrintable(answer);
    EXPECT_FALSE(answer.contains(QLatin1Char('\n')));
}

INSTANTIATE_TEST_SUITE_P(
    All, RefusedKindOptions,
    ::testing::Values(
        Refusal{SimulationKind::Luminescent, "a dye", [](SimulationOptions& o) { o.probes = QStringList{"AF750"}; },
                "no luciferase"},
        Refusal{SimulationKind::Luminescent, "unknown", [](SimulationOptions& o) { o.probes = QStringList{"Firefy"}; },
                "Firefly Luciferase"},
        Refusal{SimulationKind::Transillumination, "no spot", [](SimulationOptions& o) { o.spots = 0; }, "spots"},
        Refusal{SimulationKind::Transillumination, "17 spots", [](SimulationOptions& o) { o.spots = 17; }, "spots"},
        Refusal{SimulationKind::Transillumination, "mixed", [](SimulationOptions& o) { o.mixedBinning = true; },
                "binning"},
        Refusal{SimulationKind::Temporal, "one time", [](SimulationOptions& o) { o.timesSeconds = {0}; }, "times"},
        Refusal{SimulationKind::Temporal, "falling times",
                [](SimulationOptions& o) {
                    o.timesSeconds = {0, 9, 5};
                },
                "ascend"},
        Refusal{SimulationKind::Temporal, "the same second",
                [](SimulationOptions& o) {
                    o.timesSeconds = {0, 5.1, 5.9};
                    o.exposuresSeconds = {0.1};
                },
                "whole second"},
        Refusal{SimulationKind::Temporal, "time NaN",
                [](SimulationOptions& o) {
                    o.timesSeconds = {std::numeric_limits<double>::quiet_NaN(), 9};
                },
                "time"},
        Refusal{SimulationKind::Temporal, "long exposure", [](SimulationOptions& o) { o.exposuresSeconds = {30}; },
                "exposure"},
        Refusal{SimulationKind::Temporal, "two exposures",
                [](SimulationOptions& o) {
                    o.exposuresSeconds = {1, 1};
                },
                "times"},
        Refusal{SimulationKind::Temporal, "two excitations",
                [](SimulationOptions& o) {
                    o.excitationsNm = {600, 700};
                },
                "one excitation"},
        Refusal{SimulationKind::Temporal, "two depths",
                [](SimulationOptions& o) {
                    o.depthsMm = {2, 3};
                },
                "depths"},
        Refusal{SimulationKind::Cherenkov, "no isotope", [](SimulationOptions& o) { o.isotope = "F-19"; }, "Ga-68"},
        Refusal{SimulationKind::Cherenkov, "no light", [](SimulationOptions& o) { o.isotope = "Tc-99m"; }, "Tc-99m"},
        Refusal{SimulationKind::Cherenkov, "undefined", [](SimulationOptions& o) { o.isotope = "Undefined"; },
                "isotope"},
        Refusal{SimulationKind::Cherenkov, "no span", [](SimulationOptions& o) { o.spanHalfLives = 0.0; }, "span"},
        Refusal{SimulationKind::Cherenkov, "a depth twice",
                [](SimulationOptions& o) {
                    o.depthsMm = {2, 2};
                },
                "twice"}));
