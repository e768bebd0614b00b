// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/support/CliFixture.h"
#include "workbench/commands/MaskOptions.h"
#include "workbench/commands/ParsedOptions.h"

namespace {

using Kind = MaskRequest::Kind;

MaskRequest maskOf(const QStringList& arguments, Kind eDefault = Kind::None)
{
    const ParsedOptions options([](CommandParser& parser) { declareMaskOptions(parser, QString()); }, arguments);
    return maskOptionOf(options.parser(), eDefault);
}

QString refusalOf(const QStringList& arguments, Kind eDefault = Kind::Photograph)
{
    return failureOf([&] { maskOf(arguments, eDefault); });
}

} // namespace

TEST(MaskOptionTest, WithoutTheOptionTheDefaultOfTheMethodServes)
{
    EXPECT_EQ(maskOf({}).kind, Kind::None);
    EXPECT_EQ(maskOf({}, Kind::Photograph).kind, Kind::Photograph);
    EXPECT_LT(maskOf({}, Kind::Photograph).threshold, 0.0);
}

TEST(MaskOptionTest, WordsNameTheKind)
{
    EXPECT_EQ(maskOf({"--mask", "none"}, Kind::Photograph).kind, Kind::None);
    EXPECT_EQ(maskOf({"--mask", "auto"}).kind, Kind::Photograph);
}

TEST(MaskOptionTest, EverythingElseIsAFile)
{
    for (const char* name : {"body.tif", "./auto", "rectangle.tif", "Auto"}) {
        EXPECT_EQ(maskOf({"--mask", name}).kind, Kind::File) << name;
        EXPECT_EQ(maskOf({"--mask", name}).file, name);
    }
}

TEST(MaskOptionTest, ShapesHaveFourWholeNumbers)
{
    const MaskRequest rectangle = maskOf({"--mask", "rect:1,2,30,40"});
    EXPECT_EQ(rectangle.kind, Kind::Rectangle);
    EXPECT_EQ(rectangle.x, 1);
    EXPECT_EQ(rectangle.y, 2);
    EXPECT_EQ(rectangle.width, 30);
    EXPECT_EQ(rectangle.height, 40);
    EXPECT_EQ(maskOf({"--mask", "ellipse:0,0,5,6"}).kind, Kind::Ellipse);
}

TEST(MaskOptionTest, ShapesThatAreNoneAreUsageErrors)
{
    for (const char* text :
         {"rect:", "rect:1,2,3", "rect:1,2,3,4,5", "rect:1,2,3,x", "rect:1,2,0,4", "rect:1,2,3,-4", "rect:1.5,2,3,4"}) {
        EXPECT_EQ(refusalOf({"--mask", text}),
                  QStringLiteral("[2] --mask: \"%1\" is not of the form rect:X,Y,W,H in whole pixels").arg(text));
    }
    EXPECT_TRUE(refusalOf({"--mask", "ellipse:1"}).contains("ellipse:X,Y,W,H"));
    EXPECT_TRUE(refusalOf({"--mask", ""}).startsWith("[2] --mask takes auto, none, "));
}

TEST(MaskOptionTest, OutlinesAndStoredRegionsAreTakenAsTheyStand)
{
    for (const char* text : {"polygon:1,2,30,2,1.5,40", "freehand:0,0,5,0,0,5", "roi:left lung", "roi:auto"}) {
        EXPECT_EQ(maskOf({"--mask", text}).kind, Kind::Region) << text;
        EXPECT_EQ(maskOf({"--mask", text}).region, text);
    }
}

TEST(MaskOptionTest, OutlinesThatAreNoneAreUsageErrors)
{
    EXPECT_EQ(refusalOf({"--mask", "polygon:1,2,3,4"}),
              "[2] --mask: \"polygon:1,2,3,4\": an outline takes three points at least");
    EXPECT_EQ(refusalOf({"--mask", "polygon:1,2,3,4,5"}),
              "[2] --mask: \"polygon:1,2,3,4,5\": the last point has an x without a y");
    EXPECT_EQ(refusalOf({"--mask", "freehand:1,1,2,2,3,3"}),
              "[2] --mask: \"freehand:1,1,2,2,3,3\": all points lie on a line");
    EXPECT_EQ(refusalOf({"--mask", "roi:"}), "[2] --mask: \"roi:\": the region's name is missing");
}

TEST(MaskOptionTest, AThresholdIsAPercentage)
{
    EXPECT_EQ(maskOf({"--threshold", "12.5"}, Kind::Photograph).threshold, 12.5);
    EXPECT_EQ(maskOf({"--mask", "auto", "--threshold", "0"}).threshold, 0.0);
    for (const char* text : {"-1", "100.5", "much", "nan", "12,5"}) {
        EXPECT_TRUE(refusalOf({"--threshold", text}).startsWith("[2] --threshold takes a number from 0 to 100"))
            << text;
    }
}

TEST(MaskOptionTest, AThresholdGoesWithThePhotographAlone)
{
    for (const char* mask : {"none", "body.tif", "rect:1,2,3,4", "roi:lung"}) {
        EXPECT_EQ(refusalOf({"--mask", mask, "--threshold", "20"}), "[2] --threshold goes with --mask auto");
    }
    EXPECT_EQ(refusalOf({"--threshold", "20"}, Kind::None), "[2] --threshold goes with --mask auto");
}
