// SPDX-License-Identifier: GPL-3.0-or-later
// The warnings of a run from end to end: for each a simulated sequence that brings it, and one that does not.
#include "workbench/program/ProgramFixture.h"

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
    void simulateAnew(const QStringList& options) const
    {
        succeed(QStringList{"simulate", "seq", "--size", "64", "--quiet"} + options);
    }
};

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
    const ProgramResult result = spum({"unmix", "seq", "--out", "out", "--json"});
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

// Food is not among what is proposed, nor in the library.
TEST_F(WarningsProgramTest, ALightThatNoComponentExplainsIsToldAndThatThereAreTooFew)
{
    simulateAnew({});
    EXPECT_EQ(codes({}), (QStringList{"not-its-name", "unexplained", "too-few-components"}));
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
        refusal({"unmix", "seq", "--out", "out"}),
        "No solution! Please adjust the setup!; of TissueAF, AlexaFluor 750, AlexaFluor 790 no start was found that "
        "holds; Food among --components may have a solution, and --ncomponents 3 asks for as many without names");
    EXPECT_EQ(spum(QStringList{"unmix", "seq", "--out", "out"} + mouseNames).status, 0);
    EXPECT_EQ(spum({"unmix", "seq", "--out", "out", "--replace", "--ncomponents", "3"}).status, 0);
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
