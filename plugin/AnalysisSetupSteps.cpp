// SPDX-License-Identifier: GPL-3.0-or-later
// From the choice of images to a run.
#include "plugin/AnalysisSetup.h"

#include "plugin/sequenceWindows.h"
#include "plugin/spectraForPairs.h"
#include "plugin/tabNames.h"

#include "engine/CORVSpumKyvo.h"
#include "engine/ResultView.h"
#include "host/CAutoProgressUpdate.h"
#include "host/CORVChildWindow.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVProcess.h"
#include "host/CORVSequenceWindow.h"
#include "host/CORVUtilityFns.h"
#include "services/basis/ImageExtent.h"
#include "spectra/SpUnmixSpectrumLibraryWnd.h"
#include "spectra/SpectrumPlotParams.h"
#include "spectra/logLine.h"
#include "windows/SpUnmixWizardWnd.h"
#include "windows/SpumKyvoConsoleWnd.h"

#include <QCursor>

#include <algorithm>
#include <exception>

namespace {

// What the engine reports has a place to go to, as in a run.
class StatusTarget
{
public:
    explicit StatusTarget(CORVSpumKyvo& engine) : m_pEngine(&engine) { engine.m_pProgress = &m_progress; }
    ~StatusTarget()
    {
        if (m_pEngine) {
            m_pEngine->m_pProgress = nullptr;
        }
    }
    StatusTarget(const StatusTarget&) = delete;
    StatusTarget& operator=(const StatusTarget&) = delete;

private:
    QPointer<CORVSpumKyvo> m_pEngine;
    CAutoProgressUpdate m_progress{QString()};
};

class WaitCursor
{
public:
    WaitCursor() { CORVUtilityFns::setCursor(QCursor(Qt::WaitCursor)); }
    ~WaitCursor() { CORVUtilityFns::restoreCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

// Takes ownership of the spectra in place of those of before.
void replaceSpectra(QList<SpectrumPlotParams*>& owned, const QList<SpectrumPlotParams*>& spectra)
{
    qDeleteAll(owned);
    owned = spectra;
}

} // namespace

void AnalysisSetup::prepareAnalysis(int nMode, bool bUsePreset)
{
    CORVSequenceWindow* pWindow = sequenceWindows::windowOf(m_engine);
    if (pWindow == nullptr) {
        return;
    }
    sequenceWindows::showFrame(pWindow);
    m_engine.resetAnalysis(nMode);
    m_answer.forget();
    for (const char* pTitle : {tabNames::composite, tabNames::console, tabNames::wizard}) {
        sequenceWindows::removeTab(pWindow, pTitle);
    }
    switch (nMode) {
    case RUNMODE_AUTOMATIC:
        prepareAutomatic();
        break;
    case RUNMODE_LIBRARY:
        prepareLibrary(bUsePreset);
        break;
    case RUNMODE_GUIDED:
        prepareDrawing(true, true);
        break;
    default:
        prepareDrawing(false, m_engine.m_eSeqKind != SEQKIND_TEMPORAL);
        break;
    }
}

void AnalysisSetup::prepareAutomatic()
{
    SpUnmixWizardWnd* pWizard = wizard();
    pWizard->m_nImageCount = m_engine.m_selectedKeyPairs.size();
    pWizard->setAnalysisType(m_engine.m_eSeqKind);
    pWizard->setImagingSubject(m_engine.m_strSubjectType);
    m_strOfferedSubject = pWizard->getImagingSubject();
    pWizard->setProbeNames(m_engine.m_probes);
    pWizard->setPhotoImage(m_engine.m_pPhoto);
    sequenceWindows::showTab(sequenceWindows::windowOf(m_engine), tabNames::wizard, pWizard, pWizard->m_pToolbarFrame);
}

Filling AnalysisSetup::showCube(bool bBackground)
{
    const WaitCursor cursor;
    bool bShown = false;
    m_bStopFilling = false;
    const Filling eFilling = fillCube(
        m_engine, m_nPatience,
        [this, &bShown] {
            bShown = true;
            Q_EMIT fillingBegins();
        },
        [this] { return !m_bStopFilling; });
    const bool bAborted = eFilling == Filling::Aborted;
    if (bAborted && !m_bStopFilling) {
        logLine(QStringLiteral("SpumKyvo: unmixing aborted by user."), CORVLOG_PROGRESS);
    }
    if (bShown) {
        Q_EMIT fillingEnds(bAborted);
    }
    if (eFilling != Filling::Done) {
        return eFilling;
    }
    ResultView& view = resultView();
    view.setImageCube(m_engine.m_selectedKeyPairs, m_engine.m_eAxis, m_engine.m_cube);
    view.setBackgroundMode(bBackground);
    return Filling::Done;
}

// Without an overview nothing happens, and nothing is said: the log has the reason.
void AnalysisSetup::prepareLibrary(bool bUsePreset)
{
    if (const Filling eFilling = showCube(false); eFilling != Filling::Done) {
        if (eFilling == Filling::Aborted) {
            backOut();
        }
        return;
    }
    const QPointer<CORVSpumKyvo> pEngine(&m_engine);
    QList<SpectrumPlotParams*> chosen;
    if (!bUsePreset && !askForSpectra(chosen)) {
        if (pEngine) {
            backOut();
        }
        return;
    }
    const QList<SpectrumPlotParams*> spectra =
        spectraForPairs(bUsePreset ? m_engine.m_presetSpectra : chosen, m_engine.m_selectedKeyPairs, m_engine.m_eAxis);
    qDeleteAll(chosen);
    resultView().setSpectra(spectra);
    replaceSpectra(m_engine.m_spectrumPlots, spectra);
    Q_EMIT m_engine.readyToRun();
}

// False too when the engine went while the user chose.
bool AnalysisSetup::askForSpectra(QList<SpectrumPlotParams*>& spectra)
{
    const QPointer<CORVSpumKyvo> pEngine(&m_engine);
    const QPointer<SpUnmixSpectrumLibraryWnd> pLibraries(
        new SpUnmixSpectrumLibraryWnd(CORVChildWindow::getActiveChildWnd()));
    pLibraries->m_pAppendChk->hide(); // there is nothing to append to
    pLibraries->setReferencePairs(m_engine.m_selectedKeyPairs, m_engine.m_eAxis);
    const bool bAccepted = pLibraries->exec() == QDialog::Accepted;
    if (pEngine && pLibraries && bAccepted) {
        spectra = pLibraries->selectedSpectra();
    }
    delete pLibraries;
    return pEngine && bAccepted;
}

void AnalysisSetup::prepareDrawing(bool bBackground, bool bWithProbes)
{
    if (const Filling eFilling = showCube(bBackground); eFilling != Filling::Done) {
        if (eFilling == Filling::Failed) {
            logLine(QStringLiteral("SpumKyvo: unable to create pseudo color image."), CORVLOG_ERROR);
        }
        backOut();
        return;
    }
    if (bWithProbes) {
        console()->setProbeNames(m_engine.m_probes);
    }
    m_engine.m_bResultReady = false;
    showConsole();
}

void AnalysisSetup::backOut()
{
    Q_EMIT m_engine.cancelRun();
}

void AnalysisSetup::takeWizardInput()
{
    if (!m_engine.m_pWizard) {
        return;
    }
    SpUnmixWizardWnd& wizard = *m_engine.m_pWizard;
    AnalysisInput& input = m_engine.m_analysisInput;
    const CILImage* pMask = wizard.getMaskImage();
    input.maskImage = withoutPadding(pMask != nullptr ? *pMask : CILImage(), m_engine);
    input.componentNames = wizard.getComponentNames();
    input.useConstraints = wizard.isUseConstraints();
    input.decayCorrection = wizard.m_bApplyDecayCorrection;
    input.halfLifeSeconds = wizard.m_dHalfLifeSeconds;
    input.isotope = wizard.m_strIsotope;
    // The wizard knows a few subjects. The sequence's own words stay unless the user has chosen another one.
    const QString strSubject = wizard.getImagingSubject();
    if (strSubject != m_strOfferedSubject) {
        m_strOfferedSubject = strSubject;
        m_engine.m_strSubjectType = strSubject;
    }
}

void AnalysisSetup::wizardFinished(int nResult)
{
    const QPointer<CORVSpumKyvo> pEngine(&m_engine);
    bool bShows = true;
    if (nResult == 0) {
        if (m_engine.m_pWizard) {
            m_engine.m_pWizard->hide();
        }
        sequenceWindows::removeTab(sequenceWindows::windowOf(m_engine), tabNames::wizard);
        backOut();
    } else {
        bShows = startAutomaticRun();
    }
    if (pEngine && bShows) {
        showOverview();
    }
    if (pEngine) {
        Q_EMIT wizardDone();
    }
}

bool AnalysisSetup::startAutomaticRun()
{
    const QPointer<CORVSpumKyvo> pEngine(&m_engine);
    const StatusTarget target(m_engine);
    if (!setUpImages()) {
        return false;
    }
    if (m_engine.m_pWizard && !takeMaskAndComponents()) {
        return false;
    }
    // The whole run takes place in here.
    Q_EMIT m_engine.readyToRun();
    if (pEngine && m_engine.m_pConsole) {
        m_engine.m_pConsole->m_bResultsExist = true;
    }
    return true;
}

// What the run takes from the wizard is there before the cube is filled: the correction for decay is done to it.
bool AnalysisSetup::setUpImages()
{
    if (CORVProcess::isProcessInProgress(LONGPROCESS_ACQUISITION)) {
        m_engine.reportStatus(QStringLiteral("Unable to proceed analysis during acquistion."), CORVLOG_PROGRESS);
        return false;
    }
    CORVSequenceWindow* pWindow = sequenceWindows::windowOf(m_engine);
    const auto showWizardAgain = [this, pWindow] {
        if (m_engine.m_pWizard) {
            m_engine.m_pWizard->show();
            sequenceWindows::showTab(pWindow, tabNames::wizard, m_engine.m_pWizard,
                                     m_engine.m_pWizard->m_pToolbarFrame);
        }
    };
    if (!m_engine.createImageList()) {
        m_engine.reportStatus(QStringLiteral("Unable to createImageList."), CORVLOG_PROGRESS);
        showWizardAgain();
        return false;
    }
    if (!m_engine.setBinningAndSize(m_engine.m_bAutoBinning)) {
        m_engine.reportStatus(QStringLiteral("Unable to setBinningAndSize."), CORVLOG_PROGRESS);
        showWizardAgain();
        CORVMessageBox::warning(nullptr, CORVUtilityFns::getAppName(),
                                QStringLiteral("Unable to set the binning factor and size for the image cube."));
        return false;
    }
    takeWizardInput();
    if (m_engine.m_pWizard) {
        m_engine.m_pWizard->hide();
    }
    const Filling eFilling = showCube(false);
    pWindow = sequenceWindows::windowOf(m_engine); // closed meanwhile, it is gone
    sequenceWindows::removeTab(pWindow, tabNames::wizard);
    if (eFilling == Filling::Aborted) {
        backOut();
        return false;
    }
    // Where it failed the run goes on without an overview.
    showConsole();
    return true;
}

bool AnalysisSetup::takeMaskAndComponents()
{
    if (!m_engine.takeDataMask()) {
        return false; // told
    }
    m_engine.takeComponents();
    return true;
}

// After a cancel, an abort or a failure there may be no cube, or half of one: the console then keeps what it shows.
void AnalysisSetup::showOverview()
{
    if (!m_engine.m_pWizard) {
        return;
    }
    try {
        XTNT::Matrix<double> weights;
        m_engine.computeRGBWeights(weights);
        m_engine.m_cube.buildRGBImage(weights);
    } catch (const std::exception&) {
        logLine(QStringLiteral("SpumKyvo: failed to create pseudo color image!"), CORVLOG_WARNING);
        return;
    }
    if (!m_engine.m_cube.m_rgbImage.isNull()) {
        console()->setPseudoColorImage(m_engine.m_cube.m_rgbImage);
    }
}

void AnalysisSetup::consoleFinished(int nResult)
{
    if (nResult == 0) {
        sequenceWindows::removeTab(sequenceWindows::windowOf(m_engine), tabNames::console);
        m_engine.m_bResultReady = false;
        backOut();
        return;
    }
    SpumKyvoConsoleWnd* pConsole = console();
    const QList<SpectrumPlotParams*> spectra = pConsole->getSelectedSpectra();
    const bool bNamed = std::none_of(spectra.begin(), spectra.end(), [](const SpectrumPlotParams* pSpectrum) {
        return pSpectrum->settings.name.isEmpty();
    });
    if (!bNamed) {
        qDeleteAll(spectra);
        CORVMessageBox::warning(pConsole, CORVUtilityFns::getAppName(),
                                QStringLiteral("Please enter a name for each unmixing component"));
        return;
    }
    replaceSpectra(m_engine.m_spectrumPlots, spectra);
    if (pConsole->m_bBackgroundMode) {
        pConsole->setBackgroundMode(false);
        pConsole->setSpectra(m_engine.m_spectrumPlots);
    }
    if (m_engine.m_bResultReady) {
        m_engine.m_eMode = RUNMODE_MANUAL;
    }
    Q_EMIT m_engine.readyToRun();
}
