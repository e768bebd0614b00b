// SPDX-License-Identifier: GPL-3.0-or-later
// Images of strangers, unmixed by number and refined.
#include "end_to_end/Screen.h"
#include "end_to_end/WorkbenchFixture.h"
#include "end_to_end/savedDocument.h"
#include "support/simulated.h"

#include <QDir>
#include <QFile>

namespace {

// The stained cells that come with the program, as a sequence.
class RefinementTest : public WorkbenchFixture
{
protected:
    QString cells()
    {
        const QString strSequence = m_work.filePath(QStringLiteral("cells"));
        runSpum({"import", QStringLiteral(ORV_SOURCE_DIR "/tests/images/cells"), strSequence, "--quiet"});
        return strSequence;
    }

    // By as many as there are stains, to the end of the run.
    [[nodiscard]] bool unmix()
    {
        return openWizard() && program().click("m_pAddProbeTB") && text("m_pNCompLabel") == "3" && finishWizard();
    }

    [[nodiscard]] bool clickAndWaitFor(const QString& strOffer)
    {
        return program().click("m_pRefineButton", {}, 60000) &&
               program().waitUntil([&] { return text("m_pRefineButton") == strOffer && isEnabled("tabWidget1"); });
    }

    QJsonArray results() { return program().state("m_pSPUnResultsLV")["rows"].toArray(); }

    // The maps of the result on screen, as its report has them.
    QMap<QString, QByteArray> maps(const QString& strFolder)
    {
        EXPECT_TRUE(program().click("m_pReportButton") && program().waitFor("fileNameEdit"));
        program().key("Ctrl+A", "fileNameEdit");
        program().type(m_work.filePath(strFolder), "fileNameEdit");
        program().key("Return", "fileNameEdit");
        EXPECT_TRUE(
            program().waitUntil([&] { return QFile::exists(m_work.filePath(strFolder) + "/report.html"); }, 60000));
        QMap<QString, QByteArray> bytes;
        const QDir folder(m_work.filePath(strFolder));
        for (const QString& strName : folder.entryList({"0*.tif", "spectra.csv", "residual.tif"})) {
            QFile file(folder.filePath(strName));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            bytes.insert(strName, file.readAll());
        }
        EXPECT_TRUE(program().waitUntilEnabled("tabWidget1"));
        return bytes;
    }
};

TEST_F(RefinementTest, ARefinedAnswerIsShownSavedAndLoadedAlike)
{
    const QString strSequence = cells();
    startProgram({strSequence});
    ASSERT_TRUE(unmix());
    EXPECT_EQ(text("m_pRefineButton").toStdString(), "Refine Spectra");
    const QMap<QString, QByteArray> first = maps("first");
    ASSERT_EQ(first.size(), 5);
    ASSERT_TRUE(clickAndWaitFor("Back to First Answer"));
    const QMap<QString, QByteArray> refined = maps("refined");
    EXPECT_NE(refined, first);
    const QJsonArray rows = results();
    ASSERT_TRUE(program().click("m_pSaveButton"));
    ASSERT_TRUE(program().waitUntil([&] { return !savedDocument(strSequence).isEmpty(); }));
    ASSERT_TRUE(clickAndWaitFor("Refine Spectra"));
    EXPECT_TRUE(maps("again") == first);
    program().call({{"do", "close"}, {"widget", "mainWindow"}});
    ASSERT_TRUE(program().waitUntilEnded([&] { program().click(".QMessageBox/.QPushButton[No]", {}, 1000); }));

    startProgram({strSequence});
    ASSERT_TRUE(program().waitFor("m_pWaveLengthTable/.QCheckBox"));
    program().call({{"do", "tab"}, {"widget", "tabWidget1"}, {"text", "Results"}});
    program().call({{"do", "choose"}, {"widget", "m_pSavedResultsCB"}, {"text", "SPUM_001"}});
    ASSERT_TRUE(program().waitUntilEnabled("m_pLoadButton") && program().click("m_pLoadButton"));
    ASSERT_TRUE(program().waitFor("DistributionView", 30000));
    ASSERT_TRUE(program().waitUntilEnabled("m_pReportButton"));
    EXPECT_EQ(results(), rows);
    EXPECT_FALSE(program().isVisible("m_pRefineButton"));
    EXPECT_TRUE(maps("loaded") == refined);
}

TEST_F(RefinementTest, AnAnimalIsNotOfferedIt)
{
    startProgram({simulated::sequence({"--size", "128"})});
    ASSERT_TRUE(openWizard());
    ASSERT_TRUE(finishWizard());
    EXPECT_TRUE(program().isVisible("m_pReportButton"));
    EXPECT_FALSE(program().isVisible("m_pRefineButton"));
}

class RefinementLooksTest : public RefinementTest, public ::testing::WithParamInterface<Screen>
{
};

TEST_P(RefinementLooksTest, NothingIsCutAndEverythingHasAName)
{
    startOn(GetParam());
    program().call({{"do", "drop"}, {"widget", "mainWindow"}, {"files", QJsonArray{cells()}}});
    ASSERT_TRUE(unmix());
    look(program(), GetParam(), "first_answer", "mainWindow");
    ASSERT_TRUE(clickAndWaitFor("Back to First Answer"));
    look(program(), GetParam(), "refined_answer", "mainWindow");
}

INSTANTIATE_TEST_SUITE_P(Screens, RefinementLooksTest, screens(), nameOfScreen);

} // namespace
