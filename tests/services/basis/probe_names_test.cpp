// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/basis/ProbeNames.h"

#include <gtest/gtest.h>

namespace {

const QStringList known = {"TissueAF", "Unknown", "AlexaFluor 750", "AlexaFluor 700", "Cy5", "Cy5.5", "ICG"};

} // namespace

TEST(ProbeNamesTest, ANameMeansItself)
{
    EXPECT_EQ(probeMeant("AlexaFluor 750", known), "AlexaFluor 750");
    EXPECT_EQ(probeMeant(" Cy5 ", known), "Cy5");
}

TEST(ProbeNamesTest, CaseIsNoMatter)
{
    EXPECT_EQ(probeMeant("alexafluor 750", known), "AlexaFluor 750");
    EXPECT_EQ(probeMeant("tissueaf", known), "TissueAF");
}

TEST(ProbeNamesTest, AnotherNameInUseMeansTheProbe)
{
    EXPECT_EQ(probeMeant("AF750", known), "AlexaFluor 750");
    EXPECT_EQ(probeMeant("Alexa Fluor 700", known), "AlexaFluor 700");
    EXPECT_EQ(probeMeant("Indocyanine Green", known), "ICG");
    EXPECT_EQ(probeMeant("QD800", known), "");
}

TEST(ProbeNamesTest, OtherTextsMeanNothing)
{
    for (const char* text : {"", " ", "Nobody", "AF", "AlexaFluor"}) {
        EXPECT_EQ(probeMeant(text, known), "") << text;
    }
    EXPECT_EQ(probeMeant("Cy5", {}), "");
}

TEST(ProbeNamesTest, TheNearestAreNamedOnce)
{
    EXPECT_EQ(nearestProbes("AF755", known).first(), "AlexaFluor 750");
    EXPECT_EQ(nearestProbes("cy 5,5", known).first(), "Cy5.5");
    QStringList nearest = nearestProbes("Alexa 750", known);
    EXPECT_LE(nearest.size(), 3);
    EXPECT_EQ(nearest.removeDuplicates(), 0);
    EXPECT_EQ(nearestProbesText("x", {"Cy5"}), "; did you mean \"Cy5\"?");
    EXPECT_EQ(nearestProbesText("x", {}), "");
}
