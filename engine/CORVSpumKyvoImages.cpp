// SPDX-License-Identifier: GPL-3.0-or-later
// The pictures: the overview of the cube before a run, the unmixed images after it. All on the user-interface thread.
#include "engine/CORVSpumKyvo.h"

#include "engine/colorResponse.h"
#include "engine/unmixedImages.h"
#include "spectra/logLine.h"

#include "host/CILImage.h"
#include "host/CORVDatabase.h"
#include "host/CORVDataset.h"
#include "host/CORVLog.h"
#include "host/CORVSequenceDataset.h"
#include "spectra/SpectrumPlotParams.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <new>

namespace {

constexpr unsigned formatRgb = 0x1907;
const char* const responseName = "NIR";
const char* const invalidFile = "Invalid xml file used..";

// One record a component, as far as the names and the ranges of the components reach.
QList<UnmixedComponent> componentsOf(const QList<SpectrumPlotParams*>& plots, const QList<ScaleRatio>& ratios,
                                     long long nComponents)
{
    QList<UnmixedComponent> components;
    const int n = static_cast<int>(std::min<long long>(nComponents, std::min(plots.size(), ratios.size())));
    for (int i = 0; i < n; ++i) {
        components.append({plots.at(i)->settings.name, plots.at(i)->settings.color, ratios.at(i)});
    }
    return components;
}

} // namespace

bool CORVSpumKyvo::computeRGBWeights(XTNT::Matrix<double>& weights)
{
    sColorSensorRGBspecFileParameters curve;
    if (!CORVDatabase::readColorResponse(responseName, &curve)) {
        logLine("SpumKyvo: cannot find the color response curve!", CORVLOG_WARNING);
        return false;
    }
    if (curve.n < 1) {
        logLine("SpumKyvo: wrong color response curve!", CORVLOG_WARNING);
        return false;
    }
    const QStringList& keys = m_eAxis == SPECTRUMAXIS_EXCITATION ? m_excitationKeys : m_emissionKeys;
    try {
        weights = responseWeights(curve, m_selectedKeyPairs, m_eAxis, keyLimits(keys, m_eAxis));
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

bool CORVSpumKyvo::createPseudoColorImage()
{
    if (!buildImageCube()) {
        return false;
    }
    // Without a curve the weights stay empty, and the cube refuses them.
    XTNT::Matrix<double> weights;
    computeRGBWeights(weights);
    try {
        if (m_cube.buildRGBImage(weights)) {
            return true;
        }
        logLine("SpumKyvo: size mismatch in createPseudoColorImage()!", CORVLOG_WARNING);
    } catch (const std::exception&) {
        logLine("SpumKyvo: failed to create pseudo color image!", CORVLOG_WARNING);
    }
    return false;
}

bool CORVSpumKyvo::updateUnmixedImages(bool bNew)
{
    CORVSequenceDataset* pSequence = CORVSequenceDataset::getSequenceDataset(m_strSeqId);
    if (m_concentrations.num_rows() < 1 || pSequence == nullptr) {
        return false;
    }
    m_pResultView->removeAllUnmixedImages();
    clearUnmixedImages();
    CORVDataset* pDataset = m_imageList.isEmpty() ? nullptr : pSequence->getDataset(m_imageList.first());
    if (pDataset == nullptr) {
        logLine("SpumKyvo: Unable to locate the required dataset. It looks like the first image has been retired. "
                "Please close and restart. ",
                CORVLOG_ERROR);
        return false;
    }
    try {
        if (!showUnmixedImages(*pSequence, *pDataset)) {
            return false;
        }
    } catch (const std::bad_alloc&) {
        logLine("SpumKyvo: insufficient memory to show the unmixed images!", CORVLOG_WARNING);
        m_pResultView->removeAllUnmixedImages();
        clearUnmixedImages();
        return false;
    }
    m_pResultView->presentUnmixedImages(m_nColorMap, m_bReverse);
    if (bNew) {
        m_pResultView->setSpectraModified(false);
    }
    return true;
}

bool CORVSpumKyvo::showUnmixedImages(CORVSequenceDataset& sequence, CORVDataset& dataset)
{
    // Empty when there is no photograph, so that the images stand at the same places.
    auto* pPhoto = m_pPhoto != nullptr ? new CILImage(*m_pPhoto) : new CILImage;
    m_unmixedImages.append(pPhoto);
    if (m_spectrumPlots.isEmpty()) {
        logLine(invalidFile, CORVLOG_NOTE);
        return false;
    }
    if (pPhoto->getGLFormat() != formatRgb) {
        pPhoto->setGLFormat(formatRgb);
        pPhoto->getPalette()->setAlphaMode(0, 0);
    }
    m_nColorMap = sequence.getImageAdjust()->m_nColorTable;

    UnmixedSource source;
    source.concentrations = m_concentrations;
    source.masked = m_bUseMask != 0;
    if (source.masked) {
        source.pixels = m_maskIndices;
    }
    source.width = m_nWidth;
    source.height = m_nHeight;
    source.spots = std::max(m_spots.size(), 1);
    const ValueLimits limits = valueLimits(m_concentrations);
    source.background = limits.minimum;
    source.components = componentsOf(m_spectrumPlots, m_scaleRatios, m_concentrations.num_rows());
    source.display = {m_nColorMap, m_bReverse, m_bLogScale, m_nOverlayOpacity, m_bIndividualScale, shownRange(limits)};
    const CILImage photoPicture = pictureOf(*pPhoto);
    source.photo = m_pPhoto;
    source.photoPicture = &photoPicture;
    const CORVOverlayImage hint = m_pResultView->showsUnmixedImages() ? hintOf(m_pPhoto) : CORVOverlayImage();
    source.hint = &hint;

    showColorBar(source.display.commonRange);
    // Ranges that are missing, and all else in a loaded result that does not go together.
    if (!source.isConsistent()) {
        logLine(invalidFile, CORVLOG_NOTE);
        return false;
    }
    for (int s = 0; s < source.spots; ++s) {
        if (m_pResultView->showsUnmixedImages()) {
            showSpot(source, s);
        }
        m_pResultView->setCompositeData(m_pPhoto, m_concentrations, m_eUnit, m_maskIndices, m_nWidth, m_nHeight,
                                        compositeChannels(source.components), source.spots);
        if (dataset.hasXRayImage) {
            m_pResultView->setXRayImage(dataset.getCoreImage(IMAGETYPE_XRAY));
        }
    }
    return true;
}

ValueLimits CORVSpumKyvo::shownRange(const ValueLimits& limits) const
{
    double dLower = 0.0;
    double dUpper = 1.0;
    m_pResultView->getScaleRange(&dLower, &dUpper);
    return partOf(limits, dLower, dUpper);
}

void CORVSpumKyvo::showColorBar(const ValueLimits& range)
{
    ColorBarState bar;
    bar.unit = m_eUnit;
    bar.ntf = m_eSeqKind == SEQKIND_TRANSILLUMINATION;
    bar.colorTable = m_nColorMap;
    bar.minimum = range.minimum;
    bar.maximum = range.maximum;
    bar.reversed = m_bReverse;
    bar.logScale = m_bLogScale;
    m_pResultView->setColorBar(bar);
    m_pResultView->setHideColorBar(m_bIndividualScale);
}

void CORVSpumKyvo::showSpot(const UnmixedSource& source, int nSpot)
{
    UnmixedSpot spot = unmixedSpot(source, nSpot);
    for (std::unique_ptr<CILImage>& pImage : spot.images) {
        m_unmixedImages.append(pImage.get());
        static_cast<void>(pImage.release());
    }
    for (const UnmixedSpot::Tile& tile : qAsConst(spot.tiles)) {
        m_pResultView->addUnmixedImage(tile.image, tile.label);
        if (tile.range) {
            m_pResultView->setUnmixedImageRange(tile.range->minimum, tile.range->maximum);
        }
    }
}

void CORVSpumKyvo::onAutoScaleClicked(bool bIndividual)
{
    if (isRunning()) {
        return;
    }
    m_bIndividualScale = bIndividual;
    updateUnmixedImages(false);
}

void CORVSpumKyvo::updateConsoleSpectra()
{
    if (m_eMode == RUNMODE_AUTOMATIC) {
        m_pResultView->setSpectra(m_spectrumPlots);
    }
}

void CORVSpumKyvo::refreshDecayPanel()
{
    if (m_eMode == RUNMODE_AUTOMATIC && m_bCherenkov) {
        m_pResultView->setDecayState(m_analysisInput.isotope, m_analysisInput.halfLifeSeconds,
                                     m_analysisInput.decayCorrection);
    }
}

void CORVSpumKyvo::storeDecayState()
{
    const DecayState state = m_pResultView->getDecayState();
    m_bDecayApplied = state.applied;
    m_dHalfLifeSec = state.halfLifeSeconds;
    m_strIsotope = state.isotope;
}
