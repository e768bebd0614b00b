// SPDX-License-Identifier: GPL-3.0-or-later
// The windows of an engine: made, connected, shown in tabs, and what they are asked for besides an analysis.
#include "plugin/AnalysisSetup.h"

#include "plugin/ConsoleResultView.h"
#include "plugin/sequenceWindows.h"
#include "plugin/tabNames.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVChildWindow.h"
#include "host/CORVDataset.h"
#include "host/CORVImageWindow.h"
#include "host/CORVMdiSubWindow.h"
#include "host/CORVPreference.h"
#include "host/CORVPreferenceSignals.h"
#include "host/CORVSequenceDataset.h"
#include "host/CORVSequenceWindow.h"
#include "storage/openUnmixedTile.h"
#include "windows/CORVDistributionView.h"
#include "windows/SpUnmixCompositeWnd.h"
#include "windows/SpUnmixWizardWnd.h"
#include "windows/SpumKyvoConsoleWnd.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>
#include <QToolButton>

namespace {

template <class Window>
void deleteWindow(QPointer<Window>& pWindow)
{
    delete pWindow.data();
}

// The window becomes the tab of that title, and hears which tab is the current one.
template <class Window>
void showAsTab(CORVSequenceWindow& sequenceWindow, const char* pTitle, Window& window, QWidget* pToolBar)
{
    QObject::connect(&sequenceWindow, &CORVSequenceWindow::updatePluginPalette, &window, &Window::onTabSelected,
                     Qt::UniqueConnection);
    sequenceWindows::showTab(&sequenceWindow, pTitle, &window, pToolBar);
}

} // namespace

AnalysisSetup::AnalysisSetup(CORVSpumKyvo& engine, int nPatience)
    : m_engine(engine), m_pView(std::make_unique<ConsoleResultView>(engine, *this, [this] { showConsole(); })),
      m_answer(engine), m_nPatience(nPatience)
{
}

AnalysisSetup::~AnalysisSetup() = default;

ResultView& AnalysisSetup::resultView()
{
    return *m_pView;
}

void AnalysisSetup::deleteWindows()
{
    deleteWindow(m_engine.m_pWizard);
    deleteWindow(m_engine.m_pComposite);
    deleteWindow(m_engine.m_pConsole);
}

SpUnmixWizardWnd* AnalysisSetup::wizard()
{
    if (!m_engine.m_pWizard) {
        auto* pWizard = new SpUnmixWizardWnd(CORVChildWindow::getActiveChildWnd());
        m_engine.m_pWizard = pWizard;
        connect(pWizard, &QDialog::finished, &m_engine, &CORVSpumKyvo::onClickUnmixWizardFinished);
        connect(pWizard, &SpUnmixWizardWnd::runPCA, &m_engine, &CORVSpumKyvo::onRunPCA);
        pWizard->setSequenceID(m_engine.m_strSeqId);
    }
    return m_engine.m_pWizard;
}

SpumKyvoConsoleWnd* AnalysisSetup::console()
{
    if (!m_engine.m_pConsole) {
        auto* pConsole = new SpumKyvoConsoleWnd(CORVChildWindow::getActiveChildWnd());
        m_engine.m_pConsole = pConsole;
        connectConsole(*pConsole);
        pConsole->setSequenceID(m_engine.m_strSeqId);
    }
    return m_engine.m_pConsole;
}

void AnalysisSetup::connectConsole(SpumKyvoConsoleWnd& console)
{
    connect(&console, &SpumKyvoConsoleWnd::individualScaleSignal, &m_engine, &CORVSpumKyvo::onAutoScaleClicked);
    connect(console.distributionView(), &CORVDistributionView::imageDoubleClickedSignal, &m_engine,
            &CORVSpumKyvo::onImageDoubleClicked);
    connect(&console, &QDialog::finished, &m_engine, &CORVSpumKyvo::onClickDrawingFinished);
    connect(console.m_pExportAsSequence, &QToolButton::clicked, &m_engine, &CORVSpumKyvo::onClickExportAsSequence);
    connect(CORVPreference::getSignalHandler(), &CORVPreferenceSignals::updatePreferenceSetting, &m_engine,
            &CORVSpumKyvo::onSignalUpdatePreference, Qt::UniqueConnection);
    connect(console.m_pPrintButton, &QToolButton::clicked, &m_engine, &CORVSpumKyvo::onClickPrintButtons);
    connect(console.m_pCopyToClipboardButton, &QToolButton::clicked, &m_engine, &CORVSpumKyvo::onClickCopyToClipboard);
    connect(&console, &SpumKyvoConsoleWnd::askToSaveExistingResult, this, &AnalysisSetup::askToSaveExistingResult);
}

SpUnmixCompositeWnd* AnalysisSetup::compositeWnd()
{
    if (!m_engine.m_pComposite) {
        auto* pComposite = new SpUnmixCompositeWnd(CORVChildWindow::getActiveChildWnd());
        m_engine.m_pComposite = pComposite;
        connectComposite(*pComposite);
    }
    return m_engine.m_pComposite;
}

void AnalysisSetup::connectComposite(SpUnmixCompositeWnd& composite)
{
    connect(&composite, &QDialog::finished, &m_engine, &CORVSpumKyvo::onClickCompositeFinished);
    connect(&composite, &SpUnmixCompositeWnd::updateImageCubeRGB, &m_engine, &CORVSpumKyvo::onUpdateImageCubeRGB);
    connect(composite.m_pPrintButton, &QToolButton::clicked, &m_engine, &CORVSpumKyvo::onClickPrintButtons);
    connect(composite.m_pCopyToClipboardButton, &QToolButton::clicked, &m_engine,
            &CORVSpumKyvo::onClickCopyToClipboard);
}

void AnalysisSetup::showConsole()
{
    CORVSequenceWindow* pWindow = sequenceWindows::windowOf(m_engine);
    if (pWindow != nullptr) {
        SpumKyvoConsoleWnd* pConsole = console();
        showAsTab(*pWindow, tabNames::console, *pConsole, pConsole->toolbar());
    }
}

void AnalysisSetup::compositeFinished(int /*nResult*/)
{
    sequenceWindows::removeTab(sequenceWindows::windowOf(m_engine), tabNames::composite);
}

void AnalysisSetup::showCompositeInCube()
{
    if (!m_engine.m_pConsole || !m_engine.m_pComposite) {
        return;
    }
    const QImage picture = m_engine.m_pComposite->getCompositeImage();
    const QSize size(m_engine.m_cube.m_nWidth, m_engine.m_cube.m_nHeight);
    if (!picture.isNull() && !size.isEmpty()) {
        m_engine.m_pConsole->setPseudoColorImage(picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
}

void AnalysisSetup::updatePreferences()
{
    const CORVSequenceWindow* pWindow = sequenceWindows::windowOf(m_engine);
    if (pWindow == nullptr || !pWindow->isTabPresent(QLatin1String(tabNames::console))) {
        return;
    }
    m_engine.m_bReverse = CORVSequenceDataset::getSequenceDataset(m_engine.m_strSeqId)->getImageAdjust()->m_bReversed;
    m_engine.updateUnmixedImages(false);
    if (m_engine.m_pConsole) {
        m_engine.m_pConsole->distributionView()->updateFontByPreference();
        m_engine.m_pConsole->distributionView()->update();
    }
}

QImage AnalysisSetup::pictureOfButton(const QObject* pButton)
{
    const auto* pToolButton = qobject_cast<const QToolButton*>(pButton);
    const QString strToolbar =
        pToolButton != nullptr && pToolButton->parent() != nullptr ? pToolButton->parent()->objectName() : QString();
    if (strToolbar == QLatin1String("ConsoleToolbar")) {
        return pictureOfTab(QLatin1String(tabNames::console));
    }
    if (strToolbar == QLatin1String("SpUnmixCompositeWndToolbar")) {
        return pictureOfTab(QLatin1String(tabNames::composite));
    }
    return QImage();
}

QImage AnalysisSetup::pictureOfTab(const QString& strTitle)
{
    QImage picture;
    if (strTitle.compare(QLatin1String(tabNames::console), Qt::CaseInsensitive) == 0 && m_engine.m_pConsole) {
        m_engine.m_pConsole->getViewImage(&picture);
    } else if (strTitle.compare(QLatin1String(tabNames::composite), Qt::CaseInsensitive) == 0 &&
               m_engine.m_pComposite) {
        picture = m_engine.m_pComposite->getViewImage();
    }
    return picture;
}

void AnalysisSetup::openTile(int nImgIndex)
{
    const QPointer<CORVSpumKyvo> pEngine(&m_engine);
    const OpenedTile tile =
        openUnmixedTile(m_engine, nImgIndex, [this](const QString& strClickInfo) { return openByHost(strClickInfo); });
    if (!pEngine) {
        return;
    }
    if (tile.kind == OpenedTile::Kind::Composite) {
        showComposite(nImgIndex / (m_engine.m_nComponents + 1));
        return;
    }
    CORVImageWindow* pImageWindow = CORVImageWindow::getImageWindow(tile.hostDataset);
    if (tile.savedFolder.isEmpty() || pImageWindow == nullptr) {
        return;
    }
    // In a batch the windows would pile up.
    pImageWindow->updateThumnailViewForSpumBatchProcessing(tile.savedFolder);
    if (auto* pFrame = qobject_cast<CORVMdiSubWindow*>(pImageWindow->parentWidget())) {
        QTimer::singleShot(0, pFrame, SLOT(hideWindow()));
    }
}

CORVDataset* AnalysisSetup::openByHost(const QString& strClickInfo)
{
    const QPointer<CORVSpumKyvo> pEngine(&m_engine);
    ESTATUS eStatus = ESTATUS_FAILURE;
    Q_EMIT m_engine.loadSpumResult(strClickInfo, true, &eStatus, nullptr);
    if (!pEngine || eStatus != ESTATUS_SUCCESS) {
        return nullptr;
    }
    const QDir folder(QFileInfo(strClickInfo).path());
    CORVDataset* pOpened = nullptr; // of several of that folder the last
    for (CORVDataset* pDataset : CORVDataset::loadedDatasets()) {
        if (!pDataset->belongsToSequence() && QDir(pDataset->folderPath()) == folder) {
            pOpened = pDataset;
        }
    }
    if (pOpened != nullptr) {
        pOpened->isSequenceWindowMember = true;
    }
    return pOpened;
}

void AnalysisSetup::showComposite(int nSpot)
{
    CORVSequenceWindow* pWindow = sequenceWindows::windowOf(m_engine);
    if (pWindow != nullptr) {
        SpUnmixCompositeWnd* pComposite = compositeWnd();
        pComposite->setCurrentSpot(nSpot);
        showAsTab(*pWindow, tabNames::composite, *pComposite, pComposite->m_pToolbarFrame);
    }
}
