// SPDX-License-Identifier: GPL-3.0-or-later
// Every kind of simulated sequence through inspection, unmixing and component analysis.
#include "services/results/FitStatistics.h"
#include "services/results/TruthComparison.h"
#include "services/session/LibrarySpectra.h"
#include "services/session/OpenedSequence.h"
#include "workbench/program/ProgramFixture.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/EngineEnums.h"
#include "engine/runEngine.h"
#include "host/CORVDatabase.h"
#include "host/CORVSequenceDataset.h"
#include "spectra/SpectrumPlotParams.h"

#include <cmath>

namespace {

class KindsProgramTest : public ProgramFixture
{
protected:
    void simulateKind(const QString& strKind, const QStringList& options = {}) const
    {
        succeed(QStringList{"simulate", "seq", "--kind", strKind, "--size", "64", "--quiet", "--force"} + options);
    }
    QJsonObject info() const { return succeed({"info", "seq", "--json"}).json(); }
    QJsonObject unmix(const QStringList& options, const QStringList& codes = {}) const
    {
        return succeed(QStringList{"unmix", "seq", "--out", "out", "--force", "--json"} + options, codes).json();
    }
    // With the true spectra or courses over time, by the method that takes them.
    QJsonObject unmixWithTruth(const QString& strMethod, const QString& strUnit) const
    {
        return unmix({"--method", strMethod, "--library", truth(strUnit)});
    }
    QJsonObject pca() const { return succeed({"pca", "seq", "--out", "pca", "--force", "--json"}).json(); }
    // So many components lie above the noise: the last one explains several times what the next one does.
    void expectComponents(int nCount) const
    {
        const QJsonArray explained = pca()["explainedVariance"].toArray();
        ASSERT_GT(explained.size(), nCount);
        const auto own = [&explained](int n) { return explained[n].toDouble() - explained[n - 1].toDouble(); };
        EXPECT_GT(own(nCount - 1), 3.0 * own(nCount));
        EXPECT_GT(explained[nCount - 1].toDouble(), 0.99);
    }
};

QJsonObject componentOf(const QJsonObject& json, const QString& strTrueName)
{
    for (const auto& value : json["components"].toArray()) {
        if (value.toObject()["truthName"] == strTrueName) {
            return value.toObject();
        }
    }
    ADD_FAILURE() << "no component was found to be " << qPrintable(strTrueName);
    return {};
}

void expectCorrelation(const QJsonObject& json, const QStringList& names, double dLeast)
{
    for (const QString& name : names) {
        EXPECT_GT(componentOf(json, name)["truthCorrelation"].toDouble(), dLeast) << qPrintable(name);
    }
}

void expectExact(const QJsonObject& json, const QStringList& names)
{
    for (const QString& name : names) {
        EXPECT_LT(componentOf(json, name)["truthRelativeError"].toDouble(), 1e-5) << qPrintable(name);
    }
}

const QStringList luminescentNames = {"TissueAF", "Click-Beetle Green Luciferase", "Click-Beetle Red Luciferase"};
const QStringList scanNames = {"TissueAF", "AlexaFluor 680", "AlexaFluor 750"};
const QStringList organNames = {"TissueAF", "Liver", "Kidneys", "Tumour"};
const QStringList cherenkovNames = {"TissueAF", "F-18"};

} // namespace

TEST_F(KindsProgramTest, InspectionTellsEveryKind)
{
    struct Expected
    {
        const char* kind;
        const char* text;
        const char* axis;
        const char* unit;
        int images;
        QStringList methods;
        QStringList proposed;
    };
    const QList<Expected> all = {
        {"luminescent",
         "luminescent",
         "Emission",
         "Radiance",
         12,
         {"library", "guided", "automatic", "manual"},
         luminescentNames},
        {"transillumination", "fluorescent, transillumination", "Emission", "Efficiency", 32, {"automatic"}, scanNames},
        {"temporal",
         "temporal",
         "Time",
         "Radiant Efficiency",
         27,
         {"automatic", "manual"},
         {"AlexaFluor 750", "Unknown"}},
        {"cherenkov",
         "luminescent",
         "Emission",
         "Radiance",
         12,
         {"library", "guided", "automatic", "manual"},
         cherenkovNames}};
    for (const Expected& expected : all) {
        simulateKind(expected.kind);
        const QJsonObject json = info();
        EXPECT_EQ(json["kind"], expected.text);
        EXPECT_EQ(json["axis"], expected.axis);
        EXPECT_EQ(json["unit"], expected.unit);
        EXPECT_EQ(json["images"].toArray().size(), expected.images);
        EXPECT_EQ(json["methods"].toArray(), QJsonArray::fromStringList(expected.methods)) << expected.kind;
        EXPECT_EQ(json["proposedComponents"].toArray(), QJsonArray::fromStringList(expected.proposed));
        EXPECT_TRUE(json["analysable"].toBool());
        for (const auto& image : json["images"].toArray()) {
            EXPECT_TRUE(image.toObject()["used"].toBool());
        }
    }
}

TEST_F(KindsProgramTest, FullDatasetsAreAnalysedLikePlainOnes)
{
    for (const char* kind : {"epi", "temporal", "cherenkov"}) {
        simulateKind(kind, {"--full"});
        const QString unit = QString(kind) == "epi" || QString(kind) == "temporal" ? "radiant-efficiency" : "radiance";
        const QJsonObject full = unmixWithTruth(QString(kind) == "temporal" ? "manual" : "library", unit);
        for (const auto& component : full["components"].toArray()) {
            EXPECT_GT(component.toObject()["truthCorrelation"].toDouble(), 0.95) << kind;
        }
    }
}

TEST_F(KindsProgramTest, LuminescentIsUnmixedByTheTrueSpectra)
{
    simulateKind("luminescent");
    const QJsonObject noisy = unmixWithTruth("library", "radiance");
    expectCorrelation(noisy, luminescentNames, 0.95);
    EXPECT_EQ(noisy["unit"], "Radiance");
    expectCorrelation(unmix({"--library", truth("counts"), "--unit", "counts"}), luminescentNames, 0.95);
    simulateKind("luminescent", {"--noise", "none"});
    expectExact(unmixWithTruth("library", "radiance"), luminescentNames);
}

TEST_F(KindsProgramTest, LuminescentIsResolvedAutomatically)
{
    simulateKind("luminescent");
    const QJsonObject json = unmix({"--method", "automatic"});
    expectCorrelation(json, luminescentNames.mid(1), 0.98);
    for (const QString& name : luminescentNames) {
        EXPECT_GT(componentOf(json, name)["truthCosine"].toDouble(), 0.95) << qPrintable(name);
    }
    expectComponents(3);
}

// They are one fit of given spectra.
TEST_F(KindsProgramTest, LibraryAndManualGiveTheSameMaps)
{
    for (const char* kind : {"luminescent", "cherenkov"}) {
        simulateKind(kind);
        EXPECT_EQ(unmixWithTruth("manual", "radiance")["components"],
                  unmixWithTruth("library", "radiance")["components"])
            << kind;
    }
}

TEST_F(KindsProgramTest, MethodsThatAreNotOfferedAreRefused)
{
    simulateKind("transillumination", {"--spots", "2", "--bands", "3"});
    for (const char* method : {"library", "manual"}) {
        EXPECT_EQ(refusal({"unmix", "seq", "--method", method, "--library", truth("efficiency")}),
                  QString("this sequence cannot be unmixed by the method %1; it takes automatic").arg(method));
    }
    simulateKind("temporal");
    EXPECT_EQ(refusal({"unmix", "seq", "--method", "library", "--library", truth()}),
              "this sequence cannot be unmixed by the method library; it takes automatic, manual");
    EXPECT_EQ(refusal({"unmix", "seq", "--decay", "auto"}),
              "--decay: the sequence holds no isotope with Cherenkov light");
}

// The method that takes spectra is not offered for a scan; the engine itself has no objection.
TEST_F(KindsProgramTest, ScanIsFittedSpotBySpot)
{
    for (const char* noise : {"none", "default"}) {
        simulateKind("transillumination", {"--noise", noise});
        OpenedSequence opened(path("seq"));
        CORVSpumKyvo& engine = opened.engine();
        engine.resetAnalysis(RUNMODE_MANUAL);
        LibrarySpectra library;
        library.load(truth("efficiency"));
        engine.m_spectrumPlots = library.fitTo(engine.getSelectedKeyPairs(), engine.m_eAxis);
        ASSERT_EQ(runEngine(engine), RunOutcome::Succeeded);
        EXPECT_EQ(engine.m_eUnit, DISPLAYUNIT_EFFICIENCY);
        EXPECT_EQ(engine.m_cube.m_nSpots, 4);
        EXPECT_EQ(engine.m_cube.m_nImages, 8);
        EXPECT_EQ(engine.m_concentrations.num_cols(), 4 * 64 * 64);
        const bool exact = QString(noise) == "none";
        for (const TrueComparison& found : compareWithTruth(engine, opened.truthFolder(engine.m_eUnit))) {
            ASSERT_TRUE(found.known);
            EXPECT_GT(found.correlation, exact ? 0.9999999 : 0.95) << qPrintable(found.trueName) << noise;
            if (exact) {
                EXPECT_LT(found.relativeError, 1e-5) << qPrintable(found.trueName);
            }
        }
    }
}

TEST_F(KindsProgramTest, ScanLiesInBlocksOfSpots)
{
    simulateKind("transillumination", {"--noise", "none", "--spots", "3", "--bands", "5"});
    OpenedSequence opened(path("seq"));
    CORVSpumKyvo& engine = opened.engine();
    engine.resetAnalysis(RUNMODE_AUTOMATIC);
    ASSERT_TRUE(engine.buildImageCube());
    const CImageCube& cube = engine.m_cube;
    ASSERT_EQ(cube.m_data.num_rows(), 3 * 64 * 64);
    ASSERT_EQ(cube.m_data.num_cols(), 5);
    for (int spot = 0; spot < 3; ++spot) {
        for (int j = 0; j < 5; ++j) {
            CORVDataset* dataset = opened.sequence().getDataset(engine.m_imageList[spot * 5 + j]);
            EXPECT_EQ(dataset->getFLXspot() + ',' + dataset->getFLYspot(), engine.m_spots[spot]);
            CILImage image;
            ASSERT_EQ(dataset->getCalibratedLuminImage(DISPLAYUNIT_EFFICIENCY, &image, "test"), ESTATUS_SUCCESS);
            for (long long i = 0; i < 64 * 64; i += 37) {
                ASSERT_EQ(cube.m_data[spot * 64 * 64 + i][j], image.value(static_cast<std::size_t>(i)));
            }
        }
    }
}

TEST_F(KindsProgramTest, ScanIsResolvedAutomaticallyWithAMapForEachSpot)
{
    simulateKind("transillumination");
    const QJsonObject json = unmix({"--method", "automatic"});
    EXPECT_EQ(json["unit"], "Efficiency");
    for (const QString& name : scanNames) {
        EXPECT_GT(componentOf(json, name)["truthCosine"].toDouble(), 0.95) << qPrintable(name);
        EXPECT_GT(componentOf(json, name)["truthCorrelation"].toDouble(), 0.8) << qPrintable(name);
    }
    int maps = 0;
    for (const QString& file : entriesOf(path("out"))) {
        maps += file.contains("_spot") && file.endsWith(".tif") ? 1 : 0;
    }
    EXPECT_EQ(maps, 12);
    expectComponents(3);
}

TEST_F(KindsProgramTest, ScanByNumberAloneComesWithinFivePercentOfTheNoise)
{
    simulateKind("transillumination");
    OpenedSequence opened(path("seq"));
    CORVSpumKyvo& engine = opened.engine();
    engine.resetAnalysis(RUNMODE_MANUAL);
    LibrarySpectra library;
    library.load(truth("efficiency"));
    engine.m_spectrumPlots = library.fitTo(engine.getSelectedKeyPairs(), engine.m_eAxis);
    ASSERT_EQ(runEngine(engine), RunOutcome::Succeeded);
    const double floor =
        FitStatistics::relativeResidual(engine.m_cube.m_data, engine.m_concentrations, engine.m_spectra);
    const QJsonObject found = unmix({"--method", "automatic", "--mask", "none", "--ncomponents", "3"});
    EXPECT_LT(found["residual"].toDouble(), 1.05 * floor);
    EXPECT_GT(found["residual"].toDouble(), 0.0);
}

// One spot is no scan: all methods serve, and maps have no spot in their name.
TEST_F(KindsProgramTest, ASingleSpotIsUnmixedByTheTrueSpectra)
{
    simulateKind("transillumination", {"--spots", "1", "--noise", "none"});
    expectExact(unmixWithTruth("library", "efficiency"), scanNames);
}

TEST_F(KindsProgramTest, AScanThatLacksAnImageIsRefused)
{
    simulateKind("transillumination", {"--spots", "2", "--bands", "3"});
    QString info = QString::fromUtf8(contentOf(path("seq/SequenceInfo.txt")));
    const int last = info.lastIndexOf("Dataset: ");
    info.remove(last, info.indexOf('\n', last) + 1 - last);
    info.replace("Dataset Count: 6", "Dataset Count: 5");
    write("seq/SequenceInfo.txt", info.toUtf8());
    EXPECT_TRUE(refusal({"unmix", "seq", "--method", "automatic"}).contains("the scan is not complete"));
}

TEST_F(KindsProgramTest, TemporalIsUnmixedByTheTrueCourses)
{
    simulateKind("temporal");
    expectCorrelation(unmixWithTruth("manual", "radiant-efficiency"), organNames, 0.95);
    simulateKind("temporal", {"--no-time-keys"});
    expectCorrelation(unmixWithTruth("manual", "radiant-efficiency"), organNames, 0.95);
    simulateKind("temporal", {"--noise", "none"});
    expectExact(unmixWithTruth("manual", "radiant-efficiency"), organNames);
}

// What is left by the true factors is the noise.
TEST_F(KindsProgramTest, TemporalByNumberAloneComesWithinFivePercentOfTheNoise)
{
    for (const QStringList& keys : {QStringList(), QStringList("--no-time-keys")}) {
        simulateKind("temporal", keys);
        const QJsonObject floor = unmix({"--method", "manual", "--mask", "auto", "--library", truth()});
        const QJsonObject found = unmix({"--method", "automatic", "--mask", "auto", "--ncomponents", "4"});
        EXPECT_LT(found["lackOfFit"].toDouble(), 1.05 * floor["residual"].toDouble());
        EXPECT_GT(found["lackOfFit"].toDouble(), 0.0);
    }
    expectComponents(4);
}

// The two components that are proposed explain less than stands above the noise; the summary has both numbers.
TEST_F(KindsProgramTest, TemporalWithoutOptionsTellsHowManyComponentsThereAre)
{
    simulateKind("temporal");
    const QJsonObject proposed = unmix({}, {"unexplained", "too-few-components"});
    EXPECT_EQ(proposed["components"].toArray().size(), 2);
    EXPECT_EQ(proposed["componentsAboveNoise"], 4);
    EXPECT_GT(proposed["lackOfFit"].toDouble(), 5.0 * proposed["principalLackOfFit"].toDouble());
    const QString text = QString::fromUtf8(spum({"unmix", "seq", "--out", "out", "--force"}).out);
    EXPECT_FALSE(text.contains("--ncomponents")) << qPrintable(text);
    const QJsonObject found = unmix({"--ncomponents", "4"});
    EXPECT_LT(found["lackOfFit"].toDouble(), 1.05 * found["principalLackOfFit"].toDouble());
}

TEST_F(KindsProgramTest, EveryKindIsToldHowManyComponentsThereAre)
{
    const QList<QPair<QString, int>> expected = {
        {"epi", 4}, {"luminescent", 3}, {"transillumination", 3}, {"cherenkov", 2}};
    const QMap<QString, QStringList> codes = {{"cherenkov", {"decay"}}};
    for (const auto& kind : expected) {
        simulateKind(kind.first);
        EXPECT_EQ(unmix({}, codes[kind.first])["componentsAboveNoise"], kind.second) << qPrintable(kind.first);
    }
}

TEST_F(KindsProgramTest, TemporalWithoutKeysCountsItsImages)
{
    simulateKind("temporal", {"--times", "0,30,90,300", "--no-time-keys"});
    const QJsonArray images = info()["images"].toArray();
    ASSERT_EQ(images.size(), 4);
    EXPECT_EQ(images[3].toObject()["first"], "Int1");
    EXPECT_EQ(images[3].toObject()["second"], "3");
    simulateKind("temporal", {"--times", "0,30,90,300"});
    EXPECT_EQ(info()["images"].toArray()[3].toObject()["second"], "300");
}

TEST_F(KindsProgramTest, CherenkovIsUnmixedByTheTrueSpectra)
{
    simulateKind("cherenkov");
    expectCorrelation(unmixWithTruth("library", "radiance"), cherenkovNames, 0.95);
    simulateKind("cherenkov", {"--noise", "none", "--depths", "2,6"});
    expectExact(unmixWithTruth("library", "radiance"), {"TissueAF", "F-18 at 2 mm", "F-18 at 6 mm"});
}

TEST_F(KindsProgramTest, CherenkovDecayIsCorrectedAndLeftAlone)
{
    simulateKind("cherenkov");
    const QJsonObject before = unmix({"--method", "automatic"}, {"decay"});
    const QJsonObject corrected = unmix({"--method", "automatic", "--decay", "auto"});
    const double minutes = CORVDatabase::getCherenkovRADHalflife("F-18") / 60.0;
    const QJsonObject typed = unmix({"--method", "automatic", "--decay", QString::number(minutes, 'g', 17)});
    const QJsonObject after = unmix({"--method", "automatic"}, {"decay"});
    EXPECT_EQ(corrected["components"], typed["components"]);
    EXPECT_EQ(before["components"], after["components"]);
    EXPECT_NE(before["components"], corrected["components"]);
    for (const QJsonObject& json : {before, corrected}) {
        EXPECT_GT(componentOf(json, "F-18")["truthCosine"].toDouble(), 0.999);
        expectCorrelation(json, {"F-18"}, 0.99);
        EXPECT_LT(componentOf(json, "F-18")["truthRelativeError"].toDouble(), 0.1);
    }
    // Over a half life a wrong one shows.
    const QJsonObject wrong = unmix({"--method", "automatic", "--decay", QString::number(minutes / 3.0)});
    EXPECT_LT(componentOf(wrong, "F-18")["truthCosine"].toDouble(),
              componentOf(corrected, "F-18")["truthCosine"].toDouble());
    expectComponents(2);
}

TEST_F(KindsProgramTest, DecayCorrectionUndoesTheDecayAndIsUndone)
{
    simulateKind("cherenkov", {"--noise", "none"});
    OpenedSequence opened(path("seq"));
    CORVSpumKyvo& engine = opened.engine();
    ASSERT_TRUE(engine.m_bCherenkov);
    engine.resetAnalysis(RUNMODE_AUTOMATIC);
    engine.m_analysisInput.decayCorrection = true;
    engine.m_analysisInput.halfLifeSeconds = CORVDatabase::getCherenkovRADHalflife("F-18");
    ASSERT_TRUE(engine.buildImageCube());
    LibrarySpectra library;
    library.load(opened.truthFolder(engine.m_eUnit, true) + "spectra.csv");
    engine.m_spectrumPlots = library.fitTo(engine.getSelectedKeyPairs(), engine.m_eAxis);
    engine.solveConcentrations(); // the cube is there and stays
    const auto exact = compareWithTruth(engine, opened.truthFolder(engine.m_eUnit, true));
    ASSERT_EQ(exact.size(), 2U);
    for (const TrueComparison& found : exact) {
        EXPECT_LT(found.relativeError, 1e-5) << qPrintable(found.trueName);
    }

    const XTNT::Matrix<double> raw = engine.m_cube.m_rawData;
    ASSERT_EQ(raw.num_rows(), engine.m_cube.m_data.num_rows());
    double largest = 0.0;
    for (long long i = 0; i < raw.num_rows(); ++i) {
        for (long long j = 0; j < raw.num_cols(); ++j) {
            if (raw[i][j] > 0.0) {
                largest = std::max(largest, engine.m_cube.m_data[i][j] / raw[i][j]);
            }
        }
    }
    EXPECT_NEAR(largest, 2.0, 0.02); // a half life, and what an exposure of a minute adds
    engine.m_cube.applyDecayFactors(raw, {}, false);
    for (long long i = 0; i < raw.num_rows(); ++i) {
        for (long long j = 0; j < raw.num_cols(); ++j) {
            ASSERT_EQ(engine.m_cube.m_data[i][j], raw[i][j]);
        }
    }
}

// Each result stands beside the truth of its own state, alone and together.
TEST_F(KindsProgramTest, DecayCorrectedResultsAreComparedWithTheTruthOfTheirState)
{
    simulateKind("cherenkov");
    succeed({"unmix", "seq", "--out", "seq/plain", "--quiet"});
    succeed({"unmix", "seq", "--decay", "auto", "--out", "seq/corrected", "--quiet"});
    const auto expectNear = [](const QJsonObject& result, const QString& strReference) {
        EXPECT_EQ(result["reference"], strReference);
        ASSERT_EQ(result["components"].toArray().size(), 2);
        for (const auto& component : result["components"].toArray()) {
            if (component.toObject()["reference"] != "F-18") {
                continue;
            }
            EXPECT_GT(component.toObject()["cosine"].toDouble(), 0.999);
            EXPECT_LT(component.toObject()["relativeError"].toDouble(), 0.1);
        }
    };
    const auto resultsOf = [this](const QStringList& names) {
        return succeed(QStringList{"compare", "seq"} + names + QStringList{"--json", "--force"}).json();
    };
    const QJsonObject alone = resultsOf({"corrected"});
    EXPECT_EQ(alone["reference"], "truth corrected for decay");
    ASSERT_EQ(alone["results"].toArray().size(), 1);
    expectNear(alone["results"].toArray()[0].toObject(), "truth corrected for decay");
    const QJsonArray both = resultsOf({"corrected", "plain"})["results"].toArray();
    ASSERT_EQ(both.size(), 2);
    expectNear(both[0].toObject(), "truth corrected for decay");
    expectNear(both[1].toObject(), "truth");
}

TEST_F(KindsProgramTest, ScansAreComparedOverAllSpots)
{
    simulateKind("transillumination", {"--spots", "3"});
    const QJsonObject found = unmix({"--method", "automatic"});
    const QJsonObject json = succeed({"compare", "seq", path("out"), "--json"}).json();
    const QJsonArray components = json["results"].toArray()[0].toObject()["components"].toArray();
    ASSERT_EQ(components.size(), 3);
    for (const auto& value : components) {
        const QJsonObject component = value.toObject();
        const QJsonObject own = componentOf(found, component["reference"].toString());
        EXPECT_NEAR(component["correlation"].toDouble(), own["truthCorrelation"].toDouble(), 1e-5);
        EXPECT_NEAR(component["cosine"].toDouble(), own["truthCosine"].toDouble(), 1e-5);
    }
    for (const QString& file : entriesOf(path("out"))) {
        if (file.endsWith("_spot3.tif") && file.startsWith("02_")) {
            QFile::remove(path("out/" + file));
        }
    }
    EXPECT_TRUE(refusal({"compare", "seq", path("out"), "--force"}).contains("maps of 2 spots"));
}

TEST_F(KindsProgramTest, InfoTellsEverythingThatAFullSequenceHolds)
{
    simulateKind("epi", {"--full"});
    const QJsonObject first = info()["images"].toArray()[0].toObject()["contents"].toObject();
    QList<int> types;
    for (const auto& image : first["images"].toArray()) {
        types.append(image.toObject()["type"].toInt());
    }
    EXPECT_EQ(types, (QList<int>{0, 1, 6, 7, 9, 12, 13, 17}));
    const QJsonObject flags = first["flags"].toObject();
    EXPECT_EQ(flags.keys(),
              (QStringList{"Background Corrected", "FL Background Corrected", "Flat Field Corrected", "Saturated"}));
    EXPECT_TRUE(flags["Flat Field Corrected"].toBool());
    EXPECT_FALSE(flags["Saturated"].toBool());
    EXPECT_EQ(first["regions"].toArray(),
              (QJsonArray{"Back (rectangle)", "Head (ellipse)", "Hind back (polygon)", "Shoulder (free-hand)"}));
    for (const char* section :
         {"ClickNumber", "luminescent image", "main data image", "fluorescent reference image", "photographic image",
          "reference image", "structure image", "x-ray image", "x-ray photographic image", "Camera System Info", "ROIs",
          "User Input", "Analysis User Input", "User Label Name Set", "Graph Controls"}) {
        EXPECT_TRUE(first["sections"].toArray().contains(section)) << section;
    }
    const QString text = QString::fromUtf8(succeed({"info", "seq"}).out);
    EXPECT_TRUE(text.contains("photographic image (0) in 1, luminescent image (1), reference image (6) in 1"))
        << qPrintable(text);
    EXPECT_TRUE(text.contains("Flags:        Flat Field Corrected\n"));
    EXPECT_TRUE(text.contains("Regions:      Back (rectangle) in 1, "));
    EXPECT_TRUE(text.contains("Sections:     User Input, Analysis User Input, User Label Name Set, Graph Controls\n"));
    EXPECT_TRUE(text.contains("Scans:        structured light, CT\n"));
}

TEST_F(KindsProgramTest, InfoTellsNothingOfWhatIsNotThere)
{
    simulateKind("luminescent");
    const QString text = QString::fromUtf8(succeed({"info", "seq"}).out);
    EXPECT_TRUE(text.contains("Holds:        photographic image (0) in 1, luminescent image (1)\n"))
        << qPrintable(text);
    for (const char* key : {"Regions:", "Scans:", "Flags:", "Sections:"}) {
        EXPECT_FALSE(text.contains(key)) << key;
    }
}
