// SPDX-License-Identifier: GPL-3.0-or-later
// The correction of a Cherenkov isotope's decay on the cube.
#include "windows/SpumKyvoConsoleWnd.h"

#include "engine/CImageCube.h"
#include "host/CORVLog.h"
#include "host/CORVPaintQImageView.h"
#include "host/CORVSequenceDataset.h"
#include "spectra/logLine.h"
#include "windows/halfLife.h"
#include "windows/widgets/isotopeControls.h"

#include <QSignalBlocker>

void SpumKyvoConsoleWnd::setSequenceID(const QString& strSequenceID)
{
    m_strSequenceID = strSequenceID;
    m_bCherenkovPresent =
        showIsotopeOf(strSequenceID, m_isotopeNames, *m_pCherenkovGroupBox, *m_pCherenkovIsotopeCombobox);
}

void SpumKyvoConsoleWnd::setDecayState(const QString& strIsotope, double dHalfLifeSeconds, bool bApply)
{
    // The isotope sets the half life, and a change of that takes the correction back.
    m_pCherenkovIsotopeCombobox->setCurrentIndex(m_isotopeNames.indexOf(strIsotope));
    if (isUndefinedIsotope(strIsotope)) {
        m_pCherenkovHalfLifeEditBox->setText(halfLifeText(dHalfLifeSeconds));
    }
    m_pApplyCherenkovDecayCorrectionCkb->setChecked(bApply);
}

void SpumKyvoConsoleWnd::onIsotopeComboboxSelectionChanged(int nIndex)
{
    if (nIndex < 0) {
        return;
    }
    m_strIsotope = m_pCherenkovIsotopeCombobox->itemText(nIndex);
    showHalfLifeOf(m_strIsotope, *m_pCherenkovHalfLifeEditBox);
}

void SpumKyvoConsoleWnd::onHalfLifeEditBoxChanged(QString strHalfLife)
{
    if (strHalfLife.isEmpty()) {
        return;
    }
    double dMinutes = 0.0;
    double dSeconds = 0.0;
    m_dHalfLifeSeconds = parseHalfLife(strHalfLife, dMinutes, dSeconds) ? dSeconds : 0.0;
    m_pApplyCherenkovDecayCorrectionCkb->setChecked(false);
}

void SpumKyvoConsoleWnd::onToggleApplyCherenkovDecayCorrection(bool bApply)
{
    if (applyDecayCorrection(bApply)) {
        m_pImageCubeView->refreshView();
        showImageOfCube();
        refreshRegionSpectra();
    }
}

// True when the data of the cube were written anew: always from the raw data, so that a correction that the analysis
// made already is not made again.
bool SpumKyvoConsoleWnd::applyDecayCorrection(bool bApply)
{
    if ((m_bDecayOff && !bApply) || !hasImageCube() || (bApply && !computeDecayFactors())) {
        return false;
    }
    m_bDecayApplied = bApply;
    m_pImageCube->applyDecayFactors(m_pImageCube->m_rawData, m_decayFactors, bApply);
    m_bDecayOff = !bApply;
    return true;
}

bool SpumKyvoConsoleWnd::computeDecayFactors()
{
    const QString text = m_pCherenkovHalfLifeEditBox->text();
    double dMinutes = 0.0;
    if (!parseHalfLife(text, dMinutes, m_dHalfLifeSeconds)) {
        const QSignalBlocker blocker(m_pApplyCherenkovDecayCorrectionCkb);
        m_pApplyCherenkovDecayCorrectionCkb->setChecked(false);
        logLine(invalidHalfLifeText(m_strIsotope, dMinutes, m_strSequenceID), CORVLOG_ERROR);
        return false;
    }
    const CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(m_strSequenceID);
    if (pSequence == nullptr ||
        !pSequence->calculateDecayCorrectFactor_CherenkovData(m_imageNames, m_dHalfLifeSeconds, m_decayFactors)) {
        logLine(noDecayFactorsText(m_strIsotope, text, m_strSequenceID, m_imageNames.size()), CORVLOG_ERROR);
        return false;
    }
    return true;
}
