// SPDX-License-Identifier: GPL-3.0-or-later
// `spum roi` on what `spum import` has made: images that were no squares, and pixels that have no value.
#include "workbench/program/ProgramFixture.h"

#include <cmath>
#include <limits>

namespace {

class RoiImportProgramTest : public ProgramFixture
{
protected:
    // Two images of that size, pixel i of which is 10 + i and 20 + i.
    void importStack(int width, int height, const QStringList& options = {})
    {
        for (int k = 1; k <= 2; ++k) {
            writeTiffFile(QStringLiteral("stack/em%1.tif").arg(680 + 20 * k),
                          imageOf(width, height, [=](int i) { return static_cast<float>(10 * k + i); }));
        }
        ASSERT_EQ(spum(QStringList{"import", "stack", "seq", "--quiet"} + options).status, 0);
    }
    void add(const QString& shape) const
    {
        succeed({"roi", "seq", "add", "--shape", shape, "--name", "spot", "--quiet"});
    }
    QJsonArray measured() const
    {
        return spum({"roi", "seq", "measure", "--unit", "counts", "--json"}).json()["measurements"].toArray();
    }
};

} // namespace

TEST_F(RoiImportProgramTest, WhatMadeASquareOfAnImageIsNoPartOfARegion)
{
    importStack(6, 4);
    const ProgramResult added = spum({"roi", "seq", "add", "--shape", "rect:4,2,4,4", "--name", "corner", "--json"});
    EXPECT_EQ(added.status, 0);
    EXPECT_EQ(added.err, "spum: warning: a part of the region lies outside the images\n");
    EXPECT_EQ(added.json()["pixels"], 4);
    EXPECT_EQ(added.json()["shape"], "rect:4,2,4,4") << "it stays as it was given";
    const QJsonObject first = measured().at(0).toObject();
    EXPECT_EQ(first["pixels"], 4);
    EXPECT_EQ(first["invalidPixels"], 0);
    EXPECT_EQ(first["minimum"], 26.0); // pixels 16, 17, 22 and 23
    EXPECT_EQ(first["mean"], 29.5);
    EXPECT_EQ(measured().at(1).toObject()["mean"], 39.5);
}

TEST_F(RoiImportProgramTest, ARegionInWhatWasAddedAloneIsRefused)
{
    importStack(4, 6);
    EXPECT_TRUE(
        refusal({"roi", "seq", "add", "--shape", "rect:4,0,2,6"})
            .startsWith("the region holds no pixel of the images, which are 4 x 6 pixels of the unbinned sensor "
                        "at binning 1"));
    EXPECT_TRUE(refusal({"roi", "seq", "add", "--shape", "polygon:4,0,6,0,6,6", "--image-pixels"})
                    .startsWith("the region holds no pixel of the images"));
    add("rect:3,0,1,6");
    EXPECT_EQ(measured().at(0).toObject()["pixels"], 6);
    EXPECT_EQ(measured().at(0).toObject()["minimum"], 13.0);
}

TEST_F(RoiImportProgramTest, APixelWithoutAValueInOneImageIsLeftOutOfAllAndCounted)
{
    writeTiffFile("stack/em700.tif", imageOf(4, 3, [](int) { return 2.0F; }));
    writeTiffFile("stack/em720.tif",
                  imageOf(4, 3, [](int i) { return i == 5 ? std::numeric_limits<float>::quiet_NaN() : 8.0F; }));
    ASSERT_EQ(spum({"import", "stack", "seq", "--skip-invalid", "--quiet"}).status, 0);
    add("rect:0,0,4,2");
    const QJsonArray rows = measured();
    ASSERT_EQ(rows.size(), 2);
    for (int k = 0; k < 2; ++k) {
        const QJsonObject row = rows.at(k).toObject();
        EXPECT_EQ(row["pixels"], 7) << k;
        EXPECT_EQ(row["invalidPixels"], 1) << k;
        EXPECT_EQ(row["mean"], k == 0 ? 2.0 : 8.0) << "a 0 would make it less";
        EXPECT_EQ(row["standardDeviation"], 0.0) << k;
        EXPECT_EQ(row["minimum"], row["maximum"]) << k;
    }
    const QByteArray text = succeed({"roi", "seq", "measure", "--csv", "regions.csv"}).out;
    EXPECT_TRUE(text.contains("  invalid  ")) << text.constData();
    EXPECT_TRUE(contentOf(path("regions.csv")).contains(",7,1,")) << contentOf(path("regions.csv")).constData();
}

TEST_F(RoiImportProgramTest, TheValueThatAFileMarksPixelsByCountsForNothing)
{
    QByteArray cube;
    for (int band = 0; band < 2; ++band) {
        for (int i = 0; i < 12; ++i) {
            cube.append(static_cast<char>(i == 2 + band ? 255 : 10 + i));
        }
    }
    write("leaf.img", cube);
    write("leaf.hdr", "ENVI\nsamples = 4\nlines = 3\nbands = 2\ndata type = 1\ninterleave = bsq\n"
                      "data ignore value = 255\nwavelength = {510, 530}\n");
    ASSERT_EQ(spum({"import", "leaf.hdr", "seq", "--quiet"}).status, 0);
    add("rect:0,0,4,1");
    for (const auto& row : measured()) {
        EXPECT_EQ(row.toObject()["pixels"], 2);
        EXPECT_EQ(row.toObject()["invalidPixels"], 2);
        EXPECT_EQ(row.toObject()["mean"], 10.5);
        EXPECT_EQ(row.toObject()["maximum"], 11.0);
    }
}

TEST_F(RoiImportProgramTest, ARegionOfNothingButSuchPixelsHasNoMean)
{
    writeTiffFile("stack/em700.tif", imageOf(3, 3, [](int i) { return i == 4 ? INFINITY : 2.0F; }));
    writeTiffFile("stack/em720.tif", imageOf(3, 3, [](int) { return 2.0F; }));
    ASSERT_EQ(spum({"import", "stack", "seq", "--skip-invalid", "--quiet"}).status, 0);
    add("rect:1,1,1,1");
    const ProgramResult result = spum({"roi", "seq", "measure", "--json"});
    EXPECT_TRUE(result.err.contains("the region \"spot\" holds no pixel with a value of ")) << result.err.constData();
    const QJsonObject row = result.json()["measurements"].toArray().at(1).toObject();
    EXPECT_EQ(row["pixels"], 0);
    EXPECT_EQ(row["invalidPixels"], 1);
    EXPECT_TRUE(row["mean"].isNull());
}

TEST_F(RoiImportProgramTest, WhatWasAddedToBringImagesToOneSizeHasNoValueEither)
{
    writeTiffFile("stack/em700.tif", imageOf(4, 4, [](int) { return 3.0F; }));
    writeTiffFile("stack/em720.tif", imageOf(6, 5, [](int) { return 5.0F; }));
    ASSERT_EQ(spum({"import", "stack", "seq", "--sizes", "pad", "--quiet"}).status, 0);
    add("rect:0,0,6,5");
    for (const auto& row : measured()) {
        EXPECT_EQ(row.toObject()["pixels"], 16);
        EXPECT_EQ(row.toObject()["invalidPixels"], 14);
        EXPECT_EQ(row.toObject()["standardDeviation"], 0.0);
    }
}

TEST_F(RoiImportProgramTest, AFileOfSuchPixelsThatCannotBeReadIsTold)
{
    importStack(4, 3);
    add("rect:0,0,4,1");
    write("seq/valid.tif", "II*");
    EXPECT_TRUE(refusal({"roi", "seq", "measure"}).contains("/valid.tif: "));
}
