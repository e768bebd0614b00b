// SPDX-License-Identifier: GPL-3.0-or-later
// `spum import` from end to end, on small images and, where they lie beside the source, on real ones.
#include "workbench/cli/ProgramFixture.h"

#include "platform/orvimage/TiffIo.h"

#include <QDir>
#include <QImage>

namespace {

using ImportProgramTest = ProgramFixture;

float dyeA(int i)
{
    return static_cast<float>(i % 6);
}

float dyeB(int i)
{
    return static_cast<float>(i / 6);
}

} // namespace

// Images of 6 x 5 pixels, which are padded to a square.
TEST_F(ImportProgramTest, TiffFilesBecomeASequenceThatUnmixes)
{
    writeTiffFile("stack/a.tif", imageOf(6, 5, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/b.tif", imageOf(6, 5, [](int i) { return 0.5F * dyeA(i) + 0.25F * dyeB(i); }));
    writeTiffFile("stack/c.tif", imageOf(6, 5, [](int i) { return dyeB(i); }));
    write("images.csv", "file,excitation,emission\na.tif,640,700\nb.tif,640,720\nc.tif,640,740\n");
    const QJsonObject imported = succeed({"import", "stack", "seq", "--images", "images.csv", "--json"}).json();
    EXPECT_EQ(imported["images"], 3);
    EXPECT_EQ(imported["width"], 6);
    EXPECT_EQ(imported["height"], 5);
    EXPECT_EQ(imported["side"], 6);
    EXPECT_EQ(imported["fluorescence"], true);

    const QJsonObject info = succeed({"info", "seq", "--json"}).json();
    EXPECT_TRUE(info["photograph"].toString().contains("no photograph was given; this is the mean image"));
    EXPECT_EQ(info["unit"], "Counts");
    EXPECT_EQ(info["cube"], "6 x 6");

    const QJsonObject json =
        succeed({"unmix", "seq", "--method", "manual", "--library", library(), "--out", "out", "--json"}).json();
    EXPECT_EQ(json["unit"], "Counts");
    CILImage map;
    ASSERT_TRUE(readTiff(path("out/01_Dye_A.tif"), 0, map, nullptr));
    for (int i = 0; i < 30; ++i)
        EXPECT_NEAR(map.value(static_cast<std::size_t>(i)), static_cast<double>(dyeA(i)), 1e-5) << i;
    for (int i = 30; i < 36; ++i)
        EXPECT_EQ(map.value(static_cast<std::size_t>(i)), 0.0) << i;
}

TEST_F(ImportProgramTest, TheAnswerTellsWhatWasMade)
{
    writeTiffFile("stack/a.tif", imageOf(6, 5, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/b.tif", imageOf(6, 5, [](int i) { return dyeB(i); }));
    write("images.csv", "file,emission\na.tif,700\nb.tif,720\n");
    EXPECT_EQ(QString::fromUtf8(succeed({"import", "stack", "seq", "--images", "images.csv"}).out),
              "2 images of 6 x 5 pixels, padded to 6 x 6\nphotograph: mean image\nsequence in " + path("seq") + '\n');
}

TEST_F(ImportProgramTest, WhatCannotBeImportedLeavesNothing)
{
    writeTiffFile("stack/a.tif", imageOf(6, 5, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/b.tif", imageOf(6, 6, [](int i) { return dyeA(i); }));
    write("stack/c.tif", "cut");
    write("size.csv", "file,emission\na.tif,700\nb.tif,720\n");
    write("key.csv", "file,emission\na.tif,700\na.tif,700\n");
    write("cut.csv", "file,emission\na.tif,700\nc.tif,720\n");
    write("absent.csv", "file,emission\na.tif,700\nd.tif,720\n");
    for (const char* table : {"size.csv", "key.csv", "cut.csv", "absent.csv", "no table.csv"}) {
        const QString refused = refusal({"import", "stack", "seq", "--images", table});
        EXPECT_FALSE(refused.isEmpty()) << table;
        EXPECT_EQ(entriesOf(path(".")), (QStringList{"absent.csv", "cut.csv", "key.csv", "size.csv", "stack"}))
            << table;
    }
}

TEST_F(ImportProgramTest, ASequenceThatExistsIsReplacedOnlyByForce)
{
    writeTiffFile("stack/a.tif", imageOf(4, 4, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/b.tif", imageOf(4, 4, [](int i) { return dyeB(i); }));
    write("images.csv", "file,emission\na.tif,700\nb.tif,720\n");
    succeed({"import", "stack", "seq", "--images", "images.csv"});
    EXPECT_TRUE(refusal({"import", "stack", "seq", "--images", "images.csv"}).contains("exists already"));
    EXPECT_TRUE(refusal({"import", "stack", "stack", "--images", "images.csv", "--force"}).contains("was not made"));
    succeed({"import", "stack", "seq", "--images", "images.csv", "--force", "--name", "again"});
    EXPECT_EQ(succeed({"info", "seq", "--json"}).json()["name"], "again");
}

// Fixed cells with three stains, three excitations and four emissions each: spectra measured in regions where one stain
// prevails, and their maps.
TEST_F(ImportProgramTest, RealCellsAreImportedAndUnmixed)
{
    const QString cells = QStringLiteral(ORV_SOURCE_DIR "/../shared/data/cells");
    if (!QDir(cells).exists())
        GTEST_SKIP() << "the images of cells are not beside the source: " << qPrintable(cells);
    // The files have a colour map, which the importer warns of.
    const QJsonObject imported = spum({"import", cells, "cells", "--images", cells + "/images.csv", "--json"}).json();
    EXPECT_EQ(imported["images"], 12);
    EXPECT_EQ(imported["width"], 512);
    const QJsonObject info = succeed({"info", "cells", "--json"}).json();
    EXPECT_EQ(info["analysable"], true);
    EXPECT_EQ(info["unit"], "Counts");
    EXPECT_TRUE(info["photograph"].toString().contains("mean image"));
    succeed({"library", "save", "stains", "--sequence", "cells", "--region", "tubulin=240,496,16,8", "--region",
             "actin=440,88,8,24", "--region", "nucleic acid=16,88,16,8"});
    const QJsonObject json = succeed({"unmix", "cells", "--library", "stains", "--json", "--out", "out"}).json();
    EXPECT_EQ(json["images"], 12);
    EXPECT_EQ(json["pixels"], 512 * 512);
    ASSERT_EQ(json["components"].toArray().size(), 3);
    double shares = 0.0;
    for (const auto& component : json["components"].toArray()) {
        EXPECT_GT(component.toObject()["share"].toDouble(), 0.02)
            << qPrintable(component.toObject()["name"].toString());
        shares += component.toObject()["share"].toDouble();
    }
    EXPECT_NEAR(shares, 1.0, 0.1);
    EXPECT_LT(json["residual"].toDouble(), 0.35);
    EXPECT_FALSE(QImage(path("out/overview.png")).isNull());
}
