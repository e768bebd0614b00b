// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/SequenceGrid.h"

#include "host/CPLClickInfo.h"

#include <gtest/gtest.h>

namespace {

TileKey filters(const char* excitation, const char* emission)
{
    TileKey key;
    key.excitation = excitation;
    key.emission = emission;
    key.name = "C1";
    return key;
}

TileKey spotAt(const char* x, const char* y, const char* emission = "700nm")
{
    TileKey key = filters("675nm", emission);
    key.spotX = x;
    key.spotY = y;
    return key;
}

TileKey timeAt(double seconds, const char* interval = "1")
{
    TileKey key = filters("675nm", "720nm");
    key.time = seconds;
    key.interval = interval;
    return key;
}

TEST(SequenceGridTest, ExcitationsAreRowsAndEmissionsColumnsInOrder)
{
    const SequenceGrid grid({filters("675nm", "720nm"), filters("605nm", "720nm"), filters("605nm", "640nm")}, true);
    ASSERT_TRUE(grid.isTable());
    EXPECT_EQ(grid.rowTitles(), (QStringList{"Excitation\n605 nm", "Excitation\n675 nm"}));
    EXPECT_EQ(grid.columnTitles(), (QStringList{"Photograph", "Emission\n640 nm", "Emission\n720 nm"}));
    EXPECT_EQ(grid.tileAt(0, 0, 1), 0);
    EXPECT_EQ(grid.tileAt(1, 2, 1), 1);
    EXPECT_EQ(grid.tileAt(0, 2, 1), 2);
    EXPECT_EQ(grid.tileAt(0, 1, 1), 3);
    EXPECT_EQ(grid.tileAt(1, 1, 1), -1);
    EXPECT_EQ(grid.tileAt(1, 0, 1), -1);
    EXPECT_EQ(grid.tileAt(2, 0, 1), -1);
    EXPECT_EQ(grid.keyOf(0), -1);
    EXPECT_EQ(grid.keyOf(3), 2);
}

TEST(SequenceGridTest, FiltersOfTwoAndThreeDigitsAreOrderedByValue)
{
    const SequenceGrid grid(
        {filters("1000nm", "b"), filters("900nm", "b"), filters("1000nm", "a"), filters("900nm", "a")}, false);
    EXPECT_EQ(grid.rowTitles(), (QStringList{"Excitation\n900 nm", "Excitation\n1000 nm"}));
}

TEST(SequenceGridTest, OneRowFollowsOnAndBreaksWhereTheRoomEnds)
{
    QVector<TileKey> keys;
    for (const char* emission : {"500nm", "520nm", "540nm", "560nm"}) {
        keys.append(filters("Block", emission));
    }
    const SequenceGrid grid(keys, true);
    EXPECT_FALSE(grid.isTable());
    EXPECT_EQ(grid.rows(2), 3);
    EXPECT_EQ(grid.columns(2), 2);
    EXPECT_EQ(grid.columns(100), 5);
    EXPECT_EQ(grid.rows(0), 5);
    EXPECT_EQ(grid.tileAt(2, 0, 2), 4);
    EXPECT_EQ(grid.tileAt(2, 1, 2), -1);
    EXPECT_EQ(grid.tileAt(0, 2, 2), -1);
    EXPECT_EQ(grid.caption(0), "Photograph");
    EXPECT_EQ(grid.caption(1), "500 nm");
    EXPECT_EQ(grid.description(1), "emission 500 nm");
}

TEST(SequenceGridTest, APairThatOccursTwiceMakesNoTable)
{
    const SequenceGrid grid(
        {filters("605nm", "640nm"), filters("605nm", "720nm"), filters("675nm", "720nm"), filters("675nm", "720nm")},
        false);
    EXPECT_FALSE(grid.isTable());
    EXPECT_EQ(grid.count(), 4);
}

TEST(SequenceGridTest, ATableThatWouldBeMostlyEmptyIsNone)
{
    const SequenceGrid grid({filters("500nm", "520nm"), filters("600nm", "620nm"), filters("700nm", "720nm")}, false);
    EXPECT_FALSE(grid.isTable());
    EXPECT_EQ(grid.caption(0), "500 → 520 nm");
}

TEST(SequenceGridTest, SpotsWithSeveralPairsAreARowEach)
{
    const SequenceGrid grid({spotAt("-1", "2", "700nm"), spotAt("-1", "2", "720nm"), spotAt("0.5", "2", "700nm"),
                             spotAt("0.5", "2", "720nm")},
                            false);
    EXPECT_EQ(grid.rowTitles(), (QStringList{"x -1, y 2", "x 0.5, y 2"}));
    EXPECT_EQ(grid.columnTitles(), (QStringList{"675 → 700 nm", "675 → 720 nm"}));
    EXPECT_EQ(grid.caption(1), "675 → 720 nm");
    EXPECT_EQ(grid.description(1), "excitation 675 nm, emission 720 nm, spot x -1, y 2");
}

TEST(SequenceGridTest, SpotsOfOnePairStandAsTheyLie)
{
    const SequenceGrid grid({spotAt("-1", "-2"), spotAt("10", "-2"), spotAt("-1", "2"), spotAt("10", "2")}, false);
    EXPECT_EQ(grid.rowTitles(), (QStringList{"y 2", "y -2"}));
    EXPECT_EQ(grid.columnTitles(), (QStringList{"x -1", "x 10"}));
    EXPECT_EQ(grid.tileAt(1, 1, 1), 1);
    EXPECT_EQ(grid.tileAt(0, 0, 1), 2);
}

TEST(SequenceGridTest, ScatteredSpotsFollowOneAnother)
{
    const SequenceGrid grid({spotAt("1", "1"), spotAt("2", "3"), spotAt("4", "2"), spotAt("5", "7")}, false);
    EXPECT_FALSE(grid.isTable());
    EXPECT_EQ(grid.caption(3), "675 → 700 nm; x 5, y 7");
}

TEST(SequenceGridTest, TimesOfOneIntervalFollowOneAnother)
{
    const SequenceGrid grid({timeAt(0.0), timeAt(90.0), timeAt(90000.0)}, true);
    EXPECT_FALSE(grid.isTable());
    EXPECT_EQ(grid.caption(2), "00:01:30");
    EXPECT_EQ(grid.caption(3), "25:00:00");
    EXPECT_EQ(grid.description(2), "excitation 675 nm, emission 720 nm, time 00:01:30, interval 1");
}

TEST(SequenceGridTest, IntervalsAreARowEach)
{
    const SequenceGrid grid({timeAt(0.0), timeAt(10.0), timeAt(20.0, "2"), timeAt(80.0, "2")}, true);
    EXPECT_EQ(grid.rowTitles(), (QStringList{"Interval 1", "Interval 2"}));
    EXPECT_EQ(grid.columnTitles(), (QStringList{"Photograph", "Image 1", "Image 2"}));
    EXPECT_EQ(grid.tileAt(1, 2, 1), 4);
}

TEST(SequenceGridTest, WithoutAnythingTheNameTells)
{
    TileKey key;
    key.name = "AB-7";
    const SequenceGrid grid({key}, false);
    EXPECT_EQ(grid.caption(0), "AB-7");
    EXPECT_EQ(grid.description(0), "image AB-7");
    EXPECT_EQ(SequenceGrid({}, false).count(), 0);
    EXPECT_EQ(SequenceGrid({}, false).rows(3), 0);
}

TEST(SequenceGridTest, TimesOfAClickInfoCountOnlyInASequenceOfTimes)
{
    CPLClickInfo info;
    CPLSection click("ClickNumber");
    click.setValue("KyVo Time(s)", "12.5");
    click.setValue("KyVo Interval", "2");
    info.addSection(&click);
    EXPECT_FALSE(TileKey::of(info, false, "A1").time.has_value());
    const TileKey key = TileKey::of(info, true, "A1");
    EXPECT_EQ(key.time.value_or(-1.0), 12.5);
    EXPECT_EQ(key.interval, "2");
}

TEST(ClockTextTest, Table)
{
    EXPECT_EQ(clockText(0.0), "00:00:00");
    EXPECT_EQ(clockText(59.9996), "00:01:00");
    EXPECT_EQ(clockText(12.5), "00:00:12.5");
    EXPECT_EQ(clockText(0.001), "00:00:00.001");
    EXPECT_EQ(clockText(-5.0), "-00:00:05");
    EXPECT_EQ(clockText(-1e-9), "00:00:00");
    EXPECT_EQ(clockText(360000.0), "100:00:00");
}

TEST(FilterTextTest, Table)
{
    EXPECT_EQ(filterText("675nm"), "675 nm");
    EXPECT_EQ(filterText("675 nm"), "675 nm");
    EXPECT_EQ(filterText("Open"), "Open");
    EXPECT_EQ(filterText(""), "");
}

TEST(FittingSideTest, FindsTheLargestAtWhichAllFindRoom)
{
    QVector<TileKey> keys;
    for (int i = 0; i < 12; ++i) {
        keys.append(timeAt(i));
    }
    const SequenceGrid flow(keys, false);
    // 4 a row: 100 wide with the extra of 10, 3 rows of 120.
    EXPECT_EQ(fittingSide(flow, {400, 360}, {10, 30}, 50, 200, 77), 90);
    EXPECT_EQ(fittingSide(flow, {4000, 3600}, {10, 30}, 50, 200, 77), 200);
    EXPECT_EQ(fittingSide(flow, {100, 100}, {10, 30}, 50, 200, 77), 77);
}

TEST(FittingSideTest, OfATableThatIsTooHighTheColumnsFit)
{
    const SequenceGrid table(
        {filters("1nm", "5nm"), filters("1nm", "6nm"), filters("2nm", "5nm"), filters("2nm", "6nm")}, false);
    EXPECT_EQ(fittingSide(table, {220, 50}, {10, 30}, 50, 200, 77), 100);
    EXPECT_EQ(fittingSide(table, {20, 50}, {10, 30}, 50, 200, 77), 77);
}

TEST(SequenceGridTest, NumberedChannelsAreCalledByTheirNames)
{
    TileKey named = filters("Block", "Channel 001");
    named.channel = "DAPI";
    TileKey far = filters("Block", "Channel 002");
    far.channel = "1250.5 nm";
    const SequenceGrid grid({named, far}, false);
    EXPECT_EQ(grid.caption(0), "DAPI");
    EXPECT_EQ(grid.description(0), "channel 001: DAPI");
    EXPECT_EQ(grid.caption(1), "1250.5 nm");
}

} // namespace
