// SPDX-License-Identifier: GPL-3.0-or-later
// Regions as entries of a section.
#include "RoiSupport.h"

#include "host/CPLSection.h"

#include <QXmlStreamReader>

using namespace roisupport;

namespace {

ROISection::Entries entriesFor(const QList<tagROIInfo>& regions)
{
    CPLSection section(QStringLiteral("ROIs"));
    int number = 0;
    for (const auto& region : regions) {
        ROISection::write(region, ++number, section);
    }
    return ROISection::entriesOf(section);
}

bool isElementName(const QString& strKey)
{
    QXmlStreamReader reader('<' + strKey + "/>");
    return reader.readNextStartElement() && reader.name() == strKey;
}

} // namespace

TEST(RoiSectionTest, WritesNameShapeAndNumbers)
{
    tagROIInfo region = regionFrom("rect:1,2,3.5,4", QString::fromUtf8("M\xC3\xA4use, \"links\""));
    EXPECT_EQ(entriesFor({region}), (ROISection::Entries{{"ROI 1 Name", QString::fromUtf8("M\xC3\xA4use, \"links\"")},
                                                         {"ROI 1 Shape", "rect:1,2,3.5,4"}}));
    region.name = "liver";
    tagROIStatistics& statistics = region.statistics;
    statistics.unit = "Radiance";
    statistics.pixels = 14;
    statistics.invalidPixels = 2;
    statistics.area = 0.1;
    statistics.sum = 7;
    statistics.mean = 0.5;
    statistics.minimum = -1e-20;
    statistics.maximum = 3e12;
    statistics.deviation = 0.25;
    EXPECT_EQ(entriesFor({region}), (ROISection::Entries{{"ROI 1 Name", "liver"},
                                                         {"ROI 1 Shape", "rect:1,2,3.5,4"},
                                                         {"ROI 1 Unit", "Radiance"},
                                                         {"ROI 1 Pixels", "14"},
                                                         {"ROI 1 Invalid Pixels", "2"},
                                                         {"ROI 1 Area cm2", "0.1"},
                                                         {"ROI 1 Sum", "7"},
                                                         {"ROI 1 Mean", "0.5"},
                                                         {"ROI 1 Minimum", "-1e-20"},
                                                         {"ROI 1 Maximum", "3e+12"},
                                                         {"ROI 1 Standard Deviation", "0.25"}}));
}

TEST(RoiSectionTest, NumbersThatAreNoneAreNotWritten)
{
    tagROIInfo region = regionFrom("rect:1,2,3,4");
    region.statistics.unit = "Counts";
    region.statistics.pixels = 0;
    region.statistics.sum = std::numeric_limits<double>::infinity();
    EXPECT_EQ(entriesFor({region}), (ROISection::Entries{{"ROI 1 Name", "R"},
                                                         {"ROI 1 Shape", "rect:1,2,3,4"},
                                                         {"ROI 1 Unit", "Counts"},
                                                         {"ROI 1 Pixels", "0"},
                                                         {"ROI 1 Invalid Pixels", "0"}}));
}

RC_GTEST_PROP(RoiSectionTest, AnyRegionsSurvive, ())
{
    const QList<tagROIInfo> regions = *anyRegions();
    const ROISection::Reading reading = ROISection::read(entriesFor(regions));
    RC_ASSERT(reading.messages.isEmpty());
    RC_ASSERT(describe(reading.regions) == describe(regions));
}

RC_GTEST_PROP(RoiSectionTest, KeysNameElementsOnceTheirBlanksAreGoneAndAreStillUnderstood, ())
{
    const QList<tagROIInfo> regions = *anyRegions();
    ROISection::Entries entries = entriesFor(regions);
    QStringList keys;
    for (auto& entry : entries) {
        entry.first.remove(' ');
        RC_ASSERT(isElementName(entry.first));
        keys.append(entry.first);
    }
    RC_ASSERT(keys.removeDuplicates() == 0);
    RC_ASSERT(describe(ROISection::read(entries).regions) == describe(regions));
}

TEST(RoiSectionTest, KeysOfOtherKindsAreNotOfARegion)
{
    EXPECT_EQ(ROISection::regionNumber("ROI 7 Name"), 7);
    EXPECT_EQ(ROISection::regionNumber("ROI12StandardDeviation"), 12);
    EXPECT_EQ(ROISection::regionNumber(" roi 3 x"), 3);
    for (const char* other :
         {"", "ROI", "ROI 7", "ROI Name", "ROI 1 2nd", "Region 1 Name", "ROI 1234567 Name", "1 ROI"}) {
        EXPECT_FALSE(ROISection::regionNumber(other)) << other;
    }
}

TEST(RoiSectionTest, RegionsComeInTheOrderOfTheirNumbersWhateverThatOfTheEntries)
{
    const auto reading = ROISection::read({{"ROI 10 Shape", "rect:1,1,1,1"},
                                           {"ROI 2 Name", "two"},
                                           {"Comment", "of somebody"},
                                           {"roi 10 name", "ten"},
                                           {"ROI 2 Shape", "ellipse:1,1,1,1"}});
    ASSERT_EQ(reading.regions.size(), 2);
    EXPECT_EQ(reading.regions[0].name, "two");
    EXPECT_EQ(reading.regions[1].name, "ten");
    EXPECT_EQ(reading.numbers, (QSet<int>{2, 10}));
    EXPECT_TRUE(reading.messages.isEmpty());
}

TEST(RoiSectionTest, WhatCannotBeReadIsToldAndTheRestIsKept)
{
    const auto reading = ROISection::read({{"ROI 1 Name", "torn"},
                                           {"ROI 2 Name", "bad"},
                                           {"ROI 2 Shape", "rect:1,2,3"},
                                           {"ROI 3 Shape", "rect:1,2,3,4"},
                                           {"ROI 3 Shape", "rect:9,9,9,9"},
                                           {"ROI 3 Pixels", "12"},
                                           {"ROI 3 Sum", "much"},
                                           {"ROI 3 Mean", "1,5"},
                                           {"ROI 3 Maximum", "nan"},
                                           {"ROI 3 Minimum", " 4 "},
                                           {"ROI 4 Name", "a\tb"},
                                           {"ROI 4 Shape", "rect:1,2,3,4"},
                                           {"ROI 4 Pixels", "-3"},
                                           {"ROI 4 Mean", "7"}});
    EXPECT_EQ(reading.messages, (QStringList{"\"ROI 1 Shape\" is missing, the region is left out",
                                             "\"ROI 2 Shape\" is \"rect:1,2,3\": a rectangle takes four numbers: x, y, "
                                             "width, height; the region is left out",
                                             "\"ROI 3 Shape\" comes twice, the first counts",
                                             "\"ROI 3 Sum\" is \"much\", which is no number",
                                             "\"ROI 3 Mean\" is \"1,5\", which is no number",
                                             "\"ROI 3 Maximum\" is \"nan\", which is no number",
                                             "\"ROI 3 Name\" is missing, the region is called \"ROI 3\"",
                                             "\"ROI 4 Pixels\" is \"-3\", which is no number of pixels",
                                             "\"ROI 4 Name\" has characters that cannot be shown, the region is called "
                                             "\"ROI 4\""}));
    ASSERT_EQ(reading.regions.size(), 2);
    EXPECT_EQ(ROIShape::toText(reading.regions[0]), "rect:1,2,3,4");
    EXPECT_EQ(reading.regions[0].statistics.pixels, 12);
    EXPECT_EQ(reading.regions[0].statistics.minimum, 4.0);
    EXPECT_TRUE(std::isnan(reading.regions[0].statistics.sum));
    EXPECT_FALSE(reading.regions[1].statistics.isMeasured());
    EXPECT_TRUE(std::isnan(reading.regions[1].statistics.mean));
    EXPECT_EQ(reading.numbers, (QSet<int>{3, 4}));
}

TEST(RoiSectionTest, TwoRegionsOfOneNameAreKeptApart)
{
    const auto reading = ROISection::read({{"ROI 1 Name", "50%2"},
                                           {"ROI 1 Shape", "rect:1,1,1,1"},
                                           {"ROI 2 Name", "50%2"},
                                           {"ROI 2 Shape", "rect:2,2,2,2"}});
    ASSERT_EQ(reading.regions.size(), 2);
    EXPECT_EQ(reading.regions[1].name, "50%2 2");
    EXPECT_EQ(reading.messages, QStringList{"two regions are called \"50%2\", the later becomes \"50%2 2\""});
}

TEST(RoiSectionTest, WhatElseIsToldOfARegionIsKeptWhileItCanNameAnElement)
{
    const auto reading = ROISection::read({{"ROI 5 Colour", "red"},
                                           {"ROI 5 Shape", "rect:1,1,1,1"},
                                           {"ROI 5 Name", "x"},
                                           {"ROI 5 a/b", "lost"},
                                           {"ROI 5 Line Width", "2"}});
    EXPECT_EQ(reading.messages, QStringList{"\"ROI 5 a/b\" cannot name an element, the entry is left out"});
    ASSERT_EQ(reading.regions.size(), 1);
    EXPECT_EQ(
        entriesFor(reading.regions),
        (ROISection::Entries{
            {"ROI 1 Name", "x"}, {"ROI 1 Shape", "rect:1,1,1,1"}, {"ROI 1 Colour", "red"}, {"ROI 1 Line Width", "2"}}));
}

TEST(RoiSectionTest, RegionsAndMessagesBeyondMeasureAreCutOff)
{
    ROISection::Entries many;
    for (int i = 1; i <= ROISection::kMaximumRegions + 5; ++i) {
        many.append({QStringLiteral("ROI %1 Shape").arg(i), "rect:1,1,1,1"});
    }
    const auto reading = ROISection::read(many);
    EXPECT_EQ(reading.regions.size(), ROISection::kMaximumRegions);
    EXPECT_FALSE(reading.numbers.contains(ROISection::kMaximumRegions + 1));
    ASSERT_EQ(reading.messages.size(), ROISection::kMaximumMessages + 1);
    EXPECT_EQ(reading.messages.last(), "951 more messages on regions of interest"); // 1000 names, 1 limit
}

TEST(RoiSectionTest, NamesAreTextsThatCanBeShown)
{
    for (const auto& good : {QString("a"), QString::fromUtf8("\xC3\x84, \"x\"; <&> 50%"), QString(200, 'x'),
                             QString::fromUtf8("\xF0\x9F\x90\xAD")}) {
        EXPECT_EQ(ROISection::reasonAgainstName(good), QString()) << qPrintable(good);
    }
    for (const auto& bad : {QString(), QString(" "), QString(" a"), QString("a\nb"), QString(201, 'x'),
                            QString(QChar(0xd800)), QString(QChar(0xffff))}) {
        EXPECT_NE(ROISection::reasonAgainstName(bad), QString());
    }
}

RC_GTEST_PROP(RoiSectionTest, WhatWasReadFromAnyEntriesSurvives, ())
{
    const auto field = rc::gen::elementOf(std::vector<QString>{"Name", "Shape", "Pixels", "Sum", "Mean", "Unit", "Own",
                                                               "InvalidPixels", "Standard Deviation", "a b c", "%1"});
    const auto value = rc::gen::oneOf(
        rc::gen::map(anyShape(), [](const tagROIInfo& region) { return ROIShape::toText(region); }), anyText(),
        rc::gen::elementOf(std::vector<QString>{"1", "-1", "1e400", "nan", "rect:1,2,3,4", "polygon:1", "0.1"}));
    ROISection::Entries entries;
    for (const auto& [number, name, text] : *rc::gen::container<std::vector<std::tuple<int, QString, QString>>>(
             rc::gen::tuple(rc::gen::inRange(0, 4), field, value))) {
        entries.append({QStringLiteral("ROI ") + QString::number(number) + ' ' + name, text});
    }
    const auto first = ROISection::read(entries);
    const auto second = ROISection::read(entriesFor(first.regions));
    RC_ASSERT(second.messages.isEmpty());
    RC_ASSERT(describe(second.regions) == describe(first.regions));
}
