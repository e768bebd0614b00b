// SPDX-License-Identifier: GPL-3.0-or-later
// Runs: what surrounds them, how they end, and what is found by who comes back to a sequence.
#include "WorkArea.h"

#include "faults/faults.h"

#include "platform/orvutils/ProcessControl.h"
#include "plugin/warningsOfRun.h"
#include "services/results/ComponentNumber.h"
#include "services/results/keptWarnings.h"
#include "windows/CORVDistributionView.h"

#include <QFile>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <algorithm>
#include <random>

using namespace workarea;

namespace {

using RunsTest = WorkAreaTest;

TEST_F(RunsTest, ComingBackToASequenceFindsTheAnalysisAsItWas)
{
    auto& first = open();
    box(5, 0)->setChecked(false);
    unmixAutomatically();
    const std::vector<double> maps = concentrations();
    const int eUnit = engine().m_eUnit;
    const QStringList items = resultItems();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    open(otherPlan());
    EXPECT_EQ(ticked(), 4);
    EXPECT_TRUE(resultItems().isEmpty());
    m_palette->onSequenceChanged(&first.sequence());
    EXPECT_EQ(ticked(), 5);
    EXPECT_FALSE(box(5, 0)->isChecked());
    EXPECT_EQ(engine().m_selectedKeyPairs.size(), 5);
    EXPECT_EQ(engine().m_eUnit, eUnit);
    EXPECT_EQ(resultItems(), items);
    EXPECT_EQ(console().distributionView()->getImageNumber(), 3);
    engine().onClickDrawingFinished(1);
    EXPECT_FALSE(engine().hasError());
    EXPECT_EQ(complaints(), "");
    EXPECT_EQ(concentrations().size(), maps.size());
}

TEST_F(RunsTest, WhatIsToBeSaidAgainstAResultStandsOnThePageOfResults)
{
    auto& opened = open();
    unmixAutomatically();
    const int told = warningsAmong(engine().m_properties).size();
    EXPECT_EQ(resultItems().size(), engine().m_properties.size());
    // Two spectra that are the same: the list is made anew.
    auto& spectra = engine().m_spectra;
    std::copy(spectra[0], spectra[0] + spectra.num_cols(), spectra[1]);
    keepWarnings(warningsOfRun(engine(), opened.sequence()), engine());
    m_palette->fillResultsTree();
    EXPECT_TRUE(codesOf(warningsAmong(engine().m_properties)).contains("spectra-alike"));
    EXPECT_GE(warningsAmong(engine().m_properties).size(), told > 0 ? 1 : told + 1);
    EXPECT_EQ(resultItems().size(), engine().m_properties.size());
    EXPECT_EQ(m_palette->m_pSPUnResultsLV->findItems("can hardly be told apart", Qt::MatchContains, 1).size(), 1);
}

TEST_F(RunsTest, ASelectionWhoseImagesAreGoneDoesNotComeBack)
{
    auto& opened = open();
    unmixAutomatically();
    engine().m_selectedKeyPairs.first().second = "999";
    m_palette->onSequenceChanged(&opened.sequence());
    EXPECT_EQ(engine().m_selectedKeyPairs, engine().m_allKeyPairs);
}

TEST_F(RunsTest, AnOpenWizardKeepsItsSelectionOverAnotherSequence)
{
    auto& first = open();
    box(0, 0)->setChecked(false);
    start("Automatic");
    open(otherPlan());
    m_palette->onSequenceChanged(&first.sequence());
    EXPECT_EQ(ticked(), 5);
    run();
    EXPECT_EQ(engine().m_spectra.num_cols(), 5);
}

TEST_F(RunsTest, AnAnnouncementDuringARunLeavesTheEngineInPlace)
{
    open();
    auto& second = open(otherPlan());
    m_palette->onSequenceChanged(&m_opened.front()->sequence());
    bool bValidMeanwhile = true;
    QString strCurrent;
    start("Automatic");
    QObject::connect(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows, m_palette.get(), [&](bool bBack) {
        if (!bBack) {
            m_palette->onSequenceChanged(&second.sequence());
            bValidMeanwhile = m_palette->getSequenceValidity();
            strCurrent = engine().m_strSeqId;
        }
    });
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    run();
    EXPECT_FALSE(bValidMeanwhile);
    EXPECT_EQ(strCurrent, "seq-A");
    // What was announced is current once the run is over.
    EXPECT_EQ(engine().m_strSeqId, "seq-B");
    EXPECT_TRUE(m_palette->getSequenceValidity());
}

TEST_F(RunsTest, TheHostMayAnnounceTheSequenceAgainAfterTheRun)
{
    auto& opened = open();
    QObject::connect(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows, m_palette.get(), [&](bool bBack) {
        if (bBack) {
            m_palette->onSequenceChanged(&opened.sequence());
        }
    });
    box(0, 0)->setChecked(false);
    unmixAutomatically();
    EXPECT_EQ(ticked(), 5);
    EXPECT_FALSE(resultItems().isEmpty());
    EXPECT_TRUE(m_palette->getSequenceValidity());
    EXPECT_EQ(m_answers.asked.size(), 0);
}

TEST_F(RunsTest, AbortsAtRandomMomentsLeaveAWorkingPalette)
{
    open();
    unmixAutomatically();
    const std::vector<double> fresh = concentrations();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    std::mt19937 random(7);
    int nAborted = 0;
    for (int i = 0; i < 20; ++i) {
        start("Automatic");
        const int nDelay = static_cast<int>(random() % 12);
        QTimer::singleShot(nDelay, m_palette.get(), [] {
            if (orv::processState().m_nRunning > 0) {
                orv::requestAbort();
            }
        });
        run();
        EXPECT_TRUE(m_palette->isEnabled());
        EXPECT_TRUE(m_palette->getSequenceValidity());
        EXPECT_EQ(engine().m_pProgress, nullptr);
        EXPECT_FALSE(engine().isRunning());
        EXPECT_EQ(processes(), 0);
        nAborted += m_log.count("SpumKyvo: unmixing aborted by user.", 16) > nAborted ? 1 : 0;
    }
    QTest::qWait(20);
    start("Automatic");
    run();
    EXPECT_EQ(concentrations(), fresh);
    RecordProperty("aborted", nAborted);
}

TEST_F(RunsTest, ASequenceThatClosesDuringItsRunTakesTheEngineAlong)
{
    auto& opened = open();
    const QPointer<CORVSpumKyvo> pEngine(&engine());
    QObject::connect(m_palette.get(), &CORVSpumKyvoPalette::restoreWindows, m_palette.get(), [&](bool bBack) {
        if (!bBack) {
            QTimer::singleShot(0, m_palette.get(), [&] { close(opened); });
        }
    });
    unmixAutomatically();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTest::qWait(1);
    EXPECT_TRUE(pEngine.isNull());
    EXPECT_EQ(m_palette->engine(), nullptr);
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_EQ(processes(), 0);
}

TEST_F(RunsTest, APCAShowsItsWindowAndKeepsTheEigenvalues)
{
    open();
    start("Automatic");
    QString strShown;
    QTimer::singleShot(0, m_palette.get(), [&] {
        auto* pTimer = new QTimer(m_palette.get());
        QObject::connect(pTimer, &QTimer::timeout, m_palette.get(), [&strShown, pTimer] {
            if (auto* pDialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                strShown = pDialog->windowTitle();
                pDialog->accept();
                pTimer->stop();
            }
        });
        pTimer->start(5);
    });
    Q_EMIT wizard().runPCA();
    EXPECT_EQ(strShown, "Principle Component Analysis");
    ASSERT_GT(engine().m_pcaResult.size(), 0);
    EXPECT_LT(engine().m_pcaResult[engine().m_pcaResult.size() - 1], engine().m_pcaResult[0]);
    const ComponentNumber number = ComponentNumber::of(engine().m_cube.m_data);
    EXPECT_EQ(wizard().findChild<QPushButton*>("m_pPCABtn")->toolTip(),
              number.likely > 0 ? "Components above the noise: " + number.text() : QString());
    EXPECT_FALSE(engine().m_bRunPCA);
    EXPECT_TRUE(m_palette->isEnabled());
    EXPECT_FALSE(wizard().isHidden());
}

// Two sources in noise, of enough pixels for a block of memory that can be refused.
TEST_F(RunsTest, TheTipTellsTheNumberOfComponentsOrTheLogThatThereIsNone)
{
    open();
    start("Automatic");
    constexpr long long rows = 30000;
    std::mt19937 random(3);
    std::normal_distribution<double> noise(0.0, 1.0);
    std::uniform_real_distribution<double> amount(10.0, 100.0);
    auto& data = engine().m_cube.m_data;
    data = XTNT::Matrix<double>(rows, 6);
    for (long long i = 0; i < rows; ++i) {
        const double dOne = amount(random);
        const double dOther = amount(random);
        for (long long j = 0; j < 6; ++j) {
            data[i][j] = dOne * static_cast<double>(j + 1) + dOther * static_cast<double>(6 - j) + noise(random);
        }
    }
    tellNumberOfComponents(engine());
    const auto* pButton = wizard().findChild<QPushButton*>("m_pPCABtn");
    EXPECT_EQ(pButton->toolTip(), "Components above the noise: 2");
    ASSERT_TRUE(armFaults("memory@1+=ENOMEM", nullptr, nullptr));
    EXPECT_NO_THROW(tellNumberOfComponents(engine()));
    armFaults(nullptr, nullptr, nullptr);
// Under a sanitizer the memory is the sanitizer's.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_EQ(pButton->toolTip(), "");
    EXPECT_TRUE(m_log.mentions("SpumKyvo: the number of components could not be estimated"));
#endif
}

TEST_F(RunsTest, AUserWhoBacksOutOfTheQuestionStartsNothing)
{
    open();
    unmixAutomatically();
    m_answers.answer = CORVMessageBox::CancelButton;
    m_answers.asked.clear();
    choose("Automatic");
    m_palette->onClickUnmixSpectra();
    EXPECT_EQ(m_answers.asked.size(), 1);
    EXPECT_TRUE(wizard().isHidden());
    EXPECT_FALSE(CORVMessageBox::getCancelClicked());
    EXPECT_FALSE(resultItems().isEmpty());
    EXPECT_EQ(engine().m_concentrations.num_rows(), 2);
}

// Pages of this process that are in memory.
long residentPages()
{
    QFile file("/proc/self/statm");
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLong() : 0;
}

TEST_F(RunsTest, ThirtyAnalysesInOneProcess)
{
    open();
    unmixAutomatically();
    const std::vector<double> first = concentrations();
    m_answers.answer = CORVMessageBox::NoButtonAnswer;
    long nAfterTheThird = 0;
    for (int i = 2; i <= 30; ++i) {
        start("Automatic");
        run();
        ASSERT_EQ(concentrations(), first) << "analysis " << i;
        nAfterTheThird = i == 3 ? residentPages() : nAfterTheThird;
    }
    EXPECT_EQ(complaints(), "");
    EXPECT_GT(nAfterTheThird, 0);
    EXPECT_LT(residentPages(), nAfterTheThird + nAfterTheThird / 10);
}

} // namespace
