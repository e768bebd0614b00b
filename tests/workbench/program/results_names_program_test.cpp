// SPDX-License-Identifier: GPL-3.0-or-later
// Names and files that saved results should not have but may, from end to end.
#include "workbench/program/ProgramFixture.h"

#include <QDir>

#include <future>
#include <vector>

namespace {

class ResultsNamesProgramTest : public ProgramFixture
{
protected:
    void SetUp() override
    {
        ProgramFixture::SetUp();
        smallSequence().writeTo(path("seq"));
    }
    QStringList unmix(const QString& strName) const
    {
        return {"unmix", "seq", "--library", library(), "--force", "--json", "--save=" + strName};
    }
    QStringList listed() const
    {
        QStringList names;
        for (const auto& result : succeed({"results", "list", "seq", "--json"}).json()["results"].toArray()) {
            names.append(result.toObject()["name"].toString());
        }
        return names;
    }
};

} // namespace

TEST_F(ResultsNamesProgramTest, TheMarkOfAnUnsavedResultIsTakenOffAndTheAnswerSaysSo)
{
    EXPECT_EQ(succeed(unmix("SPUM_003(new)")).json()["saved"].toString(), "SPUM_003");
    EXPECT_EQ(listed(), QStringList{"SPUM_003"});
    EXPECT_EQ(refusal({"unmix", "seq", "--library", library(), "--out", path("other"), "--save", "SPUM_003(new)"}),
              "there is a saved result \"SPUM_003\" already; --force overwrites it");
    EXPECT_FALSE(QFileInfo::exists(path("other")));
}

TEST_F(ResultsNamesProgramTest, TheMarkAloneIsNoName)
{
    EXPECT_TRUE(refusal(unmix("(new)"), 2).contains("is no name"));
    succeed(unmix("a"));
    EXPECT_TRUE(refusal({"results", "rename", "seq", "a", "b(new)"}, 2).contains("not saved yet"));
    EXPECT_EQ(listed(), QStringList{"a"});
}

TEST_F(ResultsNamesProgramTest, ALongNameFitsTheFolderOfItsFiles)
{
    const QString name(300, 'x');
    succeed(unmix(name));
    const QString folder = succeed({"results", "load", "seq", name, "--json"}).json()["folder"].toString();
    EXPECT_TRUE(QFileInfo::exists(folder + "/summary.json"));
}

TEST_F(ResultsNamesProgramTest, AFileOfElementsWithoutEndIsToldAndHidesNoOther)
{
    succeed(unmix("a"));
    const QString file = QDir(path("seq/XML/SpecUnmix")).entryList(QDir::Files).first();
    const QByteArray before = contentOf(path("seq/XML/SpecUnmix/" + file));
    constexpr int depth = 200000;
    write("seq/XML/SpecUnmix/" + file, QByteArray("<b>").repeated(depth) + QByteArray("</b>").repeated(depth));
    const auto results = succeed({"results", "list", "seq", "--json"}).json()["results"].toArray();
    ASSERT_EQ(results.size(), 1);
    EXPECT_TRUE(results[0].toObject()["error"].toString().contains("deep"));
    EXPECT_TRUE(refusal({"results", "show", "seq", "a"}).contains("deep"));
    EXPECT_TRUE(refusal({"results", "load", "seq", "a"}).contains("deep"));
    write("seq/XML/SpecUnmix/" + file, before);
    succeed({"results", "show", "seq", "a"});
}

TEST_F(ResultsNamesProgramTest, WhoIsNotAskedLearnsHowToDelete)
{
    succeed(unmix("a"));
    const ProgramResult declined = spum({"results", "delete", "seq", "a"});
    EXPECT_EQ(declined.status, 1);
    EXPECT_TRUE(declined.errText().contains("the result \"a\" was not deleted; --yes deletes it without a question"));
}

// The system's own sentences do not say why.
TEST_F(ResultsNamesProgramTest, AnIndexThatCannotBeLockedIsTold)
{
    succeed(unmix("a"));
    const QString lock = path("seq/XML/SPUM.txt.lock");
    ASSERT_TRUE(QDir().mkpath(lock + "/in the way"));
    const QStringList options{"--library", library(), "--out", path("run"), "--save"};
    const std::vector<QStringList> commands{QStringList{"results", "rename", "seq", "a", "b"},
                                            QStringList{"results", "delete", "seq", "a", "--yes"},
                                            QStringList{"unmix", "seq"} + options};
    // Each waits a while for the lock.
    std::vector<std::future<ProgramResult>> results;
    for (const QStringList& arguments : commands) {
        results.push_back(std::async(std::launch::async, [this, arguments] { return spum(arguments); }));
    }
    for (std::future<ProgramResult>& future : results) {
        const ProgramResult result = future.get();
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.errText().contains("cannot be locked: ")) << qPrintable(result.errText());
    }
    EXPECT_EQ(listed(), QStringList{"a"});
}
