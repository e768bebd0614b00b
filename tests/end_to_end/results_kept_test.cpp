// SPDX-License-Identifier: GPL-3.0-or-later
// Results that outlast the program: saved, found again, and asked about before they are lost.
#include "end_to_end/WorkbenchFixture.h"
#include "end_to_end/savedDocument.h"
#include "support/simulated.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

class ResultsKeptTest : public WorkbenchFixture
{
protected:
    void SetUp() override
    {
        WorkbenchFixture::SetUp();
        m_strSequence = copyOf(simulated::sequence("sequence of its own", {"--size", "128"}), "a mouse");
    }

    // Starts on the sequence and unmixes it.
    void unmix()
    {
        startProgram({m_strSequence});
        ASSERT_TRUE(openWizard());
        ASSERT_TRUE(finishWizard());
    }

    void saveAs(const QString& strName)
    {
        program().click("m_pSavedResultsCB");
        program().key("Ctrl+A", "m_pSavedResultsCB");
        program().type(strName, "m_pSavedResultsCB");
        ASSERT_TRUE(program().click("m_pSaveButton"));
        ASSERT_TRUE(program().waitUntil([&] { return !savedDocument(m_strSequence).isEmpty(); }));
        program().call({{"do", "quiet"}, {"ms", 100}});
    }

    bool quit()
    {
        program().call({{"do", "close"}, {"widget", "mainWindow"}});
        return program().waitUntilEnded([] {});
    }

    QStringList savedNames()
    {
        QStringList names;
        for (const QJsonValue& entry : program().state("m_pSavedResultsCB")["entries"].toArray()) {
            names.append(entry.toString());
        }
        return names;
    }

    QString m_strSequence;
};

TEST_F(ResultsKeptTest, SavedUnderANameAndFoundAtTheNextStart)
{
    unmix();
    saveAs(QString::fromUtf8("Größe 1"));
    const QStringList rows = rowNames();
    program().picture("end_to_end/saved.png");
    ASSERT_TRUE(quit());

    startProgram({});
    ASSERT_TRUE(program().waitFor("m_pWaveLengthTable/.QCheckBox")) << "the sequence is open again";
    program().call({{"do", "tab"}, {"widget", "tabWidget1"}, {"text", "Results"}});
    ASSERT_TRUE(program().waitFor("m_pSavedResultsCB"));
    EXPECT_TRUE(savedNames().contains(QString::fromUtf8("Größe 1"))) << savedNames().join(',').toStdString();
    program().call({{"do", "choose"}, {"widget", "m_pSavedResultsCB"}, {"text", QString::fromUtf8("Größe 1")}});
    ASSERT_TRUE(program().waitUntilEnabled("m_pLoadButton"));
    program().click("m_pLoadButton");
    ASSERT_TRUE(program().waitFor("DistributionView", 30000));
    program().call({{"do", "quiet"}, {"ms", 200}});
    program().picture("end_to_end/loaded.png");
    EXPECT_EQ(rowNames(), rows);
    ASSERT_TRUE(quit()) << "nothing is unsaved";
}

TEST_F(ResultsKeptTest, QuittingAsksAboutAResultThatIsNotSaved)
{
    unmix();
    program().call({{"do", "close"}, {"widget", "mainWindow"}});
    ASSERT_TRUE(program().waitFor(".QMessageBox"));
    EXPECT_EQ(program().state(".QMessageBox")["message"].toString().toStdString(),
              "Save Spectral Unmixing results for sequence [sequence of its own]?");
    program().picture("end_to_end/quit_unsaved.png");
    program().click(".QMessageBox/.QPushButton[Yes]");
    ASSERT_TRUE(program().waitUntilEnded([] {}));
    EXPECT_FALSE(savedDocument(m_strSequence).isEmpty());
}

TEST_F(ResultsKeptTest, AKilledProgramOffersWhatWasOpen)
{
    unmix();
    saveAs("kept");
    program().kill();
    startProgram({});
    program().call({{"do", "quiet"}, {"ms", 200}});
    program().picture("end_to_end/after_kill.png");
    ASSERT_TRUE(program().waitFor(".QMessageBox")) << "it asks";
    program().click(".QMessageBox/.QPushButton[Yes]");
    EXPECT_TRUE(program().waitFor("m_pWaveLengthTable/.QCheckBox"));
}

TEST_F(ResultsKeptTest, ARenamedAndADeletedResultAreSoForTheCommandLine)
{
    unmix();
    saveAs("first");
    program().click("m_pSavedResultsCB");
    program().key("Ctrl+A", "m_pSavedResultsCB");
    program().type("second", "m_pSavedResultsCB");
    program().key("Return", "m_pSavedResultsCB");
    ASSERT_TRUE(program().waitUntil([&] { return savedNames().contains("second"); }));
    EXPECT_FALSE(savedNames().contains("first"));
    EXPECT_TRUE(runSpum({"results", "list", m_strSequence}).contains("second"));
    program().click("m_pDeleteButton");
    if (program().waitFor(".QMessageBox", 3000)) {
        program().click(".QMessageBox/.QPushButton[Yes]");
    }
    EXPECT_TRUE(program().waitUntil([&] { return savedDocument(m_strSequence).isEmpty(); }));
    EXPECT_FALSE(runSpum({"results", "list", m_strSequence}).contains("second"));
}

TEST_F(ResultsKeptTest, TheReportHasTheNumbersAndMapsOfTheCommandLine)
{
    unmix();
    const QStringList components = rowNames();
    ASSERT_TRUE(program().click("m_pReportButton"));
    ASSERT_TRUE(program().waitFor("fileNameEdit"));
    EXPECT_EQ(text("fileNameEdit").toStdString(), "unmixed");
    program().key("Return", "fileNameEdit");
    const QString strReport = m_strSequence + "/unmixed";
    ASSERT_TRUE(program().waitUntil([&] { return QFile::exists(strReport + "/report.html"); }));
    EXPECT_GT(QFileInfo(strReport + "/composite.png").size(), 1000);

    const QString strByCommand = m_work.filePath("by command");
    runSpum({"unmix", m_strSequence, "--components", components.join(','), "--out", strByCommand});
    int nMaps = 0;
    const QStringList same = {"0*.tif", "residual.tif", "spectra.csv", "properties.csv"};
    for (const QString& strName : QDir(strByCommand).entryList(same)) {
        QFile here(strByCommand + '/' + strName);
        QFile there(strReport + '/' + strName);
        ASSERT_TRUE(here.open(QIODevice::ReadOnly) && there.open(QIODevice::ReadOnly)) << strName.toStdString();
        EXPECT_TRUE(here.readAll() == there.readAll()) << strName.toStdString();
        ++nMaps;
    }
    EXPECT_EQ(nMaps, components.size() + 3);
    // This one tells the colours, too, which are those of the window.
    EXPECT_TRUE(QFile::exists(strReport + "/maps.ome.tif"));
    // The name that is proposed next is free.
    program().click("m_pReportButton");
    ASSERT_TRUE(program().waitFor("fileNameEdit"));
    EXPECT_EQ(text("fileNameEdit").toStdString(), "unmixed-2");
    program().key("Esc", "fileNameEdit");
    EXPECT_TRUE(program().waitUntil([&] { return isEnabled("m_pReportButton"); }));
}

} // namespace
