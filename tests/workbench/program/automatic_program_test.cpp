// SPDX-License-Identifier: GPL-3.0-or-later
// `spum unmix --method automatic` and `spum pca` from end to end.
#include "workbench/program/ProgramFixture.h"

#include "platform/orvimage/TiffIo.h"

#include <QImage>
#include <QJsonDocument>

#include <cmath>

namespace {

const QString names = QStringLiteral("TissueAF,AlexaFluor 680,AlexaFluor 750");

class AutomaticProgramTest : public ProgramFixture
{
protected:
    // Two dyes that lie apart over autofluorescence, 64 x 64 pixels, 18 bands.
    void simulateApart() const
    {
        succeed({"simulate", "seq", "--size", "64", "--probes", "AlexaFluor 680,AlexaFluor 750", "--food-ratio", "0",
                 "--quiet"});
    }
    QJsonObject unmix(const QStringList& options, const QStringList& codes = {}) const
    {
        return succeed(QStringList{"unmix", "seq", "--out", "out", "--json"} + options, codes).json();
    }
    // Refused with status 1, and nothing is written.
    QString refused(const QStringList& arguments) const
    {
        const QString text = refusal(arguments + QStringList{"--out", "out"});
        for (const auto& name : entriesOf(path("."))) {
            EXPECT_TRUE(name != "out" && !name.startsWith('.')) << qPrintable(name);
        }
        return text;
    }
    QString unmixRefusal(const QStringList& options) const { return refused(QStringList{"unmix", "seq"} + options); }
    // Bands of 16 x 16 pixels; pixel i of band j is value(i, j).
    void writeBands(int nBands, const std::function<float(int, int)>& value) const
    {
        SmallSequence sequence;
        sequence.addBands(std::vector<std::function<float(int)>>(static_cast<std::size_t>(nBands)));
        for (int j = 0; j < nBands; ++j) {
            sequence.images[j].value = [=](int i) { return value(i, j); };
            sequence.images[j].width = sequence.images[j].height = 16;
        }
        sequence.writeTo(path("seq"));
    }
    // Three sources with bands of their own.
    static float mixture(int i, int j)
    {
        const double maps[] = {1.0 + i % 16, 2.0 + (i / 16) % 5, 3.0 * ((i * 7) % 11)};
        const double spectra[] = {std::exp(-0.5 * j), 0.5 + 0.1 * j, std::exp(-0.3 * (j - 4) * (j - 4))};
        return static_cast<float>(maps[0] * spectra[0] + maps[1] * spectra[1] + maps[2] * spectra[2]);
    }
};

QStringList namesOf(const QJsonObject& json)
{
    QStringList list;
    for (const auto& component : json["components"].toArray()) {
        list.append(component.toObject()["name"].toString());
    }
    return list;
}

} // namespace

// The simulator's default scene but for its size.
TEST_F(AutomaticProgramTest, NamesResolveSpectraAndMaps)
{
    for (const char* seed : {"1", "2", "3"}) {
        succeed({"simulate", "seq", "--size", "64", "--seed", seed, "--quiet", "--force"});
        const QJsonObject json = unmix({"--components", "TissueAF,Food,AlexaFluor 750,AlexaFluor 790", "--force"});
        EXPECT_EQ(namesOf(json), (QStringList{"TissueAF", "Food", "AlexaFluor 750", "AlexaFluor 790"}));
        for (const auto& value : json["components"].toArray()) {
            const QJsonObject component = value.toObject();
            EXPECT_EQ(component["truthName"], component["name"]);
            EXPECT_GT(component["truthCosine"].toDouble(), 0.95) << qPrintable(component["name"].toString()) << seed;
            EXPECT_GT(component["truthCorrelation"].toDouble(), 0.9)
                << qPrintable(component["name"].toString()) << seed;
        }
    }
}

TEST_F(AutomaticProgramTest, WithoutNamesTheSequencesOwnProbesAreResolved)
{
    simulateApart();
    const QStringList proposed = {"TissueAF", "AlexaFluor 680", "AlexaFluor 750"};
    EXPECT_EQ(spum({"info", "seq", "--json"}).json()["proposedComponents"].toArray(),
              QJsonArray::fromStringList(proposed));
    EXPECT_TRUE(
        spum({"info", "seq"})
            .out.contains(
                "Components:   TissueAF, AlexaFluor 680, AlexaFluor 750 (proposed for the automatic method)\n"));
    EXPECT_EQ(namesOf(unmix({})), proposed);
}

TEST_F(AutomaticProgramTest, TheSummaryTellsHowTheRunWent)
{
    simulateApart();
    const QJsonObject json = unmix({"--components", names, "--trace", "trace.txt"});
    EXPECT_EQ(json["method"], "automatic");
    EXPECT_EQ(json["ending"], "converged");
    EXPECT_GT(json["iterations"].toInt(), 5);
    EXPECT_EQ(json["rank"], 18);
    EXPECT_EQ(json["properties"].toObject()["DataMask"], "Yes");
    // The residual against the data of the cube is the lack of fit, as a fraction.
    EXPECT_NEAR(json["lackOfFit"].toDouble(), json["residual"].toDouble(), 1e-8);
    EXPECT_LT(json["lackOfFitDenoised"].toDouble(), json["lackOfFit"].toDouble());
    EXPECT_NEAR(json["explainedVariance"].toDouble(), 1.0 - std::pow(json["lackOfFit"].toDouble(), 2), 1e-8);
    EXPECT_TRUE(json["components"].toArray()[0].toObject()["locked"].toBool());
    EXPECT_EQ(json["components"].toArray()[1].toObject()["highPass"], 660);
    EXPECT_EQ(contentOf(path("trace.txt")).count("Iteration: "), json["iterations"].toInt());
    const QByteArray csv = contentOf(path("out/summary.csv"));
    EXPECT_TRUE(csv.contains(",converged,")) << csv.constData();
}

TEST_F(AutomaticProgramTest, ANumberGivesUnnamedComponentsThatAreLikenedToTheTruth)
{
    simulateApart();
    const QJsonObject json = unmix({"--ncomponents", "3"});
    EXPECT_EQ(namesOf(json), (QStringList{"UMX1", "UMX2", "UMX3"}));
    QStringList likened;
    for (const auto& component : json["components"].toArray()) {
        likened.append(component.toObject()["truthName"].toString());
    }
    likened.sort();
    EXPECT_EQ(likened, (QStringList{"AlexaFluor 680", "AlexaFluor 750", "TissueAF"}));
    EXPECT_TRUE(entriesOf(path("out")).contains("02_UMX2.tif"));
}

TEST_F(AutomaticProgramTest, WithoutConstraintsTheComponentsHaveNoNames)
{
    simulateApart();
    EXPECT_EQ(namesOf(unmix({"--components", names, "--no-constraints"}, {"names-replaced"})),
              (QStringList{"UMX1", "UMX2", "UMX3"}));
}

TEST_F(AutomaticProgramTest, TheSpectraFoundServeAsALibrary)
{
    simulateApart();
    unmix({"--components", names});
    const QJsonObject json =
        succeed({"unmix", "seq", "--library", "out/spectra.csv", "--mask", "auto", "--out", "again", "--json"}).json();
    EXPECT_EQ(namesOf(json), (QStringList{"TissueAF", "AlexaFluor 680", "AlexaFluor 750"}));
    for (const auto& value : json["components"].toArray()) {
        EXPECT_GT(value.toObject()["truthCorrelation"].toDouble(), 0.9);
    }
}

TEST_F(AutomaticProgramTest, TheSameInputGivesTheSameFiles)
{
    simulateApart();
    for (const char* out : {"one", "two"}) {
        succeed({"unmix", "seq", "--components", names, "--out", out});
    }
    EXPECT_EQ(entriesOf(path("one")), entriesOf(path("two")));
    for (const auto& name : entriesOf(path("one"))) {
        EXPECT_EQ(lastingContentOf(path("one/" + name)), lastingContentOf(path("two/" + name))) << qPrintable(name);
    }
}

TEST_F(AutomaticProgramTest, TheBodyAloneIsAnalysedUnlessAskedOtherwise)
{
    simulateApart();
    const int body = unmix({"--components", names})["pixels"].toInt();
    EXPECT_GT(body, 300);
    EXPECT_LT(body, 2000);
    EXPECT_EQ(unmix({"--components", names, "--mask", "rect:20,10,20,30", "--force"})["pixels"], 600);
    const QImage mask(path("out/mask.png"));
    EXPECT_EQ(qGray(mask.pixel(20, 10)), 255);
    EXPECT_EQ(qGray(mask.pixel(39, 39)), 255);
    EXPECT_EQ(qGray(mask.pixel(19, 10)), 0);
    EXPECT_EQ(qGray(mask.pixel(39, 40)), 0);
    const int ellipse = unmix({"--components", names, "--mask", "ellipse:20,10,20,30", "--force"})["pixels"].toInt();
    // About a quarter of pi of its rectangle, whose outermost pixels it reaches.
    EXPECT_NEAR(ellipse, 485, 30);
    const QStringList atSixty = {"--components", names, "--threshold", "60", "--force", "--out", "out", "--json"};
    const int bright = spum(QStringList{"unmix", "seq"} + atSixty).json()["pixels"].toInt();
    EXPECT_GT(bright, 10);
    EXPECT_LT(bright, body);
    // The library method takes the same masks, and every pixel without one.
    const QStringList library = {"--library", truth(), "--force"};
    EXPECT_EQ(unmix(library)["pixels"], 64 * 64);
    EXPECT_EQ(unmix(library + QStringList{"--mask", "auto"})["pixels"], body);
    EXPECT_EQ(unmix(library + QStringList{"--mask", "rect:20,10,20,30"})["pixels"], 600);
}

TEST_F(AutomaticProgramTest, AMaskOfTooFewPixelsIsRefused)
{
    simulateApart();
    writeTiffFile("one.tif", imageOf(64, 64, [](int i) { return i == 2000 ? 1.0F : 0.0F; }));
    writeTiffFile("empty.tif", imageOf(64, 64, [](int) { return 0.0F; }));
    for (const char* command : {"unmix", "pca"}) {
        EXPECT_EQ(refused({command, "seq", "--mask", "one.tif"}),
                  "only 1 pixel is left for the analysis; it takes 10 at least");
        EXPECT_EQ(refused({command, "seq", "--mask", "rect:30,30,3,3"}),
                  "only 9 pixels are left for the analysis; it takes 10 at least");
        EXPECT_TRUE(
            refused({command, "seq", "--mask", "empty.tif"}).contains("empty.tif: the mask has no pixel above 0"));
        EXPECT_TRUE(refused({command, "seq", "--mask", "rect:60,60,10,10"}).contains("leaves the images"));
    }
    EXPECT_EQ(unmix({"--ncomponents", "2", "--mask", "rect:30,30,5,2"})["pixels"], 10);
}

TEST_F(AutomaticProgramTest, APhotographThatDoesNotCoverTheImagesIsNoMask)
{
    writeBands(4, mixture);
    for (const char* command : {"unmix", "pca"}) {
        EXPECT_TRUE(refused({command, "seq", "--threshold", "50"})
                        .startsWith("SpumKyvo: unable to get a valid photo mask! The photograph (32 x 32 pixels"));
    }
}

TEST_F(AutomaticProgramTest, ANumberThatCannotBeResolvedIsRefused)
{
    writeBands(8, mixture);
    EXPECT_EQ(unmixRefusal({"--ncomponents", "1", "--mask", "none"}),
              "Please select 2-6 components to unmix! (asked for: 1)");
    EXPECT_EQ(unmixRefusal({"--components", "TissueAF", "--mask", "none"}),
              "Please select 2-6 components to unmix! (asked for: 1)");
    EXPECT_EQ(unmixRefusal({"--ncomponents", "7", "--mask", "none"}),
              "Please select 2-6 components to unmix! (asked for: 7; --beyond-six takes as many as there are images)");
    EXPECT_EQ(unmixRefusal({"--ncomponents", "9", "--mask", "none", "--beyond-six"}),
              "No solution! Please adjust the setup! (9 components for 8 images)");
    EXPECT_EQ(unmixRefusal({"--ncomponents", "3", "--select", "640/700,640/720", "--mask", "none"}),
              "Please select 2 components to unmix! (asked for: 3)");
}

// A duplicated image takes a rank away; single precision alone does not.
TEST_F(AutomaticProgramTest, MoreComponentsThanTheRankEndTheRun)
{
    writeBands(4, [](int i, int j) { return j < 2 ? mixture(i, 2 * j) : mixture(i, 2 * (j - 2)); });
    // The engine logs it as an error, too; it is told once.
    EXPECT_EQ(unmixRefusal({"--ncomponents", "3", "--mask", "none"}), "Too many components to resolve!");
    EXPECT_EQ(unmix({"--ncomponents", "2", "--mask", "none"})["rank"], 2);
}

TEST_F(AutomaticProgramTest, ImagesWithoutAStructureAreRefused)
{
    writeBands(4, [](int, int j) { return 1.0F + static_cast<float>(j); });
    EXPECT_EQ(unmixRefusal({"--ncomponents", "2", "--mask", "none"}),
              "Too many components to resolve! (in every image all pixels that are analysed have one value)");
    EXPECT_EQ(refused({"pca", "seq", "--mask", "none"}),
              "in these images all pixels that are analysed have one value, so that they have no variance to scale: "
              "SMALL-000, SMALL-001, SMALL-002, SMALL-003");
}

TEST_F(AutomaticProgramTest, OneImageWithoutAStructureIsToldOf)
{
    writeBands(5, [](int i, int j) { return j == 3 ? 5.0F : mixture(i, j); });
    const ProgramResult result = spum({"unmix", "seq", "--ncomponents", "2", "--mask", "none", "--out", "out"});
    EXPECT_EQ(result.status, 0) << result.err.constData();
    EXPECT_TRUE(result.errText().startsWith(
        "spum: warning: in these images all pixels that are analysed have one value: SMALL-003\n"))
        << result.err.constData();
    EXPECT_TRUE(refusal({"pca", "seq", "--mask", "none"}).endsWith("no variance to scale: SMALL-003"));
}

TEST_F(AutomaticProgramTest, AProbeThatTheDatabaseLacksIsToldOf)
{
    writeBands(5, mixture);
    EXPECT_TRUE(
        unmixRefusal({"--components", "TissueAF,Nobody", "--mask", "none"})
            .startsWith("--components: there is no probe \"Nobody\", and --any-name is not given; did you mean "));
    // Two components for images of three sources.
    const ProgramResult result = succeed(
        {"unmix", "seq", "--components", "TissueAF,Nobody", "--any-name", "--mask", "none", "--out", "out", "--json"},
        {"input", "unexplained"});
    EXPECT_TRUE(result.err.startsWith(
        "spum: warning: the database has no source \"NobodyEm\": where it lies is not predicted\n"));
    EXPECT_EQ(namesOf(result.json()), (QStringList{"TissueAF", "Nobody"}));
}

TEST_F(AutomaticProgramTest, TwoNamesForOnePlaceAreRefused)
{
    writeBands(5, mixture);
    EXPECT_TRUE(unmixRefusal({"--components", "TissueAF,TissueAF", "--mask", "none"}).contains("two lie at one place"));
}

TEST_F(AutomaticProgramTest, ATimeSeriesOfOnePointIsRefused)
{
    SmallSequence sequence;
    sequence.temporal = true;
    sequence.fluorescence = false;
    SmallImage image;
    image.excitation.clear();
    image.kyvoTime = "0";
    image.kyvoInterval = "1";
    sequence.images.append(image);
    sequence.writeTo(path("seq"));
    EXPECT_TRUE(unmixRefusal({"--ncomponents", "2"})
                    .endsWith("cannot be analysed: it takes images at two time points at "
                              "least"));
    EXPECT_TRUE(refused({"pca", "seq"}).contains("it takes images at two time points at least"));
}

TEST_F(AutomaticProgramTest, ATimeSeriesIsResolvedWithoutConstraints)
{
    SmallSequence sequence;
    sequence.temporal = true;
    sequence.fluorescence = false;
    for (int n = 0; n < 6; ++n) {
        SmallImage image;
        image.excitation.clear();
        image.kyvoTime = QString::number(10 * n);
        image.kyvoInterval = "1";
        const double fast = std::exp(-0.8 * n);
        const double slow = 1.0 - std::exp(-0.4 * n);
        image.width = image.height = 8;
        image.value = [=](int i) {
            return static_cast<float>(fast * (i % 8 < 3 ? 100.0 : 1.0) + slow * (i % 8 > 4 ? 80.0 : 1.0) +
                                      0.01 * (i % 3));
        };
        sequence.images.append(image);
    }
    sequence.writeTo(path("seq"));
    const QJsonObject json = unmix({"--mask", "none"}, {"too-few-components"});
    EXPECT_EQ(namesOf(json), (QStringList{"UMX1", "UMX2"}));
    EXPECT_GT(json["explainedVariance"].toDouble(), 0.99);
    EXPECT_TRUE(contentOf(path("out/spectra.svg")).contains("Time Point [s]"));
}

TEST_F(AutomaticProgramTest, ImagesOfAnotherExtentAreRefused)
{
    SmallSequence sequence;
    const auto ramp = [](int i) { return static_cast<float>(i); };
    sequence.addBands({ramp, ramp, ramp});
    for (auto& image : sequence.images) {
        image.width = image.height = 6;
    }
    sequence.images[2].width = sequence.images[2].height = 8;
    sequence.writeTo(path("seq"));
    for (const char* command : {"unmix", "pca"}) {
        EXPECT_TRUE(refused({command, "seq", "--mask", "none"})
                        .startsWith("the image SMALL-002 (8 pixels a side at binning 1) does not cover the area"));
    }
}

TEST_F(AutomaticProgramTest, MoreThanSixComponentsTakeAnOptionOfTheirOwn)
{
    simulateApart();
    const ProgramResult result = spum({"unmix", "seq", "--ncomponents", "7", "--out", "out", "--json", "--beyond-six"});
    // Seven where there are three: it may come to nothing, but not for the number.
    EXPECT_TRUE(result.status == 0 ||
                result.errText().endsWith("spum: No solution! Please adjust the setup!; fewer components "
                                          "(--ncomponents) or names (--components) may have one\n"))
        << result.err.constData();
}

TEST_F(AutomaticProgramTest, DecayWithoutAnIsotopeIsRefused)
{
    simulateApart();
    EXPECT_EQ(unmixRefusal({"--decay", "auto"}), "--decay: the sequence holds no isotope with Cherenkov light");
}

// Images taken an hour apart; a half life of ages changes nothing.
TEST_F(AutomaticProgramTest, TheDecayOfAnIsotopeIsCorrectedFor)
{
    SmallSequence sequence;
    sequence.fluorescence = false;
    sequence.addBands(std::vector<std::function<float(int)>>(4));
    for (int j = 0; j < 4; ++j) {
        SmallImage& image = sequence.images[j];
        image.excitation = "Block";
        image.calibratedUnit = DISPLAYUNIT_RADIANCE;
        image.value = [=](int i) { return mixture(i, j); };
        image.width = image.height = 16;
        image.isotope = "F-18";
        image.started = QStringLiteral("1%1:00:00.000").arg(j);
    }
    sequence.writeTo(path("seq"));
    const auto spectra = [this](const QStringList& options) {
        spum(QStringList{"unmix", "seq", "--ncomponents", "2", "--mask", "none", "--out", "out", "--force"} + options);
        const QByteArray text = contentOf(path("out/library.csv"));
        return text.mid(text.indexOf("Excitation,"));
    };
    const QByteArray plain = spectra({});
    const QByteArray corrected = spectra({"--decay", "auto"});
    EXPECT_EQ(plain.count('\n'), 5) << plain.constData();
    EXPECT_NE(corrected, plain);
    EXPECT_EQ(spectra({"--decay", "109.734"}), corrected); // that of the database, in minutes
    EXPECT_NE(spectra({"--decay", "60"}), corrected);
    EXPECT_EQ(spectra({"--decay", "999999999"}), plain);
}

TEST_F(AutomaticProgramTest, PcaTellsHowMuchIsExplained)
{
    simulateApart();
    const QJsonObject json = succeed({"pca", "seq", "--json"}).json();
    EXPECT_EQ(json["explainedVariance"].toArray().size(), 18);
    EXPECT_NEAR(json["explainedVariance"].toArray()[17].toDouble(), 1.0, 1e-11);
    EXPECT_GE(json["suggestedExplains"].toDouble(), 0.99);
    EXPECT_EQ(entriesOf(path("seq/pca")), (QStringList{"mask.png", "pca.csv", "pca.json", "scree.png", "scree.svg"}));
    const QString text = QString::fromUtf8(succeed({"pca", "seq", "--mask", "none", "--out", "all"}).out);
    EXPECT_TRUE(
        text.startsWith("Radiant Efficiency, 18 images of 64 x 64 pixels at binning 4, 4096 of 4096 pixels analysed\n"))
        << qPrintable(text);
    EXPECT_TRUE(text.endsWith("results in " + path("all") + '\n'));
    EXPECT_FALSE(entriesOf(path("all")).contains("mask.png"));
}

TEST_F(AutomaticProgramTest, PcaTakesASelectionAUnitAndABinning)
{
    simulateApart();
    const QJsonObject json =
        succeed({"pca", "seq", "--select", "675/*", "--unit", "counts", "--binning", "8", "--out", "out", "--json"})
            .json();
    EXPECT_EQ(json["images"].toInt(), json["eigenvalues"].toArray().size());
    EXPECT_LT(json["images"].toInt(), 18);
    EXPECT_EQ(json["unit"], "Counts");
    EXPECT_EQ(json["width"], 32);
    EXPECT_TRUE(refusal({"pca", "seq", "--out", "out"}).contains("--force"));
    succeed({"pca", "seq", "--out", "out", "--force"});
}
