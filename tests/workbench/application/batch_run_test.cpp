// SPDX-License-Identifier: GPL-3.0-or-later
// A batch in the main window: chosen, run one sequence after the other, aborted, and told.
#include "MainWindowFixture.h"
#include "mnemonics.h"

#include "host/CORVDataset.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVUtilityFns.h"
#include "host/batchResidual.h"
#include "support/simulated.h"
#include "workbench/application/BatchRun.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include <filesystem>
#include <functional>

namespace {

// Works on the sequences of a batch as the tool of the product does: once each, while it is told of it.
class BatchTool : public FakeTool
{
    Q_OBJECT

public:
    void onLoadUnmixDlg() override
    {
        m_bStatusAtChoice = CORVUtilityFns::getSpumBatchStatus();
        if (m_bHasSpectra) {
            Q_EMIT signalLoadBrowseWindow(m_excitation, m_emission);
        }
    }
    void onSignalSequenceChanged(CORVSequenceDataset* pSequence) override
    {
        FakeTool::onSignalSequenceChanged(pSequence);
        if (!CORVUtilityFns::getSpumBatchStatus() || pSequence == nullptr || pSequence == m_pLast ||
            m_refused.contains(pSequence->getSequenceName())) {
            return;
        }
        m_pLast = pSequence;
        m_worked << pSequence->getSequenceName();
        m_modes << CORVUtilityFns::getAdaptFLBgModeForSpumBatch();
        m_nOpenAtStart << CORVSequenceDataset::openSequences().size();
        const QString strPath = pSequence->getSequenceInfoPath();
        log(QStringLiteral("Spectral Unmixing for sequence :- ") + strPath, CORVLOG_NOTE);
        log(QStringLiteral("a warning"), CORVLOG_WARNING);
        if (m_insteadOfRun) {
            m_insteadOfRun();
            QTimer::singleShot(0, CORVSequenceWindow::getSequenceWindow(pSequence)->parentWidget(), SLOT(close()));
            return;
        }
        run();
        if (!m_bAborted && m_broken.contains(pSequence->getSequenceName())) {
            log(QStringLiteral("no solution"), CORVLOG_ERROR);
        } else if (!m_bAborted) {
            const QString strFolder = strPath + QStringLiteral("SPUM1/SpecUnmix");
            QDir().mkpath(strFolder);
            QFile file(strFolder + QStringLiteral("/a.xml"));
            file.open(QIODevice::WriteOnly);
            pSequence->setProperty(batchResidualProperty, 0.0123);
        }
        const CORVSequenceWindow* pWindow = CORVSequenceWindow::getSequenceWindow(pSequence);
        if (!m_leftOpen.contains(pSequence->getSequenceName())) {
            QTimer::singleShot(0, pWindow->parentWidget(), SLOT(close()));
        }
    }
    void onSignalSequenceRemoved(CORVSequenceDataset* pSequence) override
    {
        FakeTool::onSignalSequenceRemoved(pSequence);
        m_pLast = pSequence == m_pLast ? nullptr : m_pLast;
    }

    bool m_bHasSpectra = true;
    bool m_bStatusAtChoice = false;
    int m_nEnded = 0;
    QList<QString> m_excitation; // of the bands of the spectra; none are told at first
    QList<QString> m_emission;
    QStringList m_worked;
    QList<int> m_modes; // of the adaptive background
    QList<int> m_nOpenAtStart;
    std::function<void()> m_insteadOfRun;
    QStringList m_refused;  // not taken up
    QStringList m_broken;   // no result
    QStringList m_leftOpen; // no folder for the maps

public Q_SLOTS:
    void onSignalDisableSpumBatchProcessing() { ++m_nEnded; }

Q_SIGNALS:
    void signalLoadBrowseWindow(QList<QString> excitation, QList<QString> emission);

private:
    static void log(const QString& strText, long nLevel)
    {
        CORVLog::getLogObject()->log(strText, QString(), 0, QString(), nLevel, false);
    }
    CORVSequenceDataset* m_pLast = nullptr;
};

class BatchRunTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        makeWindow();
        m_pBatchTool = new BatchTool;
        m_pTool = m_pBatchTool;
        m_pWindow->plugin().take(m_pBatchTool);
        m_pWindow->palette().takeUp();
        // A run takes a few turns.
        m_pTool->m_during = [this] {
            ++m_nTurns;
            m_pTool->m_bEnd = m_nTurns % 3 == 0;
        };
    }
    void TearDown() override
    {
        MainWindowFixture::TearDown();
        EXPECT_FALSE(CORVUtilityFns::getSpumBatchStatus());
    }
    QString copy(const QString& strName)
    {
        const QString folder = m_folder.filePath(strName);
        std::filesystem::copy(mouse().toStdString(), folder.toStdString(), std::filesystem::copy_options::recursive);
        return folder;
    }
    BatchRun& batch() { return m_pWindow->batch(); }
    // Through the menu: the dialog gets the folders dropped and is accepted, or refused.
    void choose(const QStringList& folders, bool bAccept = true)
    {
        QTimer timer;
        bool bDropped = false;
        QObject::connect(&timer, &QTimer::timeout, [&] {
            QWidget* pDialog = QApplication::activeModalWidget();
            if (pDialog == nullptr || pDialog->objectName() != QLatin1String("batchChooser")) {
                return;
            }
            if (!bDropped) {
                bDropped = true;
                QMimeData data;
                QList<QUrl> urls;
                for (const QString& folder : folders) {
                    urls << QUrl::fromLocalFile(folder);
                }
                data.setUrls(urls);
                QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
                QApplication::sendEvent(pDialog, &enter);
                QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
                QApplication::sendEvent(pDialog, &event);
                return;
            }
            m_strSummary = pDialog->findChild<QLabel*>("batchSummary")->text();
            if (m_strSummary.startsWith("Looking")) {
                return;
            }
            timer.stop();
            m_verdicts.clear();
            const auto* pTable = pDialog->findChild<QTableWidget*>("batchCandidates");
            for (int i = 0; i < pTable->rowCount(); ++i) {
                m_verdicts << pTable->item(i, 2)->text();
            }
            mnemonics::expectUnique(*pDialog);
            pDialog->findChild<QCheckBox*>("batchAdaptive")->setChecked(m_bAdaptive);
            auto* pButton = pDialog->findChild<QPushButton*>(bAccept ? "batchStart" : "batchCancel");
            EXPECT_TRUE(pButton->isEnabled());
            (pButton->isEnabled() ? pButton : pDialog->findChild<QPushButton*>("batchCancel"))->click();
        });
        timer.start(5);
        trigger("batchAction");
    }
    void waitForEnd()
    {
        EXPECT_TRUE(QTest::qWaitFor([this] { return !batch().isRunning(); }, 20000));
        settle();
    }
    QStringList outcomes()
    {
        QStringList all;
        for (const auto& row : batch().sheet().rows()) {
            all << BatchSheet::outcomeText(row);
        }
        return all;
    }

    BatchTool* m_pBatchTool = nullptr;
    int m_nTurns = 0;
    bool m_bAdaptive = false;
    QString m_strSummary;
    QStringList m_verdicts;
};

TEST_F(BatchRunTest, OneAfterTheOtherEachClosedBeforeTheNext)
{
    const QStringList folders{copy("one"), copy("two"), copy("three")};
    choose(folders);
    EXPECT_TRUE(m_pBatchTool->m_bStatusAtChoice);
    EXPECT_EQ(m_strSummary, "3 of 3 can be analysed.");
    waitForEnd();
    EXPECT_EQ(m_pBatchTool->m_worked.size(), 3);
    EXPECT_EQ(m_pBatchTool->m_nOpenAtStart, (QList<int>{1, 1, 1}));
    EXPECT_EQ(outcomes(), (QStringList{"Unmixed", "Unmixed", "Unmixed"}));
    EXPECT_EQ(m_pWindow->documents().count(), 0);
    EXPECT_EQ(m_pBatchTool->m_nEnded, 1);
    EXPECT_EQ(CORVUtilityFns::getSpumBatchProcessingCount(), 0);
    EXPECT_FALSE(m_pWindow->runLock().isLocked());
    EXPECT_TRUE(m_script.m_asked.isEmpty());
    for (const auto& row : batch().sheet().rows()) {
        EXPECT_EQ(row.warnings, QStringList("a warning"));
        EXPECT_DOUBLE_EQ(row.residual.value_or(0.0), 0.0123);
    }
}

TEST_F(BatchRunTest, TheChoiceTellsWhichSequenceTheSpectraDoNotFit)
{
    const QString strFits = copy("one");
    QTemporaryDir work;
    const QString strOther = work.filePath("other bands");
    simulated::into(strOther, {"--size", "32", "--bands", "9"});
    CORVSequenceDataset sequence;
    ASSERT_EQ(sequence.open(strFits), ESTATUS_SUCCESS);
    for (const CORVDataset* pDataset : sequence.getDatasets()) {
        m_pBatchTool->m_excitation << pDataset->getExcitationFilter().remove("nm");
        m_pBatchTool->m_emission << pDataset->getEmissionFilter().remove("nm");
    }
    choose({strFits, strOther}, false);
    ASSERT_EQ(m_verdicts.size(), 2);
    EXPECT_EQ(m_verdicts.at(0), "Yes");
    EXPECT_TRUE(m_verdicts.at(1).startsWith("No: The spectra have no value")) << qPrintable(m_verdicts.at(1));
    EXPECT_EQ(m_strSummary, "1 of 2 can be analysed; there will be no result of the others.");
}

TEST_F(BatchRunTest, AnAbortAheadOfTheRunIsNoFailure)
{
    m_pBatchTool->m_insteadOfRun = [this] { batch().abortSequence(); };
    choose({copy("one")});
    waitForEnd();
    EXPECT_EQ(outcomes(), QStringList("Aborted"));
}

TEST_F(BatchRunTest, TheTableTellsAndIsCopied)
{
    choose({copy("one"), copy("two")});
    EXPECT_FALSE(find<QPushButton>("batchClose")->isEnabled());
    find("batchWindow")->close();
    EXPECT_TRUE(find("batchWindow")->isVisible()) << "while it runs";
    waitForEnd();
    const auto* pTable = find<QTableWidget>("batchTable");
    ASSERT_EQ(pTable->rowCount(), 2);
    QStringList cells;
    for (int i = 0; i < 4; ++i) {
        cells << pTable->item(1, i)->text();
    }
    EXPECT_EQ(cells, (QStringList{"two", "Unmixed", "1.23 %", "1"}));
    EXPECT_TRUE(find<QLabel>("batchTotals")->text().startsWith("2 of 2 unmixed; 2 warnings; "));
    find<QPushButton>("batchCopy")->click();
    EXPECT_EQ(QApplication::clipboard()->text(), QString::fromUtf8(batch().sheet().csv()));
    mnemonics::expectUnique(*find("batchWindow"));
    find<QPushButton>("batchClose")->click();
    EXPECT_FALSE(find("batchWindow")->isVisible());
}

TEST_F(BatchRunTest, WhatFailsIsToldAndPassedOver)
{
    const QStringList folders{copy("one"), m_folder.filePath("gone"), copy("three"), copy("four"), copy("five")};
    QDir().mkdir(folders.at(1));
    choose(folders);
    EXPECT_EQ(m_strSummary, "4 of 5 can be analysed; there will be no result of the others.");
    EXPECT_TRUE(m_verdicts.at(1).startsWith("No: It is no sequence."));
    waitForEnd();
    EXPECT_EQ(m_pBatchTool->m_worked.size(), 4);
    EXPECT_TRUE(outcomes().at(1).startsWith("Failed: ")) << qPrintable(outcomes().at(1));
    EXPECT_EQ(outcomes().last(), "Unmixed");
    EXPECT_TRUE(m_script.m_asked.isEmpty()) << qPrintable(m_script.m_asked.join("|"));
}

TEST_F(BatchRunTest, ARunWithoutAResultIsTold)
{
    m_pBatchTool->m_broken << "mouse";
    choose({copy("one"), copy("two")});
    waitForEnd();
    EXPECT_EQ(outcomes(), (QStringList{"Failed: no solution", "Failed: no solution"}));
    EXPECT_EQ(m_pWindow->documents().count(), 0);
}

TEST_F(BatchRunTest, WhatTheToolDoesNotTakeUpIsClosed)
{
    m_pBatchTool->m_refused << "mouse";
    choose({copy("one"), copy("two")});
    waitForEnd();
    EXPECT_TRUE(outcomes().first().startsWith("Passed over: ")) << qPrintable(outcomes().first());
    EXPECT_EQ(m_pWindow->documents().count(), 0);
}

TEST_F(BatchRunTest, WhatTheToolLeavesOpenStaysAndTheRestGoesOn)
{
    m_pBatchTool->m_leftOpen << "mouse";
    choose({copy("one"), copy("two")});
    waitForEnd();
    EXPECT_EQ(m_pBatchTool->m_worked.size(), 2) << "each once, whatever comes to the front";
    EXPECT_EQ(batch().sheet().count(BatchSheet::State::Failed), 2);
    EXPECT_EQ(m_pWindow->documents().count(), 2);
}

TEST_F(BatchRunTest, AnAbortInsideEndsThatRunAlone)
{
    m_pTool->m_during = [this] {
        ++m_nTurns;
        if (m_nTurns == 4) {
            find<QPushButton>("batchAbortSequence")->click();
        }
        m_pTool->m_bEnd = m_nTurns % 3 == 0;
    };
    choose({copy("one"), copy("two"), copy("three")});
    waitForEnd();
    EXPECT_EQ(outcomes(), (QStringList{"Unmixed", "Aborted", "Unmixed"}));
}

TEST_F(BatchRunTest, AbortAllEndsTheRunAndBeginsNothingMore)
{
    m_pTool->m_during = [this] {
        ++m_nTurns;
        if (m_nTurns == 4) {
            find<QPushButton>("batchAbortAll")->click();
        }
        m_pTool->m_bEnd = m_nTurns % 3 == 0;
    };
    choose({copy("one"), copy("two"), copy("three")});
    waitForEnd();
    EXPECT_EQ(outcomes(), (QStringList{"Unmixed", "Aborted", "Not begun"}));
    EXPECT_EQ(m_pWindow->documents().count(), 0);
}

TEST_F(BatchRunTest, AnAbortBetweenLeavesTheRest)
{
    bool bAborted = false;
    QObject::connect(&batch(), &BatchRun::changed, &batch(), [&] {
        if (!bAborted && batch().sheet().count(BatchSheet::State::Done) == 1 && batch().sheet().running() < 0) {
            bAborted = true;
            batch().abortAll();
        }
    });
    choose({copy("one"), copy("two"), copy("three")});
    waitForEnd();
    EXPECT_EQ(outcomes(), (QStringList{"Unmixed", "Not begun", "Not begun"}));
}

TEST_F(BatchRunTest, WhatIsOpenIsNotUnmixedAndIsThereAfterwards)
{
    const QString strOther = other();
    ASSERT_TRUE(m_pWindow->open(strOther));
    choose({copy("one"), copy("two")});
    waitForEnd();
    EXPECT_EQ(m_pBatchTool->m_worked.size(), 2);
    EXPECT_FALSE(QDir(strOther).exists("SPUM1"));
    ASSERT_EQ(m_pWindow->documents().sequences().size(), 1);
    EXPECT_EQ(m_pTool->m_told.last(), "changed " + m_pWindow->documents().sequences().first()->getSequenceName());
}

TEST_F(BatchRunTest, ASequenceOfTheBatchThatIsOpenIsClosedFirst)
{
    const QString strOne = copy("one");
    ASSERT_TRUE(m_pWindow->open(strOne));
    choose({strOne, copy("two")});
    waitForEnd();
    EXPECT_EQ(outcomes(), (QStringList{"Unmixed", "Unmixed"}));
    EXPECT_EQ(m_pWindow->documents().count(), 0);
}

TEST_F(BatchRunTest, WithoutSpectraOrSequencesNothingBegins)
{
    const QString strOne = copy("one");
    choose({strOne}, false);
    EXPECT_FALSE(batch().isRunning());
    EXPECT_EQ(m_pBatchTool->m_nEnded, 1);
    EXPECT_FALSE(CORVUtilityFns::getSpumBatchStatus());
    m_pBatchTool->m_bHasSpectra = false;
    trigger("batchAction");
    EXPECT_FALSE(batch().isRunning());
    ASSERT_TRUE(m_pWindow->open(strOne));
    EXPECT_TRUE(m_pBatchTool->m_worked.isEmpty());
    EXPECT_EQ(m_pTool->m_told.last(), "changed mouse") << "the tool hears of sequences again";
}

TEST_F(BatchRunTest, TheAdaptiveBackgroundIsTheUsersChoice)
{
    const QString strOne = copy("one");
    choose({strOne});
    waitForEnd();
    m_bAdaptive = true;
    choose({strOne});
    waitForEnd();
    EXPECT_EQ(m_pBatchTool->m_modes, (QList<int>{0, 1}));
    EXPECT_EQ(CORVUtilityFns::getAdaptFLBgModeForSpumBatch(), 0);
}

TEST_F(BatchRunTest, WhoKeepsAnUnsavedResultBeginsNoBatch)
{
    m_pTool->m_askToSave = [] { CORVMessageBox::setCancelClicked(true); };
    trigger("batchAction");
    EXPECT_EQ(m_pTool->m_told.last(), "ask");
    EXPECT_FALSE(m_pBatchTool->m_bStatusAtChoice);
    EXPECT_FALSE(batch().isRunning());
}

TEST_F(BatchRunTest, QuittingAbortsTheBatch)
{
    m_script.m_nAnswer = CORVMessageBox::YesButton;
    m_pTool->m_during = [this] {
        if (++m_nTurns == 4) {
            m_pWindow->close();
        }
        m_pTool->m_bEnd = m_nTurns % 3 == 0;
    };
    choose({copy("one"), copy("two"), copy("three")});
    waitForEnd();
    EXPECT_TRUE(QTest::qWaitFor([this] { return !m_pWindow->isVisible(); }, 5000));
    EXPECT_EQ(outcomes(), (QStringList{"Unmixed", "Aborted", "Not begun"}));
}

TEST_F(BatchRunTest, AToolThatKnowsNoBatchHasNoEntry)
{
    EXPECT_TRUE(find<QAction>("batchAction")->isEnabled());
    m_pWindow.reset();
    makeWindowWithTool();
    m_pWindow->open(mouse());
    EXPECT_FALSE(find<QAction>("batchAction")->isEnabled());
}

} // namespace

#include "batch_run_test.moc"
