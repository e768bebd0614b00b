// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultFiles.h"
#include "services/results/ResultMapPictures.h"
#include "services/support/SmallAnalysis.h"

#include "platform/orvimage/MapPicture.h"
#include "platform/orvimage/TiffIo.h"
#include "platform/orvutils/NumberText.h"
#include "services/basis/Failure.h"
#include "services/session/LibrarySpectra.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace {

class ResultFilesTest : public SmallAnalysis
{
protected:
    ResultFilesTest()
    {
        m_numbers.shares = {0.25, 0.75};
        m_numbers.residual = 0.125;
        m_numbers.truth.resize(2);
        m_numbers.seconds = 1.5;
    }
    QString out() const { return path("out/"); }
    void writeFiles()
    {
        ASSERT_TRUE(QDir().mkpath(out()));
        ResultFiles files(engine(), m_numbers, out());
        files.setRun("first");
        files.write([](double) {});
    }
    CILImage tiff(const QString& strName) const
    {
        CILImage image;
        QString error;
        EXPECT_TRUE(readTiff(out() + strName, 0, image, &error)) << qPrintable(error);
        return image;
    }
    QJsonObject writtenJson() const { return QJsonDocument::fromJson(contentOf(out() + "summary.json")).object(); }
    // The table, in which the largest values are 15 and 7 but for their rounding, which a compiler's choices change.
    QByteArray tableOfWholeMaxima()
    {
        QByteArray table = contentOf(out() + "summary.csv");
        const QByteArray whole[] = {",15,", ",7,"};
        for (int k = 0; k < 2; ++k) {
            const double largest = engine().m_concentrations.row(k).Max();
            EXPECT_NEAR(largest, k == 0 ? 15.0 : 7.0, 1e-13);
            table.replace(',' + orv::shortestText(largest).toLatin1() + ',', whole[k]);
        }
        return table;
    }
    ResultNumbers m_numbers;
};

} // namespace

TEST(ResultFilesNameTest, LettersDigitsDotAndDashStay)
{
    EXPECT_EQ(resultFileName("QDot-800.b_2"), "QDot-800.b_2");
    EXPECT_EQ(resultFileName(QString::fromUtf8("M\xC3\xA4use")), QString::fromUtf8("M\xC3\xA4use"));
}

TEST(ResultFilesNameTest, BlanksBecomeUnderscoresAndTheRestGoes)
{
    EXPECT_EQ(resultFileName(" AlexaFluor 750 "), "AlexaFluor_750");
    EXPECT_EQ(resultFileName("a/b\\c:d*e?f\"g<h>i|j"), "abcdefghij");
    EXPECT_EQ(resultFileName("a\tb\nc"), "a_b_c");
    EXPECT_EQ(resultFileName(QString()), "");
}

TEST(ResultFilesNameTest, ALongNameIsCutWithinACharacterNever)
{
    EXPECT_EQ(resultFileName(QString(300, 'x')), QString(150, 'x'));
    EXPECT_EQ(resultFileName(QString(300, QChar(0x65E5))), QString(50, QChar(0x65E5)));
    EXPECT_EQ(resultFileName(QString(149, 'x') + QChar(0xE4)), QString(149, 'x'));
}

TEST(ResultFilesNameTest, NoNameIsHiddenOrLeadsElsewhere)
{
    EXPECT_EQ(resultFileName("../../x"), "_....x");
    EXPECT_EQ(resultFileName(".."), "_..");
}

TEST_F(ResultFilesTest, EveryFileIsThereAndNoOther)
{
    analyse();
    writeFiles();
    EXPECT_EQ(entriesOf(out()), (QStringList{"01_Dye_A.png", "01_Dye_A.tif", "02_Dye_B.png", "02_Dye_B.tif",
                                             "library.csv", "maps.ome.tif", "overview.png", "properties.csv",
                                             "residual.csv", "residual.png", "residual.tif", "spectra.csv",
                                             "spectra.png", "spectra.svg", "summary.csv", "summary.json"}));
    QStringList told;
    for (const auto& name : writtenJson()["files"].toArray()) {
        told.append(name.toString());
    }
    told.sort();
    EXPECT_EQ(told, entriesOf(out()));
}

TEST_F(ResultFilesTest, WhatNoComponentExplainsIsAMapAndATable)
{
    // A pixel of the third image has more light than the spectra allow.
    analyse();
    engine().m_cube.m_data[5][2] += 30.0;
    writeFiles();
    const CILImage map = tiff("residual.tif");
    ASSERT_EQ(map.m_lWidth, side);
    for (int i = 0; i < side * side; ++i) {
        EXPECT_NEAR(map.value(static_cast<std::size_t>(i)), i == 5 ? 30.0 / std::sqrt(3.0) : 0.0, 1e-5) << i;
    }
    EXPECT_FALSE(QImage(out() + "residual.png").isNull());
    const QStringList lines = QString::fromUtf8(contentOf(out() + "residual.csv")).split('\n');
    EXPECT_EQ(lines.value(0), "excitation,emission,residual,noise,missing");
    EXPECT_EQ(lines.value(3).section(',', 2, 4), "7.5,,1");
    EXPECT_EQ(lines.size(), 5);
}

TEST_F(ResultFilesTest, MapsAreFloatsOfTheConcentrations)
{
    analyse();
    writeFiles();
    const CILImage map = tiff("02_Dye_B.tif");
    ASSERT_EQ(map.m_lWidth, side);
    ASSERT_EQ(map.m_lHeight, side);
    EXPECT_NE(map.floats(), nullptr);
    for (int i = 0; i < side * side; ++i) {
        EXPECT_NEAR(map.value(static_cast<std::size_t>(i)), static_cast<double>(mapB(i)), 1e-5) << i;
    }
    TiffInfo info;
    ASSERT_TRUE(readTiffHeader(out() + "02_Dye_B.tif", 0, &info, nullptr));
    EXPECT_EQ(info.type, ORVTYPE_FLOAT);
    EXPECT_TRUE(info.description.startsWith("Dye B")) << qPrintable(info.description);
}

TEST_F(ResultFilesTest, OutsideTheMaskMapsAreZeroAndTheMaskIsWritten)
{
    analyse([](int i) { return i == 5 || i == 6 ? 1.0F : 0.0F; });
    writeFiles();
    const CILImage map = tiff("01_Dye_A.tif");
    const QImage mask(out() + "mask.png");
    ASSERT_EQ(mask.size(), QSize(side, side));
    for (int i = 0; i < side * side; ++i) {
        const bool inside = i == 5 || i == 6;
        EXPECT_NEAR(map.value(static_cast<std::size_t>(i)), inside ? i : 0.0, 1e-5) << i;
        EXPECT_EQ(qGray(mask.pixel(i % side, i / side)), inside ? 255 : 0) << i;
    }
    EXPECT_TRUE(contentOf(out() + "properties.csv").contains("DataMask,Yes\n"));
}

TEST_F(ResultFilesTest, PicturesHoldMapAndPhotograph)
{
    analyse();
    writeFiles();
    const QImage picture(out() + "01_Dye_A.png");
    const QImage sheet(out() + "overview.png");
    EXPECT_GE(picture.width(), 512);
    EXPECT_EQ(sheet.width(), 2 * std::max(picture.width(), QImage(out() + "02_Dye_B.png").width()));
    EXPECT_FALSE(QImage(out() + "spectra.png").isNull());
    int coloured = 0;
    for (int y = 0; y < picture.height(); y += 8) {
        for (int x = 0; x < picture.width(); x += 8) {
            coloured += QColor(picture.pixel(x, y)).saturation() > 100 ? 1 : 0;
        }
    }
    EXPECT_GT(coloured, 500);
}

TEST_F(ResultFilesTest, TheSpectraAreALibrary)
{
    analyse();
    writeFiles();
    LibrarySpectra library;
    library.load(out() + "library.csv");
    ASSERT_EQ(library.all().size(), 2);
    EXPECT_EQ(library.note(), "spectra in Radiant Efficiency");
    EXPECT_EQ(library.all()[1]->settings.name, "Dye B");
    EXPECT_EQ(library.all()[1]->points[1].value, 0.25);
}

TEST_F(ResultFilesTest, TheSpectraAreAPlainTableToo)
{
    analyse();
    engine().m_spectra[1][1] = 1.0 / 3.0;
    writeFiles();
    EXPECT_TRUE(contentOf(out() + "spectra.csv").startsWith("excitation,emission,Dye A,Dye B\n640,"));
    LibrarySpectra library;
    library.load(out() + "spectra.csv");
    ASSERT_EQ(library.all().size(), 2);
    EXPECT_EQ(library.all()[1]->settings.name, "Dye B");
    EXPECT_EQ(library.all()[1]->points[1].value, 1.0 / 3.0);
}

TEST_F(ResultFilesTest, TheSummaryTellsTheNumbers)
{
    analyse();
    m_numbers.truth[1] = {true, 0.5, 0.25, "Dye B", 0.75};
    const double none = std::numeric_limits<double>::quiet_NaN();
    m_numbers.standardErrors = {0.5, none};
    m_numbers.amplifications = {1.5, 2.5};
    m_numbers.knownCosines = {none, 0.875};
    m_numbers.condition = 3.25;
    m_numbers.warnings = {{RunWarning::Severity::Warning, "decay", "it fades", "wait"},
                          {RunWarning::Severity::Warning, "upsampled", "it grew", ""}};
    writeFiles();
    EXPECT_EQ(tableOfWholeMaxima().toStdString(),
              "sequence,run,method,unit,name,map,errorMap,color,share,maximum,highPass,locked,standardError,"
              "noiseAmplification,"
              "nameCosine,truthName,truthCosine,truthCorrelation,truthRelativeError,images,width,height,binning,pixels,"
              "residual,explainedVariance,condition,rank,iterations,ending,lackOfFit,lackOfFitDenoised,"
              "principalLackOfFit,maskLight,noise,componentsAboveNoise,componentsAboveNoiseLeast,"
              "componentsAboveNoiseMost,warnings\n"
              "SMALL,first,manual,Radiant Efficiency,Dye A,01_Dye_A.tif,,#ff0000,0.25,15,,,0.5,1.5,,,,,,3,4,4,1,16,"
              "0.125,0.984375,3.25,,,,,,,,,,,,decay upsampled\n"
              "SMALL,first,manual,Radiant Efficiency,Dye B,02_Dye_B.tif,,#0000ff,0.75,7,,,,2.5,0.875,Dye B,0.75,0.5,"
              "0.25,3,4,4,1,16,0.125,0.984375,3.25,,,,,,,,,,,,decay upsampled\n");
    const QJsonObject json = writtenJson();
    EXPECT_EQ(json["method"], "manual");
    EXPECT_EQ(json["unit"], "Radiant Efficiency");
    EXPECT_EQ(json["pixels"], 16);
    EXPECT_EQ(json["residual"], 0.125);
    EXPECT_EQ(json["explainedVariance"], 0.984375);
    EXPECT_FALSE(json.contains("iterations"));
    EXPECT_EQ(json["condition"], 3.25);
    EXPECT_EQ(json["warnings"].toArray(), jsonOf(m_numbers.warnings));
    EXPECT_EQ(json["components"].toArray()[0].toObject()["standardError"], 0.5);
    EXPECT_FALSE(json["components"].toArray()[0].toObject().contains("nameCosine"));
    EXPECT_EQ(json["components"].toArray()[1].toObject()["nameCosine"], 0.875);
    EXPECT_EQ(json["properties"].toObject()["DataMask"], "No");
    const QJsonObject second = json["components"].toArray()[1].toObject();
    EXPECT_EQ(second["name"], "Dye B");
    EXPECT_EQ(second["map"], "02_Dye_B.tif");
    EXPECT_EQ(second["truthName"], "Dye B");
    EXPECT_EQ(second["truthCosine"], 0.75);
    EXPECT_EQ(second["truthCorrelation"], 0.5);
    EXPECT_EQ(second["truthRelativeError"], 0.25);
    EXPECT_FALSE(json["components"].toArray()[0].toObject().contains("truthCorrelation"));
}

TEST_F(ResultFilesTest, TheTextHasTheColumnsOfTheTruthOnlyWithATruth)
{
    analyse();
    EXPECT_FALSE(ResultFiles(engine(), m_numbers, out()).summaryText().contains("correlation"));
    m_numbers.truth[1] = {true, 0.5, 0.25, "Dye B", 0.75};
    const QString text = ResultFiles(engine(), m_numbers, out()).summaryText();
    EXPECT_TRUE(text.contains("correlation"));
    EXPECT_TRUE(
        text.contains("residual 12.5 % of the data's norm, 98.4375 % of the variance explained; the fit took 1.5 s\n"))
        << qPrintable(text);
    EXPECT_TRUE(text.contains("16 pixels analysed"));
}

TEST_F(ResultFilesTest, NumbersThatAreNotKnownAreNull)
{
    analyse();
    m_numbers.shares[0] = std::numeric_limits<double>::quiet_NaN();
    m_numbers.residual = std::numeric_limits<double>::quiet_NaN();
    writeFiles();
    EXPECT_TRUE(writtenJson()["residual"].isNull());
    EXPECT_TRUE(writtenJson()["components"].toArray()[0].toObject()["share"].isNull());
    const QByteArray table = contentOf(out() + "summary.csv");
    EXPECT_TRUE(table.contains(",#ff0000,,1")) << table.constData();
}

TEST_F(ResultFilesTest, ComponentsOfOneNameHaveFilesOfTheirOwn)
{
    analyse();
    engine().m_spectrumPlots[1]->settings.name = "Dye A";
    writeFiles();
    EXPECT_TRUE(entriesOf(out()).contains("01_Dye_A.tif"));
    EXPECT_TRUE(entriesOf(out()).contains("02_Dye_A.tif"));
}

TEST_F(ResultFilesTest, ANameWithASlashStaysInTheFolder)
{
    analyse();
    engine().m_spectrumPlots[0]->settings.name = "../Dye";
    writeFiles();
    EXPECT_TRUE(entriesOf(out()).contains("01__..Dye.tif")) << qPrintable(entriesOf(out()).join(' '));
}

TEST_F(ResultFilesTest, MapsOfSeveralSpotsAreNumberedFromOne)
{
    analyse();
    addSpot(100.0);
    writeFiles();
    EXPECT_EQ(entriesOf(out()).filter("_Dye_").filter(".tif"),
              (QStringList{"01_Dye_A_spot1.tif", "01_Dye_A_spot2.tif", "02_Dye_B_spot1.tif", "02_Dye_B_spot2.tif"}));
    for (const int spot : {0, 1}) {
        const CILImage map = tiff(QStringLiteral("01_Dye_A_spot%1.tif").arg(spot + 1));
        for (int i = 0; i < side * side; ++i) {
            EXPECT_NEAR(map.value(static_cast<std::size_t>(i)), mapA(i) + 100.0 * spot, 1e-5) << spot;
        }
    }
}

TEST_F(ResultFilesTest, TheOverviewHasAboutAsManyColumnsAsRows)
{
    analyse();
    for (const int count : {2, 3, 4, 5, 6}) {
        XTNT::Matrix<double> concentrations(count, side * side);
        for (int k = 0; k < count; ++k) {
            concentrations.setRow(k, engine().m_concentrations.row(k % 2));
        }
        while (engine().m_spectrumPlots.size() < count) {
            addSpectrum(QStringLiteral("More %1").arg(engine().m_spectrumPlots.size()), {1.0, 1.0, 1.0});
        }
        engine().m_concentrations = concentrations;
        engine().m_spectra = XTNT::Matrix<double>(count, 3);
        m_numbers.shares.assign(static_cast<std::size_t>(count), 0.1);
        m_numbers.truth.resize(static_cast<std::size_t>(count));
        ASSERT_TRUE(QDir(out()).removeRecursively());
        writeFiles();
        QSize cell;
        for (const QString& name : entriesOf(out())) {
            if (name.contains(QRegularExpression("^0\\d_.*\\.png$"))) {
                cell = cell.expandedTo(QImage(out() + name).size());
            }
        }
        const int columns = count == 4 ? 2 : std::min(count, 3);
        const int rows = count > 3 ? 2 : 1;
        EXPECT_EQ(QImage(out() + "overview.png").size(), QSize(columns * cell.width(), rows * cell.height())) << count;
    }
}

TEST_F(ResultFilesTest, AComponentHasOneColourInEveryFile)
{
    analyse();
    const QStringList saved{"lime", "red"};
    for (int k = 0; k < 2; ++k) {
        engine().m_spectrumPlots[k]->settings.color = saved[k];
    }
    ASSERT_TRUE(QDir().mkpath(out()));
    ResultFiles files(engine(), m_numbers, out());
    files.setStyle(pictureStyleOf(engine(), PictureRequest()));
    files.setReport(ReportFrame(), false);
    files.write([](double) {});
    const QString svg = QString::fromUtf8(contentOf(out() + "spectra.svg"));
    const QString html = QString::fromUtf8(contentOf(out() + "report.html"));
    const QJsonArray components = writtenJson()["components"].toArray();
    for (int k = 0; k < 2; ++k) {
        const QString name = componentColor(k).name();
        EXPECT_EQ(components[k].toObject()["color"].toString(), name);
        EXPECT_TRUE(svg.contains(name)) << k;
        EXPECT_TRUE(html.contains("background:" + name)) << k;
        EXPECT_EQ(engine().m_spectrumPlots[k]->settings.color, saved[k]) << "the engine's own stay";
    }
    EXPECT_TRUE(contentOf(out() + "library.csv").contains("$,Color,lime,red"));
}

TEST_F(ResultFilesTest, MapsOfAScanHaveOneScaleUnlessAskedOtherwise)
{
    analyse();
    addSpot(100.0);
    ResultNumbers numbers = m_numbers;
    const auto picture = [&](MapScale eScale, int nComponent, int nSpot) {
        PictureRequest request;
        request.scale = eScale;
        const ResultFacts facts = factsOfResult(engine(), numbers);
        ResultMapPictures pictures(engine(), facts, pictureStyleOf(engine(), request));
        return pictures.picture(imageOfMap(engine(), engine().m_concentrations, nComponent, nSpot, 0.0F), nComponent,
                                nSpot);
    };
    EXPECT_EQ(picture(MapScale::Component, 0, 0).range().maximum, picture(MapScale::Component, 0, 1).range().maximum);
    EXPECT_GT(picture(MapScale::Component, 0, 0).range().maximum, 100.0);
    EXPECT_NE(picture(MapScale::Component, 0, 0).range().maximum, picture(MapScale::Component, 1, 0).range().maximum);
    EXPECT_LT(picture(MapScale::Own, 0, 0).range().maximum, 16.0);
    EXPECT_EQ(picture(MapScale::All, 0, 0).range().maximum, picture(MapScale::All, 1, 1).range().maximum);
    EXPECT_EQ(picture(MapScale::Component, 0, 0).note(), "one scale for all spots");
    EXPECT_EQ(picture(MapScale::Own, 0, 0).note(), "a scale of its own");
    EXPECT_EQ(picture(MapScale::All, 0, 0).note(), "one scale for all maps");
}

TEST_F(ResultFilesTest, PdfFilesAreWrittenTogetherOnRequest)
{
    analyse();
    ASSERT_TRUE(QDir().mkpath(out()));
    ResultFiles files(engine(), m_numbers, out());
    files.setReport(ReportFrame(), true);
    files.write([](double) {});
    for (const char* name : {"report.pdf", "maps.pdf"}) {
        EXPECT_TRUE(contentOf(out() + name).startsWith("%PDF-")) << name;
        EXPECT_TRUE(writtenJson()["files"].toArray().contains(name)) << name;
    }
}

TEST_F(ResultFilesTest, SizeOfPixelsIsThatOfTheAnalysis)
{
    analyse();
    const std::optional<double> size = factsOfResult(engine(), m_numbers).pixelMicrometres;
    ASSERT_TRUE(size.has_value());
    EXPECT_NEAR(*size, 10000.0, 1e-9) << "1 cm at binning 1";
    engine().m_nBinning = 4;
    EXPECT_NEAR(*factsOfResult(engine(), m_numbers).pixelMicrometres, 40000.0, 1e-9);
}

TEST_F(ResultFilesTest, AStepMayStopTheWriting)
{
    analyse();
    ASSERT_TRUE(QDir().mkpath(out()));
    ResultFiles files(engine(), m_numbers, out());
    EXPECT_THROW(files.write([](double fraction) {
        if (fraction > 0.5) {
            throw std::runtime_error("stop");
        }
    }),
                 std::runtime_error);
    EXPECT_FALSE(entriesOf(out()).contains("summary.json"));
}

TEST_F(ResultFilesTest, AFolderThatIsNotThereIsToldByName)
{
    analyse();
    ResultFiles files(engine(), m_numbers, out());
    EXPECT_TRUE(failureOf([&] { files.write([](double) {}); }).contains(out() + "01_Dye_A"));
}

TEST_F(ResultFilesTest, AnAutomaticRunTellsHowItWent)
{
    analyse();
    m_numbers.automatic = true;
    m_numbers.facts = {17, MCREnding::Converged, 1.5, 2.5, 3, {}};
    engine().m_lastParams.Constraints = {ComponentConstraint(), ComponentConstraint()};
    engine().m_lastParams.Constraints[0].Locked = true;
    engine().m_lastParams.Constraints[1].HighPass = "720";
    writeFiles();
    const QJsonObject json = writtenJson();
    EXPECT_EQ(json["iterations"], 17);
    EXPECT_EQ(json["ending"], "converged");
    EXPECT_EQ(json["lackOfFit"], 0.025);
    EXPECT_EQ(json["lackOfFitDenoised"], 0.015);
    EXPECT_EQ(json["rank"], 3);
    EXPECT_FALSE(json.contains("componentsAboveNoise"));
    EXPECT_FALSE(json.contains("decayCorrected"));
    const QJsonArray components = json["components"].toArray();
    EXPECT_EQ(components[0].toObject()["locked"], true);
    EXPECT_FALSE(components[0].toObject().contains("highPass"));
    EXPECT_EQ(components[1].toObject()["highPass"], 720);
    EXPECT_TRUE(tableOfWholeMaxima().contains(
        ",7,720,false,,,,,,,,3,4,4,1,16,0.125,0.984375,,3,17,converged,0.025,0.015,,,,,,,\n"));
    const QString text = ResultFiles(engine(), m_numbers, out()).summaryText();
    EXPECT_TRUE(
        text.endsWith("converged after 17 iterations; lack of fit 2.5 % of the data, 1.5 % of the denoised data\n"))
        << qPrintable(text);
}

TEST_F(ResultFilesTest, WhatTheFirstResolutionCameToIsNotToldOfTheRefinedOne)
{
    analyse();
    m_numbers.automatic = true;
    m_numbers.facts = {17, MCREnding::IterationLimit, 1.5, 2.5, 3, {}};
    m_numbers.refinement = RefinementFacts();
    const QString text = ResultFiles(engine(), m_numbers, out()).summaryText();
    EXPECT_TRUE(text.endsWith("the first resolution: iteration limit after 17 iterations; lack of fit 1.5 % of the "
                              "denoised data\n"))
        << qPrintable(text);
}

TEST_F(ResultFilesTest, AnAutomaticRunTellsWhatStandsAboveTheNoise)
{
    analyse();
    m_numbers.automatic = true;
    m_numbers.facts.eigenvalues = {1e6, 1e5, 1e4, 1.0, 1.0, 1.0, 1.0};
    m_numbers.above.likely = 3;
    m_numbers.above.least = 2;
    m_numbers.above.most = 4;
    m_numbers.above.noise = 0.25;
    writeFiles();
    const QJsonObject json = writtenJson();
    EXPECT_EQ(json["componentsAboveNoise"], 3);
    EXPECT_EQ(json["componentsAboveNoiseLeast"], 2);
    EXPECT_EQ(json["componentsAboveNoiseMost"], 4);
    EXPECT_EQ(json["noise"], 0.25);
    EXPECT_NEAR(json["principalLackOfFit"].toDouble(), std::sqrt(4.0 / 1110004.0), 1e-14);
    const QString text = ResultFiles(engine(), m_numbers, out()).summaryText();
    // No advice: of images that nobody simulated the estimate can be far off.
    EXPECT_FALSE(text.contains("above the noise")) << qPrintable(text);
    EXPECT_FALSE(text.contains("--ncomponents")) << qPrintable(text);
}

TEST_F(ResultFilesTest, ADecayThatWasCorrectedForIsTold)
{
    analyse();
    m_numbers.automatic = true;
    engine().m_bCherenkov = true;
    engine().m_analysisInput.decayCorrection = true;
    engine().m_analysisInput.isotope = "F-18";
    engine().m_analysisInput.halfLifeSeconds = 6600.0;
    writeFiles();
    EXPECT_EQ(writtenJson()["decayCorrected"], (QJsonObject{{"isotope", "F-18"}, {"halfLifeSeconds", 6600.0}}));
}

TEST_F(ResultFilesTest, TheTextNamesTrueComponentsOnlyWhereTheyHaveOtherNames)
{
    analyse();
    m_numbers.truth[0] = {true, 0.5, 0.25, "Dye A", 0.75};
    EXPECT_FALSE(ResultFiles(engine(), m_numbers, out()).summaryText().contains("truth"));
    m_numbers.truth[0].trueName = "Dye C";
    const QString text = ResultFiles(engine(), m_numbers, out()).summaryText();
    EXPECT_TRUE(text.contains("truth"));
    EXPECT_TRUE(text.contains("Dye C"));
}

TEST_F(ResultFilesTest, EveryEndingHasItsWord)
{
    analyse();
    m_numbers.automatic = true;
    QStringList words;
    for (const auto ending : {MCREnding::NotRun, MCREnding::Converged, MCREnding::GoodFit, MCREnding::Diverged,
                              MCREnding::IterationLimit, MCREnding::Degenerate}) {
        m_numbers.facts.ending = ending;
        words.append(factsOfResult(engine(), m_numbers).automatic->ending);
    }
    EXPECT_EQ(words, (QStringList{"not run", "converged", "good fit", "diverged", "iteration limit", "degenerate"}));
}
