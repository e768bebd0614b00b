// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/ResultReaderV1.h"

#include "storage/oldResultElements.h"

#include "engine/CORVSpumKyvo.h"
#include "host/CORVProcess.h"
#include "spectra/SpectrumPlotParams.h"

ResultReaderV1::ResultReaderV1(CORVSpumKyvo& engine) : ResultReader(engine)
{
    addEntry("SeqDataset", [this](const QDomElement& e) { return readSequence(e); });
    addEntry("SelectedWavelengths", [this](const QDomElement& e) { return readSelection(e, "ex", "em"); });
    addEntry("MCRParams", [this](const QDomElement& e) { return readParams(e); });
    addEntry("Constraints", [this](const QDomElement& e) { return readConstraints(e); });
    addEntry("SpectrumPlots", [this](const QDomElement& e) { return readSpectra(e); });
    addEntry("DataIndices", [this](const QDomElement& e) { return readMask(e); });
    addEntry("ConcProfiles", [this](const QDomElement& e) { return readMatrix(e, &m_engine.m_concentrations); });
    addEntry("PureSpectra", [this](const QDomElement& e) { return readSpectrumMatrix(e); });
    addEntry("Results", [this](const QDomElement& e) { return readProperties(e); });
    addEntry("ROIData", [this](const QDomElement& e) { return readRegions(e); });
    addEntry("SelectedXYPair", [](const QDomElement& /*e*/) { return true; });
    addEntry("ImageControl", [this](const QDomElement& e) { return readDisplay(e); });
}

bool ResultReaderV1::readAll(const QDomElement& root)
{
    if (!read(root)) {
        return false;
    }
    completeRatios();
    completeSpectra();
    return true;
}

bool ResultReaderV1::readParams(const QDomElement& element)
{
    CORVProcess::setProcessMessage("Loading Spectral Unmixing Results: Loading MCR params...", m_nChild + 1,
                                   m_nChildren + 1, nullptr);
    m_engine.m_nResultUnits = element.attribute("Units").toInt();
    oldResultElements::readParams(element, &m_engine.m_params);
    return true;
}

bool ResultReaderV1::readConstraints(const QDomElement& element)
{
    m_engine.m_params.Constraints = oldResultElements::readConstraints(element);
    return true;
}

bool ResultReaderV1::readSpectra(const QDomElement& element)
{
    int nIndex = 0;
    for (const oldResultElements::OldSpectrum& old : oldResultElements::readSpectra(element)) {
        auto* pSpectrum = new SpectrumPlotParams;
        pSpectrum->axis = m_engine.m_eAxis;
        pSpectrum->settings.index = nIndex++;
        pSpectrum->settings.selected = true;
        pSpectrum->settings.name = old.label;
        pSpectrum->settings.color = old.color;
        m_engine.m_spectrumPlots.append(pSpectrum);
    }
    return true;
}

bool ResultReaderV1::readMask(const QDomElement& element)
{
    if (element.hasAttribute("BinningFactor")) {
        m_engine.m_nBinning = element.attribute("BinningFactor").toInt();
    }
    m_engine.m_bUseMask = 1;
    return readPixels(element, "Total.Pixels");
}

bool ResultReaderV1::readSpectrumMatrix(const QDomElement& element)
{
    CORVProcess::setProcessMessage("Loading Spectral Unmixing Results: Loading Spectral Profile...", 6, 6, nullptr);
    return readMatrix(element, &m_engine.m_spectra);
}

bool ResultReaderV1::readMatrix(const QDomElement& element, XTNT::Matrix<double>* pMatrix)
{
    QString strSize;
    return oldResultElements::readMatrix(element, pMatrix, &strSize) ||
           fail(QStringLiteral("SpumKyvo: a matrix of %1 is not what the result file can hold!").arg(strSize));
}

void ResultReaderV1::completeRatios()
{
    if (!m_engine.m_scaleRatios.isEmpty()) {
        return;
    }
    // A number that no file means must not take all memory.
    constexpr int mostComponents = 1 << 16;
    const int nComponents = qMin(m_engine.m_params.Components, mostComponents);
    for (int i = 0; i < nComponents; ++i) {
        m_engine.m_scaleRatios.append(ScaleRatio());
    }
}

void ResultReaderV1::completeSpectra()
{
    const XTNT::Matrix<double>& spectra = m_engine.m_spectra;
    for (int i = 0; i < m_engine.m_spectrumPlots.size(); ++i) {
        SpectrumPlotParams* pSpectrum = m_engine.m_spectrumPlots.at(i);
        pSpectrum->setPairs(m_engine.m_selectedKeyPairs);
        if (i < spectra.num_rows()) {
            pSpectrum->setValues(spectra.row(i));
        }
    }
}
