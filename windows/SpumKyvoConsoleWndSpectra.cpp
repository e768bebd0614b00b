// SPDX-License-Identifier: GPL-3.0-or-later
// Spectra that are not painted: out of libraries, and computed of others. All of it asks in windows of its own, during
// which this one may go.
#include "windows/SpumKyvoConsoleWnd.h"

#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVUtilityFns.h"
#include "spectra/SpUnmixSpectrumLibraryWnd.h"
#include "spectra/SpumKyvoSpectrumCtrl.h"
#include "spectra/logLine.h"
#include "spectra/spectrumOnPairs.h"
#include "windows/SpumKyvoCPSWnd.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

constexpr int kMostRows = 255; // as many regions as can be told apart

} // namespace

struct SpumKyvoConsoleWnd::LibraryAnswer
{
    bool append = false;
    QList<SpectrumPlotParams> spectra; // over the images of the cube; none when the user backed out
};

SpumKyvoConsoleWnd::LibraryAnswer SpumKyvoConsoleWnd::askForSpectra(bool bSeveral)
{
    LibraryAnswer answer;
    const QPointer<SpUnmixSpectrumLibraryWnd> pLibrary(new SpUnmixSpectrumLibraryWnd(this));
    pLibrary->setReferencePairs(m_xValues, m_nSpectrumType);
    if (bSeveral) {
        pLibrary->setLoadMode(true);
    } else {
        pLibrary->setMultiSelect(false);
    }
    const int nResult = pLibrary->exec();
    if (pLibrary.isNull()) {
        return answer; // and so is this window
    }
    if (nResult == QDialog::Accepted) {
        answer.append = pLibrary->isAppendChecked();
        const QList<SpectrumPlotParams*> selected = pLibrary->selectedSpectra();
        for (const SpectrumPlotParams* pSpectrum : selected) {
            answer.spectra.append(spectrumOnPairs(*pSpectrum, m_xValues, m_nSpectrumType));
        }
        qDeleteAll(selected);
    }
    delete pLibrary;
    return answer;
}

void SpumKyvoConsoleWnd::onClickLoadSpectrumLibrary()
{
    const QPointer<SpumKyvoConsoleWnd> alive(this);
    LibraryAnswer answer = askForSpectra(true);
    if (alive.isNull() || answer.spectra.isEmpty()) {
        return;
    }
    if (answer.spectra.size() + (answer.append ? m_spectra.size() : 0) > kMostRows) {
        CORVMessageBox::information(this, CORVUtilityFns::getAppName(),
                                    tr("The list holds no more than %1 spectra. Select fewer of them.").arg(kMostRows));
        return;
    }
    if (!answer.append) {
        clearRows();
    }
    for (SpectrumPlotParams& spectrum : answer.spectra) {
        spectrum.settings.selected = !m_bBackgroundMode;
        addRow(spectrum);
    }
    showChange();
}

// Into the row whose tool was taken up.
void SpumKyvoConsoleWnd::importSpectrum(int nRow)
{
    turnPaintToolOff();
    const QPointer<SpumKyvoConsoleWnd> alive(this);
    const QPointer<SpumKyvoSpectrumCtrl> pRow(m_spectrumCtrls.at(nRow).data());
    const LibraryAnswer answer = askForSpectra(false);
    const int nNow = alive.isNull() || pRow.isNull() ? -1 : rowOf(pRow);
    if (nNow < 0) {
        return;
    }
    pRow->m_pToolButton->setChecked(false);
    if (answer.spectra.size() != 1 || !answer.spectra.first().hasData() ||
        !m_spectra.at(nNow)->setValues(answer.spectra.first().values())) {
        return;
    }
    m_spectra.at(nNow)->origin = answer.spectra.first().origin;
    showChange();
}

void SpumKyvoConsoleWnd::onComputePureSpectrum()
{
    readRows();
    const bool bNamed = std::none_of(m_spectra.begin(), m_spectra.end(), [](const SpectrumPlotParams* pSpectrum) {
        return pSpectrum->settings.name.isEmpty();
    });
    if (!bNamed) {
        CORVMessageBox::warning(this, CORVUtilityFns::getAppName(),
                                tr("Please enter a name for each unmixing component"));
        return;
    }
    if (!m_pComputePureSpectrumWnd->setSpectra(m_spectra)) {
        return;
    }
    CORVUtilityFns::restoreCursor();
    m_pComputePureSpectrumWnd->exec(); // the host's window stays open meanwhile
    QCoreApplication::processEvents();
}

void SpumKyvoConsoleWnd::onUpdateSpectrum(int nIndex)
{
    readRows();
    const SpectrumPlotParams result = m_pComputePureSpectrumWnd->getResult();
    if (nIndex >= 0 && nIndex < m_spectra.size()) {
        SpectrumSettings settings = m_spectra.at(nIndex)->settings;
        settings.selected = false;
        m_spectra.at(nIndex)->applySettings(settings);
    }
    const int nPlace = result.settings.index - 1;
    if (nPlace >= 0 && nPlace < m_spectra.size()) {
        SpectrumPlotParams& target = *m_spectra.at(nPlace);
        target.setValues(result.values());
        SpectrumSettings settings = target.settings;
        settings.name = result.settings.name;
        settings.color = result.settings.color;
        target.applySettings(settings);
    } else if (nPlace == m_spectra.size()) {
        SpectrumPlotParams added(result);
        added.settings.selected = !m_bBackgroundMode;
        addRow(added);
    }
    logLine(QStringLiteral("SpumKyvo: Compute Pure Spectrum done!"), CORVLOG_NOTE);
    readRows();
    m_pComputePureSpectrumWnd->setSpectra(m_spectra);
    showChange();
}
