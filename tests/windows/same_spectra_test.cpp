// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/sameSpectra.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

namespace {

SpectrumPlotParams spectrum()
{
    SpectrumPlotParams s;
    s.setPairs({{"500", "600"}, {"500", "620"}});
    s.points[1].value = 2.0;
    s.settings.name = "ICG";
    s.settings.color = "red";
    s.origin = "SEQ1";
    return s;
}

TEST(SameSpectraTest, WhatAnUnmixingOrAResultHoldsMakesADifference)
{
    const SpectrumPlotParams a = spectrum();
    EXPECT_TRUE(sameSpectrum(a, spectrum()));
    const std::vector<std::function<void(SpectrumPlotParams&)>> changes{[](auto& s) { s.axis = 1; },
                                                                        [](auto& s) { s.settings.selected = false; },
                                                                        [](auto& s) { s.settings.name = "x"; },
                                                                        [](auto& s) { s.settings.color = "blue"; },
                                                                        [](auto& s) { s.origin = "SEQ2"; },
                                                                        [](auto& s) { s.points[0].value = 1e-300; },
                                                                        [](auto& s) { s.points.removeLast(); },
                                                                        [](auto& s) { s.points[0].first = "501"; },
                                                                        [](auto& s) { s.points[0].second = "601"; }};
    for (std::size_t i = 0; i < changes.size(); ++i) {
        SpectrumPlotParams b = spectrum();
        changes[i](b);
        EXPECT_FALSE(sameSpectrum(a, b)) << "change " << i;
    }
}

TEST(SameSpectraTest, WhatARowCarriesMakesNone)
{
    SpectrumPlotParams b = spectrum();
    b.settings.index = 5;
    b.settings.curveId = 3;
    b.settings.curveFlag = 1;
    b.settings.shape = 2;
    b.settings.enabled = true;
    EXPECT_TRUE(sameSpectrum(spectrum(), b));
}

TEST(SameSpectraTest, ANaNEqualsANaN)
{
    SpectrumPlotParams a = spectrum();
    a.points[0].value = std::numeric_limits<double>::quiet_NaN();
    SpectrumPlotParams b = a;
    EXPECT_TRUE(sameSpectrum(a, b));
    b.points[0].value = 0.0;
    EXPECT_FALSE(sameSpectrum(a, b));
}

TEST(SameSpectraTest, ListsAreComparedInTheirOrder)
{
    SpectrumPlotParams a = spectrum();
    SpectrumPlotParams b = spectrum();
    b.settings.name = "Cy5";
    EXPECT_TRUE(sameSpectra({}, {}));
    EXPECT_TRUE(sameSpectra({&a, &b}, {&a, &b}));
    EXPECT_FALSE(sameSpectra({&a, &b}, {&b, &a}));
    EXPECT_FALSE(sameSpectra({&a}, {&a, &b}));
    EXPECT_FALSE(sameSpectra({&a, &b}, {&a}));
}

} // namespace
