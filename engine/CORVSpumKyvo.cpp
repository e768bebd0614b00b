// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/CORVSpumKyvo.h"

#include "engine/AnalysisWindows.h"
#include "engine/runTexts.h"
#include "spectra/logLine.h"

#include "host/CAutoProgressUpdate.h"
#include "host/CILImage.h"
#include "host/CORVSequenceDataset.h"
#include "spectra/SpectrumPlotParams.h"

#include <QtAlgorithms>

CORVSpumKyvo::CORVSpumKyvo(const QString& strSeqId) : m_strSeqId(strSeqId)
{
    CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(m_strSeqId);
    if (pSequence == nullptr) {
        return;
    }
    const tag_simageadjust* pAdjust = pSequence->getImageAdjust();
    m_nColorMap = pAdjust->m_nColorTable;
    m_bReverse = pAdjust->m_bReversed;
    m_bLogScale = pAdjust->m_bLogScale;
    QString strIsotope;
    m_bCherenkov = pSequence->isCherenkovIsotopeInData(strIsotope);
}

CORVSpumKyvo::~CORVSpumKyvo()
{
    if (m_pWindows) {
        // They show the images that go next.
        m_pWindows->deleteWindows();
    }
    clearUnmixedImages();
    qDeleteAll(m_spectrumPlots);
    qDeleteAll(m_presetSpectra);
}

QString CORVSpumKyvo::getAnalysisName() const
{
    return m_eSeqKind == SEQKIND_TEMPORAL ? QStringLiteral("Temporal Unmixing") : QStringLiteral("Spectral Unmixing");
}

QList<int> CORVSpumKyvo::availableModes() const
{
    return runModesForKind(m_eSeqKind, m_spots.size());
}

void CORVSpumKyvo::setPresetSpectra(const QList<SpectrumPlotParams*>& spectra)
{
    for (SpectrumPlotParams* pOld : qAsConst(m_presetSpectra)) {
        if (!spectra.contains(pOld)) {
            delete pOld;
        }
    }
    m_presetSpectra = spectra;
}

void CORVSpumKyvo::resetAnalysis(int nMode)
{
    m_eMode = nMode;
    m_bCubeValid = false;
    m_bUseMask = 0;
    m_maskIndices.clear();
    m_cube.clear();
    m_imageList.clear();
    m_labels.clear();
    qDeleteAll(m_spectrumPlots);
    m_spectrumPlots.clear();
    m_concentrations.reshape(0, 0);
    m_spectra.reshape(0, 0);
    m_bAutoBinning = true;
    m_pResultView->removeAllUnmixedImages(); // it borrows them
    clearUnmixedImages();
    // No result and no failure stands any more, and no request.
    m_bRunPCA = false;
    m_bResultReady = false;
    m_nError = RUNERROR_NONE;
    m_runFacts = AutomaticRunFacts();
    m_imageFindings = ImageFindings();
}

void CORVSpumKyvo::clearUnmixedImages()
{
    qDeleteAll(m_unmixedImages);
    m_unmixedImages.clear();
}

QString CORVSpumKyvo::getErrorText() const
{
    return errorText(m_nError);
}

void CORVSpumKyvo::reportStatus(const QString& strMessage, long nLevel)
{
    if (m_pProgress == nullptr) {
        return;
    }
    const QString strLine = "SpumKyvo: " + strMessage;
    m_pProgress->setStatusMessage(strLine);
    logLine(strLine, nLevel);
}
