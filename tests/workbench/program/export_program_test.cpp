// SPDX-License-Identifier: GPL-3.0-or-later
// `spum export` from end to end, and back through `spum import`.
#include "workbench/program/ProgramFixture.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvimage/TiffTexts.h"
#include "services/transfer/CubeFiles.h"

#include <QDir>
#include <QMap>
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
        for (const auto& image : images) {
            keys.append(image.toObject()["first"].toString() + '/' + image.toObject()["second"].toString());
        }
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
    while (!xml.atEnd()) {
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
    }
    EXPECT_FALSE(xml.hasError()) << qPrintable(xml.errorString());
    EXPECT_EQ(elements,
              (QStringList{"OME", "Image", "Description", "Pixels", "Channel", "Channel", "TiffData", "TiffData",
                           "Plane", "Plane", "AnnotationRef", "StructuredAnnotations", "MapAnnotation", "Value", "M"}));
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

// What an import makes of images that are no squares is taken back.
TEST_F(ExportProgramTest, ImagesComeOutAsTheyWentIn)
{
    const CILImage image = imageOf(6, 4, [](int i) { return 1.0F / (static_cast<float>(i) - 7.5F); });
    writeTiffFile("stack/ex640_em700.tif", image);
    writeTiffFile("stack/ex640_em720.tif", image);
    succeed({"import", "stack", "in", "--exposure", "0.1,3", "--pixel-size", "12.3"});
    for (const QString& format : formats) {
        const QJsonObject json =
            succeed({"export", "in", "--format", format, "--out", fileOf(format), "--json"}).json();
        EXPECT_EQ(json["width"], 6) << qPrintable(format);
        EXPECT_EQ(json["height"], 4) << qPrintable(format);
        const QJsonObject back = succeed({"import", fileOf(format), format, "--json"}).json();
        EXPECT_EQ(back["width"], 6);
        EXPECT_EQ(back["height"], 4);
        EXPECT_EQ(pixelsOf(format), pixelsOf("in")) << qPrintable(format);
        CORVSequenceDataset sequence;
        ASSERT_EQ(sequence.open(path(format)), ESTATUS_SUCCESS);
        double seconds = 0.0;
        QString size;
        EXPECT_EQ(sequence.getDatasets()[1]->getExposureTime(&seconds), format != "csv");
        const auto* camera = sequence.getDatasets()[1]->clickInfo["Camera System Info"];
        EXPECT_EQ(camera != nullptr, format != "csv");
        if (camera != nullptr) {
            EXPECT_EQ(seconds, 3.0);
            camera->getValue("Pixel Size cm", &size);
            EXPECT_DOUBLE_EQ(size.toDouble(), 0.00123);
        }
    }
    CILImage page;
    ASSERT_TRUE(readTiff(path("cube.ome.tif"), 1, page, nullptr));
    ASSERT_EQ(page.pixelCount(), image.pixelCount());
    EXPECT_EQ(std::memcmp(page.floats(), image.floats(), image.pixelCount() * sizeof(float)), 0);
}

// Every kind goes out in the unit of its analysis and comes back without a doubt as what it was.
TEST_F(ExportProgramTest, EveryKindComesBack)
{
    const QMap<QString, QStringList> kinds{{"luminescent", {"--bands", "2"}},
                                           {"transillumination", {"--bands", "2", "--spots", "3"}},
                                           {"temporal", {"--times", "0,20,100000"}},
                                           {"temporal-without-keys", {"--times", "0,20,40", "--no-time-keys"}},
                                           {"cherenkov", {"--bands", "2"}}};
    for (auto kind = kinds.cbegin(); kind != kinds.cend(); ++kind) {
        const QString name = kind.key();
        succeed(QStringList{"simulate", name, "--size", "64", "--kind", name.section("-", 0, 0)} + kind.value());
        CORVSequenceDataset sequence;
        ASSERT_EQ(sequence.open(path(name)), ESTATUS_SUCCESS);
        for (const QString& format : formats) {
            const QString file = name + "-" + fileOf(format);
            const QString back = name + "-" + format;
            succeed({"export", name, "--format", format, "--out", file, "--quiet"});
            succeed({"import", file, back});
            CORVSequenceDataset copy;
            ASSERT_EQ(copy.open(path(back)), ESTATUS_SUCCESS);
            EXPECT_EQ(copy.isFluorescence, sequence.isFluorescence) << qPrintable(back);
            EXPECT_EQ(copy.isTransillumination, sequence.isTransillumination) << qPrintable(back);
            EXPECT_EQ(copy.isKyvoSequence(), sequence.isKyvoSequence()) << qPrintable(back);
            const QJsonObject info = succeed({"info", back, "--json"}).json();
            const QString unit = succeed({"info", name, "--json"}).json()["unit"].toString();
            EXPECT_EQ(info["unit"], format == "csv" ? "Counts" : unit) << qPrintable(back);
            const auto datasets = sequence.getDatasets();
            const auto copies = copy.getDatasets();
            ASSERT_EQ(copies.size(), datasets.size()) << qPrintable(back);
            const int number = QStringList{"Counts", "Radiance", "Radiant Efficiency", "Efficiency"}.indexOf(unit);
            for (int i = 0; i < datasets.size(); ++i) {
                EXPECT_EQ(copies[i]->getFLXspot(), datasets[i]->getFLXspot()) << qPrintable(back);
                EXPECT_EQ(copies[i]->getFLYspot(), datasets[i]->getFLYspot()) << qPrintable(back);
                EXPECT_EQ(copies[i]->getExcitationFilter(), datasets[i]->getExcitationFilter()) << qPrintable(back);
                EXPECT_EQ(copies[i]->getEmissionFilter(), datasets[i]->getEmissionFilter()) << qPrintable(back);
                double before = -1.0;
                double after = -1.0;
                datasets[i]->getExposureStart(&before);
                EXPECT_EQ(copies[i]->getExposureStart(&after), format != "csv");
                EXPECT_TRUE(format == "csv" || before == after) << qPrintable(back);
                CILImage image;
                ASSERT_EQ(datasets[i]->getCalibratedLuminImage(static_cast<tag_edisplayunit>(number), &image, "test"),
                          ESTATUS_SUCCESS);
                const CILImage* stored = copies[i]->getCoreImage(IMAGETYPE_LUMINESCENT);
                ASSERT_NE(stored, nullptr);
                ASSERT_EQ(stored->pixelCount(), image.pixelCount());
                EXPECT_EQ(std::memcmp(stored->floats(), image.floats(), image.pixelCount() * sizeof(float)), 0)
                    << qPrintable(back) << " image " << i;
            }
        }
    }
}

// Without its filters a map in radiant efficiency would be one of no excitation.
TEST_F(ExportProgramTest, AnImageOfATimeAloneComesBackAsWhatItWas)
{
    succeed({"simulate", "in", "--size", "64", "--kind", "temporal", "--times", "0,20.5,40"});
    CORVSequenceDataset in;
    ASSERT_EQ(in.open(path("in")), ESTATUS_SUCCESS);
    for (const QString& format : formats) {
        succeed({"export", "in", "--select", "*/20", "--format", format, "--out", fileOf(format)});
        succeed({"import", fileOf(format), format});
        CORVSequenceDataset out;
        ASSERT_EQ(out.open(path(format)), ESTATUS_SUCCESS);
        ASSERT_EQ(out.getDatasets().size(), 1) << qPrintable(format);
        EXPECT_TRUE(out.isKyvoSequence()) << qPrintable(format);
        const QString folder = format + '/' + QDir(path(format)).entryList({"IM*"}).value(0);
        EXPECT_TRUE(contentOf(path(folder + "/ClickInfo.txt")).contains("KyVo Time(s): 20.5\n")) << qPrintable(format);
        const bool named = format == "csv"; // a name has room for one of the two
        EXPECT_EQ(contentOf(path(folder + "/ClickInfo.txt")).contains("Stored Unit: Radiant Efficiency\n"), !named);
        EXPECT_EQ(out.getDatasets()[0]->getExcitationFilter(),
                  named ? QString() : in.getDatasets()[0]->getExcitationFilter());
        EXPECT_EQ(out.getDatasets()[0]->getEmissionFilter(),
                  named ? QString() : in.getDatasets()[0]->getEmissionFilter());
    }
}

// An isotope and the starts of the exposures are what a correction for decay needs.
TEST_F(ExportProgramTest, DecayCanBeCorrectedAfterwards)
{
    succeed({"simulate", "in", "--size", "64", "--kind", "cherenkov", "--bands", "3"});
    for (const QString& format : {QString("ome-tiff"), QString("envi")}) {
        succeed({"export", "in", "--format", format, "--out", fileOf(format)});
        succeed({"import", fileOf(format), format});
        CORVSequenceDataset in;
        CORVSequenceDataset out;
        ASSERT_EQ(in.open(path("in")), ESTATUS_SUCCESS);
        ASSERT_EQ(out.open(path(format)), ESTATUS_SUCCESS);
        QString isotope;
        EXPECT_TRUE(out.isCherenkovIsotopeInData(isotope));
        EXPECT_EQ(isotope, "F-18");
        const auto factorsOf = [](CORVSequenceDataset& sequence) {
            QVector<QString> clicks;
            for (auto* dataset : sequence.getDatasets()) {
                clicks.append(dataset->getClickNumber());
            }
            QVector<double> factors;
            EXPECT_TRUE(sequence.calculateDecayCorrectFactor_CherenkovData(clicks, 6586.2, factors));
            return factors;
        };
        EXPECT_EQ(factorsOf(out), factorsOf(in));
    }
}

// More pixels than a block of rows holds.
TEST_F(ExportProgramTest, ACsvFileOfManyBlocksIsWhatOneWouldBe)
{
    constexpr int images = 60;
    constexpr int side = 200;
    const auto value = [](int k, int i) { return 1e-3F * static_cast<float>((i * 7 + k * 13) % 9973) - 2.0F; };
    for (int k = 0; k < images; ++k) {
        writeTiffFile(QStringLiteral("stack/t%1s.tif").arg(2 * k),
                      imageOf(side, side, [&](int i) { return value(k, i); }));
    }
    succeed({"import", "stack", "in", "--quiet"});
    succeed({"export", "in", "--format", "csv", "--out", "cube.csv"});
    const QList<QByteArray> lines = contentOf(path("cube.csv")).split('\n');
    ASSERT_EQ(lines.size(), side * side + 2);
    for (int i = 0; i < side * side; i += 997) {
        QByteArray expected = QByteArray::number(i % side) + ',' + QByteArray::number(i / side);
        for (int k = 0; k < images; ++k) {
            expected += ',' + QByteArray::number(static_cast<double>(value(k, i)), 'g', 9);
        }
        ASSERT_EQ(lines[i + 1], expected) << i;
    }
    succeed({"import", "cube.csv", "back", "--quiet"});
    EXPECT_EQ(pixelsOf("back"), pixelsOf("in"));
    EXPECT_FALSE(entriesOf(path(".")).join(' ').contains(".cube")) << "the images that waited";
}

TEST_F(ExportProgramTest, ATimeBeforeZeroComesBack)
{
    importImages("file,time\na.tif,-20.5\nb.tif,100000\n");
    for (const QString& format : formats) {
        const QJsonObject json =
            succeed({"export", "in", "--format", format, "--out", fileOf(format), "--json"}).json();
        EXPECT_EQ(json["images"].toArray().toVariantList(), (QVariantList{"t=-20.5s", "t100000s"}));
        succeed({"import", fileOf(format), format});
        EXPECT_EQ(keysOf(format), keysOf("in")) << qPrintable(format);
        EXPECT_EQ(pixelsOf(format), pixelsOf("in")) << qPrintable(format);
    }
}

// A filter has one wavelength, whoever asks: the first three digits of its text.
TEST_F(ExportProgramTest, WavelengthsAreThoseThatTheAnalysisReads)
{
    SmallSequence sequence = smallSequence();
    sequence.images[0].emission = "BP20-760nm";
    sequence.images[1].emission = "BP20-780nm";
    sequence.images[2].emission = "f700/30";
    sequence.writeTo(path("in"));
    EXPECT_EQ(keysOf("in"), (QStringList{"640/207", "640/207", "640/700"}));
    succeed({"export", "in", "--format", "csv", "--out", "cube.csv", "--quiet"});
    EXPECT_TRUE(contentOf(path("cube.csv")).startsWith("x,y,ex640_em207,ex640_em207_no2,ex640_em700\n"))
        << contentOf(path("cube.csv")).left(99).constData();
}
