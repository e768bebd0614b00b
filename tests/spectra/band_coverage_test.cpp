// SPDX-License-Identifier: GPL-3.0-or-later
#include "spectra/bandCoverage.h"

#include <gtest/gtest.h>

namespace {

const QList<KeyPair> kPairs{{"500", "540"}, {"500", "560"}};

SpectrumPlotParams spectrumOver(const QVector<SpectrumPoint>& points)
{
    SpectrumPlotParams spectrum;
    spectrum.points = points;
    return spectrum;
}

TEST(BandCoverageTest, EachSpectrumIsJudgedByItsOwnBands)
{
    SpectrumPlotParams all = spectrumOver({{"500", "540", 1}, {"500", "560", 2}});
    SpectrumPlotParams allToo = spectrumOver({{"500", "540", 3}, {"500", "560", 4}});
    SpectrumPlotParams fewer = spectrumOver({{"500", "540", 1}});
    SpectrumPlotParams others = spectrumOver({{"500", "540", 1}, {"500", "580", 2}});
    SpectrumPlotParams more = spectrumOver({{"475", "540", 0}, {"500", "560", 2}, {"500", "540", 1}});
    EXPECT_EQ(bandCoverage({&all, &allToo, &fewer, &others, &more}, kPairs),
              (QVector<bool>{true, true, false, false, true}));
}

TEST(BandCoverageTest, NoPairsAreCoveredByAnything)
{
    SpectrumPlotParams none;
    SpectrumPlotParams one = spectrumOver({{"500", "540", 1}});
    EXPECT_EQ(bandCoverage({&none, &one}, {}), (QVector<bool>{true, true}));
    EXPECT_TRUE(bandCoverage({}, kPairs).isEmpty());
}

TEST(BandCoverageTest, CaseOfTheTextsMakesNoDifference)
{
    SpectrumPlotParams spectrum = spectrumOver({{"OPEN", "GFP", 1}});
    EXPECT_EQ(bandCoverage({&spectrum}, {{"Open", "gfp"}}), (QVector<bool>{true}));
}

TEST(BandCoverageTest, TheFirstMissingPairIsTold)
{
    const SpectrumPlotParams spectrum = spectrumOver({{"500", "560", 2}});
    EXPECT_EQ(firstMissingPair(spectrum, kPairs), (KeyPair{"500", "540"}));
    EXPECT_EQ(firstMissingPair(spectrum, {{"500", "560"}}), KeyPair());
}

} // namespace
