// SPDX-License-Identifier: GPL-3.0-or-later
// Batches, through the loaded plug-in.
#include "LoadedPlugin.h"

#include "host/CORVUtilityFns.h"
#include "host/CPLSettingsFileWrapper.h"
#include "host/batchResidual.h"
#include "host/orv_paths.h"
#include "platform/orvutils/ProcessControl.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QListWidget>
#include <QSignalSpy>
#include <QTimer>

using namespace loaded;

// The host's, which only hands it on.
struct downloaded_save_data
{
};

namespace {

// A window that tells how its background was set.
class WatchedWindow : public CORVSequenceWindow
{
public:
    using CORVSequenceWindow::CORVSequenceWindow;
    void setAdaptiveBackground(bool bOn) override { calls << (bOn ? "on" : "off"); }
    void refreshView() override { calls << "refresh"; }
    QStringList calls;
};

class BatchTest : public LoadedPlugin
{
protected:
    BatchTest()
    {
        m_strLibrary = getORVPath(ORV_PATH_USER_DATA, true, nullptr) + "Spum/batch.csv";
        QDir().mkpath(QFileInfo(m_strLibrary).path());
        // The host opens the maps.
        QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::signalLoadFile,
                         [this](const QString& strPath, bool, ESTATUS* pStatus, downloaded_save_data*) {
                             m_maps.push_back(std::make_unique<CORVDataset>());
                             *pStatus = m_maps.back()->openMade(QFileInfo(strPath).path());
                         });
    }
    ~BatchTest() override
    {
        QFile::remove(m_strLibrary);
        CORVUtilityFns::setSpumBatchStatus(false);
        CORVUtilityFns::setSpumBatchProcessingCount(0);
        CORVUtilityFns::setSpumBatchNewFolderStatus(false);
        CORVUtilityFns::setAdaptFLBgModeForSpumBatch(0);
    }
    QString mouse(const QString& strName = "mouse") { return simulated(strName, {"--size", "32", "--bands", "6"}); }
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
            m_bAppendHidden = pDialog->findChild<QWidget*>("m_pAppendChk")->isHidden();
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
    // As a host does once its user has chosen the sequences.
    void startBatch(const QStringList& sequences)
    {
        makeLibrary(sequences.first());
        setUp(true);
        CORVUtilityFns::setSpumBatchProcessingCount(sequences.size());
        CORVUtilityFns::setSpumBatchNewFolderStatus(true);
    }
    // Opens the sequence, which the batch then unmixes; true when its window has closed by itself.
    bool process(const QString& strSequence)
    {
        Opened& opened = open(strSequence);
        const QPointer<QWidget> pFrame(opened.window->parentWidget());
        QCoreApplication::processEvents();
        const bool bClosed = !pFrame || pFrame->isHidden();
        close(opened);
        return bClosed;
    }
    // Opens the sequence as a host does, but for announcing it; the window is owned by `opened`.
    static WatchedWindow* openWatched(const QString& strSequence, Opened& opened)
    {
        opened.sequence = std::make_unique<CORVSequenceDataset>();
        EXPECT_EQ(opened.sequence->open(strSequence), ESTATUS_SUCCESS);
        auto* pWindow = new WatchedWindow(opened.sequence.get());
        opened.window = pWindow;
        return pWindow;
    }
    // What a batch has saved beside a sequence: the names of its list, and its maps.
    QString kept(const QString& strSequence) const
    {
        const QStringList folders = batches(strSequence);
        if (folders.isEmpty()) {
            return QStringLiteral("nothing");
        }
        CPLSettingsFileWrapper index;
        const QDir folder(strSequence + "/" + folders.last());
        index.load(folder.filePath("SPUM.txt"));
        index.setMenuNameTag("MenuName");
        const QDir maps(folder.filePath("UnmixedImages"));
        return QString("%1 batches: %2; %4 maps")
            .arg(folders.size())
            .arg(index.getMenuNames("SPUM").join(','))
            .arg(maps.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
    }
    // The folders of batches beside a sequence.
    static QStringList batches(const QString& strMouse)
    {
        return QDir(strMouse).entryList({"SPUM*"}, QDir::Dirs, QDir::Name);
    }

    QString m_strLibrary;
    QString m_strNext;
    bool m_bAppendHidden = false;
};

TEST_F(BatchTest, TheHostLearnsTheFiltersOfTheChosenSpectra)
{
    makeLibrary(mouse());
    QSignalSpy browse(m_pPlugin, SIGNAL(signalLoadBrowseWindow(QList<QString>, QList<QString>)));
    ASSERT_TRUE(browse.isValid());
    setUp(false);
    EXPECT_EQ(m_strNext, "Next");
    EXPECT_TRUE(m_bAppendHidden) << "there is nothing to append to";
    EXPECT_FALSE(CORVUtilityFns::getSpumBatchStatus());
    EXPECT_EQ(browse.count(), 0);
    setUp(true);
    EXPECT_TRUE(CORVUtilityFns::getSpumBatchStatus());
    ASSERT_EQ(browse.count(), 1);
    EXPECT_EQ(browse.first().at(0).value<QList<QString>>().size(), 6);
    EXPECT_EQ(browse.first().at(1).value<QList<QString>>().size(), 6);
}

TEST_F(BatchTest, EverySequenceIsUnmixedSavedExportedAndClosed)
{
    const QStringList mice{mouse("one"), mouse("two"), mouse("three")};
    startBatch(mice);
    CORVUtilityFns::setAdaptFLBgModeForSpumBatch(2);
    for (const QString& strMouse : mice) {
        Opened& opened = open(strMouse);
        EXPECT_FALSE(opened.window->adaptiveBackground());
        EXPECT_FALSE(opened.sequence->isModified());
        // The library holds the very spectra that the mouse was made of.
        const double dResidual = opened.sequence->property(batchResidualProperty).toDouble();
        EXPECT_GT(dResidual, 0.0);
        EXPECT_LT(dResidual, 0.2);
        QCoreApplication::processEvents();
        EXPECT_TRUE(opened.window.isNull() || opened.window->parentWidget()->isHidden());
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
}

TEST_F(BatchTest, TheLogNamesEachSequenceByItsFolder)
{
    const QString strMouse = mouse();
    startBatch({strMouse});
    QStringList lines;
    const int nSink = orv::addLogSink([&lines](const orv::LogRecord& line) {
        if (line.m_strMessage.startsWith("Spectral Unmixing for sequence")) {
            lines << QString("%1 %2").arg(line.m_nLevel).arg(line.m_strMessage);
        }
    });
    Opened& opened = open(strMouse);
    orv::removeLogSink(nSink);
    EXPECT_EQ(lines, QStringList("1 Spectral Unmixing for sequence :- " + opened.sequence->getSequenceInfoPath()));
    close(opened);
}

// As many maps as there are components: the tiles of the first spot.
TEST_F(BatchTest, OfAScanTheMapsOfItsFirstSpotAreKept)
{
    const QString strScan =
        simulated("scan", {"--kind", "transillumination", "--size", "32", "--bands", "6", "--spots", "4"});
    ASSERT_TRUE(QFile::exists(strScan + "/truth/efficiency/spectra.csv"));
    ASSERT_TRUE(QFile::copy(strScan + "/truth/efficiency/spectra.csv", m_strLibrary));
    setUp(true);
    CORVUtilityFns::setSpumBatchProcessingCount(1);
    EXPECT_TRUE(process(strScan));
    EXPECT_EQ(complaints(), "");
    const QDir maps(strScan + "/" + batches(strScan).value(0) + "/UnmixedImages");
    QStringList spots;
    const QStringList names = maps.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        CORVDataset dataset;
        ASSERT_EQ(dataset.openMade(maps.filePath(name)), ESTATUS_SUCCESS);
        spots << dataset.getFLXspot() + " " + dataset.getFLYspot();
    }
    EXPECT_GE(names.size(), 2);
    spots.removeDuplicates();
    EXPECT_EQ(spots.size(), 1) << spots.join(", ").toStdString();
    const QDir truth(strScan + "/truth/efficiency");
    EXPECT_EQ(names.size(), truth.entryList({"*_spot1.tif"}).size()) << "one of each spectrum";
}

TEST_F(BatchTest, AfterItsEndASequenceIsUnmixedAsTheUserWants)
{
    const QString strMouse = mouse();
    startBatch({strMouse});
    process(strMouse);
    CORVUtilityFns::setSpumBatchStatus(false);
    ASSERT_TRUE(QMetaObject::invokeMethod(m_pPlugin, "onSignalDisableSpumBatchProcessing"));
    open(strMouse);
    EXPECT_TRUE(resultItems().isEmpty()) << "nothing starts by itself, and nothing of the batch is shown";
    unmixAutomatically();
    EXPECT_FALSE(resultItems().isEmpty());
    EXPECT_EQ(batches(strMouse).size(), 1);
}

TEST_F(BatchTest, ALuminescentSequenceKeepsItsBackground)
{
    const QString strMouse = simulated("light", {"--kind", "luminescent", "--size", "32", "--bands", "6"});
    CORVUtilityFns::setAdaptFLBgModeForSpumBatch(1);
    CORVUtilityFns::setSpumBatchStatus(true);
    Opened opened;
    const WatchedWindow* pWindow = openWatched(strMouse, opened);
    m_pPlugin->onSignalSequenceChanged(opened.sequence.get());
    EXPECT_EQ(pWindow->calls, QStringList());
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

struct BackgroundCase
{
    int mode;
    QStringList calls;
};

TEST_F(BatchTest, TheAdaptiveBackgroundIsOnForTheTimeOfTheWork)
{
    const QStringList onAndOff{"on", "refresh", "off", "refresh"};
    const QString strMouse = mouse();
    startBatch({strMouse});
    for (const BackgroundCase& background :
         {BackgroundCase{0, {}}, BackgroundCase{1, onAndOff}, BackgroundCase{2, onAndOff}, BackgroundCase{3, {}}}) {
        CORVUtilityFns::setAdaptFLBgModeForSpumBatch(background.mode);
        Opened opened;
        const WatchedWindow* pWindow = openWatched(strMouse, opened);
        opened.sequence->setModified(true);
        m_pPlugin->onSignalSequenceChanged(opened.sequence.get());
        EXPECT_EQ(pWindow->calls, background.calls) << background.mode;
        EXPECT_EQ(opened.sequence->isModified(), background.calls.isEmpty()) << background.mode;
        m_pPlugin->onSignalSequenceRemoved(opened.sequence.get());
    }
}

// A host tells of the sequence in front once more after every run, and when windows come and go.
TEST_F(BatchTest, ASequenceThatIsAnnouncedAgainIsNotUnmixedAgain)
{
    const QStringList mice{mouse("one"), mouse("two")};
    startBatch(mice);
    QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::restoreWindowsToMain, [this](bool bBack) {
        if (bBack) {
            m_pPlugin->onSignalSequenceChanged(m_opened.back()->sequence.get());
        }
    });
    int nStarted = 0;
    const int nSink = orv::addLogSink([&nStarted](const orv::LogRecord& line) {
        nStarted += line.m_strMessage.startsWith("Spectral Unmixing for sequence :- ") ? 1 : 0;
    });
    for (const QString& strMouse : mice) {
        Opened& opened = open(strMouse);
        m_pPlugin->onSignalSequenceChanged(opened.sequence.get());
        m_pPlugin->onSignalDatasetChanged(opened.sequence->getDatasets().first());
        close(opened);
    }
    // The same once more, opened anew.
    process(mice.last());
    orv::removeLogSink(nSink);
    EXPECT_EQ(nStarted, 3);
    EXPECT_EQ(kept(mice.first()), "1 batches: SPUM_001; 4 maps");
}

TEST_F(BatchTest, AnAbortedRunIsNotKeptAndTheBatchGoesOn)
{
    const QStringList mice{mouse("one"), mouse("two"), mouse("three")};
    startBatch(mice);
    bool bAbort = false;
    QObject::connect(m_pPlugin, &CORVToolPalettePluginBase::restoreWindowsToMain, [&bAbort](bool bBack) {
        if (!bBack && bAbort) {
            orv::requestAbort();
        }
    });
    for (const QString& strMouse : mice) {
        bAbort = strMouse == mice.at(1);
        EXPECT_TRUE(process(strMouse)) << strMouse.toStdString();
    }
    EXPECT_EQ(kept(mice.at(0)), "1 batches: SPUM_001; 4 maps");
    EXPECT_EQ(kept(mice.at(1)), "nothing");
    EXPECT_EQ(kept(mice.at(2)), "1 batches: SPUM_001; 4 maps");
    EXPECT_TRUE(m_answers.asked.isEmpty());
}

TEST_F(BatchTest, ASequenceThatTheSpectraDoNotFitIsToldAndPassedOver)
{
    // The library knows nothing of the bands of the second.
    const QStringList mice{mouse("one"), simulated("broken", {"--size", "32", "--bands", "9"}), mouse("three")};
    startBatch(mice);
    EXPECT_TRUE(process(mice.at(0)));
    EXPECT_EQ(complaints(), "");
    EXPECT_TRUE(process(mice.at(1)));
    EXPECT_EQ(complaints(), "SpumKyvo: Incorrect initial guess settings!");
    EXPECT_TRUE(process(mice.at(2)));
    EXPECT_EQ(kept(mice.at(2)), "1 batches: SPUM_001; 4 maps");
    EXPECT_TRUE(kept(mice.at(1)).endsWith("; 0 maps"));
    // Nothing to choose in it: a host puts it into the log.
    ASSERT_EQ(m_answers.asked.size(), 1);
    EXPECT_TRUE(m_answers.asked.first().startsWith("Unable to save Spectral Unmixing analysis data for sequence ["));
}

TEST_F(BatchTest, WithoutAFolderForTheMapsTheSequenceStaysOpen)
{
    const QString strMouse = mouse();
    startBatch({strMouse});
    // The first sequence fixes the stamp of a batch of several.
    process(strMouse);
    const QString strBatch = strMouse + "/" + batches(strMouse).last();
    ASSERT_TRUE(QDir(strBatch + "/UnmixedImages").removeRecursively());
    QFile file(strBatch + "/UnmixedImages");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    m_complaints.clear();
    EXPECT_FALSE(process(strMouse));
    EXPECT_EQ(m_complaints, QStringList("Failed to create " + strBatch + "/UnmixedImages folder."));
}

// It stays open as it is shown.
TEST_F(BatchTest, WithoutAFolderForTheMapsTheBackgroundStaysAdapted)
{
    const QString strMouse = mouse();
    startBatch({strMouse});
    process(strMouse);
    const QString strMaps = strMouse + "/" + batches(strMouse).last() + "/UnmixedImages";
    ASSERT_TRUE(QDir(strMaps).removeRecursively());
    QFile file(strMaps);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    CORVUtilityFns::setAdaptFLBgModeForSpumBatch(1);
    Opened opened;
    const WatchedWindow* pWindow = openWatched(strMouse, opened);
    m_pPlugin->onSignalSequenceChanged(opened.sequence.get());
    EXPECT_EQ(pWindow->calls, (QStringList{"on", "refresh"}));
    m_pPlugin->onSignalSequenceRemoved(opened.sequence.get());
}

// The stamp of the palette serves, time and again.
TEST_F(BatchTest, ABatchOfOneKeepsTheStampAndAsksBeforeItOverwrites)
{
    const QString strMouse = mouse();
    startBatch({strMouse});
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    process(strMouse);
    EXPECT_TRUE(m_answers.asked.isEmpty());
    process(strMouse);
    EXPECT_EQ(m_answers.asked,
              QStringList("Spectral Unmixing results are present under \"SPUM_001\".\n Do you want to overwrite?"));
    EXPECT_EQ(kept(strMouse), "1 batches: SPUM_001; 4 maps");
}

TEST_F(BatchTest, AnUnsavedResultIsAskedAboutAheadOfABatch)
{
    const QString strMouse = mouse();
    makeLibrary(strMouse);
    Opened& opened = open(strMouse);
    unmixAutomatically();
    QSignalSpy browse(m_pPlugin, SIGNAL(signalLoadBrowseWindow(QList<QString>, QList<QString>)));
    m_answers.answer = CORVMessageBox::CancelButton;
    setUp(true);
    const QString strQuestion =
        "Save Spectral Unmixing results for sequence [" + opened.sequence->getSequenceName() + "]?";
    EXPECT_EQ(m_answers.asked, QStringList(strQuestion));
    EXPECT_FALSE(CORVUtilityFns::getSpumBatchStatus());
    EXPECT_FALSE(CORVMessageBox::getCancelClicked());
    EXPECT_EQ(browse.count(), 0);
    EXPECT_FALSE(resultItems().isEmpty());
    m_answers.answer = CORVMessageBox::YesButton;
    setUp(true);
    EXPECT_EQ(m_answers.asked.size(), 2);
    EXPECT_TRUE(CORVUtilityFns::getSpumBatchStatus());
    EXPECT_EQ(browse.count(), 1);
    EXPECT_EQ(QDir(strMouse + "/XML/SpecUnmix").entryList(QDir::Files).size(), 1);
}

TEST_F(BatchTest, TheHostsSlotsOfABatchAreThere)
{
    EXPECT_TRUE(QMetaObject::invokeMethod(m_pPlugin, "onSignalLoadBrowseWindow"));
    EXPECT_TRUE(QMetaObject::invokeMethod(m_pPlugin, "onStartUnmixing"));
    EXPECT_TRUE(QMetaObject::invokeMethod(m_pPlugin, "onSignalDisableSpumBatchProcessing"));
}

} // namespace
