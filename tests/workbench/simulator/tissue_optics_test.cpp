// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/simulator/BandPlan.h"
#include "workbench/simulator/ComponentSpectrum.h"
#include "workbench/simulator/DepthBlur.h"
#include "workbench/simulator/ScenePlan.h"
#include "workbench/simulator/SimulationOptions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

namespace {

TissueOptics muscle()
{
    TissueOptics tissue;
    EXPECT_TRUE(tissue.load(QStringLiteral("Muscle")));
    return tissue;
}

// The mean over the bands' emission and the sum of a spectrum.
struct Colour
{
    double centroid;
    double sum;
};

Colour colourAt(double depthMm)
{
    SceneComponent component;
    QList<Probe> probes;
    QString error;
    EXPECT_TRUE(resolveProbes({QStringLiteral("AF594")}, &probes, &error));
    component.source = probes.first();
    component.depthMm = depthMm;
    QList<FilterPair> pairs;
    for (int emission = 600; emission <= 740; emission += 20) { // where blood lets the red through
        pairs.append({570, emission});
    }
    SimulationOptions options;
    options.bands = pairs.size();
    const std::vector<double> spectrum = componentSpectrum(component, muscle(), planBands(options, pairs, QString()));
    Colour colour{0.0, 0.0};
    for (std::size_t j = 0; j < spectrum.size(); ++j) {
        colour.sum += spectrum[j];
        colour.centroid += spectrum[j] * pairs.at(static_cast<int>(j)).emission;
    }
    colour.centroid /= colour.sum;
    return colour;
}

// Mean square distance from the centre of what a point-like source at that depth shows, in cm^2.
double spreadAt(double depthMm, double* pTotal)
{
    const auto dot = [](double x, double y) { return std::hypot(x, y) < 0.1 ? 1.0 : 0.0; };
    const DepthBlur blur(dot, 12.0, muscle(), depthMm);
    constexpr double kStep = 0.05;
    double total = 0.0;
    double square = 0.0;
    for (int i = -120; i < 120; ++i) {
        for (int j = -120; j < 120; ++j) {
            const double x = (j + 0.5) * kStep;
            const double y = (i + 0.5) * kStep;
            const double value = blur.at(x, y);
            EXPECT_GE(value, 0.0);
            total += value;
            square += value * (x * x + y * y);
        }
    }
    *pTotal = total * kStep * kStep;
    return square / total;
}

} // namespace

TEST(TissueOpticsTest, AttenuationIsThatOfTheDiffusionApproximation)
{
    const TissueOptics tissue = muscle();
    // Muscle at 700 nm: absorption 0.146902 1/cm, reduced scattering 9.51982 1/cm.
    // sqrt(3 * 0.0146902 * (0.0146902 + 0.951982)) = 0.206402 1/mm; over 6 mm exp(-1.238412) = 0.289844.
    EXPECT_NEAR(tissue.effectiveAttenuation(700.0), 0.206402, 2e-6);
    EXPECT_NEAR(tissue.transmission(700.0, 6.0), 0.289844, 2e-5);
    EXPECT_EQ(tissue.transmission(700.0, 0.0), 1.0);
}

TEST(TissueOpticsTest, UnknownTissueIsRefused)
{
    TissueOptics tissue;
    EXPECT_FALSE(tissue.load(QStringLiteral("Cheese")));
}

TEST(TissueOpticsTest, DeeperProbeIsRedderAndWeaker)
{
    const Colour shallow = colourAt(1.0);
    const Colour middle = colourAt(4.0);
    const Colour deep = colourAt(8.0);
    EXPECT_LT(shallow.centroid + 0.5, middle.centroid);
    EXPECT_LT(middle.centroid + 0.5, deep.centroid);
    EXPECT_GT(shallow.sum, 2.0 * middle.sum);
    EXPECT_GT(middle.sum, 2.0 * deep.sum);
}

TEST(DepthBlurTest, DepthSpreadsTheLightAndKeepsItsAmount)
{
    double shallowTotal = 0.0;
    double deepTotal = 0.0;
    const double shallow = spreadAt(2.0, &shallowTotal);
    const double deep = spreadAt(6.0, &deepTotal);
    EXPECT_GT(deep, 3.0 * shallow);
    // The disc's area is 0.0314 cm^2; its edge on the grid and the interpolation cost a few percent.
    EXPECT_NEAR(shallowTotal, 0.0314, 0.04 * 0.0314);
    EXPECT_NEAR(deepTotal, 0.0314, 0.08 * 0.0314);
}

TEST(DepthBlurTest, NothingLiesFarOutside)
{
    const DepthBlur blur([](double, double) { return 1.0; }, 12.0, muscle(), 2.0);
    EXPECT_NEAR(blur.at(0.0, 0.0), 1.0, 1e-12);
    EXPECT_EQ(blur.at(100.0, 0.0), 0.0);
    EXPECT_EQ(blur.at(std::nan(""), 0.0), 0.0);
}
