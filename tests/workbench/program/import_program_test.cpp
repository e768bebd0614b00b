// SPDX-License-Identifier: GPL-3.0-or-later
// `spum import` from end to end, on small images and, where they lie beside the source, on real ones.
#include "workbench/program/ProgramFixture.h"

#include "platform/orvimage/TiffIo.h"

#include <QDir>
#include <QImage>

#include <limits>

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

// 4 x 4 pixels of one colour, (200, 100, 50), as another program writes them.
QByteArray colourTiff()
{
    QByteArray file("II*\0\x08\0\0\0", 8);
    const auto put = [&file](unsigned value, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            file.append(static_cast<char>(value >> (8 * i)));
        }
    };
    constexpr unsigned pixels = 8 + 2 + 9 * 12 + 4 + 6;
    const unsigned entries[9][4] = {{256, 3, 1, 4}, {257, 3, 1, 4}, {258, 3, 3, pixels - 6},
                                    {259, 3, 1, 1}, {262, 3, 1, 2}, {273, 4, 1, pixels},
                                    {277, 3, 1, 3}, {278, 3, 1, 4}, {279, 4, 1, 48}};
    put(9, 2);
    for (const auto& entry : entries) {
        put(entry[0], 2);
        put(entry[1], 2);
        put(entry[2], 4);
        put(entry[3], 4);
    }
    put(0, 4);
    for (int i = 0; i < 3; ++i) {
        put(8, 2);
    }
    for (int i = 0; i < 16; ++i) {
        file.append("\xC8\x64\x32");
    }
    return file;
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
    for (int i = 0; i < 30; ++i) {
        EXPECT_NEAR(map.value(static_cast<std::size_t>(i)), static_cast<double>(dyeA(i)), 1e-5) << i;
    }
    EXPECT_EQ(map.m_lWidth, 6);
    EXPECT_EQ(map.m_lHeight, 5) << "the shape of the images, without the row that made a square of them";
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

TEST_F(ImportProgramTest, ForceSparesWhatTheImportDidNotWrite)
{
    writeTiffFile("stack/m EX640EM700.tif", imageOf(4, 4, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/m EX640EM720.tif", imageOf(4, 4, [](int i) { return dyeB(i); }));
    const QStringList again = {"import", "stack", "seq", "--force"};
    succeed({"import", "stack", "seq"});
    // The table lies there to be edited.
    write("seq/images.csv", contentOf(path("seq/images.csv")).replace("720", "740"));
    EXPECT_TRUE(refusal(again).contains(" would be lost: images.csv (changed); move"));
    ASSERT_TRUE(QFile::rename(path("seq/images.csv"), path("mine.csv")));
    succeed(again);
    write("seq/sub/letter.txt", "dear");
    EXPECT_TRUE(refusal(again).contains(" would be lost: sub/letter.txt; move"));
    EXPECT_EQ(contentOf(path("seq/sub/letter.txt")), "dear");
    ASSERT_TRUE(QFile::remove(path("seq/sub/letter.txt")));
    succeed(again);
    // Of a sequence without a list nothing is known.
    ASSERT_TRUE(QFile::remove(path("seq/.written.json")));
    EXPECT_TRUE(refusal(again).contains(" more; move this away"));
}

TEST_F(ImportProgramTest, WithoutATableNamesTellWhatIsWhat)
{
    const QString folder = QString::fromUtf8("Stapel \xC3\xA4 1/");
    writeTiffFile(folder + "m EX640EM700.tif", imageOf(6, 6, [](int i) { return dyeA(i); }));
    writeTiffFile(folder + "m EX640EM720.tif", imageOf(6, 6, [](int i) { return dyeB(i); }));
    const QString text = QString::fromUtf8(succeed({"import", folder, "seq"}).out);
    EXPECT_TRUE(text.startsWith("image             excitation  emission  from\n"
                                "m EX640EM700.tif         640       700  name: EX640, EM700\n"
                                "m EX640EM720.tif         640       720  name: EX640, EM720\n"
                                "2 images of 6 x 6 pixels, fluorescence\n"))
        << qPrintable(text);
    const QByteArray table = contentOf(path("seq/images.csv"));
    EXPECT_EQ(table, "file,excitation,emission,origin\nm EX640EM700.tif,640,700,\"name: EX640, EM700\"\n"
                     "m EX640EM720.tif,640,720,\"name: EX640, EM720\"\n");
    // The table that was kept makes the same sequence.
    succeed({"import", folder, "again", "--images", "seq/images.csv"});
    EXPECT_EQ(succeed({"info", "again", "--json"}).json()["images"].toArray().size(), 2);
    EXPECT_FALSE(QFileInfo::exists(path("again/images.csv")));
}

TEST_F(ImportProgramTest, DoubtPrintsTheTemplate)
{
    writeTiffFile("stack/ex640_em700.tif", imageOf(6, 6, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/other.tif", imageOf(6, 6, [](int i) { return dyeB(i); }));
    const ProgramResult result = spum({"import", "stack", "seq"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "file,excitation,emission,origin\nex640_em700.tif,640,700,\"name: ex640, em700\"\n"
                          "other.tif,,,\n");
    EXPECT_EQ(
        result.errText(),
        "spum: stack: it is in doubt which image is what: 1 of 2 lack the excitation, the first is other.tif; 1 of 2 "
        "lack the emission, the first is other.tif. Fill in the table on standard output and give it by --images; "
        "--channels numbers them\n");
    EXPECT_FALSE(QFileInfo::exists(path("seq")));

    const ProgramResult json = spum({"import", "stack", "seq", "--json"});
    EXPECT_EQ(json.status, 1);
    EXPECT_EQ(json.json()["doubts"].toArray().size(), 2);
    EXPECT_TRUE(json.json()["template"].toString().startsWith("file,"));

    EXPECT_TRUE(refusal({"import", "stack", "--write-table", "t.csv"})
                    .endsWith("Fill in the table t.csv and give it by --images; --channels numbers them"));
    EXPECT_TRUE(contentOf(path("t.csv")).endsWith("other.tif,,,\n"));
}

TEST_F(ImportProgramTest, TheTableCanBeWrittenAlone)
{
    writeTiffFile("stack/em700.tif", imageOf(6, 6, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/em720.tif", imageOf(6, 6, [](int i) { return dyeB(i); }));
    const QString text = QString::fromUtf8(succeed({"import", "stack", "--write-table", "t 1.csv"}).out);
    EXPECT_TRUE(text.endsWith("table in t 1.csv\n")) << qPrintable(text);
    EXPECT_EQ(refusal({"import", "stack", "--write-table", "t 1.csv"}), "t 1.csv exists already; --force replaces it");
    succeed({"import", "stack", "--write-table", "t 1.csv", "--force"});
    EXPECT_EQ(entriesOf(path(".")), (QStringList{"stack", "t 1.csv"}));
    succeed({"import", "stack", "seq", "--images", "t 1.csv"});
}

TEST_F(ImportProgramTest, ASeriesOfNumberedFramesNeedsTheirInterval)
{
    for (int i = 0; i < 3; ++i) {
        writeTiffFile(QStringLiteral("stack/t000%1.tif").arg(i), imageOf(4, 4, [](int p) { return dyeA(p); }));
    }
    EXPECT_TRUE(spum({"import", "stack", "seq"}).errText().contains("--interval S tells the seconds between frames"));
    const QJsonObject json = succeed({"import", "stack", "seq", "--interval", "2.5", "--json"}).json();
    EXPECT_EQ(json["temporal"], true);
    EXPECT_EQ(json["table"].toArray()[2].toObject()["time"], 5.0);
    EXPECT_EQ(json["table"].toArray()[2].toObject()["origin"], "name: t0002 x 2.5 s");
}

TEST_F(ImportProgramTest, CorrectionsAreMadeAndTold)
{
    writeTiffFile("stack/em700.tif", imageOf(4, 4, [](int) { return 8.0F; }));
    writeTiffFile("stack/em720.tif", imageOf(4, 4, [](int i) { return static_cast<float>(i); }));
    writeTiffFile("dark.tif", imageOf(4, 4, [](int) { return 10.0F; }));
    writeTiffFile("flat.tif", imageOf(4, 4, [](int i) { return i < 8 ? 1.0F : 3.0F; }));
    writeTiffFile("zero.tif", imageOf(4, 4, [](int i) { return static_cast<float>(i); }));
    const QString text = QString::fromUtf8(
        succeed({"import", "stack", "seq", "--dark", "dark.tif", "--flat", "flat.tif", "--exposure", "1.5"}).out);
    EXPECT_TRUE(text.contains(", dark image subtracted (one for all), flat field divided\n")) << qPrintable(text);
    EXPECT_EQ(succeed({"info", "seq", "--json"}).json()["images"].toArray()[1].toObject()["exposure"], 1.5);
    succeed({"export", "seq", "--format", "csv", "--out", "cube.csv"});
    const QList<QByteArray> lines = contentOf(path("cube.csv")).split('\n');
    EXPECT_EQ(lines[1], "0,0,-4,-20");
    EXPECT_EQ(lines[16], "3,3,-1.33333337,3.33333325");
    EXPECT_EQ(refusal({"import", "stack", "bad", "--flat", "zero.tif"}),
              "zero.tif: the flat field is not above 0 in column 0, row 0");
    EXPECT_EQ(refusal({"import", "stack", "bad", "--exposure", "1,2,3"}), "stack: 3 exposures are given for 2 images");
    EXPECT_FALSE(QFileInfo::exists(path("bad")));
}

TEST_F(ImportProgramTest, OptionsThatMeanNothingAreRefused)
{
    writeTiffFile("stack/em700.tif", imageOf(4, 4, [](int) { return 8.0F; }));
    EXPECT_TRUE(
        refusal({"import", "stack", "seq", "--exposure", "0"}, 2).startsWith("--exposure takes a number above 0"));
    EXPECT_TRUE(refusal({"import", "stack", "seq", "--exposure", "1,,2"}, 2).startsWith("--exposure takes"));
    EXPECT_TRUE(refusal({"import", "stack", "seq", "--pixel-size", "nan"}, 2).startsWith("--pixel-size takes"));
    EXPECT_TRUE(refusal({"import", "stack", "seq", "--interval", "1,5"}, 2).startsWith("--interval takes"));
    EXPECT_TRUE(refusal({"import", "stack", "seq", "--images", "a.csv", "--interval", "1"}, 2)
                    .startsWith("--images does not go"));
    EXPECT_TRUE(refusal({"import", "stack"}, 2).startsWith("import takes the images and the folder to make."));
}

TEST_F(ImportProgramTest, AwkwardStacksAreRefusedByName)
{
    QDir().mkpath(path("empty"));
    EXPECT_EQ(refusal({"import", "empty", "seq"}),
              "empty: there is no TIFF file, no PNG or JPEG picture and no ENVI header in the folder");
    writeTiffFile("mixed/em700.tif", imageOf(4, 4, [](int) { return 8.0F; }));
    writeTiffFile("mixed/em720.tif", imageOf(4, 5, [](int) { return 8.0F; }));
    EXPECT_EQ(refusal({"import", "mixed", "seq"}), "inferred table:3: em720.tif has 4 x 5 pixels where em700.tif has 4 "
                                                   "x 4; --sizes crop, bin or pad brings them to one "
                                                   "size");
    writeTiffFile("twice/a em700.tif", imageOf(4, 4, [](int) { return 8.0F; }));
    writeTiffFile("twice/b em700.tif", imageOf(4, 4, [](int) { return 8.0F; }));
    EXPECT_TRUE(
        spum({"import", "twice", "seq"}).errText().contains("a em700.tif and b em700.tif share emission 700 nm"));
    const QByteArray whole = contentOf(writeTiffFile("cut/em700.tif", imageOf(64, 64, [](int) { return 8.0F; })));
    write("cut/em720.tif", whole.left(whole.size() / 2));
    EXPECT_TRUE(refusal({"import", "cut", "seq"}).startsWith("cut/em720.tif: ")) << "a file cut short";
    write("file", "in the folder's place");
    writeTiffFile("good/em700.tif", imageOf(4, 4, [](int) { return 8.0F; }));
    EXPECT_FALSE(refusal({"import", "good", "file/seq"}).isEmpty());
    EXPECT_EQ(entriesOf(path(".")), (QStringList{"cut", "empty", "file", "good", "mixed", "twice"}));
    // One image is a sequence, if a small one.
    EXPECT_EQ(succeed({"import", "good", "seq", "--json"}).json()["images"], 1);
}

TEST_F(ImportProgramTest, ColoursAreGreyValues)
{
    write("stack/em700.tif", colourTiff());
    writeTiffFile("stack/em720.tif", imageOf(4, 4, [](int i) { return static_cast<float>(i); }));
    const ProgramResult result = spum({"import", "stack", "seq"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errText().contains("em700.tif has colours: their grey values are taken"))
        << result.err.constData();
    succeed({"export", "seq", "--format", "csv", "--out", "cube.csv"});
    EXPECT_EQ(contentOf(path("cube.csv")).split('\n')[1], "0,0,124,0");
}

// Fixed cells with three stains, three excitations and four emissions each: spectra measured in regions where one stain
// prevails, and their maps.
TEST_F(ImportProgramTest, RealCellsAreImportedAndUnmixed)
{
    const QString cells = QStringLiteral(ORV_SOURCE_DIR "/tests/images/cells");
    // The files have a colour map, which the importer warns of.
    const QJsonObject imported = spum({"import", cells, "cells", "--images", cells + "/images.csv", "--json"}).json();
    EXPECT_EQ(imported["images"], 12);
    EXPECT_EQ(imported["width"], 128);
    const QJsonObject info = succeed({"info", "cells", "--json"}).json();
    EXPECT_EQ(info["analysable"], true);
    EXPECT_EQ(info["unit"], "Counts");
    EXPECT_TRUE(info["photograph"].toString().contains("mean image"));
    succeed({"library", "save", "stains", "--sequence", "cells", "--region", "tubulin=60,124,4,2", "--region",
             "actin=110,22,2,6", "--region", "nucleic acid=4,22,4,2"});
    const QJsonObject json = succeed({"unmix", "cells", "--library", "stains", "--json", "--out", "out"}).json();
    EXPECT_EQ(json["images"], 12);
    EXPECT_EQ(json["pixels"], 128 * 128);
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

// The means of 4 x 4 pixels have little noise, and more than the three stains stands above it.
TEST_F(ImportProgramTest, TheStainsOfRealCellsAreCountedWithinOne)
{
    const QString cells = QStringLiteral(ORV_SOURCE_DIR "/tests/images/cells");
    spum({"import", cells, "cells", "--images", cells + "/images.csv", "--quiet"});
    const QJsonObject json = succeed({"pca", "cells", "--json"}).json();
    EXPECT_NEAR(json["componentsAboveNoise"].toInt(), 3, 1);
    EXPECT_LE(json["componentsAboveNoiseLeast"].toInt(), 3);
    EXPECT_GE(json["componentsAboveNoiseMost"].toInt(), 5);
}

// Its bright pixels are those of the images, not those of a body.
TEST_F(ImportProgramTest, APhotographThatIsTheMeanOfTheImagesCutsOutNoMask)
{
    for (int k = 0; k < 4; ++k) {
        const auto value = [k](int i) {
            return dyeA(i) * static_cast<float>(k + 1) + dyeB(i) * static_cast<float>(5 - k);
        };
        writeTiffFile(QStringLiteral("stack/m EX640EM7%1.tif").arg(20 * k, 2, 10, QChar('0')), imageOf(12, 12, value));
    }
    succeed({"import", "stack", "seq", "--quiet"});
    const QStringList unmix = {"unmix", "seq", "--ncomponents", "2", "--no-constraints", "--force"};
    EXPECT_TRUE(succeed(unmix).out.contains(", 144 of 144 pixels analysed\n"));
    EXPECT_TRUE(succeed({"pca", "seq", "--force"}).out.contains(", 144 of 144 pixels analysed\n"));
    const QByteArray masked = succeed(unmix + QStringList{"--mask", "auto"}).out;
    EXPECT_FALSE(masked.contains(", 144 of 144 pixels analysed\n")) << masked.constData();
    EXPECT_TRUE(masked.contains(" of 144 pixels analysed, with ")) << masked.constData();
    // A photograph of a camera is one.
    writeTiffFile("photo.tif", imageOf(12, 12, [](int i) { return i % 12 < 6 ? 10.0F : 200.0F; }));
    succeed({"import", "stack", "other", "--photo", "photo.tif", "--quiet"});
    EXPECT_TRUE(succeed({"unmix", "other", "--ncomponents", "2", "--no-constraints"})
                    .out.contains(", 72 of 144 pixels analysed, with "));
}

TEST_F(ImportProgramTest, ATableLeadsOutOfItsFolderOnlyWhenFollowed)
{
    writeTiffFile("stack/a.tif", imageOf(4, 4, [](int i) { return dyeA(i); }));
    writeTiffFile("else/b.tif", imageOf(4, 4, [](int i) { return dyeB(i); }));
    const QByteArray absolute = QFile::encodeName(path("else/b.tif"));
    for (const QByteArray& file : {QByteArray("../else/b.tif"), absolute}) {
        write("images.csv", "file,emission\na.tif,700\n" + file + ",720\n");
        const QString told = refusal({"import", "stack", "seq", "--images", "images.csv"});
        EXPECT_TRUE(told.contains(" lies outside stack; --follow reads it all the same")) << qPrintable(told);
        succeed({"import", "stack", "seq", "--images", "images.csv", "--follow", "--quiet"});
        ASSERT_TRUE(QDir(path("seq")).removeRecursively());
    }
}

TEST_F(ImportProgramTest, ALimitOfMemoryIsRaisedByAnOption)
{
    writeTiffFile("stack/em700.tif", imageOf(4, 4, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/em720.tif", imageOf(4, 4, [](int i) { return dyeB(i); }));
    const QString told = refusal({"import", "stack", "seq", "--max-memory", "1e-7"});
    EXPECT_TRUE(told.contains("stack: images of 4 x 4 pixels take 1.94e-07 GiB of memory, where 9.97e-08 are allowed; "
                              "--max-memory allows more"))
        << qPrintable(told);
    EXPECT_TRUE(refusal({"import", "stack", "seq", "--max-memory", "0"}, 2).startsWith("--max-memory takes"));
    succeed({"import", "stack", "seq", "--max-memory", "1e-3", "--quiet"});
}

TEST_F(ImportProgramTest, AFolderThatTellsNothingBecomesNumberedChannelsThatAreUnmixed)
{
    writeTiffFile("stack/DAPI.tif", imageOf(8, 8, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/GFP.tif", imageOf(8, 8, [](int i) { return dyeA(i) + dyeB(i); }));
    writeTiffFile("stack/far red.tif", imageOf(8, 8, [](int i) { return dyeB(i); }));
    const ProgramResult run = succeed({"import", "stack", "seq"});
    EXPECT_TRUE(QString::fromUtf8(run.out).contains(", numbered channels\n")) << run.out.constData();
    const QString info = QString::fromUtf8(succeed({"info", "seq"}).out);
    EXPECT_TRUE(info.contains("numbered channels, analysed as luminescent")) << qPrintable(info);
    EXPECT_TRUE(info.contains("far red")) << qPrintable(info);
    const QJsonObject image = succeed({"info", "seq", "--json"}).json()["images"].toArray()[0].toObject();
    EXPECT_EQ(image["second"], "001");
    EXPECT_EQ(image["channel"], "DAPI");
    EXPECT_TRUE(image["wavelength"].isNull());
    succeed({"unmix", "seq", "--ncomponents", "2", "--out", "maps"});
    EXPECT_TRUE(contentOf(path("maps/spectra.svg")).contains(">far red<"));
    const QByteArray spectra = contentOf(path("maps/spectra.csv"));
    EXPECT_TRUE(spectra.startsWith("excitation,emission,channel,")) << spectra.constData();
    EXPECT_TRUE(spectra.contains(",002,GFP,")) << spectra.constData();
    EXPECT_TRUE(contentOf(path("maps/residual.csv")).contains(",003,far red,"));
    // The table is a library for the same images.
    succeed({"unmix", "seq", "--library", "maps/spectra.csv", "--out", "again"});
    EXPECT_EQ(contentOf(path("again/spectra.csv")), spectra);
    EXPECT_TRUE(succeed({"library", "show", "maps/spectra.csv"}).out.contains("002"));
    const QByteArray report = contentOf(path("maps/report.html"));
    EXPECT_TRUE(report.contains("<td>Channels</td><td>DAPI (001), GFP (002), far red (003)</td>"));
    EXPECT_FALSE(report.contains("Block"));
    // And back again, as they were.
    for (const char* file : {"again.ome.tif", "again.hdr", "again.csv"}) {
        const QString format = QString(file).endsWith("hdr")   ? "envi"
                               : QString(file).endsWith("csv") ? "csv"
                                                               : "ome-tiff";
        succeed({"export", "seq", "--format", format, "--out", file});
        const QJsonObject json = succeed({"import", file, QStringLiteral("seq ") + file, "--json"}).json();
        EXPECT_EQ(json["numbered"], true) << file;
        EXPECT_EQ(json["table"].toArray()[2].toObject()["channel"], "far red") << file;
    }
}

TEST_F(ImportProgramTest, AChannelThatCannotBeAnalysedIsCalledByItsNumberToo)
{
    writeTiffFile("stack/a.tif", imageOf(8, 8, [](int i) { return dyeA(i); }));
    write("one.csv", "file,channel\na.tif,\n");
    succeed({"import", "stack", "seq", "--images", "one.csv"});
    const QString info = QString::fromUtf8(succeed({"info", "seq"}).out).section("number", 1).simplified();
    EXPECT_TRUE(info.contains(" 001 channel 1 ")) << qPrintable(info);
    EXPECT_TRUE(info.contains(" no ")) << qPrintable(info);
    EXPECT_EQ(succeed({"info", "seq", "--json"}).json()["images"].toArray()[0].toObject()["second"], "001");
}

TEST_F(ImportProgramTest, WavelengthsBeyondFiltersAreKeptForPlotsAndExports)
{
    writeTiffFile("stack/a.tif", imageOf(8, 8, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/b.tif", imageOf(8, 8, [](int i) { return dyeB(i); }));
    write("far.csv", "file,channel,wavelength\na.tif,,1250.5 nm\nb.tif,water,1450\n");
    write("waves.csv", "file,wavenumber\na.tif,1003\nb.tif,1450.5\n");
    succeed({"import", "stack", "far", "--images", "far.csv"});
    const QString info = QString::fromUtf8(succeed({"info", "far"}).out);
    EXPECT_TRUE(info.contains("1250.5 nm") && info.contains("water (1450 nm)")) << qPrintable(info);
    succeed({"unmix", "far", "--ncomponents", "2", "--out", "maps"});
    EXPECT_TRUE(contentOf(path("maps/spectra.svg")).contains(">Wavelength [nm]<"));
    succeed({"export", "far", "--format", "envi", "--out", "cube.hdr"});
    EXPECT_TRUE(contentOf(path("cube.hdr")).contains("wavelength = {1250.5, 1450}"));

    succeed({"import", "stack", "waves", "--images", "waves.csv"});
    for (const char* file : {"w.ome.tif", "w.hdr"}) {
        succeed({"export", "waves", "--format", QString(file).endsWith("hdr") ? "envi" : "ome-tiff", "--out", file});
        const QJsonObject json = succeed({"import", file, QStringLiteral("seq ") + file, "--json"}).json();
        EXPECT_EQ(json["table"].toArray()[1].toObject()["wavenumber"], 1450.5) << file;
    }
    write("bad.csv", "file,wavelength\na.tif,-3\n");
    EXPECT_EQ(refusal({"import", "stack", "bad", "--images", "bad.csv"}),
              "bad.csv:2: the wavelength \"-3\" is not above 0");
}

TEST_F(ImportProgramTest, MoreChannelsThanNumbersAreRefused)
{
    write("cube.dat", QByteArray(1000, '\1'));
    write("cube.hdr", "ENVI\nsamples = 1\nlines = 1\nbands = 1000\ndata type = 1\ninterleave = bsq\n");
    EXPECT_EQ(
        refusal({"import", "cube.hdr", "seq"}),
        "inferred table:1001: 1000 channels are more than the 999 that can be numbered; leave rows out of the table");
}

TEST_F(ImportProgramTest, ChannelsAreNumberedWhateverIsToldWhenAsked)
{
    writeTiffFile("stack/ex640-660.tif", imageOf(4, 4, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/ex675-700.tif", imageOf(4, 4, [](int i) { return dyeB(i); }));
    EXPECT_TRUE(spum({"import", "stack", "seq"}).errText().contains("--channels numbers them"));
    const QJsonObject json = succeed({"import", "stack", "seq", "--channels", "--json"}).json();
    EXPECT_EQ(json["numbered"], true);
    EXPECT_EQ(json["table"].toArray()[0].toObject()["channel"], "ex640-660");
    EXPECT_TRUE(refusal({"import", "stack", "s", "--channels", "--interval", "2"}, 2).startsWith("--interval makes"));
}

TEST_F(ImportProgramTest, ResultsHaveTheShapeOfTheImagesAndCountNoPadding)
{
    writeTiffFile("stack/a.tif", imageOf(12, 7, [](int i) { return dyeA(i); }));
    writeTiffFile("stack/b.tif", imageOf(12, 7, [](int i) { return 0.5F * dyeA(i) + 0.25F * dyeB(i); }));
    writeTiffFile("stack/c.tif", imageOf(12, 7, [](int i) { return dyeB(i); }));
    succeed({"import", "stack", "seq"});
    const QJsonObject summary = succeed({"unmix", "seq", "--ncomponents", "2", "--out", "maps", "--json"}).json();
    EXPECT_EQ(summary["width"], 12);
    EXPECT_EQ(summary["height"], 7);
    EXPECT_EQ(summary["pixels"], 84);
    EXPECT_FALSE(QFileInfo::exists(path("maps/mask.png"))) << "every pixel of the images was analysed";
    const QString map = summary["components"].toArray()[0].toObject()["map"].toString();
    CILImage image;
    QString error;
    ASSERT_TRUE(readTiff(path("maps/") + map, 0, image, &error)) << qPrintable(error);
    EXPECT_EQ(image.m_lWidth, 12);
    EXPECT_EQ(image.m_lHeight, 7);
    const QImage composite(path("maps/composite.png"));
    EXPECT_GT(composite.width(), composite.height());

    // A mask of that shape, one that reaches into what was added, and numbers that leave the images.
    writeTiffFile("mask.tif", imageOf(12, 7, [](int i) { return i % 12 < 6 ? 1.0F : 0.0F; }));
    writeTiffFile("square.tif", imageOf(12, 12, [](int) { return 1.0F; }));
    const auto pixelsOf = [&](const char* mask, const char* out) -> QJsonValue {
        return succeed({"unmix", "seq", "--ncomponents", "2", "--mask", mask, "--out", out, "--json"}).json()["pixels"];
    };
    EXPECT_EQ(pixelsOf("mask.tif", "half"), 42);
    EXPECT_EQ(QImage(path("half/mask.png")).size(), QSize(12, 7));
    EXPECT_EQ(pixelsOf("square.tif", "square"), 84);
    EXPECT_TRUE(refusal({"unmix", "seq", "--ncomponents", "2", "--mask", "rect:0,0,4,8"}).contains("12 x 7"));
    const QJsonObject pca = succeed({"pca", "seq", "--json"}).json();
    EXPECT_EQ(pca["pixels"], 84);
    EXPECT_EQ(pca["height"], 7);
    // At a coarser binning the pixels that hang over the edge go.
    const QJsonObject coarse =
        succeed({"unmix", "seq", "--ncomponents", "2", "--binning", "2", "--out", "coarse", "--json"}).json();
    EXPECT_EQ(coarse["height"], 3);
    EXPECT_EQ(coarse["pixels"], 18);
}

TEST_F(ImportProgramTest, PixelsAndBandsThatACubeCallsBadAreLeftOutAndItsScaleIsTaken)
{
    QByteArray pixels;
    for (int band = 0; band < 4; ++band) {
        for (int i = 0; i < 64; ++i) {
            const int value = i == 9 && band == 1 ? -9999 : 100 * (1 + i % 8 * band + i / 8 * (3 - band));
            pixels.append(static_cast<char>(value & 0xff)).append(static_cast<char>(value >> 8 & 0xff));
        }
    }
    write("cube.img", pixels);
    write("cube.hdr", "ENVI\nsamples = 8\nlines = 8\nbands = 4\ndata type = 2\ninterleave = bsq\n"
                      "wavelength units = Micrometers\nwavelength = {1.1, 1.2, 1.3, 1.4}\nbbl = {1, 1, 0, 1}\n"
                      "data ignore value = -9999\nreflectance scale factor = 100\n");
    const ProgramResult run = spum({"import", "cube.hdr", "seq"});
    EXPECT_TRUE(run.errText().contains("cube.hdr: bands that the header calls bad (bbl) are left out: 3\n"))
        << qPrintable(run.errText());
    EXPECT_TRUE(run.errText().contains("1 of 64 pixels have no value in some image and are left out\n"))
        << qPrintable(run.errText());
    EXPECT_TRUE(run.out.contains("divided by the scale factor")) << run.out.constData();
    const QJsonObject json = succeed({"unmix", "seq", "--ncomponents", "2", "--out", "maps", "--json"}).json();
    EXPECT_EQ(json["pixels"], 63);
    EXPECT_EQ(QImage(path("maps/mask.png")).pixelColor(1, 1), QColor(Qt::black));
    EXPECT_EQ(
        succeed({"unmix", "seq", "--ncomponents", "2", "--binning", "2", "--out", "two", "--json"}).json()["pixels"],
        15);
    EXPECT_EQ(succeed({"pca", "seq", "--json"}).json()["pixels"], 63);
    succeed({"export", "seq", "--format", "csv", "--out", "cube.csv"});
    EXPECT_TRUE(contentOf(path("cube.csv")).contains("\n7,7,22,22,22\n")) << contentOf(path("cube.csv")).constData();
}

TEST_F(ImportProgramTest, PixelsThatAreNotFiniteAreLeftOutWhenAsked)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    writeTiffFile("stack/a.tif", imageOf(6, 6, [&](int i) { return i == 7 ? nan : dyeA(i); }));
    writeTiffFile("stack/b.tif", imageOf(6, 6, [](int i) { return dyeB(i); }));
    EXPECT_TRUE(spum({"import", "stack", "seq"})
                    .errText()
                    .contains("is not finite or too large; --skip-invalid leaves such pixels out"));
    EXPECT_EQ(spum({"import", "stack", "seq", "--skip-invalid", "--json"}).json()["invalidPixels"], 1);
    EXPECT_EQ(succeed({"unmix", "seq", "--ncomponents", "2", "--out", "maps", "--json"}).json()["pixels"], 35);
}
