// SPDX-License-Identifier: GPL-3.0-or-later
// Saved results that the window and another program, here the command line, have in common.
#include "LoadedPlugin.h"

#include "support/simulated.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTabWidget>

using namespace loaded;

namespace {

class SharedResultsTest : public LoadedPlugin
{
protected:
    SharedResultsTest() : m_strMouse(simulated("mouse", {"--size", "32", "--bands", "6"})) {}

    void saveByCommand(const QString& strName)
    {
        runSpum({"unmix", m_strMouse, "--mask", "auto", "--quiet", "--force", "--out", m_folder.filePath("scratch"),
                 "--save", strName});
    }
    // The folder of maps that the command line makes of a saved result.
    QString loadedByCommand(const QString& strName)
    {
        const QString strOut = m_folder.filePath("maps of " + strName);
        runSpum({"results", "load", m_strMouse, strName, "--quiet", "--out", strOut});
        return strOut;
    }
    QStringList listedByCommand() const
    {
        QStringList names;
        const QByteArray answer = runSpum({"results", "list", m_strMouse, "--json"});
        for (const QJsonValue& entry : QJsonDocument::fromJson(answer).object().value("results").toArray()) {
            names << entry.toObject().value("name").toString();
        }
        return names;
    }
    void type(const QString& strName) { find<QComboBox>("m_pSavedResultsCB")->setEditText(strName); }
    void refreshList()
    {
        find<QTabWidget>("tabWidget1")->setCurrentIndex(0);
        find<QTabWidget>("tabWidget1")->setCurrentIndex(1);
    }

    QString m_strMouse;
};

TEST_F(SharedResultsTest, WhatTheWindowSavesTheCommandLineLoadsBitForBit)
{
    open(m_strMouse);
    unmixAutomatically();
    click("m_pSaveButton");
    click("m_pLoadButton");
    EXPECT_EQ(complaints(), "");
    expectMapsOf(loadedByCommand("SPUM_001"));
}

TEST_F(SharedResultsTest, WhatTheCommandLineSavesTheWindowLoadsBitForBit)
{
    saveByCommand("by command");
    open(m_strMouse);
    refreshList();
    ASSERT_EQ(savedNames(), QStringList("by command"));
    click("m_pLoadButton");
    EXPECT_EQ(complaints(), "");
    expectMapsOf(loadedByCommand("by command"));
}

// The name in the field was free when the run ended.
TEST_F(SharedResultsTest, ANameThatAnotherProgramTookMeanwhileIsAskedAbout)
{
    open(m_strMouse);
    unmixAutomatically();
    saveByCommand("SPUM_001");
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    click("m_pSaveButton");
    EXPECT_EQ(m_answers.asked,
              QStringList("Spectral Unmixing results are present under \"SPUM_001\".\n Do you want to overwrite?"));
    EXPECT_EQ(listedByCommand(), QStringList("SPUM_001"));
    // Whoever only says that the result is to be kept gets the next name.
    m_answers.answer = CORVMessageBox::YesButton;
    click("m_pUnmixSpectraButton");
    EXPECT_EQ(listedByCommand(), (QStringList{"SPUM_001", "SPUM_002"}));
}

TEST_F(SharedResultsTest, AResultThatAnotherProgramDeletedIsToldAndLeavesTheList)
{
    saveByCommand("kidneys");
    open(m_strMouse);
    refreshList();
    runSpum({"results", "delete", m_strMouse, "kidneys", "--yes", "--quiet"});
    click("m_pLoadButton");
    ASSERT_EQ(m_answers.asked.size(), 1);
    EXPECT_TRUE(m_answers.asked.first().startsWith("Unable to load Spectral Unmixing data for sequence ["));
    EXPECT_TRUE(complaints().find("No results exists with this name.") != std::string::npos);
    click("m_pDeleteButton");
    EXPECT_EQ(listedByCommand(), QStringList());
    refreshList();
    EXPECT_EQ(savedNames(), QStringList());
}

TEST_F(SharedResultsTest, AResultThatAnotherProgramRenamedIsKeptBesideANewOne)
{
    saveByCommand("kidneys");
    open(m_strMouse);
    unmixAutomatically();
    runSpum({"results", "rename", m_strMouse, "kidneys", "both kidneys", "--quiet"});
    type("kidneys");
    click("m_pSaveButton");
    EXPECT_TRUE(m_answers.asked.isEmpty());
    EXPECT_EQ(listedByCommand(), (QStringList{"both kidneys", "kidneys"}));
    EXPECT_EQ(savedNames(), (QStringList{"both kidneys", "kidneys"}));
}

} // namespace
