// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/OwnResultView.h"

#include "engine/AnalysisInput.h"
#include "engine/CImageCube.h"
#include "spectra/SpectrumPlotParams.h"

bool OwnResultView::setImageCube(const QList<KeyPair>& xValues, int /*nSpectrumType*/, CImageCube& cube)
{
    if (xValues.size() != cube.m_nImages) {
        return false;
    }
    m_correctDecay(cube);
    return true;
}

void OwnResultView::setSpectra(const QList<SpectrumPlotParams*>& spectra)
{
    if (&spectra == &m_spectra) {
        return;
    }
    QList<SpectrumPlotParams*> copies;
    for (const SpectrumPlotParams* pSpectrum : spectra) {
        copies.append(new SpectrumPlotParams(*pSpectrum));
    }
    qDeleteAll(m_spectra);
    m_spectra = copies;
}

QList<SpectrumPlotParams*> OwnResultView::getSpectra() const
{
    return m_spectra;
}

void OwnResultView::setDecayState(const QString& strIsotope, double dHalfLifeSeconds, bool bApply)
{
    m_input.isotope = strIsotope;
    m_input.halfLifeSeconds = dHalfLifeSeconds;
    m_input.decayCorrection = bApply;
}

DecayState OwnResultView::getDecayState() const
{
    return {m_input.isotope, m_input.halfLifeSeconds, m_input.decayCorrection};
}

void OwnResultView::getScaleRange(double* pLower, double* pUpper) const
{
    *pLower = m_dLower;
    *pUpper = m_dUpper;
}

void OwnResultView::setScaleRange(double dLower, double dUpper)
{
    m_dLower = dLower;
    m_dUpper = dUpper;
}

void OwnResultView::addUnmixedImage(CILImage* pImage, const QString& strLabel)
{
    m_tiles.append({pImage, strLabel});
}

void OwnResultView::removeAllUnmixedImages()
{
    m_tiles.clear();
    m_composite = CompositeInput();
}

void OwnResultView::setCompositeData(CILImage* pPhoto, const XTNT::Matrix<double>& data, int nUnit,
                                     const std::vector<int>& pixelIndices, int nWidth, int nHeight,
                                     const QList<CompositeChannel>& channels, int nSpots)
{
    m_composite = CompositeInput();
    m_composite.photo = pPhoto;
    m_composite.data = data;
    m_composite.unit = nUnit;
    m_composite.pixelIndices = pixelIndices;
    m_composite.width = nWidth;
    m_composite.height = nHeight;
    m_composite.channels = channels;
    m_composite.spots = nSpots;
}

void OwnResultView::setXRayImage(CILImage* pImage)
{
    if (pImage != nullptr) {
        m_composite.xray = pImage;
    }
}
