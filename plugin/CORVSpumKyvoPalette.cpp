// SPDX-License-Identifier: GPL-3.0-or-later
// The palette and the sequences that the host tells it of.
#include "plugin/CORVSpumKyvoPalette.h"

#include "plugin/AnalysisSetup.h"
#include "plugin/ComboResultsList.h"
#include "plugin/JobThread.h"
#include "plugin/selectionTable.h"
#include "plugin/sequenceWindows.h"
#include "plugin/tabNames.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVDataset.h"
#include "host/CORVResultsTabControl.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVUtilityFns.h"
#include "spectra/SpectrumAxis.h"
#include "spectra/SpectrumPlotParams.h"
#include "storage/SavedResults.h"
#include "storage/SavedResultsOwner.h"
#include "storage/resultRegions.h"

#include <QEvent>
#include <QHeaderView>
#include <QMenu>
#include <QScopedValueRollback>
#include <QSignalBlocker>

#include <algorithm>

namespace {

// Whether the host offers the tool for the sequence at all.
bool isOffered(const CORVSequenceDataset& sequence)
{
    return sequence.isSpectrallyAnalysable || sequence.isKyvoSequence();
}

// Whether the engine holds what a user would miss: a result, or an analysis that is being set up.
bool holdsAnalysis(const CORVSpumKyvo& engine)
{
    const CORVSequenceWindow* pWindow = sequenceWindows::windowOf(engine);
    return engine.m_concentrations.num_rows() > 0 || !engine.m_cube.m_data.empty() ||
           (pWindow != nullptr && pWindow->isTabPresent(QLatin1String(tabNames::wizard)));
}

// Reads the sequence anew, which selects every image and takes the sequence's unit. The selection and the unit of an
// analysis come back, as far as all images of it are still there: its result refers to them.
bool inspect(CORVSpumKyvo& engine)
{
    QList<KeyPair> kept = holdsAnalysis(engine) ? engine.m_selectedKeyPairs : QList<KeyPair>();
    const int eUnit = engine.m_eUnit;
    if (!engine.buildDatasetInfo()) {
        // A result can still be saved.
        engine.m_selectedKeyPairs = kept;
        engine.m_eUnit = eUnit;
        return false;
    }
    const bool bAllThere = std::all_of(kept.cbegin(), kept.cend(),
                                       [&engine](const KeyPair& pair) { return engine.m_allKeyPairs.contains(pair); });
    if (!kept.isEmpty() && bAllThere) {
        engine.applySelection(kept);
        engine.m_eUnit = eUnit;
    }
    return true;
}

} // namespace

CORVSpumKyvoPalette::CORVSpumKyvoPalette(QWidget* pParent) : QWidget(pParent)
{
    setupUi(this);
    CORVSpumKyvoPalette::initPalette();
}

CORVSpumKyvoPalette::~CORVSpumKyvoPalette()
{
    m_pEngine = nullptr;
    qDeleteAll(m_batchSpectra);
}

void CORVSpumKyvoPalette::initPalette()
{
    m_pResultsTab =
        std::make_unique<CORVResultsTabControl>(this, m_pSavedResultsCB, m_pDeleteButton, m_pLoadButton, m_pSaveButton);
    m_pResultsTab->setTags(QStringLiteral("SPUM_"), QStringLiteral("SPUM"));
    m_pResultsTab->setSettingFileName(QStringLiteral("XML/SPUM.txt"));
    m_pResultsList = std::make_unique<ComboResultsList>(*m_pResultsTab, *m_pSavedResultsCB);
    m_pResultsOwner = makeResultsOwner();
    m_pResults = std::make_unique<SavedResults>(*m_pResultsList, *m_pResultsOwner);
    m_pSpectrumAxisCMB->setEnabled(false);
    m_pUnmixSpectraButton->setEnabled(false);
    // As much as their texts need: the style's own least width for a button would make the panel a third wider.
    for (QPushButton* pButton : {m_pDeleteButton, m_pLoadButton, m_pSaveButton}) {
        const int nMargin = 2 * style()->pixelMetric(QStyle::PM_ButtonMargin, nullptr, pButton);
        pButton->setMinimumWidth(fontMetrics().horizontalAdvance(pButton->text()) + nMargin);
    }
    makeResultsMenu();
    connectControls();
}

void CORVSpumKyvoPalette::connectControls()
{
    connect(m_pUnmixSpectraButton, &QPushButton::clicked, this, &CORVSpumKyvoPalette::onClickUnmixSpectra);
    connect(m_pLoadButton, &QPushButton::clicked, this, &CORVSpumKyvoPalette::onClickLoadResults);
    connect(m_pDeleteButton, &QPushButton::clicked, this, &CORVSpumKyvoPalette::onClickDeleteResults);
    connect(m_pSaveButton, &QPushButton::clicked, this, &CORVSpumKyvoPalette::onClickSaveResults);
    connect(m_pReportButton, &QPushButton::clicked, this, &CORVSpumKyvoPalette::onClickWriteReport);
    connect(m_pRefineButton, &QPushButton::clicked, this, &CORVSpumKyvoPalette::onClickRefine);
    connect(tabWidget1, &QTabWidget::currentChanged, this, &CORVSpumKyvoPalette::onTabChange);
    connect(m_pSavedResultsCB, &QComboBox::editTextChanged, this, &CORVSpumKyvoPalette::onChangeResultsName);
    connect(m_pWaveLengthTable->horizontalHeader(), &QHeaderView::sectionClicked, this,
            &CORVSpumKyvoPalette::onClickHHeader);
    connect(m_pWaveLengthTable->verticalHeader(), &QHeaderView::sectionClicked, this,
            &CORVSpumKyvoPalette::onClickVHeader);
    connect(m_pSpectrumAxisCMB, qOverload<int>(&QComboBox::currentIndexChanged), this,
            &CORVSpumKyvoPalette::onAxisTypeChanged);
    connect(m_pSPUnResultsLV, &QTreeWidget::customContextMenuRequested, this, &CORVSpumKyvoPalette::onMouseClicked);
}

void CORVSpumKyvoPalette::changeEvent(QEvent* pEvent)
{
    QWidget::changeEvent(pEvent);
    if (pEvent->type() == QEvent::LanguageChange) {
        languageChange();
    }
}

// What is filled at run time keeps what it shows.
void CORVSpumKyvoPalette::languageChange()
{
    const QSignalBlocker blocker(m_pSpectrumAxisCMB);
    const int nType = m_pSpectrumAxisCMB->currentIndex();
    retranslateUi(this);
    updateRefineButton();
    if (m_pEngine != nullptr) {
        fillAxisTypes();
        m_pSpectrumAxisCMB->setCurrentIndex(nType);
    }
}

void CORVSpumKyvoPalette::onDatasetChanged(CORVDataset* pDataset)
{
    if (pDataset == nullptr) {
        return;
    }
    if (pDataset->belongsToSequence()) {
        onSequenceChanged(pDataset->sequence());
    } else {
        m_bSequenceValid = false;
    }
}

void CORVSpumKyvoPalette::onSequenceChanged(CORVSequenceDataset* pSequenceDataset)
{
    if (pSequenceDataset != nullptr) {
        updateProperties(pSequenceDataset);
    }
}

void CORVSpumKyvoPalette::setSequenceValidity(bool bValid)
{
    m_bSequenceValid = bValid;
}

bool CORVSpumKyvoPalette::getSequenceValidity()
{
    const CORVSequenceDataset* pSequence =
        m_pEngine != nullptr ? CORVSequenceDataset::getSequenceDataset(m_pEngine->m_strSeqId) : nullptr;
    if (pSequence == nullptr || !isOffered(*pSequence)) {
        return false;
    }
    return m_bPropertiesSeen && m_bSequenceValid;
}

void CORVSpumKyvoPalette::updateProperties(CORVSequenceDataset* pSeqDataset)
{
    if (pSeqDataset == nullptr) {
        return;
    }
    m_bPropertiesSeen = true;
    if (!isOffered(*pSeqDataset)) {
        m_bSequenceValid = false;
        return;
    }
    // A question on the way may let the host tell of another sequence.
    if (m_pRunning != nullptr || m_bUpdating || (m_pEngine != nullptr && m_pEngine->isRunning())) {
        m_bSequenceValid = false;
        m_pWaiting = pSeqDataset;
        return;
    }
    {
        const QScopedValueRollback<bool> updating(m_bUpdating, true);
        showSequence(*pSeqDataset);
    }
    finishWaiting();
}

void CORVSpumKyvoPalette::showSequence(CORVSequenceDataset& sequence)
{
    const QPointer<CORVSequenceDataset> pSequence(&sequence);
    const bool bSwitched = m_pEngine == nullptr || m_pEngine->m_strSeqId != sequence.getSequenceID();
    if (!makeEngineCurrent(sequence)) {
        return;
    }
    const bool bExcluded = (sequence.isSLASequence() || sequence.isCTSequence(false)) && sequence.isSecondKind;
    if (!inspect(*m_pEngine) || bExcluded) {
        dropSequence(sequence);
        return;
    }
    m_selection = m_pEngine->m_selectedKeyPairs;
    m_eAxis = m_pEngine->m_eAxis;
    fillAxisTypes();
    m_bSequenceValid = true;
    initializeUI();
    updateUI();
    m_pResults->m_bBatchMode = CORVUtilityFns::getSpumBatchStatus();
    // Whoever comes back to a sequence finds its result as it was.
    if (bSwitched && m_pEngine->m_concentrations.num_rows() > 0) {
        fillResultsTree();
    }
    if (m_pResults->m_bBatchMode && m_pBatchSequence != &sequence) {
        processBatchSequence(sequence);
    }
}

// False when the sequence went while the user was asked about the result of the one before.
bool CORVSpumKyvoPalette::makeEngineCurrent(CORVSequenceDataset& sequence)
{
    const QPointer<CORVSequenceDataset> pSequence(&sequence);
    const QString strId = sequence.getSequenceID();
    if (m_pEngine != nullptr && m_pEngine->m_strSeqId != strId) {
        m_pEngine->m_bSkipSavePrompt = false;
        askToSaveResults(false);
        if (!pSequence) {
            return false;
        }
        clearResultsTree();
        m_pResultsTab->m_bResultModified = false;
    }
    m_pResultsList->updateSavedResultsForSelSeqId(sequence.getSequenceName());
    if (m_pEngine != nullptr && m_pEngine->m_strSeqId == strId) {
        return true;
    }
    CORVSpumKyvo* pKnown = m_engines.value(strId);
    setCurrentEngine(pKnown != nullptr ? pKnown : makeEngine(strId));
    if (pKnown == nullptr) {
        setInitialTab();
    }
    return true;
}

CORVSpumKyvo* CORVSpumKyvoPalette::makeEngine(const QString& strId)
{
    auto pEngine = std::make_unique<CORVSpumKyvo>(strId);
    auto pSetup = std::make_unique<AnalysisSetup>(*pEngine, m_nPatience);
    connect(pSetup.get(), &AnalysisSetup::askToSaveExistingResult, this,
            &CORVSpumKyvoPalette::askToSaveExistingResults);
    connect(pSetup.get(), &AnalysisSetup::fillingBegins, this,
            [this, pEngine = pEngine.get()] { onFillingBegins(*pEngine); });
    connect(pSetup.get(), &AnalysisSetup::fillingEnds, this,
            [this, pEngine = pEngine.get()](bool bAborted) { onFillingEnds(*pEngine, bAborted); });
    connect(pSetup.get(), &AnalysisSetup::wizardDone, this, &CORVSpumKyvoPalette::onAnalysisLeft);
    pEngine->setWindows(std::move(pSetup));
    connect(pEngine.get(), &CORVSpumKyvo::readyToRun, this, &CORVSpumKyvoPalette::onRunUnmixing);
    connect(pEngine.get(), &CORVSpumKyvo::cancelRun, this, &CORVSpumKyvoPalette::onCancelUnmixing);
    connect(pEngine.get(), &CORVSpumKyvo::pcaRun, this, &CORVSpumKyvoPalette::onRunPCA);
    // By text: pointers to members would want to see the host's structure.
    connect(pEngine.get(), SIGNAL(loadSpumResult(QString, bool, ESTATUS*, downloaded_save_data*)), this,
            SLOT(onSignalLoadFile(QString, bool, ESTATUS*, downloaded_save_data*)));
    connect(pEngine.get(), SIGNAL(loadSpumResult(QString, bool, ESTATUS*)), this,
            SLOT(onSignalLoadFile(QString, bool, ESTATUS*)));
    connect(pEngine.get(), &CORVSpumKyvo::createSpumKyvoSequence, this,
            &CORVSpumKyvoPalette::onSignalcreateSpumKyvoSequence);
    connect(pEngine.get(), &CORVSpumKyvo::printPixmap, this, &CORVSpumKyvoPalette::onSignalprintPixmap);
    m_engines.insert(strId, pEngine.get());
    return pEngine.release();
}

void CORVSpumKyvoPalette::setCurrentEngine(CORVSpumKyvo* pEngine)
{
    m_pEngine = pEngine;
    m_pResults->setEngine(pEngine);
    m_pUnmixSpectraButton->setEnabled(pEngine != nullptr);
    updateRefineButton();
}

// The user is told nothing, the host hides the palette; but a result would go with the engine.
void CORVSpumKyvoPalette::dropSequence(CORVSequenceDataset& sequence)
{
    const QPointer<CORVSequenceDataset> pSequence(&sequence);
    const QString strId = sequence.getSequenceID();
    askToSaveResults(false);
    if (!pSequence) {
        return;
    }
    m_pResultsTab->m_bResultModified = false;
    setCurrentEngine(nullptr);
    m_bSequenceValid = false;
    delete m_engines.take(strId);
    sequence.isSpectrallyAnalysable = false;
    Q_EMIT sequence.sequencePropertyChanged(&sequence);
}

void CORVSpumKyvoPalette::fillAxisTypes()
{
    const QSignalBlocker blocker(m_pSpectrumAxisCMB);
    m_pSpectrumAxisCMB->clear();
    m_pSpectrumAxisCMB->addItems(selectionTable::typeTexts(m_eAxis));
    m_pSpectrumAxisCMB->setEnabled(m_eAxis == SPECTRUMAXIS_TIME);
}

void CORVSpumKyvoPalette::finishWaiting()
{
    const QPointer<CORVSequenceDataset> pWaiting = m_pWaiting;
    m_pWaiting = nullptr;
    if (pWaiting) {
        updateProperties(pWaiting);
        Q_EMIT updateValidity(this, getSequenceValidity());
    }
}

void CORVSpumKyvoPalette::onCloseSequenceDataset(CORVSequenceDataset* pSeqDataset)
{
    const QString strId = pSeqDataset != nullptr ? pSeqDataset->getSequenceID() : QString();
    CORVSpumKyvo* pEngine = m_engines.value(strId);
    if (pEngine == nullptr) {
        return;
    }
    if (pEngine == m_pRunning) {
        // Its run is on the stack: it ends now, and the engine goes when the stack is clear.
        pEngine->abortRun();
        pEngine->wait();
        if (m_pJob != nullptr) {
            m_pJob->stop();
            m_pJob->wait();
        }
        if (auto* pSetup = dynamic_cast<AnalysisSetup*>(pEngine->windows())) {
            pSetup->stopFilling();
        }
        m_bRunningClosed = true;
        if (m_pEngine == pEngine) {
            setCurrentEngine(nullptr);
        }
        m_engines.remove(strId);
        return;
    }
    if (m_pEngine != nullptr && m_pEngine->m_strSeqId.compare(strId, Qt::CaseInsensitive) == 0) {
        askToSaveResults(false);
        m_pResultsTab->m_bResultModified = false;
        m_pResultsList->updateSavedResultsForSelSeqId(strId);
        m_pResultsTab->setStatusOfButtons(true, true, false);
    }
    if (m_pEngine == pEngine) {
        setCurrentEngine(nullptr);
        m_bSequenceValid = false;
    }
    delete m_engines.take(strId);
}

void CORVSpumKyvoPalette::saveROIsFromClosingResultDataset(CORVDataset* pDataset)
{
    if (pDataset == nullptr || !pDataset->isSequenceWindowMember) {
        return;
    }
    const auto closing = closingRegions(pDataset);
    CORVSpumKyvo* pEngine = closing ? m_engines.value(closing->sequenceId) : nullptr;
    if (pEngine != nullptr) {
        replaceRegions(pEngine->m_roiResults, closing->record);
    }
}

void CORVSpumKyvoPalette::setInitialTab()
{
    tabWidget1->setCurrentIndex(0);
}

void CORVSpumKyvoPalette::setBinningChanged(bool bValue)
{
    m_bBinningChanged = bValue;
}

void CORVSpumKyvoPalette::advanced_mode_options(bool /*opt*/) {}

void CORVSpumKyvoPalette::onClickPrintButtons() {}

void CORVSpumKyvoPalette::onCancelUnmixing() {}

void CORVSpumKyvoPalette::onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus,
                                           downloaded_save_data* pDownloadData)
{
    Q_EMIT loadSpumResult(strFilePath, bShow, pStatus, pDownloadData);
}

void CORVSpumKyvoPalette::onSignalLoadFile(QString strFilePath, bool bShow, ESTATUS* pStatus)
{
    Q_EMIT loadSpumResult(strFilePath, bShow, pStatus);
}

void CORVSpumKyvoPalette::onSignalcreateSpumKyvoSequence(QStringList paths, bool bShow)
{
    Q_EMIT createSpumKyvoSequence(paths, bShow);
}

void CORVSpumKyvoPalette::onSignalprintPixmap(QPixmap pixmap)
{
    Q_EMIT printPixmap(pixmap);
}
