// SPDX-License-Identifier: GPL-3.0-or-later
// `spum unmix --save` and `spum results` from end to end.
#include "support/ForkedChild.h"
#include "workbench/program/ProgramFixture.h"

#include "services/warnings/RunWarning.h"

#include "platform/orvimage/TiffIo.h"
#include "storage/SavedDocument.h"

#include <QDir>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <thread>

namespace {

class ResultsProgramTest : public ProgramFixture
{
protected:
    void SetUp() override
    {
        ProgramFixture::SetUp();
        smallSequence().writeTo(path("seq"));
    }
    QStringList unmix(const QStringList& options) const
    {
        return QStringList{"unmix", "seq", "--library", library(), "--force", "--json"} + options;
    }
    QString save(const QStringList& options) const { return succeed(unmix(options)).json()["saved"].toString(); }
    QStringList listed() const
    {
        QStringList names;
        for (const auto& result : succeed({"results", "list", "seq", "--json"}).json()["results"].toArray()) {
            names.append(result.toObject()["name"].toString());
        }
        return names;
    }
    QStringList files() const { return QDir(path("seq/XML/SpecUnmix")).entryList(QDir::Files); }
    CILImage map(const QString& strFolder, const QString& strName) const
    {
        CILImage image;
        QString error;
        EXPECT_TRUE(readTiff(path(strFolder) + '/' + strName, 0, image, &error)) << qPrintable(error);
        return image;
    }
    double largestDifference(const CILImage& a, const CILImage& b) const
    {
        EXPECT_EQ(a.pixelCount(), b.pixelCount());
        double largest = 0.0;
        for (std::size_t i = 0; i < std::min(a.pixelCount(), b.pixelCount()); ++i) {
            largest = std::max(largest, std::abs(a.value(i) - b.value(i)));
        }
        return largest;
    }
};

} // namespace

TEST_F(ResultsProgramTest, ASequenceWithoutSavedResultsSaysSo)
{
    EXPECT_EQ(QString::fromUtf8(succeed({"results", "list", "seq"}).out),
              "no results are saved with this sequence; \"spum unmix SEQ --save\" keeps one\n");
    EXPECT_TRUE(listed().isEmpty());
    EXPECT_EQ(refusal({"results", "show", "seq", "x"}),
              "the sequence has no saved results; \"spum unmix SEQ --save\" keeps one");
    EXPECT_FALSE(QFileInfo::exists(path("seq/XML")));
}

TEST_F(ResultsProgramTest, WithoutANameTheNextFreeOneIsTaken)
{
    EXPECT_EQ(save({"--save"}), "SPUM_001");
    EXPECT_EQ(save({"--save"}), "SPUM_002");
    EXPECT_EQ(listed(), (QStringList{"SPUM_001", "SPUM_002"}));
    EXPECT_EQ(files().size(), 2);
}

TEST_F(ResultsProgramTest, ANameMayFollowTheOptionOrAnEqualsSign)
{
    EXPECT_EQ(save({"--save", "first look"}), "first look");
    EXPECT_EQ(save({"--save=second"}), "second");
    // The sequence behind it is not its name.
    const auto json = succeed({"unmix", "--save", "seq", "--library", library(), "--force", "--json"}).json();
    EXPECT_EQ(json["saved"].toString(), "SPUM_001");
    EXPECT_EQ(listed(), (QStringList{"first look", "second", "SPUM_001"}));
}

TEST_F(ResultsProgramTest, ATakenNameIsRefusedAheadOfTheRunAndOverwrittenWithForce)
{
    save({"--save", "a"});
    const QString message = refusal({"unmix", "seq", "--library", library(), "--out", path("other"), "--save", "a"});
    EXPECT_EQ(message, "there is a saved result \"a\" already; --force overwrites it");
    EXPECT_FALSE(QFileInfo::exists(path("other")));
    EXPECT_EQ(save({"--save", "a", "--note", "again"}), "a");
    EXPECT_EQ(listed(), QStringList{"a"});
    // The file of before stays, without an entry.
    EXPECT_EQ(files().size(), 2);
    EXPECT_EQ(succeed({"results", "show", "seq", "a", "--json"}).json()["note"].toString(), "again");
    // Another case is another name.
    EXPECT_EQ(save({"--save", "A"}), "A");
}

TEST_F(ResultsProgramTest, NamesThatFitNoLineAreRefused)
{
    for (const QString& name : {QStringLiteral(" a"), QStringLiteral("a\nb"), QStringLiteral("   ")}) {
        EXPECT_TRUE(refusal({"unmix", "seq", "--library", library(), "--save=" + name}, 2).contains("is no name"))
            << qPrintable(name);
    }
}

TEST_F(ResultsProgramTest, ShowTellsWhatTheFileSays)
{
    const QString note = QString::fromUtf8("M\xC3\xA4use & \"more\" <b>");
    save({"--save", "x", "--note", note, "--unit", "counts"});
    const QJsonObject json = succeed({"results", "show", "seq", "X", "--json"}).json();
    EXPECT_EQ(json["name"].toString(), "x");
    EXPECT_EQ(json["note"].toString(), note);
    EXPECT_EQ(json["method"].toString(), "Library");
    EXPECT_EQ(json["unit"].toString(), "Counts");
    EXPECT_EQ(json["images"].toInt(), 3);
    EXPECT_EQ(json["spectra"].toArray().size(), 2);
    EXPECT_EQ(json["properties"].toObject()["SPUM_Ver"].toString(), "2.0");
    const QString text = QString::fromUtf8(succeed({"results", "show", "seq", "x"}).out);
    EXPECT_TRUE(text.contains("note: " + note));
    EXPECT_TRUE(text.contains("Dye A"));
}

TEST_F(ResultsProgramTest, AListThatLeadsOutOfItsFolderIsToldAndNotFollowed)
{
    save({"--save", "x"});
    const QString file = "seq/XML/SpecUnmix/" + files().value(0);
    ASSERT_TRUE(QFile::copy(path(file), path("other.xml")));
    QFile index(path("seq/XML/SPUM.txt"));
    ASSERT_TRUE(index.open(QIODevice::ReadOnly));
    const QByteArray text = index.readAll();
    index.close();
    const QByteArray named = "SpecUnmix/" + files().value(0).toUtf8();
    ASSERT_TRUE(text.contains(named));
    for (const QByteArray& name : {QByteArray("../../other.xml"), QByteArray("SpecUnmix/../../../other.xml"),
                                   QFile::encodeName(path("other.xml"))}) {
        write("seq/XML/SPUM.txt", QByteArray(text).replace(named, name));
        const QList<QStringList> commands{{"results", "show", "seq", "x"},
                                          {"results", "load", "seq", "x"},
                                          {"results", "export", "seq", "x", "--out", "new"}};
        for (const QStringList& command : commands) {
            const QString told = refusal(command);
            EXPECT_TRUE(told.contains(" lies outside ")) << qPrintable(command[1] + ": " + told);
        }
        EXPECT_TRUE(QString::fromUtf8(succeed({"results", "list", "seq"}).out).contains(" lies outside "));
    }
}

TEST_F(ResultsProgramTest, ALoadedResultHasTheMapsOfTheRun)
{
    save({"--save", "x", "--unit", "counts", "--out", path("run"), "--note", "n"});
    const QJsonObject json = succeed({"results", "load", "seq", "x", "--out", path("again"), "--json"}).json();
    EXPECT_EQ(json["unit"].toString(), "Counts");
    EXPECT_EQ(json["method"].toString(), "library");
    EXPECT_EQ(json["saved"].toString(), "x");
    for (const QString& name : {QStringLiteral("01_Dye_A.tif"), QStringLiteral("02_Dye_B.tif")}) {
        EXPECT_LE(largestDifference(map("run", name), map("again", name)), 1e-6);
    }
    const QDir run(path("run"));
    EXPECT_EQ(QDir(path("again")).entryList(QDir::Files), run.entryList(QDir::Files));
    for (const QString& name : run.entryList({"*.png"}, QDir::Files)) {
        EXPECT_EQ(contentOf(path("again/" + name)), contentOf(run.filePath(name))) << qPrintable(name);
    }
    EXPECT_TRUE(QString::fromUtf8(contentOf(path("again/report.html"))).contains("saved result x"));
    // Without a folder it goes beside the images, and an earlier one stays unless it is to be replaced.
    succeed({"results", "load", "seq", "x", "--quiet"});
    EXPECT_TRUE(QFileInfo::exists(path("seq/result-x/summary.json")));
    EXPECT_FALSE(refusal({"results", "load", "seq", "x"}).isEmpty());
    succeed({"results", "load", "seq", "x", "--force", "--pdf", "--quiet"});
    EXPECT_TRUE(contentOf(path("seq/result-x/report.pdf")).startsWith("%PDF"));
}

TEST_F(ResultsProgramTest, ALoadedAutomaticResultTellsTheSameSources)
{
    QDir().rename(path("seq"), path("small"));
    simulate();
    const auto run = succeed({"unmix", "seq", "--ncomponents", "3", "--save", "--out", path("run"), "--json"},
                             {"unexplained", "too-few-components"})
                         .json();
    const auto shown = succeed({"results", "show", "seq", "SPUM_001", "--json"}).json();
    const auto loaded = succeed({"results", "load", "seq", "SPUM_001", "--out", path("again"), "--json"},
                                {"unexplained", "too-few-components"})
                            .json();
    // But for the names of files, which are not saved with it.
    const auto sentences = [](const QJsonObject& json) {
        return sentencesOf(warningsOfJson(json["warnings"].toArray()))
            .replaceInStrings("; residual.png shows where, residual.csv in which images", "");
    };
    EXPECT_EQ(sentences(loaded), sentences(run));
    EXPECT_EQ(sentences(shown), sentences(run));
    EXPECT_FALSE(shown["properties"].toObject().contains("Warning"));
    const QString text = spum({"results", "show", "seq", "SPUM_001"}).out;
    EXPECT_TRUE(text.contains("warning: " + sentences(run).first() + "\n")) << qPrintable(text);
    const QString report = QString::fromUtf8(contentOf(path("again/report.html")));
    EXPECT_EQ(report.count("<p class=\"warning\">"), 2);
    ASSERT_EQ(loaded["components"].toArray().size(), 3);
    for (int i = 0; i < 3; ++i) {
        const auto a = run["components"].toArray()[i].toObject();
        const auto b = loaded["components"].toArray()[i].toObject();
        EXPECT_EQ(a["name"], b["name"]);
        EXPECT_NEAR(a["share"].toDouble(), b["share"].toDouble(), 0.01);
    }
    EXPECT_NEAR(run["residual"].toDouble(), loaded["residual"].toDouble(), 0.1 * run["residual"].toDouble());
    EXPECT_EQ(loaded["method"].toString(), "automatic");
    EXPECT_EQ(loaded["pixels"], run["pixels"]);
}

TEST_F(ResultsProgramTest, RenameKeepsTheFileAndRefusesTakenNames)
{
    save({"--save", "a"});
    save({"--save", "b"});
    const QStringList before = files();
    EXPECT_TRUE(QString::fromUtf8(succeed({"results", "rename", "seq", "A", "c d"}).out).contains("\"c d\""));
    EXPECT_EQ(listed(), (QStringList{"c d", "b"}));
    EXPECT_EQ(files(), before);
    EXPECT_EQ(refusal({"results", "rename", "seq", "b", "C D"}),
              "Result \"C D\" already exist. Please choose a different name.");
    EXPECT_EQ(listed(), (QStringList{"c d", "b"}));
    EXPECT_FALSE(refusal({"results", "rename", "seq", "b", ""}, 2).isEmpty());
}

TEST_F(ResultsProgramTest, DeleteAsksUnlessToldNotTo)
{
    save({"--save", "a"});
    const ProgramResult declined = spum({"results", "delete", "seq", "a"});
    EXPECT_EQ(declined.status, 1);
    EXPECT_TRUE(declined.errText().contains("Are you sure you want to delete the results for a?"));
    EXPECT_EQ(listed(), QStringList{"a"});
    succeed({"results", "delete", "seq", "a", "--yes", "--quiet"});
    EXPECT_TRUE(listed().isEmpty());
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(ResultsProgramTest, ADamagedOrMissingFileIsToldAndHidesNoOther)
{
    save({"--save", "a"});
    save({"--save", "b"});
    const QString damaged = QDir(path("seq/XML/SpecUnmix")).filePath(files().first());
    write("seq/XML/SpecUnmix/" + files().first(), contentOf(damaged).left(300));
    const auto results = succeed({"results", "list", "seq", "--json"}).json()["results"].toArray();
    ASSERT_EQ(results.size(), 2);
    EXPECT_TRUE(results[0].toObject()["error"].toString().startsWith("line "));
    EXPECT_FALSE(results[1].toObject().contains("error"));
    EXPECT_TRUE(refusal({"results", "load", "seq", "a"}).contains("line "));
    QFile::remove(damaged);
    EXPECT_TRUE(refusal({"results", "show", "seq", "a"}).endsWith("the file is missing"));
    succeed({"results", "load", "seq", "b", "--quiet"});
    EXPECT_FALSE(QFileInfo::exists(path("seq/result-a")));
}

TEST_F(ResultsProgramTest, ManySavesAtOnceAreAllKept)
{
    constexpr int savers = 6;
    std::vector<std::thread> threads;
    std::vector<ProgramResult> results(savers);
    for (int i = 0; i < savers; ++i) {
        threads.emplace_back([&, i] {
            results[static_cast<std::size_t>(i)] =
                spum({"unmix", "seq", "--library", library(), "--save", "--out", path("out") + QString::number(i)});
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    for (const ProgramResult& result : results) {
        EXPECT_EQ(result.status, 0) << qPrintable(result.errText());
    }
    QStringList names = listed();
    EXPECT_EQ(names.size(), savers);
    EXPECT_EQ(names.removeDuplicates(), 0);
    EXPECT_EQ(files().size(), savers);
    for (const auto& result : succeed({"results", "list", "seq", "--json"}).json()["results"].toArray()) {
        EXPECT_FALSE(result.toObject().contains("error"));
    }
}

TEST_F(ResultsProgramTest, AFolderThatCannotBeWrittenKeepsTheFilesOfTheRun)
{
    write("seq/XML", "in the way");
    const ProgramResult result = spum({"unmix", "seq", "--library", library(), "--out", path("run"), "--save"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errText().contains("Failed to create XML folder.")) << qPrintable(result.errText());
    EXPECT_TRUE(result.errText().contains("the result was not saved; its files are in " + path("run")))
        << qPrintable(result.errText());
    EXPECT_TRUE(QFileInfo::exists(path("run/summary.json")));
}

TEST_F(ResultsProgramTest, ExportMakesASequenceOfTheMaps)
{
    save({"--save", "a"});
    const auto json = succeed({"results", "export", "seq", "a", "--out", path("maps"), "--json"}).json();
    EXPECT_EQ(json["maps"].toArray().size(), 2);
    const auto info = succeed({"info", "maps", "--json"}).json();
    EXPECT_EQ(info["images"].toArray().size(), 2);
    EXPECT_FALSE(refusal({"results", "export", "seq", "a", "--out", path("maps")}).isEmpty());
    EXPECT_EQ(refusal({"results", "export", "seq", "a"}, 2),
              "--out is missing: the folder of the new sequence. See \"spum results --help\".");
    EXPECT_FALSE(refusal({"results", "export", "seq", "a", "--out", path("m2"), "--component", "0"}, 2).isEmpty());
}

TEST_F(ResultsProgramTest, NoOtherSequenceTakesThePlaceOfOneWithSavedResults)
{
    save({"--save", "a", "--out", path("run")});
    const QStringList before = filesBelow(path("seq"));
    const QString why =
        " holds saved results (XML/SPUM.txt), which would be lost with it: delete them first, or choose "
        "another folder";
    writeTiffFile("stack/em700.tif", imageOf(4, 4, [](int i) { return static_cast<float>(i); }));
    EXPECT_TRUE(refusal({"import", "stack", "seq", "--force"}).endsWith("/seq" + why));
    EXPECT_TRUE(refusal({"simulate", "seq", "--size", "64", "--force"})
                    .endsWith("/seq" + why + "; --discard-results gives them up"));
    smallSequence().writeTo(path("other"));
    succeed({"unmix", "other", "--library", library(), "--save", "b", "--out", path("maps")});
    EXPECT_TRUE(refusal({"results", "export", "other", "b", "--out", path("seq"), "--force"}).endsWith("/seq" + why));
    EXPECT_EQ(filesBelow(path("seq")), before);
    EXPECT_EQ(refusal({"simulate", "seq", "--discard-results"}, 2),
              "--discard-results goes with --force. See \"spum simulate --help\".");
    succeed({"results", "delete", "seq", "a", "--yes"});
    // Nor would the files of the run go, nor the list without a result.
    for (const char* folder : {"seq/XML", "seq/unmixed-library", "other/unmixed-library"}) {
        ASSERT_TRUE(QDir(path(folder)).removeRecursively()) << folder;
    }
    succeed({"import", "stack", "seq", "--force"});
    succeed({"simulate", "other", "--size", "64", "--bands", "3", "--probes", "Cy7", "--force", "--discard-results"});
    EXPECT_EQ(succeed({"results", "list", "other", "--json"}).json()["results"].toArray().size(), 0);
}

TEST_F(ResultsProgramTest, WrongCallsAreUsageErrors)
{
    for (const QStringList& arguments : {QStringList{"results"},
                                         {"results", "list"},
                                         {"results", "what", "seq"},
                                         {"results", "show", "seq"},
                                         {"results", "list", "seq", "--force"},
                                         {"results", "rename", "seq", "a"},
                                         {"results", "load", "seq", "a", "b"}}) {
        EXPECT_TRUE(refusal(arguments, 2).endsWith("See \"spum results --help\".")) << qPrintable(arguments.join(' '));
    }
}

TEST_F(ResultsProgramTest, TheReportOfARunTellsItsCommand)
{
    succeed(unmix({"--out", path("run"), "--pdf", "--note", "a <note>"}));
    const QString html = QString::fromUtf8(contentOf(path("run/report.html")));
    EXPECT_TRUE(html.contains("spum unmix seq --library "));
    EXPECT_TRUE(html.contains("a &lt;note&gt;"));
    EXPECT_EQ(html.count("<img "), 4); // composite, two maps, spectra
    EXPECT_TRUE(contentOf(path("run/report.pdf")).startsWith("%PDF"));
    EXPECT_TRUE(QFileInfo::exists(path("run/composite.png")));
}

TEST_F(ResultsProgramTest, TheDecayOfAnIsotopeIsKeptWithItsState)
{
    QDir().rename(path("seq"), path("small"));
    succeed({"simulate", "seq", "--kind", "cherenkov", "--size", "64", "--quiet"});
    const QStringList run{"unmix", "seq", "--ncomponents", "2", "--force", "--quiet"};
    succeed(run + QStringList{"--save", "plain", "--out", path("plain")});
    succeed(run + QStringList{"--save", "corrected", "--decay", "auto", "--out", path("corrected")});
    EXPECT_FALSE(succeed({"results", "show", "seq", "plain", "--json"}).json()["decayCorrected"].toBool(true));
    EXPECT_TRUE(succeed({"results", "show", "seq", "corrected", "--json"}).json()["decayCorrected"].toBool(false));
    const QString text = QString::fromUtf8(succeed({"results", "show", "seq", "plain"}).out);
    EXPECT_TRUE(text.contains(QRegularExpression("decay of \\S+ \\(half life [0-9.]+ min\\): not corrected")))
        << qPrintable(text);
    // Each comes back in its own state.
    for (const QString& name : {QStringLiteral("plain"), QStringLiteral("corrected")}) {
        const auto loaded = succeed({"results", "load", "seq", name, "--out", path("again-" + name), "--json"},
                                    name == "plain" ? QStringList("decay") : QStringList())
                                .json();
        const auto made = QJsonDocument::fromJson(contentOf(path(name + "/summary.json"))).object();
        EXPECT_NEAR(loaded["residual"].toDouble(), made["residual"].toDouble(), 0.02 * made["residual"].toDouble());
        EXPECT_NEAR(loaded["components"].toArray()[0].toObject()["maximum"].toDouble(),
                    made["components"].toArray()[0].toObject()["maximum"].toDouble(),
                    0.05 * made["components"].toArray()[0].toObject()["maximum"].toDouble());
    }
}
