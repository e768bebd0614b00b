// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/ResultReaderV2.h"

#include "storage/resultElements.h"

#include "engine/CORVSpumKyvo.h"
#include "spectra/SpectrumPlotParams.h"

#include <QtAlgorithms>

#include <memory>

namespace {

constexpr double newestMask = 1.0;

} // namespace

ResultReaderV2::ResultReaderV2(CORVSpumKyvo& engine) : ResultReader(engine)
{
    m_engine.m_bHasLoadedDecay = false;
    addEntry("SeqDataset", [this](const QDomElement& e) { return readSequence(e); });
    addEntry("SelectedKeyPairs", [this](const QDomElement& e) { return readSelection(e, "Col", "Row"); });
    addEntry("SpectrumList", [this](const QDomElement& e) { return readSpectra(e); });
    addEntry("DataMask", [this](const QDomElement& e) { return readMask(e); });
    addEntry("Results", [this](const QDomElement& e) { return readProperties(e); });
    addEntry("ROIData", [this](const QDomElement& e) { return readRegions(e); });
    addEntry("ImageControl", [this](const QDomElement& e) { return readDisplay(e); });
    addEntry("Cherenkov_Decay_Correction", [this](const QDomElement& e) { return readDecay(e); });
}

bool ResultReaderV2::readSpectra(const QDomElement& element)
{
    qDeleteAll(m_engine.m_spectrumPlots);
    m_engine.m_spectrumPlots.clear();
    for (QDomElement e = element.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        auto pSpectrum = std::make_unique<SpectrumPlotParams>();
        if (!pSpectrum->readXml(e)) {
            return fail("SpumKyvo: Cannot load the spectrum list!");
        }
        m_engine.m_spectrumPlots.append(pSpectrum.get());
        static_cast<void>(pSpectrum.release());
    }
    return true;
}

bool ResultReaderV2::readMask(const QDomElement& element)
{
    // A bound from above only: a mask without a version is taken.
    if (element.attribute("Version").toDouble() > newestMask) {
        return fail("SpumKyvo: cannot load newer version of data mask.");
    }
    const resultElements::MaskRecord mask = resultElements::readMask(element);
    m_engine.m_nBinning = mask.binning;
    m_engine.m_nWidth = mask.width;
    m_engine.m_nHeight = mask.height;
    m_engine.m_bUseMask = mask.useMask ? 1 : 0;
    return !mask.useMask || readPixels(element, "Pixels");
}

bool ResultReaderV2::readDecay(const QDomElement& element)
{
    if (!m_engine.m_bCherenkov) {
        return true;
    }
    const resultElements::DecayRecord decay = resultElements::readDecay(element);
    m_engine.m_strLoadedIsotope = decay.isotope;
    m_engine.m_dLoadedHalfLife = decay.halfLifeMinutes;
    m_engine.m_bLoadedDecayApplied = decay.applied;
    m_engine.m_bHasLoadedDecay = true;
    return true;
}
