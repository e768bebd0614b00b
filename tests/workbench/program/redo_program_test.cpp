// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/program/ProgramFixture.h"

#include "services/basis/fileHash.h"
#include "services/results/Provenance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonDocument>

namespace {

class RedoProgramTest : public ProgramFixture
{
protected:
    QJsonObject summaryOf(const QString& strFolder) const
    {
        return QJsonDocument::fromJson(contentOf(path(strFolder + "/summary.json"))).object();
    }
    QJsonObject provenanceOf(const QString& strFolder) const { return summaryOf(strFolder)["provenance"].toObject(); }
    // Whatever it has to say of the answer.
    void run(const QStringList& arguments) const
    {
        const ProgramResult result = spum(arguments);
        EXPECT_EQ(result.status, 0) << result.err.constData();
    }
    void unmix(const QStringList& options = {}, const QString& strOut = "out") const
    {
        succeed(QStringList{"unmix", "seq", "--library", truth(), "--out", strOut} + options);
    }
    // The first image of "seq", with another pixel.
    QString changeAnImage() const
    {
        for (const QString& name : filesBelow(path("seq"))) {
            if (name.endsWith("luminescent.TIF")) {
                QFile file(path("seq/" + name));
                EXPECT_TRUE(file.open(QIODevice::ReadWrite));
                QByteArray bytes = file.readAll();
                const int middle = bytes.size() / 2;
                bytes[middle] = static_cast<char>(bytes[middle] ^ 0x10);
                file.seek(0);
                file.write(bytes);
                return name;
            }
        }
        ADD_FAILURE() << "there is no image";
        return QString();
    }
};

} // namespace

TEST_F(RedoProgramTest, TheSummaryTellsWhereTheResultComesFrom)
{
    simulate();
    run({"unmix", "seq", "--library", truth(), "--out", "out", "--mask", "rect:8,8,20,20", "--unit", "counts",
         "--select", "*/*"});
    const QJsonObject provenance = provenanceOf("out");
    EXPECT_EQ(provenance["command"].toArray()[1], "unmix");
    EXPECT_EQ(provenance["program"].toObject()["version"].toString().count('.'), 2);
    EXPECT_EQ(provenance["sequence"].toObject()["path"], QDir::cleanPath(path("seq")));
    EXPECT_EQ(provenance["options"].toObject()["mask"], "rect:8,8,20,20");
    EXPECT_EQ(provenance["options"].toObject()["unit"], "counts");
    EXPECT_EQ(provenance["options"].toObject()["binning"], 4);
    EXPECT_EQ(provenance["options"].toObject()["images"].toArray().size(), 8);
    EXPECT_EQ(provenance["library"].toObject()["sha1"], fileHash(truth()));
    EXPECT_EQ(provenance["made"].toObject()["directory"], QDir(path(".")).canonicalPath());
    const QJsonArray files = provenance["sequence"].toObject()["files"].toArray();
    int images = 0;
    for (const auto& value : files) {
        const QJsonObject file = value.toObject();
        EXPECT_EQ(file["sha1"], fileHash(path("seq/" + file["file"].toString())))
            << qPrintable(file["file"].toString());
        images += file["file"].toString().endsWith("luminescent.TIF") ? 1 : 0;
    }
    EXPECT_EQ(images, 8);
}

TEST_F(RedoProgramTest, TheAutomaticMaskIsToldWithItsThresholdAndPixels)
{
    simulate();
    run({"unmix", "seq", "--ncomponents", "3", "--out", "out"});
    const QJsonObject provenance = provenanceOf("out");
    EXPECT_EQ(provenance["options"].toObject()["mask"], "auto");
    EXPECT_GT(provenance["options"].toObject()["threshold"].toDouble(), 0.0);
    EXPECT_EQ(provenance["options"].toObject()["components"].toArray().size(), 3);
    const QImage mask = QImage(path("out/mask.png")).convertToFormat(QImage::Format_Grayscale8);
    QByteArray pixels;
    for (int y = 0; y < mask.height(); ++y) {
        pixels.append(reinterpret_cast<const char*>(mask.constScanLine(y)), mask.width());
    }
    EXPECT_EQ(provenance["mask"].toObject()["sha1"].toString(),
              QString(QCryptographicHash::hash(pixels, QCryptographicHash::Sha1).toHex()));
}

TEST_F(RedoProgramTest, TwoRunsOfTheSameDifferInTimesAndHostAlone)
{
    simulate();
    unmix();
    const QJsonObject first = summaryOf("out");
    const QStringList files = entriesOf(path("out"));
    QMap<QString, QByteArray> before;
    for (const QString& file : files) {
        before.insert(file, lastingContentOf(path("out/" + file)));
    }
    unmix({"--replace"});
    EXPECT_EQ(entriesOf(path("out")), files);
    const QJsonObject second = summaryOf("out");
    for (const QString& file : files) {
        if (file != "summary.json") {
            EXPECT_EQ(lastingContentOf(path("out/" + file)), before[file]) << qPrintable(file);
        }
    }
    EXPECT_NE(first, second);
    EXPECT_EQ(lastingSummary(first), lastingSummary(second));
}

TEST_F(RedoProgramTest, TheSameBitsEndWithZero)
{
    simulate();
    unmix({"--save", "kept"});
    const QStringList before = filesBelow(path("."));
    const ProgramResult result = succeed({"redo", "out", "--json"});
    EXPECT_EQ(result.json()["same"], true);
    EXPECT_EQ(result.json()["changes"].toArray(), QJsonArray());
    EXPECT_EQ(result.json()["programChanged"], false);
    EXPECT_EQ(filesBelow(path(".")), before);
    run({"unmix", "seq", "--ncomponents", "3", "--out", "auto"});
    EXPECT_EQ(succeed({"redo", "auto", "--json"}).json()["same"], true);
}

TEST_F(RedoProgramTest, RelativeFilesAreFoundFromAnotherFolder)
{
    simulate();
    write("work/library.csv", contentOf(truth()));
    ASSERT_TRUE(QDir().mkpath(path("work")));
    SpumProgram inside(path("home"), path("work"));
    EXPECT_EQ(inside.run({"unmix", "../seq", "--library", "library.csv", "--out", "result"}).status, 0);
    EXPECT_EQ(succeed({"redo", "work/result", "--json"}).json()["same"], true);
}

TEST_F(RedoProgramTest, AnotherImageIsNamedAndEndsWithThree)
{
    simulate();
    unmix();
    const QString name = changeAnImage();
    const ProgramResult result = spum({"redo", "out"});
    EXPECT_EQ(result.status, 3) << result.err.constData();
    EXPECT_TRUE(QString::fromUtf8(result.out).contains("since it was made the image " + name + " has changed\n"))
        << result.out.constData();
    EXPECT_TRUE(result.errText().startsWith("spum: the bits are not the same: 01_TissueAF.tif (largest difference "))
        << result.err.constData();
    const QJsonObject json = spum({"redo", "out", "--json"}).json();
    EXPECT_EQ(json["same"], false);
    EXPECT_GT(json["files"].toArray()[0].toObject()["largestDifference"].toDouble(), 0.0);
}

TEST_F(RedoProgramTest, AnotherLibraryIsNamed)
{
    simulate();
    write("library.csv", contentOf(truth()));
    succeed({"unmix", "seq", "--library", "library.csv", "--out", "out"});
    succeed({"simulate", "other", "--size", "64", "--bands", "8", "--seed", "7"});
    write("library.csv", contentOf(truth()).replace("0.5", "0.25"));
    const ProgramResult result = spum({"redo", "out"});
    EXPECT_TRUE(QString::fromUtf8(result.out).contains("the library " + path("library.csv") + " has changed"))
        << result.out.constData() << result.err.constData();
    ASSERT_TRUE(QFile::remove(path("library.csv")));
    const QString reason = refusal({"redo", "out"});
    EXPECT_TRUE(reason.contains("library.csv is not there")) << qPrintable(reason);
}

TEST_F(RedoProgramTest, ASequenceThatHasMovedIsFoundOrAskedFor)
{
    simulate();
    write("library.csv", contentOf(truth()));
    for (const char* out : {"seq/inside", "out"}) {
        succeed({"unmix", "seq", "--library", "library.csv", "--out", out});
    }
    ASSERT_TRUE(QDir().rename(path("seq"), path("moved")));
    EXPECT_EQ(succeed({"redo", "moved/inside", "--json"}).json()["same"], true);
    EXPECT_TRUE(refusal({"redo", "out"}).contains("is not there"));
    EXPECT_EQ(succeed({"redo", "out", "--sequence", "moved", "--json"}).json()["same"], true);
}

TEST_F(RedoProgramTest, TheNewResultIsKeptWhereAskedFor)
{
    simulate();
    unmix();
    succeed({"redo", "out", "--out", "again"});
    EXPECT_EQ(contentOf(path("again/01_TissueAF.tif")), contentOf(path("out/01_TissueAF.tif")));
    EXPECT_TRUE(refusal({"redo", "out", "--out", "again"}).contains("exists already"));
}

// What the first run was allowed to replace is not what the second one meets.
TEST_F(RedoProgramTest, NothingIsReplacedBecauseTheFirstRunReplacedSomething)
{
    simulate();
    unmix();
    unmix({"--force", "--mask", "rect:8,8,20,20"});
    unmix({}, "other");
    const QByteArray before = contentOf(path("other/summary.json"));
    EXPECT_TRUE(refusal({"redo", "out", "--out", "other"}).contains("exists already"));
    EXPECT_EQ(contentOf(path("other/summary.json")), before);
    EXPECT_EQ(succeed({"redo", "out", "--json"}).json()["same"], true);
}

TEST_F(RedoProgramTest, ABatchAndALoadedResultAreMadeAgainToo)
{
    simulate();
    succeed({"batch", "seq", "--library", truth(), "--out", "all", "--quiet"});
    EXPECT_EQ(succeed({"redo", "all/seq", "--json"}).json()["same"], true);
    EXPECT_FALSE(contentOf(path("all/batch.json")).contains("\"started\""));
    EXPECT_TRUE(contentOf(path("all/batch.json")).contains("\"sha1\""));
    unmix({"--save", "first"});
    succeed({"results", "load", "seq", "first", "--out", "loaded"});
    EXPECT_EQ(succeed({"redo", "loaded", "--json"}).json()["same"], true);
}

TEST_F(RedoProgramTest, WhatTellsNothingOfItsOriginIsRefused)
{
    simulate();
    unmix();
    QJsonObject summary = summaryOf("out");
    QJsonObject provenance = summary["provenance"].toObject();
    provenance.remove("command");
    summary["provenance"] = provenance;
    write("out/summary.json", QJsonDocument(summary).toJson());
    EXPECT_TRUE(refusal({"redo", "out"}).contains("it comes from a window"));
    summary.remove("provenance");
    write("out/summary.json", QJsonDocument(summary).toJson());
    EXPECT_TRUE(refusal({"redo", "out"}).contains("does not tell where the result comes from"));
    EXPECT_TRUE(refusal({"redo", "seq"}).contains("this is no folder with results"));
    refusal({"redo"}, 2);
    EXPECT_TRUE(QString::fromUtf8(succeed({"redo", "--help"}).out).contains("exit status"));
}
