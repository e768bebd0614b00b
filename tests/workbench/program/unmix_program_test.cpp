// SPDX-License-Identifier: GPL-3.0-or-later
// `spum unmix` and `spum info` from end to end.
#include "workbench/program/ProgramFixture.h"

#include "platform/orvimage/TiffIo.h"

#include <QDomDocument>
#include <QImage>
#include <QJsonDocument>

#include <limits>

namespace {

class UnmixProgramTest : public ProgramFixture
{
protected:
    // Runs an unmixing of "seq" into "out" and returns its answer.
    QJsonObject unmix(const QStringList& options, const QStringList& codes = {}) const
    {
        return succeed(QStringList{"unmix", "seq", "--out", "out", "--json"} + options, codes).json();
    }
    QString unmixRefusal(const QStringList& options, const QString& strSequence = QStringLiteral("seq")) const
    {
        const QString refused = refusal(QStringList{"unmix", strSequence, "--out", "out"} + options);
        EXPECT_FALSE(entriesOf(path(".")).contains("out"));
        for (const auto& name : entriesOf(path("."))) {
            EXPECT_FALSE(name.startsWith('.')) << qPrintable(name);
        }
        return refused;
    }
    QStringList pairsOfSequence() const
    {
        QStringList pairs;
        for (const auto& image : spum({"info", "seq", "--json"}).json()["images"].toArray()) {
            pairs.append(image.toObject()["first"].toString() + '/' + image.toObject()["second"].toString());
        }
        return pairs;
    }
};

double correlationOf(const QJsonObject& json, const QString& strName)
{
    for (const auto& component : json["components"].toArray()) {
        if (component.toObject()["name"] == strName) {
            return component.toObject()["truthCorrelation"].toDouble(-1.0);
        }
    }
    return -1.0;
}

QStringList namesOf(const QJsonObject& json)
{
    QStringList names;
    for (const auto& component : json["components"].toArray()) {
        names.append(component.toObject()["name"].toString());
    }
    return names;
}

} // namespace

TEST_F(UnmixProgramTest, ASimulatedSequenceIsUnmixedIntoFiles)
{
    simulate();
    const QString text = QString::fromUtf8(succeed({"unmix", "seq", "--library", truth()}).out);
    EXPECT_TRUE(
        text.startsWith("Radiant Efficiency, 8 images of 64 x 64 pixels at binning 4, 4096 of 4096 pixels analysed\n"))
        << qPrintable(text);
    EXPECT_TRUE(text.contains("\nresults in " + path("seq/unmixed-library") + '\n')) << qPrintable(text);
    EXPECT_EQ(
        entriesOf(path("seq/unmixed-library")),
        (QStringList{"01_TissueAF.png",       "01_TissueAF.tif",       "02_Food.png",           "02_Food.tif",
                     "03_AlexaFluor_750.png", "03_AlexaFluor_750.tif", "04_AlexaFluor_790.png", "04_AlexaFluor_790.tif",
                     "composite.png",         "library.csv",           "maps.ome.tif",          "overview.png",
                     "properties.csv",        "report.html",           "residual.csv",          "residual.png",
                     "residual.tif",          "spectra.csv",           "spectra.png",           "spectra.svg",
                     "summary.csv",           "summary.json"}));
    for (const auto& name : entriesOf(path("seq/unmixed-library"))) {
        const QString file = path("seq/unmixed-library/") + name;
        if (name.endsWith(".png")) {
            EXPECT_FALSE(QImage(file).isNull()) << qPrintable(name);
        }
        TiffInfo info;
        if (name.endsWith(".tif")) {
            EXPECT_TRUE(readTiffHeader(file, 0, &info, nullptr)) << qPrintable(name);
            EXPECT_EQ(info.type, ORVTYPE_FLOAT);
            EXPECT_EQ(info.width, 64);
        }
    }
    EXPECT_TRUE(QDomDocument().setContent(contentOf(path("seq/unmixed-library/spectra.svg"))));
}

TEST_F(UnmixProgramTest, TheResultsDoNotDisturbTheSequence)
{
    simulate();
    const QByteArray before = succeed({"info", "seq"}).out;
    succeed({"unmix", "seq", "--library", truth()});
    succeed({"unmix", "seq", "--library", truth(), "--method", "manual"});
    EXPECT_EQ(succeed({"info", "seq"}).out, before);
    EXPECT_TRUE(entriesOf(path("seq")).contains("unmixed-manual"));
}

TEST_F(UnmixProgramTest, InfoTellsWhatASequenceHolds)
{
    simulate();
    const QJsonObject json = succeed({"info", "seq", "--json"}).json();
    EXPECT_EQ(json["kind"], "fluorescent, epi-illumination");
    EXPECT_EQ(json["unit"], "Radiant Efficiency");
    EXPECT_EQ(json["cube"], "64 x 64");
    EXPECT_EQ(json["binning"], 4);
    EXPECT_EQ(json["subject"], "Mouse");
    EXPECT_EQ(json["probes"].toArray(), (QJsonArray{"AlexaFluor 750", "AlexaFluor 790"}));
    EXPECT_EQ(json["analysable"], true);
    EXPECT_TRUE(json["methods"].toArray().contains("library"));
    const QString text = QString::fromUtf8(succeed({"info", "seq"}).out);
    for (const char* word : {"Sequence:", "Kind:", "Axis:", "Photograph:", "Subject:", "Probes:", "Binning:", "Unit:",
                             "Analysis:", "excitation", "emission"}) {
        EXPECT_TRUE(text.contains(word)) << word;
    }
}

TEST_F(UnmixProgramTest, InfoTellsWhyASequenceCannotBeAnalysed)
{
    SmallSequence sequence = smallSequence();
    sequence.photograph = false;
    sequence.writeTo(path("seq"));
    EXPECT_TRUE(succeed({"info", "seq"}).out.contains("Analysis:     not possible: there is no photograph\n"));
    EXPECT_EQ(succeed({"info", "seq", "--json"}).json()["reason"], "there is no photograph");
    EXPECT_TRUE(unmixRefusal({"--library", library()}).endsWith("cannot be analysed: there is no photograph"));
}

TEST_F(UnmixProgramTest, EachUnitUpToTheBestIsReached)
{
    simulate();
    const QList<QPair<QString, QString>> units = {
        {"counts", "Counts"}, {"radiance", "Radiance"}, {"radiant-efficiency", "Radiant Efficiency"}};
    for (const auto& unit : units) {
        const QJsonObject json = unmix({"--library", truth(unit.first), "--unit", unit.first, "--force"});
        EXPECT_EQ(json["unit"], unit.second);
        EXPECT_EQ(json["properties"].toObject()["DataUnit"], unit.second);
        EXPECT_GT(correlationOf(json, "AlexaFluor 750"), 0.9) << qPrintable(unit.first);
    }
}

TEST_F(UnmixProgramTest, AUnitBeyondTheLadderIsRefused)
{
    simulate();
    EXPECT_EQ(unmixRefusal({"--library", truth(), "--unit", "efficiency"}),
              "the unit efficiency cannot be reached; the analysis would end in radiant-efficiency");
}

TEST_F(UnmixProgramTest, AUnitThatCalibrationLacksIsRefusedWithTheReason)
{
    SmallSequence sequence = smallSequence();
    sequence.images[1].calibratedUnit = DISPLAYUNIT_COUNTS;
    sequence.writeTo(path("seq"));
    const QString refused = unmixRefusal({"--library", library(), "--unit", "radiance"});
    EXPECT_TRUE(refused.startsWith("the unit radiance cannot be reached; the analysis would end in counts (Radiance in "
                                   "SMALL-001: "))
        << qPrintable(refused);
    EXPECT_EQ(unmix({"--library", library()})["unit"], "Counts");
}

TEST_F(UnmixProgramTest, TheBinningAskedForIsThatOfTheMaps)
{
    simulate();
    QJsonObject json = unmix({"--library", truth(), "--binning", "8"});
    EXPECT_EQ(json["width"], 32);
    EXPECT_EQ(json["binning"], 8);
    TiffInfo info;
    ASSERT_TRUE(readTiffHeader(path("out/01_TissueAF.tif"), 0, &info, nullptr));
    EXPECT_EQ(info.width, 32);
    json = unmix({"--library", truth(), "--binning", "2", "--force"}, {"upsampled"});
    EXPECT_EQ(json["width"], 128);
    EXPECT_FALSE(json["components"].toArray()[0].toObject().contains("truthCorrelation"));
}

TEST_F(UnmixProgramTest, ABinningThatLeavesNothingIsRefused)
{
    smallSequence().writeTo(path("seq"));
    EXPECT_EQ(unmixRefusal({"--library", library(), "--binning", "8"}), "at binning 8 nothing is left of the images");
}

TEST_F(UnmixProgramTest, ImagesOfTwoBinningsAreBroughtToTheMoreCommon)
{
    simulate({"--mixed-binning"});
    const QJsonObject json = unmix({"--library", truth()});
    EXPECT_EQ(json["binning"], 4);
    EXPECT_EQ(json["width"], 64);
    EXPECT_GT(correlationOf(json, "AlexaFluor 750"), 0.9);
}

TEST_F(UnmixProgramTest, ASelectionIsUsedAloneAndInItsOrder)
{
    simulate();
    const QStringList pairs = pairsOfSequence();
    ASSERT_EQ(pairs.size(), 8);
    EXPECT_EQ(unmix({"--library", truth(), "--select", pairs[5] + ',' + pairs[1] + ", " + pairs[3] + ',' + pairs[4]},
                    {"spectra-alike"})["images"],
              4);
    const QList<QByteArray> lines = contentOf(path("out/spectra.csv")).split('\n');
    EXPECT_TRUE(lines[0].startsWith("excitation,emission,"));
    EXPECT_TRUE(lines[1].startsWith(QString(pairs[5]).replace('/', ',').toUtf8() + ','));
    EXPECT_TRUE(lines[2].startsWith(QString(pairs[1]).replace('/', ',').toUtf8() + ','));
}

TEST_F(UnmixProgramTest, AStarSelectsAnyImage)
{
    simulate();
    const QString excitation = pairsOfSequence().first().section('/', 0, 0);
    int count = 0;
    for (const auto& pair : pairsOfSequence()) {
        count += pair.startsWith(excitation + '/') ? 1 : 0;
    }
    ASSERT_GT(count, 1);
    const ProgramResult result =
        spum({"unmix", "seq", "--out", "out", "--json", "--library", truth(), "--select", excitation + "/*"});
    EXPECT_EQ(result.status, 0) << result.err.constData();
    EXPECT_EQ(result.json()["images"], count);
}

TEST_F(UnmixProgramTest, APairThatIsNotThereIsNamedWithThoseThatAre)
{
    simulate();
    const QString refused = unmixRefusal({"--library", truth(), "--select", "123/456"});
    EXPECT_TRUE(refused.startsWith("--select: no image is \"123/456\"; there are ")) << qPrintable(refused);
    EXPECT_TRUE(refused.contains(pairsOfSequence().first()));
    refusal({"unmix", "seq", "--library", truth(), "--select", "1/2/3"}, 2);
}

TEST_F(UnmixProgramTest, OneImageCannotBeUnmixed)
{
    simulate();
    EXPECT_TRUE(unmixRefusal({"--library", truth(), "--select", pairsOfSequence().first()})
                    .contains("it takes two wavelengths at least"));
}

TEST_F(UnmixProgramTest, MoreSpectraThanImagesAreToldOf)
{
    smallSequence().writeTo(path("seq"));
    write("three.csv", "$,NumSpec,3\n$,Color,red,blue,lime\n$,Select,1,1,1\nExcitation,Emission,A,B,C\n"
                       "640,700,1,0,0.5\n640,720,0.5,1,1\n");
    const ProgramResult result = spum({"unmix", "seq", "--library", "three.csv", "--select", "640/700,640/720"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "spum: warning: 3 spectra for 2 images: the maps are not unique\n");
}

TEST_F(UnmixProgramTest, AMaskLimitsTheAnalysis)
{
    simulate();
    writeTiffFile("mask.tif", imageOf(64, 64, [](int i) { return i % 64 < 20 ? 1.0F : 0.0F; }));
    const QJsonObject json = unmix({"--library", truth(), "--mask", "mask.tif"});
    EXPECT_EQ(json["pixels"], 20 * 64);
    EXPECT_EQ(json["properties"].toObject()["DataMask"], "Yes");
    EXPECT_TRUE(json["files"].toArray().contains("mask.png"));
    const QImage mask(path("out/mask.png"));
    EXPECT_EQ(qGray(mask.pixel(19, 5)), 255);
    EXPECT_EQ(qGray(mask.pixel(20, 5)), 0);
    EXPECT_EQ(unmix({"--library", truth(), "--mask", "none", "--force"})["pixels"], 64 * 64);
    EXPECT_FALSE(entriesOf(path("out")).contains("mask.png"));
}

TEST_F(UnmixProgramTest, AMaskThatDoesNotFitIsRefused)
{
    simulate();
    writeTiffFile("small.tif", imageOf(50, 50, [](int) { return 1.0F; }));
    writeTiffFile("empty.tif", imageOf(64, 64, [](int) { return 0.0F; }));
    EXPECT_TRUE(
        unmixRefusal({"--library", truth(), "--mask", "small.tif"}).contains("small.tif: the mask has 50 x 50"));
    EXPECT_TRUE(unmixRefusal({"--library", truth(), "--mask", "empty.tif"}).contains("no pixel above 0"));
    EXPECT_TRUE(unmixRefusal({"--library", truth(), "--mask", "absent.tif"}).contains("absent.tif"));
}

TEST_F(UnmixProgramTest, ALibraryThatLacksAPairNamesIt)
{
    simulate();
    const QString pair = pairsOfSequence().at(2);
    QByteArray text;
    for (const QByteArray& line : contentOf(truth()).split('\n')) {
        if (!line.startsWith(QString(pair).replace('/', ',').toUtf8() + ',')) {
            text += line + '\n';
        }
    }
    write("lacks.csv", text);
    EXPECT_EQ(unmixRefusal({"--library", "lacks.csv"}),
              "lacks.csv: the spectrum \"TissueAF\" has no value for " + pair);
    EXPECT_TRUE(unmixRefusal({"--library", "absent.csv"}).contains("neither a file nor a saved library"));
}

TEST_F(UnmixProgramTest, ImagesWithPixelsThatAreNotFiniteAreNamed)
{
    SmallSequence sequence = smallSequence();
    sequence.images[0].value = [](int i) { return i == 3 ? std::numeric_limits<float>::infinity() : 1.0F; };
    sequence.images[2].value = [](int i) { return i < 2 ? std::numeric_limits<float>::quiet_NaN() : 1.0F; };
    sequence.writeTo(path("seq"));
    EXPECT_EQ(unmixRefusal({"--library", library()}),
              "these images hold pixels that are NaN or infinite: SMALL-000 (1 pixels), SMALL-002 (2 pixels)");
}

TEST_F(UnmixProgramTest, WithoutATruncatedImageTheRestIsUnmixed)
{
    simulate();
    const QString click = spum({"info", "seq", "--json"}).json()["images"].toArray()[3].toObject()["image"].toString();
    const QString file = path("seq/" + click + "/luminescent.TIF");
    const QByteArray whole = contentOf(file);
    for (const int length : {0, 6, whole.size() / 2, whole.size() - 200}) {
        write("seq/" + click + "/luminescent.TIF", whole.left(length));
        const ProgramResult result = spum({"unmix", "seq", "--library", truth(), "--out", "out", "--json", "--force"});
        EXPECT_EQ(result.status, 0) << length << "\n" << result.err.constData();
        EXPECT_TRUE(result.errText().startsWith("spum: warning: ")) << length;
        EXPECT_TRUE(result.errText().contains(click + "/luminescent.TIF")) << length << "\n" << result.err.constData();
        EXPECT_EQ(result.json()["images"], 7) << length;
    }
}

TEST_F(UnmixProgramTest, ATruncatedInfoFileIsToldAndTheSequenceUnmixed)
{
    simulate();
    write("seq/SequenceInfo.txt", contentOf(path("seq/SequenceInfo.txt")).left(200));
    const ProgramResult result = spum({"unmix", "seq", "--library", truth(), "--out", "out", "--json"});
    EXPECT_EQ(result.status, 0) << result.err.constData();
    EXPECT_TRUE(result.errText().contains("SequenceInfo.txt"));
    EXPECT_EQ(result.json()["images"], 8);
}

TEST_F(UnmixProgramTest, ATemporalSequenceTakesTimeCoursesByHand)
{
    SmallSequence sequence;
    sequence.temporal = true;
    sequence.fluorescence = false;
    const auto fast = [](int i) { return static_cast<float>(i); };
    const auto slow = [](int i) { return static_cast<float>(20 - i); };
    const double courses[3][2] = {{1.0, 1.0}, {0.25, 0.75}, {0.0, 0.5}};
    for (int n = 0; n < 3; ++n) {
        SmallImage image;
        image.excitation.clear();
        image.kyvoTime = QString::number(10 * n);
        image.kyvoInterval = "1";
        const auto a = static_cast<float>(courses[n][0]);
        const auto b = static_cast<float>(courses[n][1]);
        image.value = [=](int i) { return a * fast(i) + b * slow(i); };
        sequence.images.append(image);
    }
    sequence.writeTo(path("seq"));
    write("courses.csv", "$,NumSpec,2\n$,Color,red,blue\n$,Select,1,1\nExcitation,Emission,fast,slow\n"
                         "Int1,0,1,1\nInt1,10,0.25,0.75\nInt1,20,0,0.5\n");
    EXPECT_EQ(unmixRefusal({"--library", "courses.csv", "--method", "library"}),
              "this sequence cannot be unmixed by the method library; it takes automatic, manual");
    const QJsonObject json = unmix({"--library", "courses.csv", "--method", "manual"});
    EXPECT_EQ(namesOf(json), (QStringList{"fast", "slow"}));
    CILImage map;
    ASSERT_TRUE(readTiff(path("out/02_slow.tif"), 0, map, nullptr));
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(map.value(static_cast<std::size_t>(i)), static_cast<double>(slow(i)), 1e-4);
    }
    EXPECT_TRUE(contentOf(path("out/spectra.svg")).contains("Time Point [s]"));
    EXPECT_EQ(succeed({"info", "seq", "--json"}).json()["kind"], "temporal");
    EXPECT_TRUE(refusal({"unmix", "seq", "--library", "courses.csv", "--method", "manual", "--select", "Int1/20"})
                    .contains("it takes two time points at least"));
}

TEST_F(UnmixProgramTest, TheSameInputGivesTheSameFiles)
{
    simulate();
    const QList<QStringList> methods{{"--library", truth()}, {"--ncomponents", "3"}};
    for (const QStringList& method : methods) {
        for (const char* out : {"one", "two"}) {
            const ProgramResult result = spum(QStringList{"unmix", "seq", "--out", out, "--force"} + method);
            EXPECT_EQ(result.status, 0) << result.err.constData();
        }
        EXPECT_EQ(entriesOf(path("one")), entriesOf(path("two")));
        for (const auto& name : entriesOf(path("one"))) {
            EXPECT_EQ(lastingContentOf(path("one/" + name)), lastingContentOf(path("two/" + name))) << qPrintable(name);
        }
    }
}

TEST_F(UnmixProgramTest, TheSameSimulationGivesTheSameFiles)
{
    for (const char* folder : {"a", "b"}) {
        write(QString(folder) + "/x", "");
        succeed({"simulate", QString(folder) + "/seq", "--size", "64", "--bands", "8", "--seed", "5"});
    }
    const QStringList files = filesBelow(path("a/seq"));
    EXPECT_EQ(files, filesBelow(path("b/seq")));
    EXPECT_GT(files.size(), 16);
    for (const auto& name : files) {
        EXPECT_EQ(contentOf(path("a/seq/" + name)), contentOf(path("b/seq/" + name))) << qPrintable(name);
    }
}

TEST_F(UnmixProgramTest, ASequenceMayBeNamedByItsInfoFileAndFromInside)
{
    simulate();
    EXPECT_EQ(succeed({"info", "seq/SequenceInfo.txt"}).out, succeed({"info", "seq"}).out);
    EXPECT_EQ(succeed({"info", "./seq/"}).out, succeed({"info", "seq"}).out);
}
