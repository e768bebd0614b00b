// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/batch/BatchFolder.h"

#include "services/batch/batchTables.h"
#include "services/importer/CsvLine.h"
#include "services/results/resultSummary.h"

namespace {

class BatchTablesTest : public BatchFolder
{
protected:
    QList<QStringList> rows() const
    {
        QList<QStringList> found;
        for (const QString& line : QString::fromUtf8(batchCsv(entries())).split('\n', Qt::SkipEmptyParts)) {
            QStringList fields;
            QString error;
            EXPECT_TRUE(splitCsvLine(line, ',', &fields, &error)) << qPrintable(error);
            found.append(fields);
        }
        return found;
    }
};

} // namespace

TEST_F(BatchTablesTest, ARowASequenceAndComponent)
{
    addDone("mouse", 0.25, {"odd, very", "odder"});
    m_jobs[0].group = "a";
    const QList<QStringList> found = rows();
    ASSERT_EQ(found.size(), 3);
    QStringList columns = resultCsvColumns();
    columns.removeOne("run");
    EXPECT_EQ(found[0], (QStringList{"run", "group", "path", "state", "message", "warningTexts"} + columns));
    const QStringList sequence = {"mouse", "a",       "/data/mouse", "done", "", "odd, very | odder",
                                  "Seq 1", "library", "Counts"};
    EXPECT_EQ(found[1].mid(0, 11), sequence + QStringList({"Dye A", "Dye A.tif"}));
    EXPECT_EQ(found[2].mid(0, 11), sequence + QStringList({"Dye B", "Dye B.tif"}));
    EXPECT_EQ(found[1][found[0].indexOf("pixels")], "4096");
    EXPECT_EQ(found[1][found[0].indexOf("explainedVariance")], "0.995");
    EXPECT_EQ(found[1][found[0].indexOf("share")], "0.5");
    EXPECT_EQ(found[1][found[0].indexOf("residual")], "0.25");
    EXPECT_EQ(found[1].size(), found[0].size());
}

TEST_F(BatchTablesTest, ASequenceWithoutAResultHasARowToo)
{
    addFailed("broken", "no \"image\", none");
    addJob("new");
    const QList<QStringList> found = rows();
    ASSERT_EQ(found.size(), 3);
    EXPECT_EQ(found[1].mid(0, 5), (QStringList{"broken", "", "/data/broken", "failed", "no \"image\", none"}));
    EXPECT_EQ(found[1].size(), found[0].size());
    EXPECT_EQ(found[2].mid(3, 2), (QStringList{"missing", "there is no result yet"}));
}

TEST_F(BatchTablesTest, TheObjectCountsAndHoldsTheSummaries)
{
    addDone("mouse", 0.25, {"odd"});
    addFailed("broken", "no image");
    addJob("new");
    BatchOption option;
    option.name = "unit";
    option.value = "counts";
    m_jobs[0].options.append(option);
    const QJsonObject json = batchJson(entries());
    EXPECT_EQ(json["done"], 1);
    EXPECT_EQ(json["failed"], 1);
    EXPECT_EQ(json["missing"], 1);
    const QJsonObject first = json["sequences"].toArray()[0].toObject();
    EXPECT_EQ(first["name"], "mouse");
    EXPECT_EQ(first["options"].toArray(), QJsonArray{"--unit=counts"});
    EXPECT_EQ(first["summary"].toObject()["residual"], 0.25);
    EXPECT_EQ(first["warnings"].toArray(), QJsonArray{"odd"});
    EXPECT_FALSE(first.contains("message"));
    const QJsonObject second = json["sequences"].toArray()[1].toObject();
    EXPECT_EQ(second["message"], "no image");
    EXPECT_FALSE(second.contains("summary"));
}

// How long a sequence took differs from run to run; the tables shall not.
TEST_F(BatchTablesTest, TellNoTime)
{
    addDone("mouse", 0.25);
    EXPECT_FALSE(batchCsv(entries()).contains("2.5"));
    EXPECT_FALSE(QJsonDocument(batchJson(entries())).toJson().contains("2.5"));
}
