// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/NoiseFacts.h"

#include <gtest/gtest.h>

namespace {

NoiseFacts poisson(double dElectrons, double dReadNoise, bool bEstimated)
{
    NoiseFacts facts;
    facts.model = QStringLiteral("poisson");
    facts.electronsPerCount = dElectrons;
    facts.readNoise = dReadNoise;
    facts.estimated = bEstimated;
    return facts;
}

} // namespace

TEST(NoiseFactsTest, AnEstimateIsToldInElectrons)
{
    const NoiseFacts facts = poisson(2.0, 10.0, true);
    EXPECT_EQ(facts.label(), "Poisson, 2 e a count, read noise 10 e (estimated)");
    EXPECT_EQ(facts.json()["electronsPerCount"], 2.0);
    EXPECT_EQ(facts.json()["readNoiseElectrons"], 10.0);
}

TEST(NoiseFactsTest, NoiseThatDoesNotGrowWithTheLightIsToldInCounts)
{
    const NoiseFacts facts = poisson(1.5e9, 1.8e10, true);
    EXPECT_EQ(facts.label(), "Poisson, not seen beside a read noise of 12 counts (estimated)");
    EXPECT_TRUE(facts.text().endsWith(", which is not seen beside a read noise of 12 counts (estimated)"))
        << qPrintable(facts.text());
    EXPECT_EQ(facts.json(), (QJsonObject{{"model", "poisson"}}));
}

TEST(NoiseFactsTest, WhatACameraTellsIsToldAsItIs)
{
    const QJsonObject json = poisson(2e6, 1.0, false).json();
    EXPECT_EQ(json["electronsPerCount"], 2e6);
    EXPECT_EQ(json["estimated"], false);
}
