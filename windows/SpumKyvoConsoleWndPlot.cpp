// SPDX-License-Identifier: GPL-3.0-or-later
// The plot of the spectra, the buttons, and what tells that the spectra were changed.
#include "windows/SpumKyvoConsoleWnd.h"

#include "host/CORVGLXYPlot1.h"
#include "host/CORVPaintQImageView.h"
#include "host/SPlotDisplaySettings.h"
#include "spectra/SpectrumAxis.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"
#include "spectra/spectrumScale.h"
#include "windows/backgroundRemoval.h"
#include "windows/plotCurve.h"
#include "windows/sameSpectra.h"

#include <QAbstractButton>
#include <QMutexLocker>

namespace {

QList<SpectrumPlotParams*> copiesOf(const QList<SpectrumPlotParams*>& spectra)
{
    QList<SpectrumPlotParams*> copies;
    for (const SpectrumPlotParams* pSpectrum : spectra) {
        copies.append(new SpectrumPlotParams(*pSpectrum));
        copies.last()->control.clear();
    }
    return copies;
}

// Rows may have one label; lines are told apart by the channel, which no two rows have.
QString lineKey(const SpectrumPlotParams& spectrum)
{
    return QStringLiteral("row %1").arg(spectrum.settings.curveId);
}

} // namespace

// What the user sees is what counts.
void SpumKyvoConsoleWnd::readRows()
{
    for (SpectrumPlotParams* pSpectrum : qAsConst(m_spectra)) {
        pSpectrum->readControl();
    }
}

void SpumKyvoConsoleWnd::updateSpectrumPlot()
{
    m_pSpectrumPlot->clear();
    m_pSpectrumPlot->setLegendVisible(false);
    readRows();
    const int nBackground = m_bBackgroundMode ? backgroundRow(m_spectra) : -1;
    const XTNT::Vector<double> background =
        nBackground >= 0 ? m_spectra.at(nBackground)->values() : XTNT::Vector<double>();
    for (int i = 0; i < m_spectra.size(); ++i) {
        plotSpectrum(i, i != nBackground ? background : XTNT::Vector<double>());
    }
    m_pSpectrumPlot->setXAxisLabel(m_spectra.isEmpty() ? QString() : axisLabel(m_spectra.last()->axis));
    m_pSpectrumPlot->setLegendVisible(m_pLegendCkb->isChecked());
    if (m_pSpectrumPlot->isVisible()) {
        m_pSpectrumPlot->plotData();
    }
    updateButtons();
    if (!m_bSpectraModified && !sameSpectra(m_spectra, m_lastSpectra)) {
        markModified();
    }
}

// The line of a row, without the background if one is given; nothing for a row that has no data or is not ticked.
void SpumKyvoConsoleWnd::plotSpectrum(int nRow, const XTNT::Vector<double>& background)
{
    const SpectrumPlotParams& spectrum = *m_spectra.at(nRow);
    QColor color;
    color.setNamedColor(spectrum.settings.color);
    if (m_pImageCubeView->containsChannel(channelOf(nRow))) {
        m_pImageCubeView->setUpChannelColor(channelOf(nRow), color, m_nRemovedCount < 1);
    }
    if (!spectrum.hasData() || (!m_bBackgroundMode && !spectrum.settings.selected)) {
        return;
    }
    XTNT::Vector<double> values = spectrum.values();
    if (background.n_ > 0) {
        removeBackground(values, background);
    }
    const QString key = lineKey(spectrum);
    m_pSpectrumPlot->addDataLine(key, spectrum.settings.name, curveValues(spectrum.axisValues()),
                                 plotCurve(values, m_pNormalizedCkb->isChecked()));
    SPlotDisplaySettings settings;
    settings.color = color;
    m_pSpectrumPlot->setDisplaySettings(key, settings);
}

void SpumKyvoConsoleWnd::onToggleShowLegendCheckBox()
{
    m_pSpectrumPlot->setLegendVisible(m_pLegendCkb->isChecked());
}

ConsoleState SpumKyvoConsoleWnd::state() const
{
    ConsoleState state;
    for (int i = 0; i < m_spectra.size(); ++i) {
        const QAbstractButton& box = *m_spectrumCtrls.at(i)->m_pSelectBox;
        // Of its own, so that a window which is disabled for a while does not count.
        state.rows.append({m_spectra.at(i)->hasData(), box.isChecked(), box.isEnabledTo(box.parentWidget())});
    }
    state.removedCount = m_nRemovedCount;
    state.backgroundMode = m_bBackgroundMode;
    state.modified = m_bSpectraModified;
    return state;
}

void SpumKyvoConsoleWnd::updateButtons()
{
    const ConsoleButtons buttons = consoleButtons(state());
    m_pRemoveSpectrum->setEnabled(buttons.remove);
    m_pAddSpectrum->setEnabled(buttons.add);
    m_pSaveDatabaseTB->setEnabled(buttons.save);
    m_pUnmixBtn->setEnabled(buttons.unmix);
    m_pComputeSpectrum->setEnabled(buttons.compute);
}

void SpumKyvoConsoleWnd::updateRemoveButtonStatus()
{
    m_pRemoveSpectrum->setEnabled(consoleButtons(state()).remove);
}

// The first change since the last unmixing asks to save what was unmixed. That may open a question, so it is the last
// thing that a slot does; a change made meanwhile asks nothing. The window may be gone afterwards.
void SpumKyvoConsoleWnd::markModified()
{
    if (!m_modifiedMutex.tryLock()) {
        return;
    }
    if (!m_bSpectraModified) {
        if (QWidget* pGrabber = QWidget::mouseGrabber()) {
            pGrabber->releaseMouse();
        }
        const QPointer<SpumKyvoConsoleWnd> alive(this);
        Q_EMIT askToSaveExistingResult();
        if (alive.isNull()) {
            return;
        }
    }
    m_bSpectraModified = true;
    updateButtons();
    m_modifiedMutex.unlock();
}

// Shows a change of the spectra and marks it.
void SpumKyvoConsoleWnd::showChange()
{
    const QPointer<SpumKyvoConsoleWnd> alive(this);
    updateSpectrumPlot();
    if (!alive.isNull()) {
        markModified();
    }
}

void SpumKyvoConsoleWnd::setSpectraModified(bool bModified)
{
    if (bModified && !m_bSpectraModified) {
        markModified();
        return;
    }
    if (!m_modifiedMutex.tryLock()) {
        return;
    }
    m_bSpectraModified = bModified;
    if (!bModified) {
        readRows();
        qDeleteAll(m_lastSpectra);
        m_lastSpectra = copiesOf(m_spectra);
    }
    updateButtons();
    m_modifiedMutex.unlock();
}

QList<SpectrumPlotParams*> SpumKyvoConsoleWnd::getSelectedSpectra()
{
    readRows();
    return spectraToUnmix(m_spectra, m_bBackgroundMode);
}

QList<SpectrumPlotParams*> SpumKyvoConsoleWnd::getSpectra()
{
    readRows();
    return m_spectra;
}
