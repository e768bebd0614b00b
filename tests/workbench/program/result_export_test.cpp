// SPDX-License-Identifier: GPL-3.0-or-later
// Maps of a result as a sequence of their own.
#include "services/session/UnmixedMapLinks.h"
#include "services/support/SmallAnalysis.h"
#include "services/transfer/ResultExport.h"
#include "workbench/program/SpumProgram.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvutils/LogSinks.h"
#include "platform/orvutils/MessageResponder.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>

namespace {

// Chooses that item, or backs out.
class Chooser : public orv::MessageResponder
{
public:
    explicit Chooser(std::optional<QString> answer) : m_answer(std::move(answer)) {}
    int ask(const orv::MessageRequest& request) override { return request.defaultAnswer(); }
    std::optional<QString> chooseItem(const orv::ItemRequest&) override { return m_answer; }

private:
    std::optional<QString> m_answer;
};

// "Dye A" is brightest in the first image, "Dye B" in the third.
class ResultExportTest : public SmallAnalysis
{
protected:
    void SetUp() override
    {
        SmallAnalysis::SetUp();
        m_earlier = qgetenv("TMPDIR");
        ASSERT_TRUE(QDir().mkpath(path("tmp")));
        qputenv("TMPDIR", QFile::encodeName(path("tmp")));
    }
    // A region of image n of the sequence.
    void addUppermostRow(const QString& strName, int n)
    {
        tagROIInfo region;
        region.name = strName;
        region.width = 4.0;
        region.height = 1.0;
        ASSERT_TRUE(m_pOpened->sequence().getDatasets()[n]->roiManager()->addRegion(region));
    }
    void TearDown() override
    {
        orv::setMessageResponder(nullptr);
        if (m_earlier.isNull()) {
            qunsetenv("TMPDIR");
        } else {
            qputenv("TMPDIR", m_earlier);
        }
        SmallAnalysis::TearDown();
    }
    // The three images at two spots each; the second is ten times as bright.
    void analyseScan()
    {
        m_sequence.transillumination = true;
        for (int n = 0; n < 3; ++n) {
            SmallImage image = m_sequence.images[n];
            image.value = [value = image.value](int i) { return 10.0F * value(i); };
            m_sequence.images.append(image);
        }
        m_sequence.writeTo(path("seq"));
        for (int n = 0; n < 6; ++n) {
            const QString file = path(QStringLiteral("seq/%1/ClickInfo.txt").arg(m_sequence.click(n)));
            CPLClickInfo info;
            ASSERT_EQ(info.loadClickInfo(file), 0);
            CPLSection& section = *info[QString::fromLatin1(ClickKeys::kLuminescentImage)];
            section.setValue(ClickKeys::kFLXSpot, n < 3 ? "0.5" : "1.5");
            section.setValue(ClickKeys::kFLYSpot, "-2");
            ASSERT_EQ(info.saveClickInfo(file), 0);
        }
        solve();
    }
    void analyseImages()
    {
        m_sequence.writeTo(path("seq"));
        solve();
    }
    QJsonObject infoOf(const QString& strName) const
    {
        SpumProgram program(path("home"), path("."));
        const ProgramResult result = program.run({"info", strName, "--json"});
        EXPECT_EQ(result.status, 0) << result.err.constData();
        return result.json();
    }
    QString infoTextOf(const QString& strName) const
    {
        SpumProgram program(path("home"), path("."));
        return QString::fromUtf8(program.run({"info", strName}).out);
    }
    static QString textOf(const CORVDataset& dataset, const char* pKey)
    {
        return clickText(dataset.clickInfo, ClickKeys::kLuminescentImage, pKey);
    }
    QString failure(std::optional<int> component = std::nullopt, const QString& strOut = QStringLiteral("out"))
    {
        orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
        const QString text = failureOf([&] { exportResult(engine(), component, path(strOut)); });
        orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
        return text;
    }

private:
    void solve()
    {
        m_pOpened = std::make_unique<OpenedSequence>(path("seq"));
        ASSERT_TRUE(m_pOpened->canBeAnalysed()) << qPrintable(m_pOpened->reasonAgainst());
        engine().resetAnalysis(RUNMODE_MANUAL);
        addSpectrum("Dye A", {1.0, 0.5, 0.0});
        addSpectrum("Dye B", {0.0, 0.25, 1.0});
        engine().solveConcentrations();
        ASSERT_FALSE(engine().hasError()) << qPrintable(engine().getErrorText());
    }

    QByteArray m_earlier;
};

} // namespace

TEST_F(ResultExportTest, EveryMapBecomesADatasetOfANewSequence)
{
    analyseImages();
    const ExportedMaps maps = exportResult(engine(), std::nullopt, path("out"));
    EXPECT_EQ(maps.folder, QFileInfo(path("out")).absoluteFilePath());
    EXPECT_EQ(maps.id, "SMALL_UMX");
    EXPECT_EQ(maps.names, QStringList({"Unmixed Result 1", "Unmixed Result 2"}));
    EXPECT_EQ(entriesOf(path("out")),
              QStringList({".written.json", "SequenceInfo.txt", "Unmixed Result 1", "Unmixed Result 2"}));
    EXPECT_EQ(entriesOf(path("tmp")), QStringList()); // moved, not copied

    CORVSequenceDataset sequence;
    QStringList warnings;
    ASSERT_EQ(sequence.open(path("out"), nullptr, &warnings), ESTATUS_SUCCESS);
    EXPECT_EQ(warnings, QStringList());
    EXPECT_EQ(sequence.getSequenceID(), "SMALL_UMX");
    EXPECT_TRUE(sequence.isFluorescence);
    ASSERT_EQ(sequence.getDatasets().size(), 2);
    CORVDataset& second = *sequence.getDatasets()[1];
    EXPECT_EQ(textOf(second, UnmixedMapKeys::kSequence), "SMALL");
    EXPECT_EQ(textOf(second, UnmixedMapKeys::kConcentration), "SMUMX2");
    EXPECT_EQ(textOf(second, UnmixedMapKeys::kComponent), "Dye B");
    EXPECT_EQ(second.getEmissionFilter(), "740nm");
    EXPECT_EQ(clickText(second.clickInfo, ClickKeys::kClickNumber, ClickKeys::kFolderOnDisk), "Unmixed Result 2");
    CILImage image;
    ASSERT_EQ(second.getCalibratedLuminImage(DISPLAYUNIT_RADIANT_EFFICIENCY, &image, "test"), ESTATUS_SUCCESS);
    for (int i = 0; i < side * side; ++i) {
        EXPECT_NEAR(image.value(static_cast<std::size_t>(i)), static_cast<double>(mapB(i)), 1e-5) << i;
    }
}

TEST_F(ResultExportTest, TheTwoClickInfosStillDifferInTheCameraSectionAlone)
{
    analyseImages();
    addUppermostRow("row", 2);
    for (const QString& name : exportResult(engine(), std::nullopt, path("out")).names) {
        CPLClickInfo whole;
        CPLClickInfo analyzed;
        ASSERT_EQ(whole.loadClickInfo(path("out/" + name + "/ClickInfo.txt")), 0);
        ASSERT_EQ(analyzed.loadClickInfo(path("out/" + name + "/AnalyzedClickInfo.txt")), 0);
        EXPECT_NE(whole.toText(), analyzed.toText());
        whole.removeSection("Camera System Info");
        EXPECT_EQ(whole.toText(), analyzed.toText());
    }
}

TEST_F(ResultExportTest, TheNewSequenceIsShownAsTheOldOne)
{
    analyseImages();
    tag_simageadjust& adjust = *m_pOpened->sequence().getImageAdjust();
    adjust.m_nColorTable = 2;
    exportResult(engine(), std::nullopt, path("out"));
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(path("out")), ESTATUS_SUCCESS);
    EXPECT_EQ(sequence.getImageAdjust()->m_nColorTable, 2);
}

TEST_F(ResultExportTest, InfoShowsEveryMapWithItsLinks)
{
    analyseImages();
    exportResult(engine(), std::nullopt, path("out"));
    const QJsonObject info = infoOf("out");
    const QJsonArray maps = info["maps"].toArray();
    ASSERT_EQ(maps.size(), 2);
    const QJsonObject first = maps[0].toObject();
    EXPECT_EQ(first["spectralUnmixSeqDataset"], "SMALL");
    EXPECT_EQ(first["unmixedConcentration"], "SMUMX1");
    EXPECT_EQ(first["component"], "Dye A");
    EXPECT_EQ(first["storedUnit"], "Radiant Efficiency");
    const QJsonObject image = info["images"].toArray()[0].toObject();
    EXPECT_EQ(image["image"], first["image"]);
    EXPECT_EQ(image["units"].toArray(), QJsonArray{"radiant-efficiency"});
    // Two maps at two emissions: formally a spectral sequence.
    EXPECT_TRUE(info["analysable"].toBool());
    EXPECT_TRUE(info["caution"].toString().contains("unmixed maps"));
    EXPECT_EQ(info["unit"], "Radiant Efficiency");

    const QString text = infoTextOf("out");
    EXPECT_TRUE(text.contains("Maps of:      SMALL\n")) << qPrintable(text);
    EXPECT_TRUE(text.contains("Unmixed Concentration  Spectral Unmix Seq Dataset")) << qPrintable(text);
    EXPECT_TRUE(text.contains("Note:         these are unmixed maps"));
    EXPECT_FALSE(text.contains("of images at the same filters"));
}

TEST_F(ResultExportTest, InfoOfASequenceOfImagesSaysNothingOfMaps)
{
    m_sequence.writeTo(path("seq"));
    EXPECT_TRUE(infoOf("seq")["maps"].toArray().isEmpty());
    EXPECT_EQ(infoOf("seq")["caution"], "");
    EXPECT_FALSE(infoTextOf("seq").contains("Maps of"));
}

TEST_F(ResultExportTest, OfAScanTheMapsOfOneComponentAreExportedAndInspectedAgain)
{
    analyseScan();
    const ExportedMaps maps = exportResult(engine(), 2, path("out"));
    EXPECT_EQ(maps.names, QStringList({"Unmixed Result 2001", "Unmixed Result 2002"}));
    OpenedSequence opened(path("out"));
    EXPECT_EQ(opened.warnings(), QStringList());
    EXPECT_EQ(opened.engine().m_eSeqKind, SEQKIND_TRANSILLUMINATION);
    EXPECT_EQ(opened.engine().m_spots, QStringList({"0.5,-2", "1.5,-2"}));
    EXPECT_EQ(opened.engine().getAllKeyPairs().size(), 1);
    // One pair of filters cannot be unmixed, and that is what is said.
    EXPECT_FALSE(opened.canBeAnalysed());
    EXPECT_TRUE(opened.reasonAgainst().contains("two wavelengths")) << qPrintable(opened.reasonAgainst());
    for (int s = 0; s < 2; ++s) {
        CORVDataset& dataset = *opened.sequence().getDatasets()[s];
        EXPECT_EQ(textOf(dataset, UnmixedMapKeys::kConcentration), "SMUMX2");
        CILImage image;
        ASSERT_EQ(dataset.getCalibratedLuminImage(DISPLAYUNIT_RADIANT_EFFICIENCY, &image, "test"), ESTATUS_SUCCESS);
        EXPECT_NEAR(image.value(5), static_cast<double>(mapB(5)) * (s == 0 ? 1.0 : 10.0), 1e-4);
    }
    const QJsonObject info = infoOf("out");
    EXPECT_FALSE(info["analysable"].toBool());
    EXPECT_EQ(info["caution"], "");
    ASSERT_EQ(info["maps"].toArray().size(), 2);
    EXPECT_EQ(info["maps"].toArray()[1].toObject()["spot"], "1.5,-2");
}

TEST_F(ResultExportTest, InfoSaysWhenMapsShareTheirFilters)
{
    m_sequence.writeTo(path("seq"));
    m_pOpened = std::make_unique<OpenedSequence>(path("seq"));
    engine().resetAnalysis(RUNMODE_MANUAL);
    addSpectrum("Dye A", {1.0, 0.5, 0.0});
    addSpectrum("Dye B", {0.0, 0.25, 1.0});
    addSpectrum("Dye C", {0.25, 0.0, 1.0});
    engine().solveConcentrations();
    ASSERT_FALSE(engine().hasError());
    exportResult(engine(), std::nullopt, path("out"));
    EXPECT_TRUE(infoOf("out")["caution"].toString().contains("of images at the same filters an analysis takes one"));
}

TEST_F(ResultExportTest, WithoutANumberTheResponderIsAskedForTheComponent)
{
    analyseScan();
    orv::setMessageResponder(std::make_unique<Chooser>("No.1"));
    EXPECT_EQ(exportResult(engine(), std::nullopt, path("out")).names,
              QStringList({"Unmixed Result 1001", "Unmixed Result 1002"}));
    orv::setMessageResponder(std::make_unique<Chooser>(std::nullopt));
    const QString text = failure(std::nullopt, "other");
    EXPECT_TRUE(text.startsWith("[2] no component was chosen")) << qPrintable(text);
    EXPECT_FALSE(QFileInfo::exists(path("other")));
}

TEST_F(ResultExportTest, ANumberAnswersInThePlaceOfTheResponderWhichComesBackAfterwards)
{
    analyseScan();
    orv::setMessageResponder(std::make_unique<Chooser>("No.1"));
    EXPECT_EQ(exportResult(engine(), 2, path("out")).names.first(), "Unmixed Result 2001");
    EXPECT_EQ(orv::messageResponder().chooseItem({}).value_or("none"), "No.1");
}

TEST_F(ResultExportTest, AComponentThatIsNotThereOrNotAskedForIsAUsageError)
{
    analyseScan();
    EXPECT_TRUE(failure(0).startsWith("[2] there is no component 0: the result has 2"));
    EXPECT_TRUE(failure(3).startsWith("[2] there is no component 3"));
    EXPECT_FALSE(QFileInfo::exists(path("out")));
}

TEST_F(ResultExportTest, WithoutAScanNoComponentIsChosen)
{
    analyseImages();
    EXPECT_TRUE(failure(1).startsWith("[2] all components are exported"));
    engine().m_concentrations = XTNT::Matrix<double>();
    EXPECT_EQ(failure(), "there is no result to export");
}

TEST_F(ResultExportTest, AnEarlierFolderIsReplacedOnlyOnDemand)
{
    analyseImages();
    exportResult(engine(), std::nullopt, path("out"));
    const QByteArray before = contentOf(path("out/SequenceInfo.txt"));
    write("out/mine.txt", "kept");
    const QString refused = failureOf([&] { exportResult(engine(), std::nullopt, path("out"), true); });
    EXPECT_TRUE(refused.contains(" would be lost: mine.txt; ")) << qPrintable(refused);
    EXPECT_TRUE(failure().contains("exists already"));
    EXPECT_EQ(contentOf(path("out/mine.txt")), "kept");
    ASSERT_TRUE(QFile::remove(path("out/mine.txt")));
    EXPECT_EQ(exportResult(engine(), std::nullopt, path("out"), true).names.size(), 2);
    EXPECT_EQ(contentOf(path("out/SequenceInfo.txt")), before);
    EXPECT_TRUE(QDir().mkpath(path("foreign/data")));
    EXPECT_TRUE(failure(std::nullopt, "foreign").contains("exists already"));
}

TEST_F(ResultExportTest, ATemporaryDirectoryThatCannotBeUsedIsToldInTheEnginesWords)
{
    analyseImages();
    write("tmp/SPUM_SMALL", "in the way");
    const QString text = failure();
    EXPECT_EQ(text, "SpumKyvo: Unable to open the unmixed image because failed to access the system's temporary "
                    "directory!");
    EXPECT_FALSE(QFileInfo::exists(path("out")));
    EXPECT_EQ(entriesOf(path(".")).filter("out"), QStringList()); // no hidden rest of it
}

TEST_F(ResultExportTest, RegionsOfTheSourceComeAlongWithTheirNumbersOverTheMap)
{
    analyseImages();
    addUppermostRow("row", 2);
    exportResult(engine(), std::nullopt, path("out"));
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(path("out")), ESTATUS_SUCCESS);
    EXPECT_FALSE(sequence.getDatasets()[0]->hasROIData());
    ASSERT_TRUE(sequence.getDatasets()[1]->hasROIData());
    const tagROIInfo taken = sequence.getDatasets()[1]->roiManager()->regions().first();
    EXPECT_EQ(taken.name, "row");
    EXPECT_EQ(taken.statistics.unit, "Radiant Efficiency");
    EXPECT_EQ(taken.statistics.pixels, 4);
    EXPECT_NEAR(taken.statistics.sum, 1.0 + 3.0 + 5.0 + 7.0, 1e-4);
}

TEST_F(ResultExportTest, OfAScanEachMapTakesTheRegionsOfItsOwnSpot)
{
    analyseScan();
    addUppermostRow("second spot", 5);
    exportResult(engine(), 2, path("out"));
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(path("out")), ESTATUS_SUCCESS);
    EXPECT_FALSE(sequence.getDatasets()[0]->hasROIData());
    ASSERT_TRUE(sequence.getDatasets()[1]->hasROIData());
    const tagROIInfo taken = sequence.getDatasets()[1]->roiManager()->regions().first();
    EXPECT_EQ(taken.name, "second spot");
    EXPECT_NEAR(taken.statistics.sum, 10.0 * (1.0 + 3.0 + 5.0 + 7.0), 1e-3);
}

TEST_F(ResultExportTest, TheFirstMapGetsThePhotographWhenNoneHasOne)
{
    analyseScan();
    exportResult(engine(), 2, path("out"));
    EXPECT_EQ(contentOf(path("out/Unmixed Result 2001/photograph.TIF")),
              contentOf(path("seq/SMALL-000/photograph.TIF")));
    EXPECT_FALSE(QFileInfo::exists(path("out/Unmixed Result 2002/photograph.TIF")));
    EXPECT_EQ(infoOf("out")["photograph"], "32 x 32");
}

TEST_F(ResultExportTest, AMapAtAnotherBinningSaysSo)
{
    m_sequence.writeTo(path("seq"));
    m_pOpened = std::make_unique<OpenedSequence>(path("seq"));
    engine().resetAnalysis(RUNMODE_MANUAL);
    engine().m_bAutoBinning = false;
    engine().m_nBinning = 2;
    addSpectrum("Dye A", {1.0, 0.5, 0.0});
    addSpectrum("Dye B", {0.0, 0.25, 1.0});
    engine().solveConcentrations();
    ASSERT_FALSE(engine().hasError());
    ASSERT_EQ(engine().m_nWidth, 2);
    exportResult(engine(), std::nullopt, path("out"));
    const QJsonObject image = infoOf("out")["images"].toArray()[0].toObject();
    EXPECT_EQ(image["size"], "2 x 2");
    EXPECT_EQ(image["binning"], 2.0);
}

TEST_F(ResultExportTest, TwoExportsHaveClickNumbersOfTheirOwn)
{
    analyseImages();
    exportResult(engine(), std::nullopt, path("out"));
    exportResult(engine(), std::nullopt, path("out 2"));
    QStringList clicks;
    for (const char* name : {"out", "out 2"}) {
        for (const auto& image : infoOf(name)["images"].toArray()) {
            clicks.append(image.toObject()["image"].toString());
        }
    }
    EXPECT_EQ(clicks.size(), 4);
    EXPECT_EQ(clicks.removeDuplicates(), 0);
    EXPECT_TRUE(clicks.first().startsWith("UMX0001-"));
}
