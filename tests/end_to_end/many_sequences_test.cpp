// SPDX-License-Identifier: GPL-3.0-or-later
// Many sequences with one library, in the window.
#include "end_to_end/WorkbenchFixture.h"
#include "support/simulated.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

class ManySequencesTest : public WorkbenchFixture
{
protected:
    // A sequence of the size, known by its name.
    QString mouse(const QString& strName, const QString& strSize, const QString& strBands = "6")
    {
        return copyOf(simulated::sequence({"--size", strSize, "--bands", strBands}), strName);
    }
    // The true spectra of a simulated mouse as a library of the program's user.
    void makeLibrary(const QString& strMouse)
    {
        const QString strLibrary = program().homePath("data/orvia/data/Spum/batch.csv");
        QDir().mkpath(QFileInfo(strLibrary).path());
        ASSERT_TRUE(QFile::copy(strMouse + "/truth/radiant-efficiency/spectra.csv", strLibrary));
    }
    // From the menu to the dialog of sequences, with the first library taken.
    [[nodiscard]] bool openChooser()
    {
        program().call({{"do", "menu"}, {"text", "File"}});
        program().call({{"do", "menu"}, {"text", "Unmix many sequences ..."}});
        if (!program().waitFor("SpUnmixSpectrumLibraryWnd")) {
            return false;
        }
        for (int nRow = 0; nRow < 20 && !isEnabled("m_pNextBtn"); ++nRow) {
            program().call({{"do", "item"}, {"widget", "m_pSpumLibraryList"}, {"text", "batch"}});
        }
        return program().waitUntilEnabled("m_pNextBtn") && program().click("m_pNextBtn") &&
               program().waitFor("batchChooser");
    }
    [[nodiscard]] bool start(const QStringList& folders)
    {
        program().call({{"do", "drop"}, {"widget", "batchChooser"}, {"files", QJsonArray::fromStringList(folders)}});
        return program().waitUntilEnabled("batchStart") && program().picture("end_to_end/batch_chooser.png") &&
               program().click("batchStart") && program().waitFor("batchWindow");
    }
    [[nodiscard]] bool waitForEnd()
    {
        return program().waitUntil(
            [&] {
                m_bAsked = m_bAsked || program().isVisible(".QMessageBox");
                return isEnabled("batchClose");
            },
            120000);
    }
    QString totals() { return text("batchTotals"); }
    static QStringList batches(const QString& strMouse)
    {
        return QDir(strMouse).entryList({"SPUM*"}, QDir::Dirs, QDir::Name);
    }
    static int mapsOf(const QString& strMouse)
    {
        const QDir maps(strMouse + "/" + batches(strMouse).value(0) + "/UnmixedImages");
        return maps.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
    }

    bool m_bAsked = false;
};

TEST_F(ManySequencesTest, ABrokenOneInTheMiddleIsToldAndPassedOver)
{
    const QString strOne = mouse("one", "64");
    const QString strBroken = mouse("two", "64", "9"); // the library knows nothing of its bands
    const QString strThree = mouse("three", "64");
    makeLibrary(strOne);
    startProgram({});
    ASSERT_TRUE(openChooser());
    ASSERT_TRUE(start({strOne, strBroken, strThree}));
    ASSERT_TRUE(waitForEnd());
    program().picture("end_to_end/batch_end.png");
    EXPECT_FALSE(m_bAsked);
    EXPECT_TRUE(totals().startsWith("2 of 3 unmixed, 1 failed; ")) << qPrintable(totals());
    ASSERT_EQ(batches(strOne).size(), 1);
    EXPECT_EQ(batches(strThree), batches(strOne)) << "one stamp for all";
    EXPECT_GE(mapsOf(strOne), 2);
    EXPECT_EQ(mapsOf(strThree), mapsOf(strOne));
    EXPECT_EQ(mapsOf(strBroken), 0);
    const QJsonArray rows = program().state("batchTable")["rows"].toArray();
    ASSERT_EQ(rows.size(), 3);
    const QString strResidual = rows[0].toArray()[2].toString();
    EXPECT_TRUE(strResidual.endsWith(" %")) << qPrintable(strResidual);
    EXPECT_NE(strResidual, "0 %");
    EXPECT_EQ(rows[1].toArray()[1].toString(), "Failed: SpumKyvo: Incorrect initial guess settings!");
    const QJsonObject windows = program().call({{"do", "find"}, {"widget", ".CORVSequenceWindow"}, {"all", true}});
    EXPECT_TRUE(windows["found"].toArray().isEmpty());
    program().click("batchClose");
    EXPECT_TRUE(program().waitUntil([&] { return !program().isVisible("batchWindow"); }));
}

// Whenever the click arrives: what was unmixed has its result, what was aborted or not begun has none.
TEST_F(ManySequencesTest, AnAbortEndsTheRunAndLeavesTheRest)
{
    QStringList folders{mouse("large", "1024", "24")};
    for (int i = 0; i < 24; ++i) {
        folders << mouse(QString("small %1").arg(i), "64", "24");
    }
    makeLibrary(folders.first());
    startProgram({});
    ASSERT_TRUE(openChooser());
    ASSERT_TRUE(start(folders));
    ASSERT_TRUE(program().click("batchAbortAll"));
    ASSERT_TRUE(waitForEnd());
    program().picture("end_to_end/batch_aborted.png");
    EXPECT_FALSE(m_bAsked);
    EXPECT_TRUE(totals().contains(" not begun")) << qPrintable(totals());
    EXPECT_FALSE(totals().contains("failed")) << qPrintable(totals());
    const QJsonArray rows = program().state("batchTable")["rows"].toArray();
    ASSERT_EQ(rows.size(), folders.size());
    for (int i = 0; i < folders.size(); ++i) {
        const QString strState = rows[i].toArray()[1].toString();
        EXPECT_EQ(batches(folders.at(i)).size(), strState == "Unmixed" ? 1 : 0) << i << ' ' << qPrintable(strState);
    }
    EXPECT_EQ(rows.last().toArray()[1].toString(), "Not begun");
}

} // namespace
