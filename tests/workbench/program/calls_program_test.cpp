// SPDX-License-Identifier: GPL-3.0-or-later
// What a call is told before, beside and instead of its work.
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QProcess>

namespace {

class CallsProgramTest : public ProgramFixture
{
protected:
    // The lines on standard error of a call that is refused.
    QStringList refusedLines(const QStringList& arguments) const
    {
        const ProgramResult result = spum(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.out, QByteArray());
        return result.errText().split('\n', Qt::SkipEmptyParts);
    }
};

} // namespace

TEST_F(CallsProgramTest, EverythingThatIsWrongIsToldAtOnce)
{
    EXPECT_EQ(refusedLines({"unmix", "seq", "--unit", "lux", "--binning", "0", "--ncomponents", "two"}),
              (QStringList{"spum: --unit takes counts, radiance, radiant-efficiency, efficiency, not \"lux\".",
                           "spum: --binning takes a whole number from 1 to 64, not \"0\".",
                           "spum: --ncomponents takes a whole number from 2 on, not \"two\".",
                           "spum: See \"spum unmix --help\"."}));
    const QStringList simulate = refusedLines({"simulate", "seq", "--size", "many", "--noise", "loud", "--seed", "-1"});
    ASSERT_EQ(simulate.size(), 4) << qPrintable(simulate.join('\n'));
    EXPECT_TRUE(simulate[0].startsWith("spum: --size takes a whole number"));
    EXPECT_TRUE(simulate[1].startsWith("spum: --noise is"));
    EXPECT_TRUE(simulate[2].startsWith("spum: --seed takes"));
    EXPECT_EQ(refusedLines({"export", "--format", "gif", "--unit", "lux"}).size(), 5);
    EXPECT_EQ(refusedLines({"import", "--exposure", "0", "--interval", "x"}).size(), 4);
    EXPECT_EQ(refusedLines({"batch", "seq", "--jobs", "0", "--max-memory", "-1"}).size(), 4);
}

// Of every word of a call, also where a command has several actions.
TEST_F(CallsProgramTest, CommandsOfSeveralActionsTellAllThatIsWrong)
{
    EXPECT_EQ(
        refusedLines({"roi", "seq", "add", "--shape", "circle:1", "--name", "all", "--csv", "x", "--unit", "lux"}),
        (QStringList{"spum: --csv does not go with \"spum roi SEQ add\", but with measure.",
                     "spum: --unit does not go with \"spum roi SEQ add\", but with measure.",
                     "spum: --shape: a shape begins with \"rect:\", \"ellipse:\", \"polygon:\" or \"freehand:\".",
                     "spum: --name: \"all\" stands for all regions and names none.",
                     "spum: --unit takes counts, radiance, radiant-efficiency, efficiency, not \"lux\".",
                     "spum: See \"spum roi --help\"."}));
    EXPECT_EQ(refusedLines({"results", "export", "seq", "--colors", "mud", "--component", "0", "--pdf"}).size(), 7);
    EXPECT_EQ(refusedLines({"results", "load", "seq", "a", "--colors", "mud", "--scale", "some"}).size(), 3);
    EXPECT_EQ(refusedLines({"compare", "seq", "--colors", "mud"}).size(), 3);
    EXPECT_EQ(
        refusedLines({"library", "save", "a/b", "--region", "A=1", "--region", "B", "--unit", "lux", "--out", "x"}),
        (QStringList{"spum: --out does not go with \"spum library save\", but with template.",
                     "spum: --region: \"A=1\" is not of the form NAME=X,Y,W,H",
                     "spum: --region: \"B\" is not of the form NAME=X,Y,W,H",
                     "spum: --sequence is missing: the images that the spectra are for.",
                     "spum: \"a/b\" cannot be the name of a library",
                     "spum: --unit takes counts, radiance, radiant-efficiency, efficiency, not \"lux\".",
                     "spum: See \"spum library --help\"."}));
    EXPECT_EQ(refusedLines({"library", "rename", "a", "--spectrum", "x", "--spectrum", "y", "--from", "z"}).size(), 4);
    EXPECT_EQ(refusedLines({"unmix", "seq", "--unit", "lux", "--colors", "mud", "--scale", "some"}).size(), 4);
    EXPECT_EQ(refusedLines({"simulate", "--kind", "mri", "--size", "x"}).size(), 4);
    EXPECT_EQ(refusedLines({"export", "a", "b", "--format", "csv", "--out", "-", "--bogus"}).size(), 3);
}

// The word is right and nothing answers to it: that too is told of all words.
TEST_F(CallsProgramTest, NamesOfNothingAreToldAtOnce)
{
    simulate();
    EXPECT_EQ(refusal({"compare", "seq", "one", "two"}),
              QStringLiteral("%1: this is no folder with results of \"spum unmix\"; %2: this is no folder with results "
                             "of \"spum unmix\"")
                  .arg(path("one"), path("two")));
    const QString sources = refusal({"library", "save", "x", "--sequence", "seq", "--probes", "Nobody,Cy7,Noone"});
    EXPECT_TRUE(sources.contains("\"Nobody\"") && sources.contains("\"Noone\"") && !sources.contains("\"Cy7\""))
        << qPrintable(sources);
}

// What one types who does not know the program yet is answered with what to type instead.
TEST_F(CallsProgramTest, WordsInTheWrongOrderAreToldTheRightOne)
{
    smallSequence().writeTo(path("small"));
    const QList<std::pair<QStringList, QString>> calls = {
        {{"small", "unmix"}, "there is no command \"small\": the command comes first, \"spum unmix small\"."},
        {{"small"},
         "there is no command \"small\": a command comes ahead of what it is about, such as \"spum info small\"."},
        {{}, "no command given: simulate, import, info, "},
        {{"roi", "add", "small", "--shape", "rect:0,0,4,4"}, "the sequence comes first: \"spum roi small add\"."},
        {{"results", "small", "list"}, "the action comes first: \"spum results list small\"."},
        {{"unmix", "small", "--components", "--out", "z"}, "--components takes a value, and --out stands behind it."},
        {{"unmix", "small", "--library", "--unit=counts"}, "--library takes a value, and --unit=counts stands behind"},
        {{"unmix", "small", "--library", "l.csv", "--mask", "circle:1,2,3"},
         "--mask takes auto, none, rect:X,Y,W,H, "}};
    for (const auto& [call, told] : calls) {
        const QString refused = refusal(call, 2);
        EXPECT_TRUE(refused.startsWith(told)) << qPrintable(refused);
    }
    EXPECT_EQ(succeed({"version"}).out, succeed({"--version"}).out);
    // A value that begins like an option stands behind an equals sign.
    succeed({"unmix", "small", "--library", library(), "--note=--out", "--out", "z", "--quiet"});
}

TEST_F(CallsProgramTest, WhatIsTakenForAnotherThingIsToldFromIt)
{
    smallSequence().writeTo(path("small"));
    QDir(path(".")).mkpath("photos");
    write("photos/images.csv", "file,emission\na.tif,700\n");
    const QStringList fit = {"unmix", "small", "--out", "z", "--library"};
    const QList<std::pair<QStringList, QString>> calls = {
        {{"info", "nothere"}, "nothere: is no sequence folder; there is no such file or folder"},
        {{"roi", "nothere", "list"}, "nothere: is no sequence folder; there is no such file or folder"},
        {{"info", "photos"}, "; \"spum import IMAGES NEW\" makes a sequence of images"},
        {{"info", "photos/images.csv"}, "; \"spum import IMAGES NEW\" makes a sequence of images"},
        {{"import", "photos/images.csv", "new"}, "this is a table of images, which --images takes beside their folder"},
        {fit + QStringList{"photos"}, "; of a folder it takes the file, such as the spectra.csv of a result"},
        {fit + QStringList{"Cy7"},
         "; \"spum library save NAME --sequence SEQ --probes Cy7\" makes one of the database's "
         "spectra"},
        {fit + QStringList{"Nobody"}, "Nobody is neither a file nor a saved library; no library is saved"},
        {{"unmix", "small", "--library", library(), "--out", "z", "--select", "640"}, "; \"640/*\" takes all of 640"}};
    for (const auto& [call, told] : calls) {
        const QString refused = refusal(call);
        EXPECT_TRUE(refused.endsWith(told)) << qPrintable(refused);
    }
    const QString both = refusal({"unmix", "small", "--components", "TissueAFF,Foot", "--out", "z"});
    EXPECT_TRUE(both.contains("\"TissueAFF\", and --any-name is not given; did you mean \"TissueAF\"") &&
                both.contains("; there is no probe \"Foot\"; did you mean \"Food\""))
        << qPrintable(both);
}

// Also beside what is no option at all.
TEST_F(CallsProgramTest, WrongValuesAreToldBesideUnknownOptions)
{
    EXPECT_EQ(
        refusedLines({"unmix", "seq", "--bogus", "--binning", "0"}),
        (QStringList{"spum: Unknown option 'bogus'.", "spum: --binning takes a whole number from 1 to 64, not \"0\".",
                     "spum: See \"spum unmix --help\"."}));
    // The word behind it may be its value, or an argument: neither is held against the call.
    EXPECT_EQ(refusedLines({"unmix", "--bogus", "seq"}).size(), 1);
    EXPECT_EQ(refusedLines({"unmix", "seq", "--bogus", "value"}).size(), 1);
    EXPECT_EQ(refusedLines({"unmix", "--bogus"}),
              (QStringList{"spum: Unknown option 'bogus'.", "spum: unmix takes one sequence.",
                           "spum: See \"spum unmix --help\"."}));
    EXPECT_EQ(refusedLines({"pca", "seq", "--unit", "lux", "--out", "a", "--out", "b"}),
              (QStringList{"spum: --out is given more than once and taken once.",
                           "spum: --unit takes counts, radiance, radiant-efficiency, efficiency, not \"lux\".",
                           "spum: See \"spum pca --help\"."}));
}

TEST_F(CallsProgramTest, ADryRunTellsAndWritesNothing)
{
    simulate();
    const QStringList before = filesBelow(path("."));
    const QString text = QString::fromUtf8(
        succeed({"unmix", "seq", "--library", truth(), "--mask", "rect:10,10,20,30", "--dry-run"}).out);
    for (const char* line : {"method      library\n", "images      8 of 8\n", "pixels      600 of 4096, at binning 4\n",
                             "unit        radiant-efficiency\n", "/seq/unmixed-library\n",
                             "nothing was unmixed or written (--dry-run)\n"}) {
        EXPECT_TRUE(text.contains(line)) << line << "\n" << qPrintable(text);
    }
    const QJsonObject json =
        succeed({"unmix", "seq", "--components", "TissueAF,Food", "--select", "*/*", "--dry-run", "--json"}).json();
    EXPECT_EQ(json["dryRun"], true);
    EXPECT_EQ(json["method"], "automatic");
    EXPECT_EQ(json["components"].toArray(), (QJsonArray{"TissueAF", "Food"}));
    EXPECT_LT(json["pixels"].toInt(), json["allPixels"].toInt());
    EXPECT_EQ(filesBelow(path(".")), before);
}

TEST_F(CallsProgramTest, ADryRunRefusesWhatTheRunWouldRefuse)
{
    simulate();
    write("taken/letter.txt", "dear");
    EXPECT_TRUE(refusal({"unmix", "seq", "--library", "nowhere.csv", "--dry-run"}).contains("nowhere.csv"));
    EXPECT_TRUE(refusal({"unmix", "seq", "--library", truth(), "--out", "taken", "--dry-run"}).contains("taken"));
    EXPECT_TRUE(refusal({"unmix", "seq", "--ncomponents", "7", "--dry-run"}).contains("--beyond-six"));
}

TEST_F(CallsProgramTest, OnAnyNumberOfThreadsTheNumbersAreTheSame)
{
    simulate();
    succeed({"unmix", "seq", "--library", truth(), "--threads", "1", "--out", "one"});
    succeed({"unmix", "seq", "--library", truth(), "--threads", "3", "--out", "three"});
    EXPECT_EQ(lastingContentOf(path("one/summary.csv")), lastingContentOf(path("three/summary.csv")));
    const QStringList maps = QDir(path("one")).entryList({"*.tif"}, QDir::Files);
    EXPECT_GE(maps.size(), 3);
    for (const QString& map : maps) {
        EXPECT_EQ(contentOf(path("three/" + map)), contentOf(path("one/" + map))) << qPrintable(map);
    }
    for (const char* number : {"0", "-1", "many", "", "2000"}) {
        EXPECT_EQ(refusal({"info", "seq", "--threads", number}, 2),
                  QStringLiteral("--threads takes a whole number from 1 to 1024, not \"%1\".").arg(number));
    }
}

TEST_F(CallsProgramTest, ACubeAsCsvGoesToStandardOutput)
{
    simulate();
    succeed({"export", "seq", "--format", "csv", "--unit", "counts", "--out", "cube.csv"});
    const QStringList before = filesBelow(path("."));
    const ProgramResult streamed = succeed({"export", "seq", "--format", "csv", "--unit", "counts", "--out", "-"});
    EXPECT_EQ(streamed.out, contentOf(path("cube.csv")));
    EXPECT_EQ(filesBelow(path(".")), before);
}

TEST_F(CallsProgramTest, WhatIsNoStreamIsRefusedOnStandardOutput)
{
    simulate();
    for (const char* format : {"ome-tiff", "envi"}) {
        EXPECT_EQ(refusal({"export", "seq", "--format", format, "--out", "-"}, 2),
                  "--out - is standard output, which takes --format csv alone; a file of that name is \"./-\". "
                  "See \"spum export --help\".");
    }
    EXPECT_TRUE(refusal({"export", "seq", "--format", "csv", "--out", "-", "--json"}, 2)
                    .startsWith("--json does not go with --out -"));
    succeed({"export", "seq", "--format", "csv", "--unit", "counts", "--out", "./-"});
    EXPECT_TRUE(entriesOf(path(".")).contains("-"));
}

TEST_F(CallsProgramTest, AFullOutputEndsAStream)
{
    simulate();
    ASSERT_TRUE(QFileInfo::exists("/dev/full"));
    QProcess shell;
    shell.setWorkingDirectory(path("."));
    shell.start("sh", {"-c", "'" + SpumProgram::path() + "' export seq --format csv --unit counts --out - >/dev/full"});
    ASSERT_TRUE(shell.waitForFinished());
    EXPECT_EQ(shell.exitCode(), 1);
    EXPECT_EQ(shell.readAllStandardError(), "spum: standard output cannot be written\n");
}

TEST_F(CallsProgramTest, ResolvingTellsIterationAndLackOfFitOnATerminal)
{
    // Large enough for the line to be drawn meanwhile, whatever the machine.
    succeed({"simulate", "seq", "--size", "512", "--bands", "18"});
    const ProgramResult result =
        program().runOnTerminal({"unmix", "seq", "--components", "TissueAF,Food,AlexaFluor 750,AlexaFluor 790",
                                 "--mask", "none", "--threads", "1"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.err.contains("Resolving the components, iteration ")) << result.err.constData();
    EXPECT_TRUE(result.err.contains(", lack of fit ")) << result.err.constData();
    EXPECT_FALSE(result.err.contains("Writing the results, iteration ")) << result.err.constData();
}

TEST_F(CallsProgramTest, ForceReplacesAndNothingElse)
{
    simulate();
    EXPECT_EQ(refusal({"unmix", "seq", "--ncomponents", "7", "--force"}),
              "Please select 2-6 components to unmix! (asked for: 7; --beyond-six takes as many as there are images)");
    succeed({"unmix", "seq", "--library", truth(), "--save", "a", "--quiet"});
    EXPECT_TRUE(refusal({"results", "delete", "seq", "a", "--force"}, 2)
                    .startsWith("--force does not go with \"spum results delete\", but with load, export."));
    succeed({"results", "delete", "seq", "a", "--yes"});
}

// Qt takes options such as "-style" out of a program's arguments, on a display "-name" too.
TEST_F(CallsProgramTest, NoOptionIsTakenForOneOfTheWindowSystem)
{
    smallSequence().writeTo(path("seq"));
    EXPECT_TRUE(refusal({"info", "seq", "--style", "fusion"}, 2).contains("style"));
    EXPECT_TRUE(refusal({"info", "seq", "--reverse"}, 2).contains("reverse"));
}
