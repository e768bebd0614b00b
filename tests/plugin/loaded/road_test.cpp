// SPDX-License-Identifier: GPL-3.0-or-later
// The road from a folder of images to maps on screen, through the loaded plug-in.
#include "LoadedPlugin.h"

#include "support/simulated.h"

#include <QCheckBox>
#include <QDir>
#include <QKeyEvent>
#include <QLabel>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableWidget>

using namespace loaded;

namespace {

class RoadTest : public LoadedPlugin
{
protected:
    QString mouse(const QString& strName = "mouse") { return simulated(strName, {"--size", "48", "--bands", "8"}); }
    // What the plug-in told the host last.
    bool lastValidity(const QSignalSpy& spy) const { return !spy.isEmpty() && spy.last().at(1).toBool(); }
    static void addTab(Opened& opened, const char* pTitle)
    {
        opened.window->addTabWidget(new QLabel(pTitle, opened.window), nullptr, nullptr, QIcon(), pTitle, -1, true);
    }
};

TEST_F(RoadTest, TabsOfTheSequenceDecideWhetherThePaletteShows)
{
    QSignalSpy told(m_pPlugin, SIGNAL(updatePluginValidity(QWidget*, bool)));
    Opened& opened = open(mouse());
    EXPECT_TRUE(lastValidity(told));
    addTab(opened, "unmixing");
    m_pPlugin->onSignalSequenceChanged(opened.sequence.get());
    EXPECT_TRUE(lastValidity(told));
    addTab(opened, "Unmixed Images");
    m_pPlugin->onSignalUpdatePluginPalette("Unmixed Images");
    EXPECT_TRUE(lastValidity(told));
    m_pPlugin->onSignalSequenceChanged(opened.sequence.get());
    EXPECT_FALSE(lastValidity(told));
    m_pPlugin->onSignalUpdatePluginPalette("Histogram");
    EXPECT_FALSE(lastValidity(told));
    m_pPlugin->onSignalUpdatePluginPalette("sequence view");
    EXPECT_TRUE(lastValidity(told));
    Q_EMIT opened.sequence->sequencePropertyChanged(opened.sequence.get());
    EXPECT_FALSE(lastValidity(told));
    opened.window->removeTabWidget("Unmixed Images");
    Q_EMIT opened.sequence->sequencePropertyChanged(opened.sequence.get());
    EXPECT_TRUE(lastValidity(told));
}

TEST_F(RoadTest, ASequencesOwnSignalsReachThePalette)
{
    Opened& first = open(mouse());
    Opened& second = open(mouse("other mouse"));
    auto* pTable = find<QTableWidget>("m_pWaveLengthTable");
    qobject_cast<QCheckBox*>(pTable->cellWidget(0, 0))->setChecked(false);
    Q_EMIT second.sequence->updateSpumProperties(second.sequence.get());
    EXPECT_TRUE(qobject_cast<QCheckBox*>(pTable->cellWidget(0, 0))->isChecked());
    unmixAutomatically();
    m_answers.asked.clear();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    Q_EMIT first.sequence->saveExistingAnalysisResult();
    EXPECT_EQ(m_answers.asked.size(), 1);
    EXPECT_TRUE(resultItems().isEmpty());
}

TEST_F(RoadTest, TheMapsAreThoseOfTheCommandLineBitForBit)
{
    const QString strFolder = mouse();
    const QString strByCommand = m_folder.filePath("by command");
    // What the wizard proposes; the command line by itself would add the food that it sees.
    runSpum({"unmix", strFolder, "--mask", "auto", "--components", "TissueAF,AlexaFluor 750,AlexaFluor 790", "--quiet",
             "--out", strByCommand});
    open(strFolder);
    unmixAutomatically();
    EXPECT_EQ(complaints(), "");
    expectMapsOf(strByCommand);
}

TEST_F(RoadTest, ResultsAreSavedRenamedLoadedAndDeleted)
{
    Opened& opened = open(mouse());
    unmixAutomatically();
    auto* pNames = find<QComboBox>("m_pSavedResultsCB");
    EXPECT_EQ(pNames->currentText(), "SPUM_001(new)");
    EXPECT_FALSE(find<QAbstractButton>("m_pLoadButton")->isEnabled());
    click("m_pSaveButton");
    EXPECT_EQ(savedNames(), QStringList("SPUM_001"));
    const QDir saved(opened.sequence->getSequenceInfoPath() + "XML/SpecUnmix");
    ASSERT_EQ(saved.entryList(QDir::Files).size(), 1);
    EXPECT_TRUE(m_answers.asked.isEmpty());

    pNames->setEditText("kidneys");
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(m_pPalette, &enter);
    EXPECT_EQ(savedNames(), QStringList("kidneys"));

    // In a new life of the sequence.
    const QString strFolder = opened.sequence->getSequenceInfoPath();
    close(opened);
    open(strFolder);
    find<QTabWidget>("tabWidget1")->setCurrentIndex(1);
    EXPECT_EQ(savedNames(), QStringList("kidneys"));
    click("m_pLoadButton");
    EXPECT_EQ(complaints(), "");
    EXPECT_FALSE(resultItems().isEmpty());
    EXPECT_EQ(m_opened.back()->window->getCurrentTabName(), "Unmixing");
    EXPECT_TRUE(find<QWidget>("m_pExportAsSequence")->isEnabled());
    m_answers.answer = CORVMessageBox::YesButton;
    click("m_pDeleteButton");
    EXPECT_EQ(m_answers.asked.last(), "Are you sure you want to delete the results for kidneys?");
    EXPECT_EQ(savedNames(), QStringList());
    EXPECT_EQ(saved.entryList(QDir::Files).size(), 0);
}

TEST_F(RoadTest, TheHostIsLockedForTheTimeOfTheRun)
{
    open(mouse());
    QStringList order;
    QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::restoreWindowsToMain, [&](bool bBack) {
        order << QString("%1 %2").arg(bBack ? "unlock" : "lock").arg(m_pPalette->isEnabled() ? "on" : "off");
    });
    unmixAutomatically();
    // For the time of the look at the result once more, where that takes long.
    ASSERT_FALSE(order.isEmpty());
    EXPECT_EQ(order.size() % 2, 0);
    for (int i = 0; i < order.size(); ++i) {
        EXPECT_EQ(order[i], i % 2 == 0 ? "lock off" : "unlock on") << i;
    }
}

TEST_F(RoadTest, EveryKindOfSequenceGoesTheRoad)
{
    const QList<QStringList> kinds{{"epi", "--bands", "6"},
                                   {"luminescent", "--bands", "6"},
                                   {"transillumination", "--bands", "6", "--spots", "4"},
                                   {"temporal"},
                                   {"cherenkov", "--bands", "6"}};
    for (const QStringList& kind : kinds) {
        Opened& opened = open(simulated(kind.first(), QStringList{"--kind"} + kind + QStringList{"--size", "32"}));
        unmixAutomatically();
        EXPECT_EQ(complaints(), "") << kind.first().toStdString();
        EXPECT_FALSE(resultItems().isEmpty()) << kind.first().toStdString();
        EXPECT_EQ(opened.window->getCurrentTabName(), "Unmixing");
        m_answers.answer = CORVMessageBox::NoButtonAnswer;
        close(opened);
        m_complaints.clear();
    }
}

} // namespace
