// SPDX-License-Identifier: GPL-3.0-or-later
// `spum batch` from end to end.
#include "workbench/program/BatchProgramFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <sched.h>

namespace {

using BatchProgramTest = BatchProgramFixture;

} // namespace

TEST_F(BatchProgramTest, EverySequenceHasAFolderAndAllHaveTheirFiles)
{
    const ProgramResult result = succeed(batch());
    EXPECT_EQ(unmixedIn(result), "a b c");
    for (const QString& line : endsIn(result)) {
        EXPECT_TRUE(line.contains(": 2 components, residual ") && line.endsWith(" s")) << qPrintable(line);
    }
    EXPECT_TRUE(
        QString::fromUtf8(result.out)
            .endsWith("3 sequences are unmixed, 0 without a result; " + path("out/batch.html") + " tells of all\n"));
    EXPECT_EQ(entriesOf(path("out")), (QStringList{".batch", "a", "b", "batch.csv", "batch.html", "batch.json", "c"}));
    EXPECT_EQ(contentOf(path("out/batch.csv")).count('\n'), 7);
    EXPECT_EQ(column("run", 3) + column("name", 3) + column("map", 3), "bDye A01_Dye_A.tif");
    EXPECT_EQ(contentOf(path("out/batch.html")).count("data:image/jpeg"), 3);
    EXPECT_EQ(entriesOf(path("out/.batch")), (QStringList{"a.json", "b.json", "c.json"}));
}

// A sequence of a batch is unmixed by the command that a user would give.
TEST_F(BatchProgramTest, AFolderIsThatOfTheSingleCommand)
{
    succeed(batch({"--unit", "counts", "--quiet"}));
    succeed({"unmix", "seqs/b", "--library", library(), "--unit", "counts", "--out", "single", "--quiet"});
    EXPECT_EQ(entriesOf(path("out/b")), entriesOf(path("single")));
    for (const QString& name : entriesOf(path("single"))) {
        EXPECT_EQ(lastingContentOf(path("out/b/" + name)), lastingContentOf(path("single/" + name)))
            << qPrintable(name);
    }
}

TEST_F(BatchProgramTest, WhatHasNotChangedIsLeft)
{
    succeed(batch({"--quiet"}));
    const QByteArray before = contentOf(path("out/batch.csv"));
    const ProgramResult second = succeed(batch());
    EXPECT_EQ(unmixedIn(second), "");
    EXPECT_EQ(endsIn(second).value(0), "a: unchanged since its result");
    EXPECT_EQ(contentOf(path("out/batch.csv")), before);
    EXPECT_EQ(unmixedIn(succeed(batch({"--again"}))), "a b c");
}

TEST_F(BatchProgramTest, WhatHasChangedIsUnmixedAgain)
{
    succeed(batch({"--quiet"}));
    const QString unchanged = "unchanged since its result";
    EXPECT_EQ(reasonsOf(), (QStringList{unchanged, unchanged, unchanged}));
    // Touched, but the same: times do not count.
    const QString image = path("seqs/b/SMALL-001/luminescent.TIF");
    const QByteArray pixels = contentOf(image);
    write("seqs/b/SMALL-001/luminescent.TIF", pixels);
    EXPECT_EQ(unmixedIn(succeed(batch())), "");

    SmallSequence other = smallSequence();
    other.images[0].value = [](int i) { return static_cast<float>(2 * i + 1); };
    ASSERT_TRUE(QDir(path("seqs/b")).removeRecursively());
    other.writeTo(path("seqs/b"));
    EXPECT_EQ(reasonsOf().value(1), "the images have changed");
    EXPECT_EQ(unmixedIn(succeed(batch())), "b");

    ASSERT_TRUE(QFile::remove(path("out/c/spectra.csv")));
    EXPECT_EQ(reasonsOf().value(2), "files of the result are missing");
    EXPECT_EQ(unmixedIn(succeed(batch())), "c");

    EXPECT_EQ(reasonsOf({"--unit", "counts"}).value(0), "the options have changed");
    EXPECT_EQ(unmixedIn(succeed(batch({"--unit", "counts"}))), "a b c");
}

// A library is what is in it.
TEST_F(BatchProgramTest, ALibraryCountsByItsContent)
{
    succeed(batch({"--quiet"}));
    ASSERT_TRUE(QFile::copy(library(), path("renamed.csv")));
    QStringList renamed = batch();
    renamed[renamed.indexOf("--library") + 1] = "renamed.csv";
    EXPECT_EQ(unmixedIn(succeed(renamed)), "");
    QByteArray text = contentOf(path("renamed.csv"));
    ASSERT_TRUE(text.contains("640,720,0.5,0.25"));
    write("renamed.csv", text.replace("640,720,0.5,0.25", "640,720,0.5,0.3"));
    EXPECT_EQ(unmixedIn(succeed(renamed)), "a b c");
}

TEST_F(BatchProgramTest, AFailedSequenceStopsNoOtherAndIsTold)
{
    write("seqs/b/SMALL-002/luminescent.TIF", "no image");
    write("seqs/b/SMALL-001/luminescent.TIF", "no image");
    ASSERT_TRUE(QDir(path("seqs/b/SMALL-003")).removeRecursively());
    const ProgramResult result = spum(batch());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(unmixedIn(result), "a b c");
    const QString line = endsIn(result).value(1);
    EXPECT_TRUE(line.startsWith("b: failed: ")) << qPrintable(line);
    const QString message = line.mid(QStringLiteral("b: failed: ").size());
    EXPECT_EQ(result.errText(), "sequence  message\nb         " + message + "\nspum: 1 sequence without a result\n");
    EXPECT_EQ(column("state", 3), "failed");
    EXPECT_EQ(column("message", 3), message);
    EXPECT_EQ(column("component", 3), "");
    EXPECT_TRUE(contentOf(path("out/batch.html")).contains("class=\"text failed\""));
    // And is tried again.
    ASSERT_TRUE(QDir(path("seqs/b")).removeRecursively());
    smallSequence().writeTo(path("seqs/b"));
    EXPECT_EQ(unmixedIn(succeed(batch())), "b");
}

TEST_F(BatchProgramTest, WarningsCountUnderStrict)
{
    succeed(batch({"--strict"}));
    SmallSequence sequence = smallSequence();
    sequence.truthFolder = "../elsewhere";
    ASSERT_TRUE(QDir(path("seqs/b")).removeRecursively());
    sequence.writeTo(path("seqs/b"));
    const ProgramResult lenient = succeed(batch());
    EXPECT_TRUE(endsIn(lenient).value(1).endsWith(", 1 warning")) << lenient.out.constData();
    const ProgramResult strict = spum(batch({"--strict"}));
    EXPECT_EQ(strict.status, 3);
    EXPECT_EQ(strict.errText(), "sequence  warning\nb         the truth folder ../elsewhere lies outside the sequence "
                                "and is not read\nspum: 1 warning\n");
    EXPECT_EQ(column("warningTexts", 3), "the truth folder ../elsewhere lies outside the sequence and is not read");
    // A failure weighs more.
    write("seqs/a/SequenceInfo.txt", "");
    ASSERT_TRUE(QDir(path("seqs/a/SMALL-001")).removeRecursively());
    ASSERT_TRUE(QDir(path("seqs/a/SMALL-002")).removeRecursively());
    EXPECT_EQ(spum(batch({"--strict"})).status, 1);
}

TEST_F(BatchProgramTest, ATableNamesSequencesAndWhatDiffers)
{
    write("lists/table.csv", "path,group,name,options\n../seqs/a,x,first,--unit counts\n../seqs/a,y,second,\n");
    succeed({"batch", "lists/table.csv", "--out", "out", "--library", library(), "--unit", "radiance"});
    EXPECT_EQ(entriesOf(path("out")).filter(QRegularExpression("^(first|second|a)$")),
              (QStringList{"first", "second"}));
    EXPECT_EQ(column("unit", 1) + ' ' + column("group", 1), "Counts x");
    EXPECT_EQ(column("unit", 3) + ' ' + column("group", 3), "Radiance y");
}

TEST_F(BatchProgramTest, AWrongCallIsRefusedBeforeAnythingIsDone)
{
    EXPECT_TRUE(refusal({"batch", "--out", "out"}, 2).startsWith("batch takes sequences"));
    EXPECT_TRUE(refusal({"batch", "seqs/a"}, 2).startsWith("--out is missing"));
    EXPECT_TRUE(refusal(batch({"--max-memory", "0"}), 2).startsWith("--max-memory takes a number above 0"));
    EXPECT_TRUE(
        refusal({"batch", "seqs/a", "--out", "out", "--jobs", "0"}, 2).startsWith("--jobs takes a whole number"));
    EXPECT_TRUE(refusal(batch({"--list", "--gather"}), 2).startsWith("--list and --gather exclude each other"));
    EXPECT_TRUE(refusal(batch({"--only", "d"}), 2).startsWith("there is no sequence \"d\""));
    EXPECT_TRUE(refusal(batch({"--ncomponents", "2"}), 2).startsWith("--ncomponents takes --method automatic"));
    EXPECT_TRUE(refusal(batch({"seqs/../seqs/a"}), 2).contains("was named already"));
    EXPECT_TRUE(refusal({"batch", "seqs/a", "--out", "out", "--library", "none"}, 1).startsWith("none is neither"));
    write("table.csv", "path,options\nseqs/a,\nseqs/b,--unit mile\n");
    EXPECT_TRUE(refusal({"batch", "table.csv", "--out", "out"}, 2).startsWith("table.csv:3: --unit takes"));
    write("table.csv", "path,options\nseqs/a,--library x --jobs 3\n");
    EXPECT_TRUE(refusal({"batch", "table.csv", "--out", "out"}, 2).startsWith("table.csv:2: Unknown option"));
    write("table.csv", "path,unit,options\nseqs/a,counts,--unit radiance\n");
    EXPECT_EQ(refusal({"batch", "table.csv", "--out", "out"}, 2),
              "table.csv:2: --unit is given more than once and taken once");
    write("table.csv", "path,options\nseqs/a,b\n");
    EXPECT_TRUE(refusal({"batch", "table.csv", "--out", "out"}, 2).startsWith("table.csv:2: \"b\" is no option"));
    EXPECT_FALSE(QFileInfo::exists(path("out")));
}

TEST_F(BatchProgramTest, ADryRunTellsWhyAndChangesNothing)
{
    const ProgramResult result = succeed(batch({"--dry-run"}));
    const QStringList lines = QString::fromUtf8(result.out).split('\n');
    EXPECT_TRUE(lines.value(0).startsWith("sequence  unmix  memory [MiB]  why"));
    EXPECT_TRUE(lines.value(1).endsWith("  there is no result yet")) << qPrintable(lines.value(1));
    EXPECT_EQ(lines.value(5), "3 of 3 sequences would be unmixed");
    EXPECT_FALSE(QFileInfo::exists(path("out")));
    const QJsonObject plan = planOf({});
    EXPECT_EQ(plan["unmix"], 3);
    EXPECT_GT(plan["sequences"].toArray()[0].toObject()["memoryMiB"].toDouble(), 1.0);
}

// On threads of each other's they would only wait for each other.
TEST_F(BatchProgramTest, ThoseThatRunAtOnceShareTheProcessors)
{
    cpu_set_t processors;
    ASSERT_EQ(sched_getaffinity(0, sizeof processors, &processors), 0);
    const int count = CPU_COUNT(&processors);
    const auto threadsOf = [this](const QStringList& options) {
        const QStringList all = {"batch", "seqs/a",    "seqs/b",  "seqs/c",    "--out",
                                 "out",   "--library", library(), "--dry-run", "--json"};
        const QJsonObject plan = succeed(all + options).json();
        QStringList found;
        for (const auto& word : plan["sequences"].toArray()[1].toObject()["command"].toArray()) {
            if (word.toString().startsWith("--threads")) {
                found.append(word.toString());
            }
        }
        return found.join(' ').toStdString();
    };
    EXPECT_EQ(threadsOf({"--jobs=2"}), "--threads=" + std::to_string(std::max(1, count / 2)));
    EXPECT_EQ(threadsOf({"--jobs=1000"}), "--threads=" + std::to_string(std::max(1, count / 3))) << "three sequences";
    EXPECT_EQ(threadsOf({"--jobs=1"}), "") << "all of them";
    EXPECT_EQ(threadsOf({"--threads=7"}), "--threads=7");
}

// Those that are let be take no processor from those that run.
TEST_F(BatchProgramTest, AFewThatAreLeftShareTheProcessorsAmongThemselves)
{
    cpu_set_t processors;
    ASSERT_EQ(sched_getaffinity(0, sizeof processors, &processors), 0);
    const QString half = QStringLiteral("--threads=%1").arg(std::max(1, CPU_COUNT(&processors) / 2));
    const auto threadsIn = [](const QJsonValue& command) {
        QStringList found;
        for (const auto& word : command.toArray()) {
            if (word.toString().startsWith("--threads")) {
                found.append(word.toString());
            }
        }
        return found.join(' ');
    };
    const auto threadsOf = [&](const char* pName) {
        const QByteArray summary = contentOf(path("out/" + QString(pName) + "/summary.json"));
        return threadsIn(QJsonDocument::fromJson(summary)["provenance"]["command"]);
    };
    succeed(batch({"--quiet"}));

    ASSERT_TRUE(QFile::remove(path("out/b/spectra.csv")));
    EXPECT_EQ(threadsIn(planOf({})["sequences"].toArray()[1].toObject()["command"]), "");
    EXPECT_EQ(unmixedIn(succeed(batch())), "b");
    EXPECT_EQ(threadsOf("b"), "") << "one alone has all of them";

    SmallSequence other = smallSequence();
    other.images[0].value = [](int i) { return static_cast<float>(2 * i + 1); };
    ASSERT_TRUE(QDir(path("seqs/c")).removeRecursively());
    other.writeTo(path("seqs/c"));
    EXPECT_EQ(unmixedIn(succeed(batch())), "c");
    EXPECT_EQ(threadsOf("c"), "") << "one alone whose images have changed";

    ASSERT_TRUE(QFile::remove(path("out/b/spectra.csv")));
    ASSERT_TRUE(QFile::remove(path("out/c/spectra.csv")));
    EXPECT_EQ(unmixedIn(succeed(batch())), "b c");
    // The one that starts second may be alone by then.
    EXPECT_TRUE(QStringList({threadsOf("b"), threadsOf("c")}).contains(half)) << "two at once share them";
}

TEST_F(BatchProgramTest, TheListIsForSchedulers)
{
    EXPECT_EQ(succeed(batch({"--list"})).out, QByteArray("a\nb\nc\n"));
    const QJsonObject first = succeed(batch({"--list", "--json"})).json()["sequences"].toArray()[0].toObject();
    EXPECT_EQ(first["name"], "a");
    QStringList command;
    for (const auto& word : first["command"].toArray()) {
        command.append(word.toString());
    }
    EXPECT_EQ(command, (QStringList{"spum", "unmix", path("seqs/a"), "--library=" + library(), "--out=" + path("out/a"),
                                    "--replace"}));
    EXPECT_FALSE(QFileInfo::exists(path("out")));
}

// What a scheduler runs: one by one in whatever order, then the overall files.
TEST_F(BatchProgramTest, OneByOneAndGatheredIsTheSameAsAllAtOnce)
{
    succeed(batch({"--only", "c", "--quiet"}));
    EXPECT_EQ(entriesOf(path("out")), (QStringList{".batch", "c"}));
    const ProgramResult early = spum(batch({"--gather"}));
    EXPECT_EQ(early.status, 1);
    EXPECT_TRUE(early.errText().contains("a         there is no result yet\n")) << early.err.constData();
    EXPECT_EQ(column("state", 1), "missing");
    succeed(batch({"--only", "a", "--quiet"}));
    succeed(batch({"--only", "b", "--quiet"}));
    EXPECT_EQ(endsIn(succeed(batch({"--only", "b"}))), QStringList{"b: unchanged since its result"});
    succeed(batch({"--gather", "--quiet"}));
    const QByteArray csv = contentOf(path("out/batch.csv"));
    const QByteArray json = contentOf(path("out/batch.json"));
    EXPECT_EQ(unmixedIn(succeed(batch())), "");
    EXPECT_EQ(contentOf(path("out/batch.csv")), csv);
    EXPECT_EQ(contentOf(path("out/batch.json")), json);
}

TEST_F(BatchProgramTest, ASequenceThatMemoryDoesNotAllowIsToldAndLeft)
{
    const ProgramResult result = spum(batch({"--max-memory", "0.01"}));
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(endsIn(result).value(0).contains("GiB of memory, where 0.01 are to be had")) << result.out.constData();
    EXPECT_FALSE(QFileInfo::exists(path("out/a")));
}

TEST_F(BatchProgramTest, TheAnswerForProgramsIsOneObject)
{
    const ProgramResult result = succeed(batch({"--json"}));
    const QJsonObject json = result.json();
    EXPECT_EQ(json["done"], 3);
    EXPECT_EQ(json["unchanged"], 0);
    EXPECT_EQ(json["folder"], path("out/"));
    EXPECT_EQ(json["sequences"].toArray().size(), 3);
    EXPECT_EQ(succeed(batch({"--json"})).json()["unchanged"], 3);
}

TEST_F(BatchProgramTest, AFolderOfSomethingElseIsNotReplaced)
{
    write("out/b/thesis.txt", "years");
    const ProgramResult result = spum(batch());
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(endsIn(result).value(1).contains("was not made by this program")) << result.out.constData();
    EXPECT_EQ(contentOf(path("out/b/thesis.txt")), "years");
}
