// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/ConsoleResultView.h"

#include "plugin/sequenceWindows.h"
#include "plugin/tabNames.h"

#include "engine/AnalysisWindows.h"
#include "engine/CORVSpumKyvo.h"
#include "host/CORVDataset.h"
#include "host/CORVImageWindow.h"
#include "host/CORVMdiSubWindow.h"
#include "host/CORVSequenceWindow.h"
#include "windows/CORVDistributionView.h"
#include "windows/SpUnmixCompositeWnd.h"
#include "windows/SpumKyvoConsoleWnd.h"

QString ConsoleResultView::getNote() const
{
    return m_engine.m_pConsole ? m_engine.m_pConsole->getNote() : QString();
}

void ConsoleResultView::setNote(const QString& strNote)
{
    m_windows.console()->setNote(strNote);
}

bool ConsoleResultView::setImageCube(const QList<KeyPair>& xValues, int nSpectrumType, CImageCube& cube)
{
    SpumKyvoConsoleWnd* pConsole = m_windows.console();
    // Of these images the decay factors are computed.
    pConsole->m_imageNames = m_engine.m_imageList;
    pConsole->m_nCubeUnit = m_engine.m_eUnit;
    return pConsole->setImageCube(xValues, nSpectrumType, cube);
}

void ConsoleResultView::setBackgroundMode(bool bOn)
{
    m_windows.console()->setBackgroundMode(bOn);
}

void ConsoleResultView::setSpectra(const QList<SpectrumPlotParams*>& spectra)
{
    m_windows.console()->setSpectra(spectra);
}

QList<SpectrumPlotParams*> ConsoleResultView::getSpectra() const
{
    return m_engine.m_pConsole ? m_engine.m_pConsole->getSpectra() : QList<SpectrumPlotParams*>();
}

void ConsoleResultView::setSpectraModified(bool bModified)
{
    m_windows.console()->setSpectraModified(bModified);
}

void ConsoleResultView::setDecayState(const QString& strIsotope, double dHalfLifeSeconds, bool bApply)
{
    m_windows.console()->setDecayState(strIsotope, dHalfLifeSeconds, bApply);
}

DecayState ConsoleResultView::getDecayState() const
{
    const SpumKyvoConsoleWnd* pConsole = m_windows.console();
    return {pConsole->m_strIsotope, pConsole->m_dHalfLifeSeconds, pConsole->m_bDecayApplied};
}

void ConsoleResultView::getScaleRange(double* pLower, double* pUpper) const
{
    m_windows.console()->getScaleRange(pLower, pUpper);
}

void ConsoleResultView::setColorBar(const ColorBarState& bar)
{
    m_windows.console()->setColorBar(bar.unit, bar.ntf, bar.colorTable, bar.minimum, bar.maximum, bar.reversed,
                                     bar.logScale);
}

void ConsoleResultView::setHideColorBar(bool bHide)
{
    m_windows.console()->setHideColorBar(bHide);
}

void ConsoleResultView::addUnmixedImage(CILImage* pImage, const QString& strLabel)
{
    m_windows.console()->addUnmixedImage(pImage, strLabel);
}

void ConsoleResultView::setUnmixedImageRange(double dMin, double dMax)
{
    m_windows.console()->setUnmixedImageRange(dMin, dMax);
}

void ConsoleResultView::removeAllUnmixedImages()
{
    // A console that is not there borrows nothing.
    if (m_engine.m_pConsole) {
        m_engine.m_pConsole->removeAllUnmixedImages();
    }
}

void ConsoleResultView::setCompositeData(CILImage* pPhoto, const XTNT::Matrix<double>& data, int nUnit,
                                         const std::vector<int>& pixelIndices, int nWidth, int nHeight,
                                         const QList<CompositeChannel>& channels, int nSpots)
{
    m_windows.compositeWnd()->setCompositeData(pPhoto, data, nUnit, pixelIndices, nWidth, nHeight, channels, nSpots);
    m_windows.console()->distributionView()->setValues({data, pixelIndices, QSize(nWidth, nHeight), nSpots});
}

void ConsoleResultView::setXRayImage(CILImage* pImage)
{
    m_windows.compositeWnd()->setXRayImage(pImage);
}

void ConsoleResultView::presentUnmixedImages(int nColorTable, bool bReversed)
{
    const CORVSequenceWindow* pWindow = sequenceWindows::windowOf(m_engine);
    // A tab that is there stays where it is: the pictures may have changed while another one is looked at.
    if (pWindow != nullptr && !pWindow->isTabPresent(QLatin1String(tabNames::console))) {
        m_showConsole();
    }
    SpumKyvoConsoleWnd* pConsole = m_windows.console();
    CORVDistributionView* pView = pConsole->distributionView();
    pView->setColorTable(nColorTable);
    pView->setReversed(bReversed);
    pConsole->updateColorBarLayout();
    pView->update();
    pConsole->selectUnmixedTab(false);
}

void ConsoleResultView::closeImageWindow(const QString& strClickNumber)
{
    CORVImageWindow* pWindow = CORVImageWindow::getImageWindow(CORVDataset::getDataset(strClickNumber));
    if (pWindow == nullptr || sequenceWindows::windowOf(m_engine) == nullptr) {
        return;
    }
    auto* pFrame = qobject_cast<CORVMdiSubWindow*>(pWindow->parentWidget());
    (pFrame != nullptr ? static_cast<QWidget*>(pFrame) : pWindow)->close();
}
