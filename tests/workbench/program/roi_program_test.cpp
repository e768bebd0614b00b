// SPDX-License-Identifier: GPL-3.0-or-later
// `spum roi` from end to end, and what it is made of.
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "services/basis/Failure.h"
#include "services/regions/RoiStore.h"
#include "services/results/ResultMaps.h"
#include "support/ForkedChild.h"
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QImage>
#include <QJsonDocument>

#include <cmath>

namespace {

const QString square = QStringLiteral("rect:1,1,2,2");

class RoiProgramTest : public ProgramFixture
{
protected:
    void writeSmall() const { smallSequence().writeTo(path("seq")); }
    QString clickInfo(int n) const
    {
        return path(QStringLiteral("seq/SMALL-%1/ClickInfo.txt").arg(n, 3, 10, QChar('0')));
    }
    QList<QByteArray> clickInfos() const
    {
        return {contentOf(clickInfo(0)), contentOf(clickInfo(1)), contentOf(clickInfo(2))};
    }
    void addSquare(const QString& strName) const
    {
        succeed({"roi", "seq", "add", "--shape", square, "--name", strName, "--quiet"});
    }
    QStringList listed() const
    {
        QStringList names;
        for (const auto& region : succeed({"roi", "seq", "list", "--json"}).json()["regions"].toArray()) {
            names.append(region.toObject()["name"].toString());
        }
        return names;
    }
    // A result as unmix leaves it: a map of ascending numbers.
    void writeResult(const QString& strFolder, const QStringList& files, int nComponents = 1, int nBinning = 1) const
    {
        for (const auto& file : files) {
            writeTiffFile(strFolder + '/' + file, imageOf(4, 4, [](int i) { return static_cast<float>(i); }));
        }
        QJsonArray components;
        for (int i = 0; i < nComponents; ++i) {
            components.append(QJsonObject{{"name", QStringLiteral("Dye, %1").arg(i)}, {"map", files.value(i)}});
        }
        const QJsonObject summary{{"unit", "Radiance"},
                                  {"binning", nBinning},
                                  {"components", components},
                                  {"files", QJsonArray::fromStringList(files + QStringList{"spectra.csv"})}};
        write(strFolder + "/summary.json", QJsonDocument(summary).toJson());
    }
    QString refusalOfMaps(const QString& strFolder) const
    {
        return failureOf([&] { ResultMaps(path(strFolder)).read(0); });
    }
};

QJsonObject measurement(const QJsonObject& answer, int n)
{
    return answer["measurements"].toArray().at(n).toObject();
}

} // namespace

TEST_F(RoiProgramTest, ARegionIsStoredWithEveryImageAndListed)
{
    writeSmall();
    const QJsonObject json =
        succeed({"roi", "seq", "add", "--shape", " Rect:1,1, 2,2", "--name", "liver", "--json"}).json();
    EXPECT_EQ(json["name"], "liver");
    EXPECT_EQ(json["shape"], square);
    EXPECT_EQ(json["pixels"], 4);
    EXPECT_EQ(json["images"], 3);
    for (const auto& text : clickInfos()) {
        EXPECT_TRUE(text.contains("\n[ROIs] Regions of interest\nROI 1 Name: liver\nROI 1 Shape: rect:1,1,2,2\n"))
            << text.constData();
    }
    EXPECT_EQ(succeed({"roi", "seq", "list"}).out, "region  images  shape\nliver        3  rect:1,1,2,2\n");
    const QByteArray text = succeed({"roi", "seq", "add", "--shape", "ellipse:0,0,1,1"}).out;
    EXPECT_EQ(text, "region \"ROI 1\" (ellipse:0,0,1,1) stored with 3 images; it holds 1 pixel\n");
    EXPECT_EQ(listed(), (QStringList{"liver", "ROI 1"}));
}

// Pixels 5, 6, 9 and 10 of an image whose pixel i is i.
TEST_F(RoiProgramTest, NumbersOfEveryImage)
{
    writeSmall();
    addSquare("liver");
    const QJsonObject json = succeed({"roi", "seq", "measure", "--json"}).json();
    EXPECT_EQ(json["unit"], "Radiant Efficiency");
    ASSERT_EQ(json["measurements"].toArray().size(), 3);
    const QJsonObject first = measurement(json, 0);
    EXPECT_EQ(first["source"], "sequence");
    EXPECT_EQ(first["image"], "SMALL-000");
    EXPECT_EQ(first["excitation"], "640nm");
    EXPECT_EQ(first["emission"], "700nm");
    EXPECT_EQ(first["region"], "liver");
    EXPECT_EQ(first["shape"], square);
    EXPECT_EQ(first["unit"], "Radiant Efficiency");
    EXPECT_EQ(first["pixels"], 4);
    EXPECT_EQ(first["invalidPixels"], 0);
    EXPECT_EQ(first["areaCm2"], 4.0);
    EXPECT_EQ(first["sum"], 30.0);
    EXPECT_EQ(first["mean"], 7.5);
    EXPECT_EQ(first["minimum"], 5.0);
    EXPECT_EQ(first["maximum"], 10.0);
    EXPECT_DOUBLE_EQ(first["standardDeviation"].toDouble(), std::sqrt(4.25));
    EXPECT_EQ(measurement(json, 2)["emission"], "740nm");
    const QString text = QString::fromUtf8(succeed({"roi", "seq", "measure", "--unit", "counts"}).out);
    EXPECT_TRUE(text.startsWith("images in Counts\n\nimage ")) << qPrintable(text);
    EXPECT_TRUE(text.contains(QString::fromUtf8("area [cm\xC2\xB2]")));
    EXPECT_FALSE(text.contains("invalid"));
    EXPECT_EQ(succeed({"roi", "seq", "measure", "--quiet"}).out, QByteArray());
}

TEST_F(RoiProgramTest, NumbersGoIntoATableWithAllDigits)
{
    writeSmall();
    addSquare(QString::fromUtf8("Gro\xC3\x9F, \"links\""));
    EXPECT_EQ(listed(), QStringList{QString::fromUtf8("Gro\xC3\x9F, \"links\"")});
    succeed({"roi", "seq", "measure", "--unit", "counts", "--csv", "numbers.csv", "--quiet"});
    const QByteArray head =
        "source,image,excitation,emission,spot_x,spot_y,time_s,region,shape,unit,pixels,invalid_pixels,area_cm2,"
        "sum,mean,minimum,maximum,standard_deviation\n"
        "sequence,SMALL-000,640nm,700nm,,,,\"Gro\xC3\x9F, \"\"links\"\"\",\"rect:1,1,2,2\",Counts,4,0,4,"
        "30,7.5,5,10,2.0615528128088303\n";
    const QByteArray csv = contentOf(path("numbers.csv"));
    EXPECT_TRUE(csv.startsWith(head)) << csv.constData();
    EXPECT_EQ(csv.count('\n'), 4);
    EXPECT_EQ(refusal({"roi", "seq", "measure", "--csv", "numbers.csv"}),
              "numbers.csv exists already; --force replaces it");
    succeed({"roi", "seq", "measure", "--unit", "counts", "--csv", "numbers.csv", "--force", "--quiet"});
    EXPECT_EQ(contentOf(path("numbers.csv")), csv);
    EXPECT_TRUE(
        refusal({"roi", "seq", "measure", "--csv", "absent/x.csv"}).startsWith("absent/x.csv: cannot be written: "));
    EXPECT_EQ(succeed({"roi", "seq", "remove", QString::fromUtf8("Gro\xC3\x9F, \"links\"")}).out,
              "removed the region \"Gro\xC3\x9F, \"links\"\"\n");
    EXPECT_EQ(listed(), QStringList());
}

TEST_F(RoiProgramTest, ARegionKeepsItsPlaceInImagesOfAnotherBinning)
{
    SmallSequence sequence = smallSequence();
    sequence.images[1].binning = 2;
    sequence.images[1].width = sequence.images[1].height = 2;
    sequence.images[1].value = [](int i) { return static_cast<float>(100 * i); };
    sequence.writeTo(path("seq"));
    succeed({"roi", "seq", "add", "--shape", "rect:2,0,2,2", "--quiet"});
    const QJsonObject json = succeed({"roi", "seq", "measure", "--unit", "counts", "--json"}).json();
    EXPECT_EQ(measurement(json, 0)["sum"], 2.0 + 3.0 + 6.0 + 7.0);
    EXPECT_EQ(measurement(json, 0)["areaCm2"], 4.0);
    EXPECT_EQ(measurement(json, 1)["pixels"], 1);
    EXPECT_EQ(measurement(json, 1)["sum"], 100.0);
    EXPECT_EQ(measurement(json, 1)["areaCm2"], 4.0);
}

TEST_F(RoiProgramTest, ShapesMayBeInPixelsOfTheFirstImage)
{
    SmallSequence sequence = smallSequence();
    for (auto& image : sequence.images) {
        image.binning = 4;
    }
    sequence.writeTo(path("seq"));
    const QJsonObject json =
        succeed({"roi", "seq", "add", "--shape", "polygon:1,1,3,1,3,3,1,3", "--image-pixels", "--json"}).json();
    EXPECT_EQ(json["shape"], "polygon:4,4,12,4,12,12,4,12");
    EXPECT_EQ(json["pixels"], 4);
    EXPECT_EQ(refusal({"roi", "seq", "add", "--shape", "rect:0,0,1,1"}),
              "the region holds no pixel of the images, which are 16 x 16 pixels of the unbinned sensor at binning 4; "
              "--image-pixels takes a shape in pixels of the first image");
}

TEST_F(RoiProgramTest, ARegionOutsideIsRefusedAndOnePartlyOutsideIsTold)
{
    writeSmall();
    const auto before = clickInfos();
    EXPECT_TRUE(refusal({"roi", "seq", "add", "--shape", "rect:4,0,9,9"})
                    .startsWith("the region holds no pixel of the images"));
    EXPECT_TRUE(
        refusal({"roi", "seq", "add", "--shape", "freehand:-1,-1,-5,-1,-5,-5"}).startsWith("the region holds no"));
    EXPECT_EQ(clickInfos(), before);
    const ProgramResult result = spum({"roi", "seq", "add", "--shape", "ellipse:2,2,9,9"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "spum: warning: a part of the region lies outside the images\n");
}

TEST_F(RoiProgramTest, WhatIsNoRegionIsAMistakeInTheCommand)
{
    writeSmall();
    const QList<std::pair<QStringList, QString>> wrong = {
        {{"add"}, "add takes one --shape, such as rect:x,y,width,height."},
        {{"add", "--shape", square, "--shape", square}, "--shape is given more than once and taken once."},
        {{"add", "--shape", "rect:1,2"}, "--shape: a rectangle takes four numbers: x, y, width, height."},
        {{"add", "--shape", "circle:1,2,3"}, "--shape: a shape begins with"},
        {{"add", "--shape", "polygon:0,0,1,1,2,2"}, "--shape: all points lie on a line."},
        {{"add", "--shape", square, "--name", " "}, "--name: the name is empty."},
        {{"add", "--shape", square, "--name", "a\nb"}, "--name: the name has characters that cannot be shown."},
        {{"add", "--shape", square, "--name", "all"}, "--name: \"all\" stands for all regions and names none."},
        {{"add", "--shape", square, "--csv", "x"}, "--csv does not go with \"spum roi SEQ add\", but with measure."},
        {{"list", "--shape", square}, "--shape does not go with \"spum roi SEQ list\", but with add."},
        {{"list", "liver"},
         "roi takes: SEQ add --shape SHAPE; SEQ list; SEQ measure; SEQ remove NAME; or SEQ rename NAME NEW."},
        {{"remove"}, "roi takes:"},
        {{"rename", "liver"}, "roi takes:"},
        {{"paint"}, "roi takes:"},
        {{}, "roi takes:"},
    };
    for (const auto& [options, reason] : wrong) {
        const QString told = refusal(QStringList{"roi", "seq"} + options, 2);
        EXPECT_TRUE(told.startsWith(reason)) << qPrintable(told);
        EXPECT_TRUE(told.endsWith("See \"spum roi --help\"."));
    }
    addSquare("liver");
    EXPECT_TRUE(refusal({"roi", "seq", "measure", "--unit", "lumen"}, 2).startsWith("--unit takes counts, radiance, "));
}

TEST_F(RoiProgramTest, AskingForWhatIsNotThereTellsWhatIs)
{
    writeSmall();
    EXPECT_EQ(refusal({"roi", "seq", "measure"}),
              "SMALL has no region of interest; \"spum roi SEQ add --shape rect:x,y,width,height\" makes one");
    EXPECT_EQ(refusal({"roi", "seq", "remove", "liver"}), "there is no region \"liver\", and no other");
    EXPECT_EQ(succeed({"roi", "seq", "list"}).out, "no region of interest\n");
    addSquare("liver");
    addSquare("left, upper");
    EXPECT_EQ(refusal({"roi", "seq", "remove", "kidney"}),
              "there is no region \"kidney\"; the regions are: \"liver\", \"left, upper\"");
    EXPECT_EQ(refusal({"roi", "seq", "add", "--shape", square, "--name", "liver"}),
              "there is a region \"liver\" already; remove it first or choose another --name");
    EXPECT_TRUE(refusal({"roi", "absent", "list"}).contains("absent"));
    EXPECT_EQ(succeed({"roi", "seq", "remove", "all"}).out, "removed 2 regions\n");
    EXPECT_EQ(succeed({"roi", "seq", "remove", "all"}).out, "removed 0 regions\n");
}

TEST_F(RoiProgramTest, AUnitThatCannotBeHadIsToldWithTheImage)
{
    SmallSequence sequence = smallSequence();
    sequence.images[1].calibratedUnit = DISPLAYUNIT_COUNTS;
    sequence.writeTo(path("seq"));
    addSquare("liver");
    const QString told = refusal({"roi", "seq", "measure", "--unit", "radiance", "--csv", "x.csv"});
    EXPECT_TRUE(told.startsWith("SMALL-001 cannot be had in Radiance: ")) << qPrintable(told);
    EXPECT_TRUE(told.endsWith("; try --unit counts"));
    EXPECT_FALSE(QFileInfo::exists(path("x.csv")));
    EXPECT_EQ(succeed({"roi", "seq", "measure", "--json"}).json()["unit"], "Counts");
}

TEST_F(RoiProgramTest, PixelsWithoutAValueAreCountedApart)
{
    SmallSequence sequence = smallSequence();
    sequence.images[0].value = [](int i) { return i == 5 ? NAN : 1.0F; };
    sequence.images[2].value = [](int) { return NAN; };
    sequence.writeTo(path("seq"));
    addSquare("liver");
    const ProgramResult result = spum({"roi", "seq", "measure", "--unit", "counts", "--json"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "spum: warning: the region \"liver\" holds no pixel with a value of SMALL-002\n");
    EXPECT_EQ(measurement(result.json(), 0)["pixels"], 3);
    EXPECT_EQ(measurement(result.json(), 0)["invalidPixels"], 1);
    EXPECT_EQ(measurement(result.json(), 0)["sum"], 3.0);
    EXPECT_EQ(measurement(result.json(), 2)["pixels"], 0);
    EXPECT_TRUE(measurement(result.json(), 2)["mean"].isNull());
    EXPECT_TRUE(spum({"roi", "seq", "measure", "--unit", "counts"}).out.contains("  invalid  "));
}

TEST_F(RoiProgramTest, TimesStandInPlaceOfFilters)
{
    SmallSequence sequence = smallSequence();
    sequence.temporal = true;
    for (int i = 0; i < sequence.images.size(); ++i) {
        sequence.images[i].kyvoTime = QString::number(30 * i);
        sequence.images[i].kyvoInterval = "30";
    }
    sequence.writeTo(path("seq"));
    addSquare("liver");
    EXPECT_EQ(measurement(succeed({"roi", "seq", "measure", "--json"}).json(), 2)["time"], 60);
    const QByteArray text = succeed({"roi", "seq", "measure"}).out;
    EXPECT_TRUE(text.contains("time [s]"));
    EXPECT_FALSE(text.contains("excitation"));
}

TEST_F(RoiProgramTest, NumbersCanBeKeptWithTheRegions)
{
    writeSmall();
    addSquare("liver");
    const auto before = clickInfos();
    succeed({"roi", "seq", "measure", "--quiet"});
    EXPECT_EQ(clickInfos(), before);
    succeed({"roi", "seq", "measure", "--unit", "counts", "--save", "--quiet"});
    EXPECT_TRUE(
        clickInfos()[0].contains("ROI 1 Unit: Counts\nROI 1 Pixels: 4\nROI 1 Invalid Pixels: 0\nROI 1 Area cm2: 4\n"
                                 "ROI 1 Sum: 30\nROI 1 Mean: 7.5\nROI 1 Minimum: 5\nROI 1 Maximum: 10\n"
                                 "ROI 1 Standard Deviation: 2.0615528128088303\n"))
        << clickInfos()[0].constData();
    const auto measured = clickInfos();
    addSquare("second");
    succeed({"roi", "seq", "remove", "second", "--quiet"});
    EXPECT_EQ(clickInfos(), measured);
}

TEST_F(RoiProgramTest, RemovingAllBringsTheFilesBack)
{
    writeSmall();
    const auto before = clickInfos();
    addSquare("liver");
    EXPECT_NE(clickInfos(), before);
    EXPECT_EQ(succeed({"roi", "seq", "remove", "all", "--json"}).json()["removed"].toArray(), QJsonArray{"liver"});
    EXPECT_EQ(clickInfos(), before);
}

TEST_F(RoiProgramTest, ARegionThatCannotBeReadIsToldAndStaysUntilAllAreRemoved)
{
    writeSmall();
    QByteArray text = contentOf(clickInfo(1));
    text.replace("\n# end", "\n[ROIs]\nROI 1 Shape: hexagon\n\n# end");
    write("seq/SMALL-001/ClickInfo.txt", text);
    const auto warning = [&](const QStringList& arguments) {
        const ProgramResult result = spum(arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err.count('\n'), 1) << result.err.constData();
        return result.errText();
    };
    EXPECT_TRUE(warning({"roi", "seq", "list"})
                    .contains("SMALL-001/ClickInfo.txt: section \"ROIs\": \"ROI 1 Shape\" is \"hexagon\""));
    warning({"roi", "seq", "add", "--shape", square, "--name", "liver"});
    EXPECT_TRUE(
        contentOf(clickInfo(1)).contains("ROI 2 Name: liver\nROI 2 Shape: rect:1,1,2,2\nROI 1 Shape: hexagon\n"));
    EXPECT_TRUE(contentOf(clickInfo(0)).contains("ROI 1 Name: liver\n"));
    warning({"roi", "seq", "remove", "all"});
    EXPECT_FALSE(contentOf(clickInfo(1)).contains("ROI"));
}

TEST_F(RoiProgramTest, RegionsThatDifferFromImageToImageAreListedEach)
{
    writeSmall();
    addSquare("liver");
    QByteArray text = contentOf(clickInfo(2));
    write("seq/SMALL-002/ClickInfo.txt", text.replace("rect:1,1,2,2", "rect:0,0,4,4"));
    EXPECT_EQ(succeed({"roi", "seq", "list"}).out,
              "region  images  shape\nliver        2  rect:1,1,2,2\nliver        1  rect:0,0,4,4\n");
    EXPECT_EQ(measurement(succeed({"roi", "seq", "measure", "--json"}).json(), 2)["pixels"], 16);
    EXPECT_EQ(succeed({"roi", "seq", "remove", "liver"}).out, "removed the region \"liver\"\n");
    EXPECT_EQ(listed(), QStringList());
}

// To write a click info anew would drop the line that could not be read.
TEST_F(RoiProgramTest, AClickInfoThatWouldLoseLinesIsNotWrittenAndNoOtherEither)
{
    writeSmall();
    write("seq/SMALL-002/ClickInfo.txt", contentOf(clickInfo(2)).replace("\n# end", "\nno key here\n\n# end"));
    const auto before = clickInfos();
    const ProgramResult result = spum({"roi", "seq", "add", "--shape", square});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(
        result.errText().endsWith("the line is skipped; mend this first, to store regions writes the file anew\n"))
        << result.err.constData();
    EXPECT_EQ(clickInfos(), before);
}

TEST_F(RoiProgramTest, InAReadOnlyFolderRegionsAreMeasuredAndNoneIsStored)
{
    writeSmall();
    addSquare("liver");
    const auto before = clickInfos();
    ASSERT_EQ(::chmod(QFile::encodeName(path("..")).constData(), 0755), 0);
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(::chmod(QFile::encodeName(clickInfo(i)).constData(), 0666), 0);
    }
    for (const char* open : {"seq", "seq/SMALL-000", "seq/SMALL-001"}) {
        ASSERT_EQ(::chmod(QFile::encodeName(path(open)).constData(), 0777), 0);
    }
    ASSERT_EQ(::chmod(QFile::encodeName(path("seq/SMALL-002")).constData(), 0555), 0);
    // Beside the first two could be written, and nothing may be left there.
    const int status = inForkedChild([&] {
        if (!becomePlainUser()) {
            return 1;
        }
        RegionFiles files(path("seq"));
        files.lock({});
        CORVSequenceDataset sequence;
        if (sequence.open(path("seq")) != ESTATUS_SUCCESS) {
            return 1;
        }
        RoiStore store(sequence);
        if (sequence.getDatasets().first()->roiManager()->measure(DISPLAYUNIT_COUNTS) != ESTATUS_SUCCESS) {
            return 2;
        }
        tagROIInfo region = store.distinct().first().region;
        region.name = "second";
        store.add(region);
        try {
            store.save(files);
            return 3;
        } catch (const Failure& failure) {
            return failure.text().startsWith(clickInfo(2) + ": cannot be written: ") ? 0 : 4;
        }
    });
    ASSERT_EQ(::chmod(QFile::encodeName(path("seq/SMALL-002")).constData(), 0755), 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(clickInfos(), before);
    EXPECT_EQ(entriesOf(path("seq/SMALL-000")).filter("ClickInfo"), QStringList{"ClickInfo.txt"});
    EXPECT_EQ(entriesOf(path("seq")).filter("regions"), QStringList());
}

TEST_F(RoiProgramTest, ARegionIsRenamedInItsPlaceWithItsNumbers)
{
    writeSmall();
    addSquare("liver");
    addSquare("kidney");
    succeed({"roi", "seq", "measure", "--unit", "counts", "--save", "--quiet"});
    const QJsonObject json = succeed({"roi", "seq", "rename", "liver", "left lobe", "--json"}).json();
    EXPECT_EQ(json["name"], "left lobe");
    EXPECT_EQ(json["before"], "liver");
    EXPECT_EQ(json["images"], 3);
    EXPECT_EQ(listed(), (QStringList{"left lobe", "kidney"}));
    for (const auto& text : clickInfos()) {
        EXPECT_TRUE(text.contains("ROI 1 Name: left lobe\nROI 1 Shape: rect:1,1,2,2\nROI 1 Unit: Counts\n"))
            << text.constData();
    }
    EXPECT_EQ(succeed({"roi", "seq", "rename", "kidney", "liver"}).out, "region \"kidney\" is now \"liver\"\n");
    const auto before = clickInfos();
    EXPECT_EQ(refusal({"roi", "seq", "rename", "liver", "left lobe"}),
              "there is a region \"left lobe\" already; remove it first or choose another NEW");
    EXPECT_EQ(refusal({"roi", "seq", "rename", "spleen", "x"}),
              "there is no region \"spleen\"; the regions are: \"left lobe\", \"liver\"");
    EXPECT_TRUE(refusal({"roi", "seq", "rename", "liver", "all"}, 2).startsWith("NEW: \"all\" stands for"));
    EXPECT_EQ(clickInfos(), before);
}

TEST_F(RoiProgramTest, NothingIsWrittenThroughALinkOutOfTheSequence)
{
    writeSmall();
    ASSERT_TRUE(QDir().rename(path("seq/SMALL-001"), path("elsewhere")));
    ASSERT_TRUE(QFile::link(path("elsewhere"), path("seq/SMALL-001")));
    ASSERT_TRUE(QFile::rename(clickInfo(2), path("third.txt")));
    ASSERT_TRUE(QFile::link(path("third.txt"), clickInfo(2)));
    const auto before = clickInfos();
    const QString told = refusal({"roi", "seq", "add", "--shape", square});
    EXPECT_TRUE(told.contains("/seq/SMALL-001/ClickInfo.txt: a link leads out of the sequence, to "))
        << qPrintable(told);
    EXPECT_EQ(clickInfos(), before);
    ASSERT_TRUE(QFile::remove(path("seq/SMALL-001")));
    ASSERT_TRUE(QDir().rename(path("elsewhere"), path("seq/SMALL-001")));
    EXPECT_TRUE(refusal({"roi", "seq", "add", "--shape", square}).contains("/SMALL-002/ClickInfo.txt: a link leads"));
    EXPECT_EQ(clickInfos(), before);
    // A link within is followed and stays one; so is that to the sequence itself.
    ASSERT_TRUE(QFile::remove(clickInfo(2)));
    ASSERT_TRUE(QFile::rename(path("third.txt"), path("seq/SMALL-002/kept.txt")));
    ASSERT_TRUE(QFile::link("kept.txt", clickInfo(2)));
    ASSERT_TRUE(QFile::link(path("seq"), path("link")));
    succeed({"roi", "link", "add", "--shape", square, "--name", "liver", "--quiet"});
    EXPECT_TRUE(QFileInfo(clickInfo(2)).isSymLink());
    EXPECT_TRUE(contentOf(path("seq/SMALL-002/kept.txt")).contains("ROI 1 Name: liver\n"));
    EXPECT_EQ(succeed({"roi", "seq", "list", "--json"}).json()["regions"].toArray().at(0).toObject()["images"], 3);
}

TEST_F(RoiProgramTest, MapsOfAResultAreMeasuredToo)
{
    simulate();
    succeed({"unmix", "seq", "--library", truth(), "--quiet"});
    succeed({"roi", "seq", "add", "--shape", "ellipse:60,60,120,120", "--name", "back", "--quiet"});
    const QJsonObject json = succeed({"roi", "seq", "measure", "--result", "unmixed-library", "--json"}).json();
    ASSERT_EQ(json["measurements"].toArray().size(), 8 + 4);
    const QJsonObject map = measurement(json, 8 + 2);
    EXPECT_EQ(map["source"], "unmixed-library");
    EXPECT_EQ(map["image"], "AlexaFluor 750");
    EXPECT_EQ(map["unit"], "Radiant Efficiency");
    EXPECT_EQ(map["pixels"], measurement(json, 0)["pixels"]);
    EXPECT_EQ(map["areaCm2"], measurement(json, 0)["areaCm2"]);
    EXPECT_GT(map["sum"].toDouble(), 0.0);
    const QString text =
        QString::fromUtf8(succeed({"roi", "seq", "measure", "--result", path("seq/unmixed-library")}).out);
    EXPECT_TRUE(text.contains("\n\nmaps of unmixed-library in Radiant Efficiency\n\nmap ")) << qPrintable(text);
}

TEST_F(RoiProgramTest, MapsHaveTheirOwnBinningAndNamesAndNoValueOutsideTheMask)
{
    SmallSequence sequence = smallSequence();
    for (auto& image : sequence.images) {
        image.width = image.height = 8;
    }
    sequence.writeTo(path("seq"));
    succeed({"roi", "seq", "add", "--shape", "rect:0,0,8,4", "--quiet"});
    writeResult("masked", {"01_Dye_0.tif"}, 1, 2);
    QImage mask(4, 4, QImage::Format_Grayscale8);
    mask.fill(255);
    mask.scanLine(0)[0] = 0;
    ASSERT_TRUE(mask.save(path("masked/mask.png")));
    writeResult("spots", {"01_Dye_0_spot1.tif", "01_Dye_0_spot2.tif"}, 1, 2);
    const QJsonObject json =
        succeed({"roi", "seq", "measure", "--result", "masked", "--result", "spots", "--json"}).json();
    const QJsonObject masked = measurement(json, 3);
    EXPECT_EQ(masked["image"], "Dye, 0");
    EXPECT_EQ(masked["pixels"], 7);
    EXPECT_EQ(masked["invalidPixels"], 1);
    EXPECT_EQ(masked["sum"], 28.0);
    EXPECT_EQ(masked["minimum"], 1.0);
    EXPECT_EQ(measurement(json, 4)["image"], "01_Dye_0_spot1");
    EXPECT_EQ(measurement(json, 5)["image"], "01_Dye_0_spot2");
    EXPECT_EQ(measurement(json, 5)["pixels"], 8);
}

TEST_F(RoiProgramTest, AFolderThatIsNoResultIsToldByName)
{
    writeSmall();
    addSquare("liver");
    EXPECT_EQ(refusal({"roi", "seq", "measure", "--result", "absent"}),
              "absent: this is no folder with results of \"spum unmix\"");
    write("broken/summary.json", "{ \"files\": [");
    EXPECT_EQ(refusalOfMaps("broken"), path("broken/summary.json") + ":1: this is no JSON: unterminated array");
    write("empty/summary.json", "{ \"binning\": 1 }");
    EXPECT_EQ(refusalOfMaps("empty"), path("empty/summary.json") + " names no maps");
    writeResult("unbinned", {"01.tif"}, 1, 0);
    EXPECT_EQ(refusalOfMaps("unbinned"), path("unbinned/summary.json") + " does not tell the binning of the maps");
    writeResult("mapless", {"01.tif"});
    QFile::remove(path("mapless/01.tif"));
    EXPECT_EQ(refusalOfMaps("mapless"), path("mapless/01.tif") + ": the map is not there");
    writeResult("torn", {"01.tif"});
    write("torn/01.tif", "II*");
    EXPECT_TRUE(refusalOfMaps("torn").startsWith(path("torn/01.tif") + ": "));
}

// A summary that somebody else wrote does not make the program read elsewhere.
TEST_F(RoiProgramTest, MapsAreReadFromTheFolderAlone)
{
    writeTiffFile("secret.tif", imageOf(4, 4, [](int) { return 1.0F; }));
    write("one/summary.json", "{\"unit\":\"Counts\",\"binning\":1,\"files\":[\"../secret.tif\"],\"components\":[]}");
    EXPECT_EQ(refusalOfMaps("one"), path("one/secret.tif") + ": the map is not there");
}
