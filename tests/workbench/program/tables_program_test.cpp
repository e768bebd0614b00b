// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/program/ProgramFixture.h"

#include "services/importer/CsvLine.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>

namespace {

class TablesProgramTest : public ProgramFixture
{
protected:
    // As a program for tables reads the file without an option.
    QJsonObject tableOf(const QString& strFile) const
    {
        QProcess reader;
        reader.start("python3", {QStringLiteral(ORV_SOURCE_DIR "/tests/tables/read_table.py"), path(strFile)});
        EXPECT_TRUE(reader.waitForFinished()) << qPrintable(reader.errorString());
        EXPECT_EQ(reader.exitCode(), 0) << reader.readAllStandardError().constData();
        return QJsonDocument::fromJson(reader.readAllStandardOutput()).object();
    }
    QString kindOf(const QString& strFile, const QString& strColumn) const
    {
        return tableOf(strFile)["kinds"].toObject()[strColumn].toString();
    }
    QStringList columnsOf(const QString& strFile) const
    {
        QStringList columns;
        for (const auto& column : tableOf(strFile)["columns"].toArray()) {
            columns.append(column.toString());
        }
        return columns;
    }
    QStringList fieldsOf(const QString& strFile, int nLine) const
    {
        QStringList fields;
        QString error;
        const QStringList lines = QString::fromUtf8(contentOf(path(strFile))).split('\n');
        EXPECT_TRUE(splitCsvLine(lines.value(nLine), ',', &fields, &error)) << qPrintable(error);
        return fields;
    }
};

} // namespace

TEST_F(TablesProgramTest, TheSummaryTableHasTheKeysAndValuesOfTheSummary)
{
    simulate();
    const QJsonObject json = spum({"unmix", "seq", "--ncomponents", "3", "--out", "out", "--json"}).json();
    const QStringList header = fieldsOf("out/summary.csv", 0);
    EXPECT_EQ(json["run"], "out");
    EXPECT_FALSE(json["sequence"].toString().isEmpty());
    for (int k = 0; k < 3; ++k) {
        const QJsonObject component = json["components"].toArray()[k].toObject();
        const QStringList fields = fieldsOf("out/summary.csv", k + 1);
        ASSERT_EQ(fields.size(), header.size());
        for (int i = 0; i < header.size(); ++i) {
            const QJsonValue value = component.contains(header[i]) ? component[header[i]] : json[header[i]];
            if (value.isDouble()) {
                EXPECT_EQ(fields[i].toDouble(), value.toDouble()) << qPrintable(header[i]);
            } else if (value.isString()) {
                EXPECT_EQ(fields[i], value.toString()) << qPrintable(header[i]);
            } else if (value.isUndefined() || value.isNull()) {
                EXPECT_EQ(fields[i], QString()) << qPrintable(header[i]);
            }
        }
        for (const QString& key : component.keys()) {
            EXPECT_TRUE(header.contains(key)) << qPrintable(key);
        }
    }
    EXPECT_TRUE(header.filter(" ").isEmpty()) << qPrintable(header.join('|'));
}

TEST_F(TablesProgramTest, PartsOfAWholeAreFractions)
{
    simulate();
    const QJsonObject json = spum({"unmix", "seq", "--ncomponents", "3", "--out", "out", "--json"}).json();
    for (const char* key : {"residual", "explainedVariance", "lackOfFit", "lackOfFitDenoised", "noise"}) {
        EXPECT_GT(json[key].toDouble(), 0.0) << key;
        EXPECT_LE(json[key].toDouble(), 1.0) << key;
    }
    EXPECT_NEAR(json["lackOfFit"].toDouble(), json["residual"].toDouble(), 1e-9);
    const QJsonObject pca = succeed({"pca", "seq", "--out", "pca", "--json"}).json();
    for (const auto& share : pca["explainedVariance"].toArray()) {
        EXPECT_LE(share.toDouble(), 1.0 + 1e-12);
    }
    EXPECT_LE(pca["suggestedExplains"].toDouble(), 1.0);
}

TEST_F(TablesProgramTest, EveryTableIsReadWithoutAnOption)
{
    simulate();
    succeed({"unmix", "seq", "--library", truth(), "--out", "out"});
    succeed({"pca", "seq", "--out", "pca"});
    succeed({"compare", "seq", "out", "--out", "compared"});
    spum({"batch", "seq", "missing", "--library", truth(), "--out", "all"});
    for (const char* file : {"out/summary.csv", "out/spectra.csv", "out/properties.csv", "pca/pca.csv",
                             "compared/comparison.csv", "all/batch.csv"}) {
        const QStringList columns = columnsOf(file);
        EXPECT_FALSE(columns.isEmpty()) << file;
        // The spectra's columns are those of the components, whatever they are called.
        EXPECT_TRUE(columns.filter(" ").isEmpty() || QString(file).endsWith("spectra.csv")) << file;
    }
    EXPECT_EQ(kindOf("out/summary.csv", "share"), "number");
    EXPECT_EQ(kindOf("out/summary.csv", "name"), "text");
    EXPECT_EQ(kindOf("out/spectra.csv", "emission"), "number");
    EXPECT_EQ(kindOf("out/spectra.csv", "TissueAF"), "number");
    EXPECT_EQ(tableOf("out/spectra.csv")["rows"], 8);
    EXPECT_EQ(kindOf("all/batch.csv", "residual"), "number");
    EXPECT_EQ(kindOf("all/batch.csv", "path"), "text");
}

TEST_F(TablesProgramTest, AWrongLocaleChangesNoTable)
{
    simulate();
    succeed({"unmix", "seq", "--library", truth(), "--out", "out"});
    const QByteArray plain = contentOf(path("out/summary.csv"));
    program().setVariable("LC_ALL", "de_DE.UTF-8");
    succeed({"unmix", "seq", "--library", truth(), "--out", "out", "--replace"});
    EXPECT_EQ(contentOf(path("out/summary.csv")), plain);
}

// The spectra that a run has found, with all their digits, give its maps again.
TEST_F(TablesProgramTest, TheTableOfSpectraServesAsALibrary)
{
    simulate();
    succeed({"unmix", "seq", "--library", truth(), "--out", "first"});
    succeed({"unmix", "seq", "--library", "first/spectra.csv", "--out", "again"});
    EXPECT_EQ(contentOf(path("again/01_TissueAF.tif")), contentOf(path("first/01_TissueAF.tif")));
    succeed({"library", "save", "kept", "--from", "first/spectra.csv", "--sequence", "seq"});
    succeed({"unmix", "seq", "--library", "kept", "--out", "kept"});
}

TEST_F(TablesProgramTest, CoursesOverTimeAreATableToo)
{
    succeed({"simulate", "seq", "--kind", "temporal", "--size", "64"});
    succeed({"unmix", "seq", "--method", "manual", "--library", truth(), "--out", "out"});
    EXPECT_EQ(columnsOf("out/spectra.csv").mid(0, 2), (QStringList{"interval", "time"}));
    succeed({"unmix", "seq", "--method", "manual", "--library", "out/spectra.csv", "--out", "again"});
}
