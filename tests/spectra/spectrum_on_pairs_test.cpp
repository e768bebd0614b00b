// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/spectrumOnPairs.h"

#include <gtest/gtest.h>

namespace {

SpectrumPlotParams dye()
{
    SpectrumPlotParams spectrum;
    spectrum.settings.name = "Dye";
    spectrum.settings.color = "gold";
    spectrum.origin = "lab";
    spectrum.points = {{"500", "540", 1.0}, {"500", "560", 2.0}, {"535", "DsRed", 3.0}};
    return spectrum;
}

TEST(SpectrumOnPairsTest, HasTheValuesOfThePairsInTheirOrder)
{
    const SpectrumPlotParams copy = spectrumOnPairs(dye(), {{"535", "dsred"}, {"500", "540"}}, 1);
    ASSERT_EQ(copy.points.size(), 2);
    EXPECT_EQ(copy.points[0].value, 3.0);
    EXPECT_EQ(copy.points[0].second, "dsred"); // as the pairs spell it
    EXPECT_EQ(copy.points[1].value, 1.0);
    EXPECT_EQ(copy.axis, 1);
    EXPECT_EQ(copy.settings.name, "Dye");
    EXPECT_EQ(copy.settings.color, "gold");
    EXPECT_EQ(copy.origin, "lab");
}

TEST(SpectrumOnPairsTest, KeepsItsPointsWhenOneIsMissing)
{
    const SpectrumPlotParams copy = spectrumOnPairs(dye(), {{"500", "540"}, {"500", "999"}}, 2);
    EXPECT_EQ(copy.points.size(), 3);
    EXPECT_EQ(copy.axis, 2);
}

} // namespace
