// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DisplayUnits.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"

#include <gtest/gtest.h>

namespace {

QVector<UnitOffer> offersOf(const QVector<tag_edisplayunit>& had)
{
    QVector<UnitOffer> offers = unitOffers({});
    for (UnitOffer& offer : offers) {
        offer.reason = had.contains(offer.unit) ? QString() : QString("missing");
    }
    return offers;
}

TEST(DisplayUnitsTest, WithoutADatasetNoneCanBeHad)
{
    const QVector<UnitOffer> offers = unitOffers({});
    ASSERT_EQ(offers.size(), 4);
    for (const UnitOffer& offer : offers) {
        EXPECT_EQ(offer.reason, "there is no luminescent image");
    }
    EXPECT_EQ(offers.at(2).text, "Radiant Efficiency");
    EXPECT_EQ(offers.at(1).quantity, "p/s/cm²/sr");
}

TEST(DisplayUnitsTest, AUnitThatOneDatasetHasIsOfferedElseTheFirstOnesReason)
{
    CILImage image;
    image.InitWithType(ORVTYPE_FLOAT, 2, 2);
    CORVDataset counts;
    counts.setCoreImage(IMAGETYPE_MAIN_DATA, image);
    CORVDataset efficiency;
    efficiency.setCoreImage(IMAGETYPE_MAIN_DATA, image);
    efficiency.nativeUnit = DISPLAYUNIT_EFFICIENCY;
    const QVector<UnitOffer> both = unitOffers({&counts, &efficiency});
    EXPECT_EQ(both.at(DISPLAYUNIT_COUNTS).reason, "");
    EXPECT_EQ(both.at(DISPLAYUNIT_EFFICIENCY).reason, "");
    EXPECT_TRUE(both.at(DISPLAYUNIT_RADIANCE).reason.contains("Photons per Count"));
    EXPECT_EQ(unitOffers({&efficiency}).at(DISPLAYUNIT_COUNTS).reason, "the data are stored as efficiency");
}

struct StartCase
{
    QVector<tag_edisplayunit> had;
    bool fluorescence;
    tag_edisplayunit unit;
};

class StartUnitTest : public ::testing::TestWithParam<StartCase>
{
};

TEST_P(StartUnitTest, IsTheBestOfThose)
{
    EXPECT_EQ(startUnit(offersOf(GetParam().had), GetParam().fluorescence), GetParam().unit);
}

INSTANTIATE_TEST_SUITE_P(
    Table, StartUnitTest,
    ::testing::Values(StartCase{{DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY},
                                true,
                                DISPLAYUNIT_RADIANT_EFFICIENCY},
                      StartCase{{DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE, DISPLAYUNIT_RADIANT_EFFICIENCY},
                                false,
                                DISPLAYUNIT_RADIANCE},
                      StartCase{{DISPLAYUNIT_COUNTS, DISPLAYUNIT_RADIANCE}, true, DISPLAYUNIT_RADIANCE},
                      StartCase{{DISPLAYUNIT_COUNTS}, true, DISPLAYUNIT_COUNTS},
                      StartCase{{DISPLAYUNIT_EFFICIENCY}, false, DISPLAYUNIT_EFFICIENCY},
                      StartCase{{}, true, DISPLAYUNIT_COUNTS}));

} // namespace
