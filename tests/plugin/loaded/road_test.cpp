// SPDX-License-Identifier: GPL-3.0-or-later
// The road from a folder of images to maps on screen, through the loaded plug-in.
#include "LoadedPlugin.h"

#include "support/CapturedOutput.h"

#include "host/CORVUtilityFns.h"
#include "host/orv_paths.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QProcess>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTableWidget>
#include <QTimer>

#include <cmath>

using namespace loaded;

// The host's, which only hands it on.
struct downloaded_save_data
{
};

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
    QStringList savedNames() const
    {
        QStringList names;
        const auto* pCombo = find<QComboBox>("m_pSavedResultsCB");
        for (int i = 0; i < pCombo->count(); ++i) {
            names << pCombo->itemText(i);
        }
        return names;
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

// Exported maps are the concentrations as floats, each over the largest value of its spectrum, which is 1 here.
TEST_F(RoadTest, TheMapsAreThoseOfTheCommandLineBitForBit)
{
    const QString strFolder = mouse();
    QProcess spum;
    spum.start(ORV_BINARY_DIR "/bin/spum",
               {"unmix", strFolder, "--mask", "auto", "--quiet", "--out", m_folder.filePath("by command")});
    ASSERT_TRUE(spum.waitForFinished(120000));
    ASSERT_EQ(spum.exitCode(), 0) << spum.readAllStandardError().toStdString();
    QStringList exported;
    QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::createSequence,
                     [&exported](const QStringList& paths, bool) { exported = paths; });
    open(strFolder);
    unmixAutomatically();
    EXPECT_EQ(complaints(), "");
    click("m_pExportAsSequence");
    const QDir command(m_folder.filePath("by command"));
    const QStringList maps = command.entryList({"0*.tif"}, QDir::Files, QDir::Name);
    ASSERT_EQ(maps.size(), exported.size());
    ASSERT_GE(maps.size(), 2);
    for (int k = 0; k < maps.size(); ++k) {
        const std::vector<double> byCommand = pixelsOf(command.filePath(maps.at(k)));
        const std::vector<double> byWindow = pixelsOf(QFileInfo(exported.at(k)).path() + "/luminescent.TIF");
        ASSERT_EQ(byCommand.size(), byWindow.size());
        int nInside = 0;
        for (std::size_t i = 0; i < byCommand.size(); ++i) {
            // Outside the mask the one says so, and the other is 0.
            const bool bInside = !std::isnan(byCommand[i]);
            nInside += bInside ? 1 : 0;
            ASSERT_EQ(byWindow[i], bInside ? byCommand[i] : 0.0) << maps.at(k).toStdString() << ", pixel " << i;
        }
        EXPECT_GT(nInside, 300) << maps.at(k).toStdString();
    }
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
    EXPECT_EQ(order, (QStringList{"lock off", "unlock on"}));
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

class BatchTest : public RoadTest
{
protected:
    BatchTest()
    {
        m_strLibrary = getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum/batch.csv";
        QDir().mkpath(QFileInfo(m_strLibrary).path());
    }
    ~BatchTest() override
    {
        QFile::remove(m_strLibrary);
        CORVUtilityFns::setSpumBatchStatus(false);
        CORVUtilityFns::setSpumBatchProcessingCount(0);
        CORVUtilityFns::setSpumBatchNewFolderStatus(false);
        CORVUtilityFns::setAdaptFLBgModeForSpumBatch(0);
    }
    // The true spectra of a simulated mouse as a library of the user.
    void makeLibrary(const QString& strMouse)
    {
        ASSERT_TRUE(QFile::copy(strMouse + "/truth/radiant-efficiency/spectra.csv", m_strLibrary));
    }
    // Opens the dialog of libraries for a batch, and takes or refuses the library.
    void setUp(bool bTake)
    {
        CORVUtilityFns::setSpumBatchStatus(true);
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            QWidget* pDialog = QApplication::activeModalWidget();
            if (pDialog == nullptr) {
                return;
            }
            timer.stop();
            auto* pNext = pDialog->findChild<QAbstractButton*>("m_pNextBtn");
            m_strNext = pNext->text();
            auto* pList = pDialog->findChild<QListWidget*>("m_pSpumLibraryList");
            for (int i = 0; i < pList->count(); ++i) {
                if (pList->item(i)->text() == "batch") {
                    pList->setCurrentRow(i);
                    Q_EMIT pList->itemClicked(pList->item(i));
                }
            }
            (bTake ? pNext : pDialog->findChild<QAbstractButton*>("m_pCloseBtn"))->click();
        });
        timer.start(5);
        m_pPlugin->onLoadUnmixDlg();
    }
    // The folders of batches beside a sequence.
    static QStringList batches(const QString& strMouse)
    {
        return QDir(strMouse).entryList({"SPUM*"}, QDir::Dirs, QDir::Name);
    }

    QString m_strLibrary;
    QString m_strNext;
};

TEST_F(BatchTest, TheHostLearnsTheFiltersOfTheChosenSpectra)
{
    makeLibrary(mouse());
    QSignalSpy browse(m_pPlugin, SIGNAL(signalLoadBrowseWindow(QList<QString>, QList<QString>)));
    ASSERT_TRUE(browse.isValid());
    setUp(false);
    EXPECT_EQ(m_strNext, "Next");
    EXPECT_FALSE(CORVUtilityFns::getSpumBatchStatus());
    EXPECT_EQ(browse.count(), 0);
    setUp(true);
    EXPECT_TRUE(CORVUtilityFns::getSpumBatchStatus());
    ASSERT_EQ(browse.count(), 1);
    EXPECT_EQ(browse.first().at(0).value<QList<QString>>().size(), 8);
    EXPECT_EQ(browse.first().at(1).value<QList<QString>>().size(), 8);
}

TEST_F(BatchTest, EverySequenceIsUnmixedSavedExportedAndClosed)
{
    const QStringList mice{mouse("one"), mouse("two"), mouse("three")};
    makeLibrary(mice.first());
    QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::signalLoadFile,
                     [this](const QString& strPath, bool, ESTATUS* pStatus, downloaded_save_data*) {
                         m_maps.push_back(std::make_unique<CORVDataset>());
                         *pStatus = m_maps.back()->openMade(QFileInfo(strPath).path());
                     });
    setUp(true);
    CORVUtilityFns::setSpumBatchProcessingCount(3);
    CORVUtilityFns::setSpumBatchNewFolderStatus(true);
    CORVUtilityFns::setAdaptFLBgModeForSpumBatch(2);
    for (const QString& strMouse : mice) {
        Opened& opened = open(strMouse);
        EXPECT_FALSE(opened.window->adaptiveBackground());
        EXPECT_FALSE(opened.sequence->isModified());
        QCoreApplication::processEvents();
        EXPECT_TRUE(opened.window.isNull() || !opened.window->parentWidget()->isVisible());
        close(opened);
    }
    EXPECT_EQ(complaints(), "");
    EXPECT_TRUE(m_answers.asked.isEmpty());
    ASSERT_EQ(batches(mice.first()).size(), 1);
    const QString strBatch = batches(mice.first()).first();
    for (const QString& strMouse : mice) {
        EXPECT_EQ(batches(strMouse), QStringList(strBatch)); // one stamp for all
        const QDir folder(strMouse + "/" + strBatch);
        EXPECT_TRUE(folder.exists("SPUM.txt"));
        EXPECT_EQ(folder.entryList({"SpecUnmix"}, QDir::Dirs).size(), 1);
        const QStringList maps = QDir(folder.filePath("UnmixedImages")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        EXPECT_GE(maps.size(), 2);
    }
    m_pPlugin->metaObject()->invokeMethod(m_pPlugin, "onSignalDisableSpumBatchProcessing");
}

TEST_F(BatchTest, ALuminescentSequenceKeepsItsBackground)
{
    const QString strMouse = simulated("light", {"--kind", "luminescent", "--size", "32", "--bands", "6"});
    CORVUtilityFns::setAdaptFLBgModeForSpumBatch(1);
    CORVUtilityFns::setSpumBatchStatus(true);
    Opened opened;
    opened.sequence = std::make_unique<CORVSequenceDataset>();
    ASSERT_EQ(opened.sequence->open(strMouse), ESTATUS_SUCCESS);
    struct Watched : CORVSequenceWindow
    {
        using CORVSequenceWindow::CORVSequenceWindow;
        void setAdaptiveBackground(bool) override { ++calls; }
        int calls = 0;
    };
    auto* pWindow = new Watched(opened.sequence.get());
    opened.window = pWindow;
    m_pPlugin->onSignalSequenceChanged(opened.sequence.get());
    EXPECT_EQ(pWindow->calls, 0);
    m_pPlugin->onSignalSequenceRemoved(opened.sequence.get());
}

TEST_F(BatchTest, ASequenceThatCannotBeAnalysedIsPassedOver)
{
    const QString strMouse = mouse();
    Opened opened;
    opened.sequence = std::make_unique<CORVSequenceDataset>();
    ASSERT_EQ(opened.sequence->open(strMouse), ESTATUS_SUCCESS);
    opened.sequence->isSpectrallyAnalysable = false;
    CORVUtilityFns::setSpumBatchStatus(true);
    m_pPlugin->onSignalSequenceChanged(opened.sequence.get());
    EXPECT_EQ(batches(strMouse), QStringList());
}

} // namespace
