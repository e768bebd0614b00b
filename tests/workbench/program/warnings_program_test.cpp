// SPDX-License-Identifier: GPL-3.0-or-later
// The warnings of a run from end to end: for each a simulated sequence that brings it, and one that does not.
#include "workbench/program/ProgramFixture.h"

#include "platform/orvimage/TiffIo.h"
#include "services/warnings/RunWarning.h"

#include <QDirIterator>
#include <QJsonDocument>

namespace {

class WarningsProgramTest : public ProgramFixture
{
protected:
    // What an unmixing of "seq" warns of, by the summary, which agrees with standard error, report and table.
    QStringList codes(const QStringList& options) const
    {
        const ProgramResult result = spum(QStringList{"unmix", "seq", "--out", "out", "--replace", "--json"} + options);
        EXPECT_EQ(result.status, 0) << result.err.constData();
        const QByteArray report = contentOf(path("out/report.html"));
        QStringList list;
        QString told;
        for (const auto& value : result.json()["warnings"].toArray()) {
            const QJsonObject warning = value.toObject();
            list.append(warning["code"].toString());
            const QString text = warning["text"].toString();
            const QString advice = warning["advice"].toString();
            told += "spum: warning: " + text + (advice.isEmpty() ? "" : "; " + advice) + '\n';
            EXPECT_TRUE(report.contains("<p class=\"warning\">" + text.toHtmlEscaped().toUtf8())) << qPrintable(text);
        }
        EXPECT_EQ(result.errText(), told);
        EXPECT_EQ(report.count("<p class=\"warning\">"), list.size());
        const QStringList lines = QString::fromUtf8(contentOf(path("out/summary.csv"))).split('\n');
        EXPECT_EQ(lines.value(1).section(',', -1), list.join(' '));
        return list;
    }
    // Of the last unmixing.
    QJsonObject summary() const { return QJsonDocument::fromJson(contentOf(path("out/summary.json"))).object(); }
    QString warningText(const QString& strCode) const
    {
        for (const RunWarning& warning : warningsOfJson(summary()["warnings"].toArray())) {
            if (warning.code == strCode) {
                return warning.sentence();
            }
        }
        return QString();
    }
    void simulateAnew(const QStringList& options) const
    {
        succeed(QStringList{"simulate", "seq", "--size", "64", "--quiet"} + options);
    }
};

// Food is in the images and not among the names.
const QStringList namesWithoutFood = {"--components", "TissueAF,AlexaFluor 750,AlexaFluor 790"};
const QStringList mouseNames = {"--components", "TissueAF,Food,AlexaFluor 750,AlexaFluor 790"};

} // namespace

TEST_F(WarningsProgramTest, APeakBeyondTheCameraIsSaturated)
{
    simulateAnew({"--peak", "80000"});
    EXPECT_EQ(codes({"--library", truth()}), QStringList("saturated"));
    const ProgramResult strict = spum({"unmix", "seq", "--out", "out", "--replace", "--library", truth(), "--strict"});
    EXPECT_EQ(strict.status, 1);
    EXPECT_TRUE(strict.errText().endsWith("spum: the results are written, with a warning: saturated\n"))
        << strict.err.constData();
    EXPECT_EQ(spum({"batch", "seq", "--out", "all", "--library", truth(), "--strict"}).status, 1);
    EXPECT_EQ(spum({"batch", "seq", "--out", "all", "--library", truth()}).status, 0);
}

TEST_F(WarningsProgramTest, AGoodRunIsQuietAndStrictLetsItPass)
{
    simulateAnew({});
    EXPECT_EQ(codes({"--library", truth()}), QStringList());
    EXPECT_EQ(codes(mouseNames), QStringList());
    succeed(QStringList{"unmix", "seq", "--out", "out", "--replace", "--strict"} + mouseNames);
}

TEST_F(WarningsProgramTest, FoodUnderTheNameOfADyeIsTold)
{
    simulateAnew({});
    const ProgramResult result = spum(QStringList{"unmix", "seq", "--out", "out", "--json"} + namesWithoutFood);
    const QJsonArray warnings = result.json()["warnings"].toArray();
    ASSERT_GE(warnings.size(), 1);
    EXPECT_EQ(warnings[0].toObject()["code"], "not-its-name");
    EXPECT_EQ(warnings[0].toObject()["severity"], "error");
    EXPECT_TRUE(warnings[0].toObject()["text"].toString().contains("\"AlexaFluor 750\""));
    EXPECT_TRUE(warnings[0].toObject()["text"].toString().contains("more like that of Food"));
    for (const auto& value : result.json()["components"].toArray()) {
        const QJsonObject component = value.toObject();
        EXPECT_EQ(component["nameCosine"].toDouble() < 0.8, component["name"] == "AlexaFluor 750");
    }
}

TEST_F(WarningsProgramTest, ALightThatNoComponentExplainsIsToldAndThatThereAreTooFew)
{
    simulateAnew({});
    EXPECT_EQ(codes(namesWithoutFood), (QStringList{"not-its-name", "unexplained", "too-few-components"}));
    EXPECT_TRUE(warningText("unexplained").contains("residual.png shows where"));
    const QString report = QString::fromUtf8(contentOf(path("out/report.html")));
    EXPECT_TRUE(report.contains("of the images unexplained, where noise would leave"));
    const QJsonObject json = spum({"pca", "seq", "--out", "pca", "--json"}).json();
    EXPECT_EQ(json["componentsAboveNoise"], 4);
    EXPECT_TRUE(spum({"pca", "seq", "--out", "pca", "--force"}).out.contains("Components above the noise: 4\n"));
    EXPECT_EQ(codes({"--library", truth()}), QStringList());
    EXPECT_EQ(codes({"--ncomponents", "6"}).filter("too-many-components").size(), 1);
    EXPECT_EQ(codes({"--ncomponents", "4"}).filter("components").size(), 0);
}

// An animal without food, all of whose sources are named rightly.
TEST_F(WarningsProgramTest, WhereThereIsNoSolutionItIsToldWhatToDo)
{
    simulateAnew({"--food-ratio", "0"});
    EXPECT_EQ(
        refusal({"unmix", "seq", "--out", "out", "--components", "TissueAF,AlexaFluor 750,AlexaFluor 790"}),
        "No solution! Please adjust the setup!; of TissueAF, AlexaFluor 750, AlexaFluor 790 no start was found that "
        "holds; Food among --components may have a solution, and --ncomponents 3 asks for as many without names");
    EXPECT_EQ(spum(QStringList{"unmix", "seq", "--out", "out"} + mouseNames).status, 0);
    EXPECT_EQ(spum({"unmix", "seq", "--out", "out", "--replace", "--ncomponents", "3"}).status, 0);
}

TEST_F(WarningsProgramTest, ExcitationsThatNoProbeTakesAreToldToBeLeftOut)
{
    succeed({"simulate", "seq", "--size", "96", "--bands", "24", "--quiet"});
    EXPECT_EQ(refusal(QStringList{"unmix", "seq", "--out", "out"} + mouseNames),
              "No solution! Please adjust the setup!; of TissueAF, Food, AlexaFluor 750, AlexaFluor 790 no start was "
              "found that holds; the images of the probes' own excitations (--select) may have a solution, and "
              "--ncomponents 4 asks for as many without names");
    EXPECT_EQ(spum(QStringList{"unmix", "seq", "--out", "out", "--select", "605/*,675/*"} + mouseNames).status, 0);
}

TEST_F(WarningsProgramTest, WithoutNamesAFastedAnimalIsResolvedAndWhatWasAddedIsTold)
{
    simulateAnew({"--food-ratio", "0"});
    const ProgramResult result = spum({"unmix", "seq", "--out", "out", "--json"});
    ASSERT_EQ(result.status, 0) << result.err.constData();
    EXPECT_TRUE(result.errText().contains("they were resolved with Food, which the images do not show"));
    const QJsonObject json = result.json();
    EXPECT_EQ(json["warnings"].toArray().first().toObject()["code"], "food-added");
    for (const auto& value : json["components"].toArray()) {
        const QJsonObject component = value.toObject();
        if (component["name"] != "Food") {
            EXPECT_EQ(component["truthName"], component["name"]);
            EXPECT_GT(component["truthCosine"].toDouble(), 0.9) << qPrintable(component["name"].toString());
            EXPECT_GT(component["truthCorrelation"].toDouble(), 0.9) << qPrintable(component["name"].toString());
        }
    }
}

// Neither is said of names that lead to a solution.
TEST_F(WarningsProgramTest, NamesThatLeadToASolutionStay)
{
    simulateAnew({});
    const QStringList told = codes({});
    EXPECT_FALSE(told.contains("not-by-names") || told.contains("food-added")) << qPrintable(told.join(' '));
}

TEST_F(WarningsProgramTest, SpectraThatAreNearlyTheSameAreToldWithThePair)
{
    smallSequence().writeTo(path("seq"));
    EXPECT_EQ(codes({"--library", library()}), QStringList());
    write("alike.csv", "$,Note,by hand\n$,NumSpec,2\n$,Color,red,blue\n$,Origin,a,b\n$,Select,1,1\n"
                       "Excitation,Emission,Dye A,Dye B\n"
                       "640,740,1,1\n640,700,0.5,0.52\n640,720,0.25,0.25\n");
    EXPECT_EQ(codes({"--library", path("alike.csv")}), QStringList("spectra-alike"));
}

TEST_F(WarningsProgramTest, ABinningFinerThanThatOfTheImagesIsTold)
{
    simulateAnew({});
    EXPECT_EQ(codes({"--library", truth(), "--binning", "2"}), QStringList("upsampled"));
    EXPECT_EQ(codes({"--library", truth(), "--binning", "8"}), QStringList());
}

TEST_F(WarningsProgramTest, DecayThatIsNotCorrectedForIsTold)
{
    simulateAnew({"--kind", "cherenkov"});
    EXPECT_EQ(codes({"--ncomponents", "2"}), QStringList("decay"));
    EXPECT_EQ(codes({"--ncomponents", "2", "--decay", "auto"}), QStringList());
}

TEST_F(WarningsProgramTest, NamesThatTheEngineReplacesAreTold)
{
    simulateAnew({"--kind", "luminescent"});
    const QString names = "TissueAF,Click-Beetle Green Luciferase,Click-Beetle Red Luciferase";
    EXPECT_EQ(codes({"--components", names}), QStringList("names-replaced"));
    EXPECT_EQ(codes({"--ncomponents", "3"}), QStringList());
}

// A dark image that is brighter than the cells' surroundings, and one that is not.
TEST_F(WarningsProgramTest, NegativesThatBecameZeroAreToldWhereTheyMatter)
{
    const auto write = [this](double dDark) {
        ASSERT_TRUE(QDir().mkpath(path("in")));
        QString error;
        for (int k = 0; k < 5; ++k) {
            const CILImage image = imageOf(32, 32, [k](int i) {
                return static_cast<float>(100 + 40 * (k + 1) * (i % 32) / 32 + 30 * (5 - k) * (i / 32) / 32);
            });
            ASSERT_TRUE(writeTiff(path(QStringLiteral("in/em%1.tif").arg(500 + 20 * k)), image, {}, &error));
        }
        const CILImage dark = imageOf(32, 32, [dDark](int) { return static_cast<float>(dDark); });
        ASSERT_TRUE(writeTiff(path("dark.tif"), dark, {}, &error));
    };
    write(100.0);
    succeed({"import", path("in"), "seq", "--dark", path("dark.tif"), "--quiet"});
    EXPECT_FALSE(codes({"--ncomponents", "2"}).contains("clipped"));
    write(140.0);
    succeed({"import", path("in"), "seq", "--dark", path("dark.tif"), "--quiet", "--force"});
    EXPECT_TRUE(codes({"--ncomponents", "2"}).contains("clipped"));
}

TEST_F(WarningsProgramTest, AMaskOverTheDarkPartOfTheImagesIsTold)
{
    simulateAnew({});
    EXPECT_EQ(codes(mouseNames), QStringList());
    EXPECT_GT(summary()["maskLight"].toDouble(), 0.95);
    // Photographs that show a bright bed beside the animal.
    QDirIterator photographs(path("seq"), {"photograph.TIF"}, QDir::Files, QDirIterator::Subdirectories);
    while (photographs.hasNext()) {
        CILImage image;
        QString error;
        ASSERT_TRUE(readTiff(photographs.next(), 0, image, &error)) << qPrintable(error);
        ASSERT_EQ(image.ChangeType(ORVTYPE_FLOAT), EIL_SUCCESS);
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            const bool bed = static_cast<long>(i) % image.m_lWidth < image.m_lWidth / 5;
            image.floats()[i] = bed ? 1000.0F : 100.0F;
        }
        ASSERT_TRUE(writeTiff(photographs.filePath(), image, {}, &error)) << qPrintable(error);
    }
    EXPECT_TRUE(codes({"--ncomponents", "2"}).contains("mask-off-light"));
    EXPECT_LT(summary()["maskLight"].toDouble(), 0.5);
}

TEST_F(WarningsProgramTest, FoodIsProposedWhereTheImagesShowItAndNotWhereTheyDoNot)
{
    for (int seed = 1; seed <= 6; ++seed) {
        succeed({"simulate", "fed", "--size", "64", "--seed", QString::number(seed), "--quiet", "--force"});
        const QJsonObject fed = succeed({"unmix", "fed", "--out", "fed-out", "--replace", "--json"}).json();
        QStringList names;
        for (const auto& component : fed["components"].toArray()) {
            names.append(component.toObject()["name"].toString());
        }
        EXPECT_EQ(names, (QStringList{"TissueAF", "Food", "AlexaFluor 750", "AlexaFluor 790"})) << seed;
        EXPECT_TRUE(fed["proposal"].toString().startsWith("proposed TissueAF, Food, AlexaFluor 750, AlexaFluor 790"))
            << seed;
        EXPECT_TRUE(fed["proposal"].toString().contains("food")) << seed;
        succeed({"simulate", "fasted", "--size", "64", "--food-ratio", "0", "--seed", QString::number(seed), "--quiet",
                 "--force"});
        const ProgramResult fasted = spum({"unmix", "fasted", "--out", "fasted-out", "--replace", "--json"});
        ASSERT_EQ(fasted.status, 0) << seed << fasted.err.constData();
        const QString told = fasted.json()["proposal"].toString();
        EXPECT_TRUE(told.contains("proposed TissueAF, AlexaFluor 750, AlexaFluor 790: ")) << seed << qPrintable(told);
    }
}

TEST_F(WarningsProgramTest, WhatIsProposedIsToldWithTheReason)
{
    simulateAnew({});
    const QString text = spum({"unmix", "seq", "--out", "out"}).out;
    EXPECT_TRUE(text.contains("proposed TissueAF, Food, AlexaFluor 750, AlexaFluor 790: ")) << qPrintable(text);
    EXPECT_TRUE(text.contains(" regions of the mask show (without it ")) << qPrintable(text);
    EXPECT_FALSE(spum(QStringList{"unmix", "seq", "--out", "out", "--replace"} + mouseNames).out.contains("proposed"));
}

TEST_F(WarningsProgramTest, AnOffsetOfTheCameraIsTold)
{
    const auto write = [this](float fOffset) {
        ASSERT_TRUE(QDir().mkpath(path("in")));
        QString error;
        for (int k = 0; k < 5; ++k) {
            const CILImage image = imageOf(32, 32, [k, fOffset](int i) {
                return fOffset + static_cast<float>(40 * (k + 1) * (i % 32) / 32 + 30 * (5 - k) * (i / 32) / 32);
            });
            ASSERT_TRUE(writeTiff(path(QStringLiteral("in/em%1.tif").arg(500 + 20 * k)), image, {}, &error));
        }
    };
    write(300.0F);
    succeed({"import", path("in"), "seq", "--quiet"});
    EXPECT_TRUE(codes({"--ncomponents", "2"}).contains("offset"));
    EXPECT_TRUE(codes({"--ncomponents", "2", "--no-refinement"}).contains("offset"));
    write(0.0F);
    succeed({"import", path("in"), "seq", "--quiet", "--force"});
    EXPECT_FALSE(codes({"--ncomponents", "2"}).contains("offset"));
}

TEST_F(WarningsProgramTest, ASourceThatALibraryLacksIsGuessedFromWhatIsLeft)
{
    simulateAnew({});
    // Its second spectrum is that of the food.
    QString lacking;
    for (const QString& line : QString::fromUtf8(contentOf(truth())).split('\n', Qt::SkipEmptyParts)) {
        QStringList cells = line.split(',');
        if (cells.size() > 3) {
            cells.removeAt(3);
        }
        lacking += (line.startsWith("$,NumSpec") ? QStringLiteral("$,NumSpec,3") : cells.join(',')) + '\n';
    }
    write("lacking.csv", lacking.toUtf8());
    EXPECT_TRUE(codes({"--library", path("lacking.csv")}).contains("unexplained"));
    EXPECT_TRUE(warningText("unexplained").contains("; what is left looks like Food; add Food"))
        << qPrintable(warningText("unexplained"));
}
