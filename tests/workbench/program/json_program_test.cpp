// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/program/ProgramFixture.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>

namespace {

const QString schemaFile = QStringLiteral(ORV_SOURCE_DIR "/data/schema/spum.schema.json");

// What the checker has to say; empty where all is well.
QString complaintsOf(const QStringList& arguments)
{
    QProcess checker;
    checker.start("python3", QStringList(QStringLiteral(ORV_SOURCE_DIR "/tests/tables/check_json.py")) + arguments);
    EXPECT_TRUE(checker.waitForFinished()) << qPrintable(checker.errorString());
    const QString said = QString::fromUtf8(checker.readAllStandardOutput() + checker.readAllStandardError());
    EXPECT_EQ(checker.exitCode() == 0, said.isEmpty()) << qPrintable(said);
    return said;
}

class JsonProgramTest : public ProgramFixture
{
protected:
    // Runs the command with --json and keeps its answer for the check.
    QJsonObject answer(const QStringList& arguments, int nStatus = 0)
    {
        const ProgramResult result = spum(arguments + QStringList("--json"));
        EXPECT_EQ(result.status, nStatus) << qPrintable(arguments.join(' ')) << result.err.constData();
        const QString name = QStringLiteral("answer %1.json").arg(m_answers.size());
        m_answers.append(write(name, result.out));
        EXPECT_EQ(result.json()["schema"], 1);
        return result.json();
    }
    QString kindOf(const QStringList& arguments) { return answer(arguments)["answer"].toString(); }
    void expectAllValid(const QStringList& files = {})
    {
        EXPECT_EQ(complaintsOf(QStringList(schemaFile) + m_answers + files), QString());
    }

    QStringList m_answers;
};

} // namespace

TEST_F(JsonProgramTest, AnswersAboutASequenceFollowTheSchema)
{
    EXPECT_EQ(kindOf({"simulate", "seq", "--size", "32", "--bands", "6"}), "simulate");
    EXPECT_EQ(kindOf({"simulate", "scan", "--size", "32", "--kind", "transillumination"}), "simulate");
    EXPECT_EQ(kindOf({"info", "seq"}), "info");
    EXPECT_EQ(kindOf({"pca", "seq", "--out", "pca"}), "pca");
    EXPECT_EQ(kindOf({"export", "seq", "--format", "csv", "--out", "cube.csv"}), "export");
    EXPECT_EQ(kindOf({"import", "cube.csv", "again"}), "import");
    EXPECT_EQ(kindOf({"import", "cube.csv", "--write-table", "table.csv"}), "import table");
    QDir(path(".")).mkpath("odd");
    writeTiffFile("odd/ex640_em700.tif", imageOf(4, 4, [](int i) { return static_cast<float>(i); }));
    writeTiffFile("odd/other.tif", imageOf(4, 4, [](int i) { return static_cast<float>(i % 3); }));
    EXPECT_EQ(answer({"import", "odd", "doubted"}, 1)["answer"], "import doubts");
    EXPECT_EQ(kindOf({"sources"}), "sources");
    EXPECT_EQ(kindOf({"sources", "fluorophore"}), "sources");
    EXPECT_EQ(kindOf({"import", "cube.csv", "less", "--background", "percentile:1"}), "import");
    EXPECT_EQ(kindOf({"info", "less"}), "info");
    EXPECT_EQ(kindOf({"unmix", "less", "--ncomponents", "2", "--out", "less-maps"}), "result");
    expectAllValid({path("pca/pca.json"), path("less-maps/summary.json")});
}

TEST_F(JsonProgramTest, AnswersAboutResultsFollowTheSchema)
{
    simulate();
    EXPECT_EQ(kindOf({"unmix", "seq", "--ncomponents", "3", "--out", "auto", "--save", "first"}), "result");
    EXPECT_EQ(kindOf({"unmix", "seq", "--library", truth(), "--mask", "rect:8,8,20,20", "--out", "known"}), "result");
    EXPECT_EQ(kindOf({"unmix", "seq", "--library", truth(), "--noise", "poisson", "--errors", "--out", "noise"}),
              "result");
    EXPECT_EQ(kindOf({"unmix", "seq", "--ncomponents", "3", "--dry-run"}), "unmix");
    EXPECT_EQ(kindOf({"compare", "seq", "auto", "known", "--out", "compared"}), "compare");
    EXPECT_EQ(kindOf({"results", "list", "seq"}), "results list");
    EXPECT_EQ(kindOf({"results", "show", "seq", "first"}), "results show");
    EXPECT_EQ(kindOf({"results", "load", "seq", "first", "--out", "loaded"}), "result");
    EXPECT_EQ(kindOf({"results", "export", "seq", "first", "--out", "maps"}), "results export");
    EXPECT_EQ(kindOf({"results", "rename", "seq", "first", "second"}), "results rename");
    EXPECT_EQ(kindOf({"results", "delete", "seq", "second", "--yes"}), "results delete");
    EXPECT_EQ(kindOf({"redo", "known"}), "redo");
    expectAllValid({path("auto/summary.json"), path("known/summary.json"), path("noise/summary.json"),
                    path("loaded/summary.json")});
}

TEST_F(JsonProgramTest, AnswersAboutLibrariesRegionsAndBatchesFollowTheSchema)
{
    simulate();
    EXPECT_EQ(kindOf({"library", "save", "kept", "--from", truth()}), "library save");
    EXPECT_EQ(kindOf({"library", "list"}), "library list");
    EXPECT_EQ(kindOf({"library", "show", "kept"}), "library show");
    EXPECT_EQ(kindOf({"roi", "seq", "add", "--name", "a", "--shape", "ellipse:20,20,9,9"}), "roi add");
    EXPECT_EQ(kindOf({"roi", "seq", "list"}), "roi list");
    succeed({"unmix", "seq", "--library", truth(), "--out", "maps", "--quiet"});
    EXPECT_EQ(kindOf({"roi", "seq", "measure", "--result", "maps", "--save"}), "roi measure");
    EXPECT_EQ(kindOf({"roi", "seq", "rename", "a", "b"}), "roi rename");
    EXPECT_EQ(kindOf({"roi", "seq", "remove", "b"}), "roi remove");
    const QStringList batch = {"batch", "seq", "--library", truth(), "--out", "all"};
    EXPECT_EQ(kindOf(batch + QStringList("--list")), "batch list");
    EXPECT_EQ(kindOf(batch + QStringList("--dry-run")), "batch plan");
    EXPECT_EQ(kindOf(batch), "batch");
    EXPECT_EQ(kindOf(batch + QStringList{"--only", "seq"}), "batch");
    EXPECT_EQ(kindOf(batch + QStringList("--gather")), "batch");
    expectAllValid({path("all/batch.json"), path("all/seq/summary.json")});
}

TEST_F(JsonProgramTest, AnswersAboutEveryChangeOfALibraryFollowTheSchema)
{
    simulate();
    EXPECT_EQ(kindOf({"library", "import", truth(), "a"}), "library import");
    EXPECT_EQ(kindOf({"library", "append", "a", "--sequence", "seq", "--region", "gut=10,10,5,5"}), "library append");
    EXPECT_EQ(kindOf({"library", "append", "a", "--sequence", "seq", "--probes", "Cy7"}), "library append");
    EXPECT_EQ(kindOf({"library", "save", "b", "--sequence", "seq", "--region", "skin=20,20,5,5"}), "library save");
    EXPECT_EQ(kindOf({"library", "merge", "both", "a", "b"}), "library merge");
    EXPECT_EQ(kindOf({"library", "rename", "b", "c"}), "library rename");
    EXPECT_EQ(kindOf({"library", "rename", "c", "--spectrum", "skin=fur"}), "library rename");
    EXPECT_EQ(kindOf({"library", "remove", "both", "--spectrum", "gut"}), "library remove");
    EXPECT_EQ(kindOf({"library", "remove", "both", "c"}), "library remove");
    EXPECT_EQ(kindOf({"library", "template", "seq", "--out", "fill.csv"}), "library template");
    write("table.csv", "wavelength,A\n600,1\n900,0.5\n");
    EXPECT_EQ(kindOf({"library", "show", "table.csv"}), "library show");
    expectAllValid();
}

TEST_F(JsonProgramTest, TheCheckFindsWhatIsWrong)
{
    const QString text = write("text.json", "{\"schema\": 1, \"answer\": \"results delete\", \"deleted\": 3}");
    EXPECT_TRUE(complaintsOf({schemaFile, text}).contains("deleted: 3 is not of type 'string'"));
    const QString old = write("old.json", "{\"answer\": \"results delete\", \"deleted\": \"a\"}");
    EXPECT_TRUE(complaintsOf({schemaFile, old}).contains("'schema' is a required property"));
    const QString unknown = write("unknown.json", "{\"schema\": 1, \"answer\": \"weather\"}");
    EXPECT_TRUE(complaintsOf({schemaFile, unknown}).contains("there is no answer 'weather' in the schema"));
}

TEST(JsonSchemaTest, EveryKeyIsDocumented)
{
    const QString docs = QStringLiteral(ORV_SOURCE_DIR "/docs/");
    EXPECT_EQ(complaintsOf({"--documented", schemaFile, docs + "json.md", docs + "formats.md"}), QString());
}

TEST_F(JsonProgramTest, NumbersAreNumbersAndTimesAreByTheStandard)
{
    simulate();
    const QJsonObject unmixed = answer({"unmix", "seq", "--library", truth(), "--out", "out", "--save", "first"});
    const QJsonObject properties = unmixed["properties"].toObject();
    EXPECT_EQ(properties["AnalysisBinning"], 4);
    EXPECT_EQ(properties["SelectedImages"], 8);
    EXPECT_EQ(properties["SPUM_Ver"], "2.0");
    EXPECT_TRUE(answer({"info", "seq"})["images"].toArray()[0].toObject()["exposure"].isDouble());
    const QJsonObject shown = answer({"results", "show", "seq", "first"});
    EXPECT_TRUE(shown["date"].toString().contains(QRegularExpression("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d$")))
        << qPrintable(shown["date"].toString());
    EXPECT_EQ(shown["properties"].toObject()["ImageWidth"], 64);
}
