// SPDX-License-Identifier: GPL-3.0-or-later
// What the engine has to do with windows: it hands over to AnalysisWindows, but for the time of a run.
#include "engine/CORVSpumKyvo.h"

#include "engine/AnalysisWindows.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPixmap>

#include <utility>

void CORVSpumKyvo::setWindows(std::unique_ptr<AnalysisWindows> pWindows)
{
    if (m_pWindows) {
        m_pWindows->deleteWindows();
    }
    setResultView(pWindows ? &pWindows->resultView() : nullptr);
    m_pWindows = std::move(pWindows);
}

SpUnmixWizardWnd* CORVSpumKyvo::wizard()
{
    return m_pWindows ? m_pWindows->wizard() : nullptr;
}

SpumKyvoConsoleWnd* CORVSpumKyvo::console()
{
    return m_pWindows ? m_pWindows->console() : nullptr;
}

SpUnmixCompositeWnd* CORVSpumKyvo::compositeWnd()
{
    return m_pWindows ? m_pWindows->compositeWnd() : nullptr;
}

AnalysisWindows* CORVSpumKyvo::usableWindows() const
{
    return isRunning() ? nullptr : m_pWindows.get();
}

void CORVSpumKyvo::prepareAnalysis(int nMode, bool bUsePreset)
{
    if (AnalysisWindows* pWindows = usableWindows()) {
        pWindows->prepareAnalysis(nMode, bUsePreset);
    }
}

void CORVSpumKyvo::onImageDoubleClicked(int nImgIndex)
{
    if (AnalysisWindows* pWindows = usableWindows()) {
        pWindows->openTile(nImgIndex);
    }
}

void CORVSpumKyvo::onClickPrintButtons()
{
    AnalysisWindows* pWindows = usableWindows();
    const QImage picture = pWindows != nullptr ? pWindows->pictureOfButton(sender()) : QImage();
    if (!picture.isNull()) {
        Q_EMIT printPixmap(QPixmap::fromImage(picture));
    }
}

void CORVSpumKyvo::onClickCopyToClipboard()
{
    AnalysisWindows* pWindows = usableWindows();
    const QImage picture = pWindows != nullptr ? pWindows->pictureOfButton(sender()) : QImage();
    if (!picture.isNull()) {
        QGuiApplication::clipboard()->setImage(picture);
    }
}

void CORVSpumKyvo::onSignalUpdatePreference()
{
    if (AnalysisWindows* pWindows = usableWindows()) {
        pWindows->updatePreferences();
    }
}

void CORVSpumKyvo::onClickUnmixWizardFinished(int nResult)
{
    if (AnalysisWindows* pWindows = usableWindows()) {
        pWindows->wizardFinished(nResult);
    }
}

void CORVSpumKyvo::onClickDrawingFinished(int nResult)
{
    if (AnalysisWindows* pWindows = usableWindows()) {
        pWindows->consoleFinished(nResult);
    }
}

void CORVSpumKyvo::onClickCompositeFinished(int nResult)
{
    if (AnalysisWindows* pWindows = usableWindows()) {
        pWindows->compositeFinished(nResult);
    }
}

void CORVSpumKyvo::onUpdateImageCubeRGB()
{
    if (AnalysisWindows* pWindows = usableWindows()) {
        pWindows->showCompositeInCube();
    }
}

void CORVSpumKyvo::onRunPCA()
{
    if (isRunning()) {
        return;
    }
    if (m_pWindows) {
        m_pWindows->takeWizardInput();
    }
    m_bRunPCA = true;
    Q_EMIT pcaRun();
}
