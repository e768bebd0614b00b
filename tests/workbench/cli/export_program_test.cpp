// SPDX-License-Identifier: GPL-3.0-or-later
// `spum export` from end to end, and back through `spum import`.
#include "workbench/cli/ProgramFixture.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/TiffTexts.h"
#include "workbench/cli/CubeFiles.h"

#include <QDir>
#include <QXmlStreamReader>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

namespace {

class ExportProgramTest : public ProgramFixture
{
protected:
    // The sequence "in" of images whose pixels use every bit of a float, and negative ones.
    void importImages(const QByteArray& table = "file,excitation,emission\na.tif,640,700\nb.tif,640,720\n",
                      const QStringList& options = {})
    {
        writeTiffFile("stack/a.tif", imageOf(5, 5, [](int i) { return 1.0F / (static_cast<float>(i) - 7.5F); }));
        writeTiffFile("stack/b.tif",
                      imageOf(5, 5, [](int i) { return 1e-20F * static_cast<float>(i * i + 1) / 3.0F; }));
        write("images.csv", table);
        succeed(QStringList{"import", "stack", "in", "--images", "images.csv"} + options);
    }
    // The stored pixels of a sequence, image by image.
    QList<QByteArray> pixelsOf(const QString& name) const
    {
        CORVSequenceDataset sequence;
        EXPECT_EQ(sequence.open(path(name)), ESTATUS_SUCCESS);
        QList<QByteArray> pixels;
        for (auto* dataset : sequence.getDatasets()) {
            const CILImage* image = dataset->getCoreImage(IMAGETYPE_LUMINESCENT);
            pixels.append(image == nullptr || image->dataType() != ORVTYPE_FLOAT
                              ? QByteArray("no floats")
                              : QByteArray(reinterpret_cast<const char*>(image->floats()),
                                           static_cast<int>(image->pixelCount() * sizeof(float))));
        }
        return pixels;
    }
    QStringList keysOf(const QString& name) const
    {
        QStringList keys;
        const auto images = succeed({"info", name, "--json"}).json()["images"].toArray();
        for (const auto& image : images)
            keys.append(image.toObject()["first"].toString() + '/' + image.toObject()["second"].toString());
        return keys;
    }
};

const QStringList formats{"ome-tiff", "envi", "csv"};

QString fileOf(const QString& format)
{
    return format == "ome-tiff" ? "cube.ome.tif" : format == "envi" ? "cube e.hdr" : "cube.csv";
}

} // namespace

TEST_F(ExportProgramTest, AnImportReadsItBackToTheBit)
{
    importImages();
    const QList<QByteArray> pixels = pixelsOf("in");
    for (const QString& format : formats) {
        const QJsonObject json =
            succeed({"export", "in", "--format", format, "--out", fileOf(format), "--json"}).json();
        EXPECT_EQ(json["unit"], "Counts");
        EXPECT_EQ(json["images"].toArray().toVariantList(), (QVariantList{"ex640_em700", "ex640_em720"}));
        succeed({"import", fileOf(format), format});
        EXPECT_EQ(pixelsOf(format), pixels) << qPrintable(format);
        EXPECT_EQ(keysOf(format), (QStringList{"640/700", "640/720"})) << qPrintable(format);
    }
}

TEST_F(ExportProgramTest, TimesComeBack)
{
    importImages("file,interval,time\na.tif,1,0.125\nb.tif,2,1234.5\n");
    const QList<QByteArray> pixels = pixelsOf("in");
    for (const QString& format : formats) {
        succeed({"export", "in", "--format", format, "--out", fileOf(format)});
        succeed({"import", fileOf(format), format});
        EXPECT_EQ(pixelsOf(format), pixels) << qPrintable(format);
        EXPECT_EQ(keysOf(format), keysOf("in")) << qPrintable(format);
        EXPECT_TRUE(QString::fromUtf8(contentOf(path(format + "/images.csv"))).contains(",1234.5,"))
            << qPrintable(format);
    }
}

TEST_F(ExportProgramTest, UnitAndSelectionAreChosen)
{
    simulate();
    const QJsonObject json = succeed({"export", "seq", "--format", "csv", "--out", "cube.csv", "--unit", "radiance",
                                      "--select", "*/720,*/700", "--json"})
                                 .json();
    EXPECT_EQ(json["unit"], "Radiance");
    EXPECT_EQ(json["images"].toArray().toVariantList(), (QVariantList{"ex675_em720", "ex675_em700"}));
    const QList<QByteArray> lines = contentOf(path("cube.csv")).split('\n');
    EXPECT_EQ(lines.size(), 64 * 64 + 2);
    EXPECT_EQ(lines[0], "x,y,ex675_em720,ex675_em700");
    EXPECT_TRUE(lines[64 * 64].startsWith("63,63,"));

    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(path("seq")), ESTATUS_SUCCESS);
    CILImage image;
    ASSERT_EQ(sequence.getDatasets()[1]->getCalibratedLuminImage(DISPLAYUNIT_RADIANCE, &image, "test"),
              ESTATUS_SUCCESS);
    EXPECT_EQ(lines[1 + 63].split(',')[2].toFloat(), image.floats()[63]);
}

TEST_F(ExportProgramTest, OmeXmlTellsChannelsAndSizes)
{
    importImages("file,excitation,emission\na.tif,640,700\nb.tif,640,720\n",
                 {"--exposure", "0.5,2", "--pixel-size", "12.5"});
    succeed({"export", "in", "--format", "ome-tiff", "--out", "cube.ome.tif"});
    TiffTexts texts;
    ASSERT_TRUE(readTiffTexts(path("cube.ome.tif"), &texts, nullptr));
    ASSERT_EQ(texts.pages.size(), 2);
    EXPECT_EQ(texts.pages[1].pageName, "ex640_em720");
    QStringList elements;
    QXmlStreamReader xml(texts.pages[0].description);
    while (!xml.atEnd())
        if (xml.readNext() == QXmlStreamReader::StartElement) {
            elements.append(xml.name().toString());
            const auto value = [&](const char* name) { return xml.attributes().value(name).toString(); };
            if (xml.name() == "Pixels") {
                EXPECT_EQ(value("SizeX"), "5");
                EXPECT_EQ(value("SizeC"), "2");
                EXPECT_EQ(value("Type"), "float");
                EXPECT_EQ(value("PhysicalSizeX"), "12.5");
            } else if (xml.name() == "Channel") {
                EXPECT_EQ(value("ExcitationWavelength"), "640");
            } else if (xml.name() == "Plane") {
                EXPECT_EQ(value("ExposureTime"), value("TheC") == "0" ? "0.5" : "2");
            }
        }
    EXPECT_FALSE(xml.hasError()) << qPrintable(xml.errorString());
    EXPECT_EQ(elements, (QStringList{"OME", "Image", "Description", "Pixels", "Channel", "Channel", "TiffData",
                                     "TiffData", "Plane", "Plane"}));
}

TEST_F(ExportProgramTest, AnEnviCubeHasTwoFiles)
{
    EXPECT_EQ(enviPaths("a b/cube.hdr"), (QStringList{"a b/cube.hdr", "a b/cube.dat"}));
    EXPECT_EQ(enviPaths("a.b/cube"), (QStringList{"a.b/cube.hdr", "a.b/cube.dat"}));
    EXPECT_EQ(enviPaths("cube.img"), (QStringList{"cube.hdr", "cube.img"}));
    importImages();
    const ProgramResult result = succeed({"export", "in", "--format", "envi", "--out", "cube.img"});
    EXPECT_EQ(QString::fromUtf8(result.out), "2 images of 5 x 5 pixels in counts\ncube.hdr\ncube.img\n");
    EXPECT_EQ(contentOf(path("cube.img")).size(), 2 * 25 * 4);
    const QByteArray header = contentOf(path("cube.hdr"));
    EXPECT_TRUE(header.contains("\nwavelength = {700, 720}\n")) << header.constData();
    EXPECT_TRUE(header.contains("\nband names = {ex640_em700, ex640_em720}\n"));
}

TEST_F(ExportProgramTest, BandsThatShareAnEmissionHaveNamesAlone)
{
    importImages("file,excitation,emission\na.tif,620,720\nb.tif,640,720\n");
    succeed({"export", "in", "--format", "envi", "--out", "cube.hdr"});
    EXPECT_FALSE(contentOf(path("cube.hdr")).contains("wavelength"));
    succeed({"import", "cube.hdr", "back"});
    EXPECT_EQ(keysOf("back"), (QStringList{"620/720", "640/720"}));
}

TEST_F(ExportProgramTest, WhatExistsIsReplacedOnlyByForce)
{
    importImages();
    write("cube.dat", "mine");
    EXPECT_EQ(refusal({"export", "in", "--format", "envi", "--out", "cube.hdr"}),
              "cube.dat exists already; --force replaces it");
    EXPECT_EQ(contentOf(path("cube.dat")), "mine");
    EXPECT_FALSE(QFileInfo::exists(path("cube.hdr")));
    succeed({"export", "in", "--format", "envi", "--out", "cube.hdr", "--force"});
    EXPECT_NE(contentOf(path("cube.dat")), "mine");
    EXPECT_TRUE(refusal({"export", "in", "--format", "csv", "--out", "stack", "--force"}).contains("is a folder"));
}

TEST_F(ExportProgramTest, WhatCannotBeWrittenLeavesNothing)
{
    importImages();
    write("file", "in the folder's place");
    const QStringList before = entriesOf(path("."));
    for (const QString& format : formats) {
        const QString target = "file/" + fileOf(format);
        EXPECT_TRUE(refusal({"export", "in", "--format", format, "--out", target}).startsWith("file/"))
            << qPrintable(format);
        EXPECT_FALSE(refusal({"export", "in", "--format", format, "--out", "nowhere/" + fileOf(format)}).isEmpty());
        EXPECT_EQ(entriesOf(path(".")), before);
    }
}

TEST_F(ExportProgramTest, CallsThatMeanNothingAreRefused)
{
    importImages();
    EXPECT_TRUE(refusal({"export", "in", "--out", "a.csv"}, 2).startsWith("--format takes ome-tiff, envi or csv"));
    EXPECT_TRUE(refusal({"export", "in", "--format", "png", "--out", "a.png"}, 2).startsWith("--format takes"));
    EXPECT_TRUE(refusal({"export", "in", "--format", "csv"}, 2).startsWith("--out is missing"));
    EXPECT_TRUE(refusal({"export", "--format", "csv", "--out", "a.csv"}, 2).startsWith("export takes one sequence"));
    EXPECT_TRUE(
        refusal({"export", "in", "--format", "csv", "--out", "a.csv", "--unit", "lux"}, 2).startsWith("--unit takes"));
    EXPECT_TRUE(
        refusal({"export", "in", "--format", "csv", "--out", "a.csv", "--select", "800"}).startsWith("--select: "));
    EXPECT_TRUE(refusal({"export", "in", "--format", "csv", "--out", "a.csv", "--unit", "radiance"})
                    .startsWith("the unit radiance cannot be reached; the images would be in counts ("));
    EXPECT_FALSE(refusal({"export", "absent", "--format", "csv", "--out", "a.csv"}).isEmpty());
    EXPECT_FALSE(QFileInfo::exists(path("a.csv")));
}

TEST_F(ExportProgramTest, OneImageIsACubeToo)
{
    writeTiffFile("em700.tif", imageOf(3, 3, [](int i) { return static_cast<float>(i); }));
    succeed({"import", "em700.tif", "in"});
    for (const QString& format : formats) {
        succeed({"export", "in", "--format", format, "--out", fileOf(format)});
        succeed({"import", fileOf(format), format});
        EXPECT_EQ(pixelsOf(format), pixelsOf("in")) << qPrintable(format);
    }
}
