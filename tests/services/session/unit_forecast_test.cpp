// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/session/UnitForecast.h"
#include "services/support/SmallSequence.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvutils/LogSinks.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace {

// Puts the process's limit of units, and what the log tells, back.
class ProcessSettings
{
public:
    ProcessSettings() { orv::setConsoleLogLevel(orv::ConsoleLog::Nothing); }
    ~ProcessSettings()
    {
        CORVDataset::setUnitLimit(DISPLAYUNIT_EFFICIENCY);
        orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
    }
    ProcessSettings(const ProcessSettings&) = delete;
    ProcessSettings& operator=(const ProcessSettings&) = delete;
};

QStringList clicksOf(const SmallSequence& sequence)
{
    QStringList clicks;
    for (int n = 0; n < sequence.images.size(); ++n) {
        clicks.append(sequence.click(n));
    }
    return clicks;
}

SmallSequence threeImages(int nFirst, int nSecond, int nThird)
{
    SmallSequence sequence;
    const auto one = [](int) { return 1.0F; };
    sequence.addBands({one, one, one});
    sequence.images[0].calibratedUnit = nFirst;
    sequence.images[1].calibratedUnit = nSecond;
    sequence.images[2].calibratedUnit = nThird;
    return sequence;
}

UnitForecast forecastOf(const SmallSequence& sequence)
{
    const auto open = sequence.inMemory();
    return forecastUnit(*open, clicksOf(sequence));
}

} // namespace

TEST(UnitForecastTest, FluorescenceEndsInRadiantEfficiencyWhereAllImagesHaveIt)
{
    const auto forecast = forecastOf(threeImages(3, 2, 2));
    EXPECT_EQ(forecast.unit, DISPLAYUNIT_RADIANT_EFFICIENCY);
    EXPECT_TRUE(forecast.refusals.isEmpty());
}

TEST(UnitForecastTest, OneImageWithoutCalibrationTakesAllDown)
{
    const auto forecast = forecastOf(threeImages(2, 2, 1));
    EXPECT_EQ(forecast.unit, DISPLAYUNIT_RADIANCE);
    ASSERT_EQ(forecast.refusals.size(), 1);
    EXPECT_TRUE(forecast.refusals[0].startsWith("Radiant Efficiency in SMALL-002: "))
        << qPrintable(forecast.refusals[0]);
}

TEST(UnitForecastTest, EachStepDownIsToldWithTheImage)
{
    const auto forecast = forecastOf(threeImages(1, 0, 2));
    EXPECT_EQ(forecast.unit, DISPLAYUNIT_COUNTS);
    ASSERT_EQ(forecast.refusals.size(), 2);
    EXPECT_TRUE(forecast.refusals[0].startsWith("Radiant Efficiency in SMALL-000: "));
    EXPECT_TRUE(forecast.refusals[1].startsWith("Radiance in SMALL-001: "));
}

TEST(UnitForecastTest, ALimitOfTheHostHoldsTheLadderDown)
{
    const ProcessSettings settings;
    CORVDataset::setUnitLimit(DISPLAYUNIT_COUNTS);
    EXPECT_EQ(forecastOf(threeImages(2, 2, 2)).unit, DISPLAYUNIT_COUNTS);
    CORVDataset::setUnitLimit(DISPLAYUNIT_RADIANCE);
    EXPECT_EQ(forecastOf(threeImages(2, 2, 2)).unit, DISPLAYUNIT_RADIANCE);
    EXPECT_TRUE(forecastOf(threeImages(2, 2, 2)).refusals.isEmpty());
    EXPECT_EQ(forecastOf(threeImages(2, 0, 2)).refusals.size(), 1);
}

TEST(UnitForecastTest, AnUnknownImageHasNoUnit)
{
    const auto open = threeImages(2, 2, 2).inMemory();
    EXPECT_EQ(forecastUnit(*open, {"elsewhere"}).unit, -1);
    EXPECT_EQ(forecastUnit(*open, {}).unit, -1);
}

TEST(UnitForecastTest, NativeEfficienciesBelowALimitHaveNoUnit)
{
    const ProcessSettings settings;
    SmallSequence sequence = threeImages(2, 2, 2);
    for (auto& image : sequence.images) {
        image.nativeEfficiency = true;
    }
    EXPECT_EQ(forecastOf(sequence).unit, DISPLAYUNIT_EFFICIENCY);
    CORVDataset::setUnitLimit(DISPLAYUNIT_RADIANCE);
    EXPECT_EQ(forecastOf(sequence).unit, -1);
}

// Where the engine arrives, and whether it does, for any mixture of calibrations.
RC_GTEST_PROP(UnitForecastLaws, AgreesWithTheBuildingOfTheCube, ())
{
    const ProcessSettings settings;
    SmallSequence sequence;
    sequence.fluorescence = *rc::gen::arbitrary<bool>();
    sequence.transillumination = *rc::gen::arbitrary<bool>();
    const int count = *rc::gen::inRange(2, 6);
    for (int n = 0; n < count; ++n) {
        SmallImage image;
        image.emission = QStringLiteral("%1nm").arg(700 + 20 * n);
        image.calibratedUnit = *rc::gen::inRange(0, 4);
        image.nativeEfficiency = *rc::gen::inRange(0, 8) == 0;
        sequence.images.append(image);
    }
    CORVDataset::setUnitLimit(static_cast<tag_edisplayunit>(*rc::gen::inRange(0, 4)));

    const auto open = sequence.inMemory();
    CORVSpumKyvo engine(open->getSequenceID());
    RC_ASSERT(engine.buildDatasetInfo());
    const UnitForecast forecast = forecastUnit(*open, clicksOf(sequence));
    const bool built = engine.buildImageCube();
    RC_ASSERT(built == (forecast.unit >= 0));
    RC_ASSERT(!built || engine.m_eUnit == forecast.unit);
}
