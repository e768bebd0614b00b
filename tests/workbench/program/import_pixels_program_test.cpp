// SPDX-License-Identifier: GPL-3.0-or-later
// What `spum import` does with the pixels of images, from end to end: dark images, backgrounds, sizes that differ.
#include "workbench/program/ProgramFixture.h"

#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/TiffStackWriter.h"

#include <QDir>
#include <QJsonDocument>

namespace {

constexpr int side = 6;

float dyeA(int i)
{
    return static_cast<float>(i % side);
}

float dyeB(int i)
{
    return static_cast<float>(i / side);
}

class ImportPixelsProgramTest : public ProgramFixture
{
protected:
    // Three images of 6 x 6 pixels, mixtures of "Dye A" and "Dye B" as smallSequence(), over a background of `level`
    // times 1, 2 and 3. In the first pixel there is no dye.
    void makeStack(float level)
    {
        writeTiffFile("stack/em700.tif", imageOf(side, side, [=](int i) { return dyeA(i) + level; }));
        writeTiffFile("stack/em720.tif",
                      imageOf(side, side, [=](int i) { return 0.5F * dyeA(i) + 0.25F * dyeB(i) + 2.0F * level; }));
        writeTiffFile("stack/em740.tif", imageOf(side, side, [=](int i) { return dyeB(i) + 3.0F * level; }));
        write("spectra.csv", "wavelength,Dye A,Dye B\n700,1,0\n720,0.5,0.25\n740,0,1\n");
    }
    // Two channels in two planes in depth; each page holds its number, from 0.
    void writeDeepStack() const
    {
        TiffStackWriter writer;
        QString error;
        ASSERT_TRUE(writer.begin(path("deep.ome.tif"), 0, &error)) << qPrintable(error);
        for (int page = 0; page < 4; ++page) {
            TiffWriteOptions options;
            options.description = page > 0 ? QString()
                                           : QStringLiteral("<OME xmlns=\"x\"><Image><Pixels SizeC=\"2\" SizeZ=\"2\" "
                                                            "SizeT=\"1\"><Channel Name=\"DAPI\"/><Channel "
                                                            "Name=\"GFP\"/><TiffData/></Pixels></Image></OME>");
            ASSERT_TRUE(
                writer.add(imageOf(side, side, [=](int) { return static_cast<float>(page); }), options, &error));
        }
        ASSERT_TRUE(writer.finish(&error)) << qPrintable(error);
    }
    QJsonObject originOfMaps() const
    {
        const QJsonObject summary = QJsonDocument::fromJson(contentOf(path("maps/summary.json"))).object();
        return summary["provenance"].toObject()["sequence"].toObject();
    }
    void expectTrueMaps(const QString& sequence)
    {
        succeed({"unmix", sequence, "--library", "spectra.csv", "--out", "maps", "--force"});
        CILImage map;
        ASSERT_TRUE(readTiff(path("maps/01_Dye_A.tif"), 0, map, nullptr));
        ASSERT_EQ(map.pixelCount(), std::size_t{side * side});
        for (int i = 0; i < side * side; ++i) {
            EXPECT_NEAR(map.value(static_cast<std::size_t>(i)), static_cast<double>(dyeA(i)), 1e-5) << i;
        }
    }
};

} // namespace

TEST_F(ImportPixelsProgramTest, ABackgroundIsSubtractedFromEachImageAndToldWhereverOneLooks)
{
    makeStack(50.0F);
    const ProgramResult imported = succeed({"import", "stack", "seq", "--background", "rect:0,0,1,1"});
    EXPECT_TRUE(imported.out.contains("image      background  below 0\n"
                                      "em700.tif          50  0 (0 %)\n"
                                      "em720.tif         100  0 (0 %)\n"
                                      "em740.tif         150  0 (0 %)\n"))
        << imported.out.constData();
    EXPECT_TRUE(imported.out.contains(", background subtracted: rect:0,0,1,1\n"));
    EXPECT_FALSE(imported.out.contains("below 0 are kept"));
    expectTrueMaps("seq");

    const QJsonObject second = succeed({"info", "seq", "--json"}).json()["images"].toArray()[1].toObject();
    EXPECT_EQ(second["background"], 100.0);
    EXPECT_EQ(second["backgroundRule"], "rect:0,0,1,1");
    EXPECT_EQ(second["negativePixels"], 0);
    EXPECT_TRUE(succeed({"info", "seq"}).out.contains("  100 (rect:0,0,1,1)        0\n"));
    const QJsonArray corrections = originOfMaps()["corrections"].toArray();
    ASSERT_EQ(corrections.size(), 3);
    EXPECT_EQ(corrections[2].toObject()["background"], 150.0);
    EXPECT_EQ(corrections[2].toObject()["image"], second["image"].toString().replace("IM0002", "IM0003"));
}

TEST_F(ImportPixelsProgramTest, WhatBecomesNegativeIsKeptAndCounted)
{
    makeStack(50.0F);
    const ProgramResult imported = succeed({"import", "stack", "seq", "--background", "percentile:50"});
    EXPECT_TRUE(imported.out.contains("em700.tif        52.5  18 (50 %)\n")) << imported.out.constData();
    EXPECT_TRUE(imported.out.contains("Pixels below 0 are kept; an analysis takes them for 0.\n"));
    succeed({"export", "seq", "--format", "csv", "--out", "cube.csv"});
    EXPECT_TRUE(contentOf(path("cube.csv")).contains("\n0,0,-2.5,"));
}

TEST_F(ImportPixelsProgramTest, EachImageHasItsDarkImageByNameOrOrder)
{
    makeStack(50.0F);
    for (int k = 1; k <= 3; ++k) {
        const auto level = static_cast<float>(50 * k);
        writeTiffFile(QStringLiteral("darks/dark_em%1.tif").arg(680 + 20 * k),
                      imageOf(side, side, [=](int) { return level; }));
    }
    const ProgramResult imported = succeed({"import", "stack", "seq", "--dark", "darks"});
    EXPECT_TRUE(imported.out.contains("em720.tif  dark_em720.tif  0 (0 %)\n")) << imported.out.constData();
    EXPECT_TRUE(imported.out.contains(", dark image subtracted (by name)\n"));
    expectTrueMaps("seq");
    EXPECT_TRUE(QFile::remove(path("darks/dark_em740.tif")));
    EXPECT_EQ(refusal({"import", "stack", "bad", "--dark", "darks"}), "darks: no dark image is named as em740.tif");
    EXPECT_FALSE(QFileInfo::exists(path("bad")));
}

TEST_F(ImportPixelsProgramTest, SizesThatDifferAreRefusedWithTheOptionThatHelps)
{
    makeStack(0.0F);
    writeTiffFile("stack/em740.tif", imageOf(2 * side, 2 * side, [](int) { return 1.0F; }));
    const QString refused = refusal({"import", "stack", "seq"});
    EXPECT_TRUE(refused.endsWith("em740.tif has 12 x 12 pixels where em700.tif has 6 x 6; --sizes crop, bin or pad "
                                 "brings them to one size"))
        << qPrintable(refused);
    const ProgramResult binned = succeed({"import", "stack", "seq", "--sizes", "bin"});
    EXPECT_TRUE(binned.out.contains("em740.tif          2\n")) << binned.out.constData();
    EXPECT_TRUE(binned.out.contains("3 images of 6 x 6 pixels, of several sizes, binned to the smallest\n"));
    EXPECT_EQ(succeed({"import", "stack", "cut", "--sizes", "crop", "--json"}).json()["width"], 6);
    EXPECT_TRUE(refusal({"import", "stack", "bad", "--sizes", "stretch"}, 2)
                    .startsWith("--sizes takes crop, bin or pad, not \"stretch\"."));
}

TEST_F(ImportPixelsProgramTest, WhatPaddingAddsIsInNoMask)
{
    makeStack(0.0F);
    writeTiffFile("stack/em740.tif", imageOf(8, 7, [](int) { return 1.0F; }));
    const ProgramResult padded = spum({"import", "stack", "seq", "--sizes", "pad", "--json"});
    EXPECT_EQ(padded.json()["width"], 8);
    EXPECT_EQ(padded.json()["height"], 7);
    EXPECT_EQ(padded.json()["invalidPixels"], 8 * 7 - side * side);
    EXPECT_EQ(spum({"unmix", "seq", "--library", "spectra.csv", "--out", "maps", "--json"}).json()["pixels"],
              side * side);
    bool valid = false;
    for (const auto& file : originOfMaps()["files"].toArray()) {
        valid = valid || file.toObject()["file"] == "valid.tif";
    }
    EXPECT_TRUE(valid) << "what the analysis depends on";
}

// 12 of 24 pixels lie below the background of 1, and as many are added.
TEST_F(ImportPixelsProgramTest, TheShareBelow0IsThatOfThePixelsThatHaveAValue)
{
    writeTiffFile("half/em700.tif", imageOf(4, 6, [](int p) { return p % 2 == 0 ? 0.0F : 2.0F; }));
    writeTiffFile("half/em740.tif", imageOf(8, 6, [](int p) { return p % 2 == 0 ? 0.0F : 2.0F; }));
    const ProgramResult imported = spum({"import", "half", "seq", "--sizes", "pad", "--background", "percentile:50"});
    EXPECT_EQ(imported.status, 0);
    EXPECT_TRUE(imported.out.contains("12 (50 %)")) << qPrintable(imported.out);
}

TEST_F(ImportPixelsProgramTest, ARuleThatIsNoneIsRefused)
{
    makeStack(0.0F);
    EXPECT_TRUE(refusal({"import", "stack", "seq", "--background", "percentile:200"}, 2)
                    .startsWith("--background: \"percentile:200\" is not a percentile from 0 to 100."));
    EXPECT_TRUE(refusal({"import", "stack", "seq", "--background", "rect:0,0,100,100"})
                    .endsWith("reaches beyond the image of 6 x 6 pixels"));
}

TEST_F(ImportPixelsProgramTest, APlaneInDepthIsChosen)
{
    writeDeepStack();
    EXPECT_TRUE(refusal({"import", "deep.ome.tif", "seq"}).contains("--z N takes one of them"));
    const QJsonArray table = succeed({"import", "deep.ome.tif", "seq", "--z", "2", "--json"}).json()["table"].toArray();
    ASSERT_EQ(table.size(), 2);
    EXPECT_EQ(table[1].toObject()["channel"], "GFP z2");
    EXPECT_EQ(table[1].toObject()["image"], "deep.ome.tif page 4");
    EXPECT_EQ(succeed({"import", "deep.ome.tif", "all", "--channels", "--json"}).json()["images"], 4);
    EXPECT_TRUE(refusal({"import", "deep.ome.tif", "bad", "--z", "0"}, 2)
                    .startsWith("--z takes a whole number from 1 on, max or mean, not \"0\"."));
    EXPECT_TRUE(refusal({"import", "deep.ome.tif", "bad", "--z", "1", "--images", "t.csv"}, 2)
                    .startsWith("--images does not go with --z"));
}

TEST_F(ImportPixelsProgramTest, OfAllPlanesInDepthTheLargestOrTheMeanValuesAreTaken)
{
    writeDeepStack();
    const ProgramResult largest = succeed({"import", "deep.ome.tif", "seq", "--z", "max"});
    EXPECT_TRUE(largest.out.contains("deep.ome.tif max of the pages 1, 3")) << largest.out.constData();
    EXPECT_TRUE(largest.out.contains(", each a projection of several planes")) << largest.out.constData();
    EXPECT_EQ(contentOf(path("seq/images.csv")).split('\n')[1], "deep.ome.tif,1 3,max,DAPI,");
    const QJsonObject mean = succeed({"import", "deep.ome.tif", "seq", "--z", "Mean", "--force", "--json"}).json();
    EXPECT_EQ(mean["images"], 2);
    EXPECT_EQ(mean["prepared"].toArray()[1].toObject()["projection"], "mean of the pages 2, 4");
    EXPECT_EQ(mean["table"].toArray()[1].toObject()["channel"], "GFP");
    const QJsonObject info = succeed({"info", "seq", "--json"}).json();
    EXPECT_EQ(info["images"].toArray()[0].toObject()["projection"], "mean of the pages 1, 3");
    EXPECT_TRUE(succeed({"info", "seq"}).out.contains("  mean of the pages 2, 4\n"));
    // Pages hold their numbers from 0 on: 0 and 2, 1 and 3.
    const ProgramResult csv = succeed({"export", "seq", "--format", "csv", "--unit", "counts", "--out", "-"});
    EXPECT_TRUE(csv.out.split('\n').value(1).endsWith(",1,2")) << csv.out.left(200).constData();
    // The table that was kept gives the same again.
    succeed({"import", "deep.ome.tif", "again", "--images", "seq/images.csv"});
    EXPECT_EQ(succeed({"export", "again", "--format", "csv", "--unit", "counts", "--out", "-"}).out, csv.out);
}

TEST_F(ImportPixelsProgramTest, AProjectionThatIsNoneIsRefused)
{
    writeDeepStack();
    const auto refused = [this](const QStringList& options) {
        return refusal(QStringList{"import", "deep.ome.tif", "bad"} + options, 2);
    };
    EXPECT_TRUE(refused({"--c", "max"}).startsWith("--c takes a whole number from 1 on, not \"max\"."));
    EXPECT_TRUE(refused({"--z", "sum"}).startsWith("--z takes a whole number from 1 on, max or mean, not \"sum\"."));
    EXPECT_TRUE(refused({"--z", "max", "--t", "mean"}).startsWith("--z and --t take the same projection"));
    EXPECT_TRUE(refused({"--z", "max", "--images", "t.csv"}).startsWith("--images does not go with --z"));
}
