// SPDX-License-Identifier: GPL-3.0-or-later
// The bridge to curve resolution and principal components.
#include "engine/CORVSpumKyvo.h"

#include "engine/spectrumPlots.h"
#include "engine/topology.h"
#include "spectra/logLine.h"

#include "algorithms/MCR.h"
#include "algorithms/PCA.h"
#include "host/CORVLog.h"

#include <algorithm>
#include <cxxabi.h>
#include <functional>
#include <iostream>
#include <new>

namespace {

// MCR::lastError for more components than the data's rank.
constexpr int beyondRank = 2;

// Modes of unimodality by position.
const QStringList& unimodalityNames()
{
    static const QStringList names{"N/A", "Vertical", "Horizontal", "Average"};
    return names;
}

// The error code that the work gives, also where it throws. The unwinding of an aborted thread has no object: the
// reference that catches it refers to nothing and is not used, which the sanitizer of undefined behaviour would report;
// inlined, it would do so in the caller.
[[gnu::no_sanitize("null"), gnu::noinline]] int errorCodeOf(const std::function<int()>& work)
{
    try {
        return work();
    } catch (const abi::__forced_unwind&) {
        throw;
    } catch (const std::bad_alloc&) {
        logLine("SpumKyvo: memory ran out during the analysis!", CORVLOG_ERROR);
        return RUNERROR_MEMORY;
    } catch (...) {
        logLine("SpumKyvo: the analysis met data that it cannot solve!", CORVLOG_ERROR);
        return RUNERROR_NO_SOLUTION;
    }
}

// Whether the Euclidean norm is 0; nothing underflows on the way.
bool isZero(const XTNT::Vector<double>& v)
{
    return std::all_of(v.data, v.data + v.size(), [](double value) { return value == 0.0; });
}

// The counter of the iterations runs on by one where the limit ends them.
int iterationsDone(const MCR& mcr)
{
    return std::min(mcr.iteration, std::max(mcr.maxIterations, 0));
}

} // namespace

void CORVSpumKyvo::reportProgress(const QString& strMessage)
{
    if (isRunning()) {
        reportStatus(strMessage, CORVLOG_PROGRESS);
    }
}

void CORVSpumKyvo::buildTopology(XTNT::Matrix<int>& out)
{
    const int nMissing = wavelengthTopology(m_selectedKeyPairs, m_eAxis, m_primaryKeys, m_secondaryKeys, out);
    for (int i = 0; i < nMissing; ++i) {
        reportStatus("error in set up wavelength topology", CORVLOG_PROGRESS);
    }
}

void CORVSpumKyvo::runMCR()
{
    m_nError = RUNERROR_NONE;
    m_nError = errorCodeOf([this] { return buildImageCube() ? resolveSpectra() : RUNERROR_DATA; });
}

// All that is taken from the resolution is stored behind the last cancellation point, so an abort leaves no half
// result.
int CORVSpumKyvo::resolveSpectra()
{
    MCR mcr;
    reportProgress("Initializing MCR with data...");
    if (m_cube.m_data.empty()) {
        return RUNERROR_DATA;
    }
    mcr.keepMatrices = 0; // of the size of the data, and nobody asks for them here
    if (mcr.setData(m_cube.m_data) == 0) {
        return RUNERROR_MEMORY;
    }
    int nError = startCurveResolution(mcr);
    for (int i = 0; nError == RUNERROR_NONE && i < m_params.Constraints.size(); ++i) {
        nError = constrainComponent(mcr, i);
    }
    if (nError == RUNERROR_NONE) {
        nError = iterate(mcr);
    }
    if (nError == RUNERROR_NONE) {
        takeResolvedSpectra(mcr);
    }
    return nError;
}

int CORVSpumKyvo::startCurveResolution(MCR& mcr)
{
    reportProgress("Setting MCR parameters...");
    m_params.Components = m_params.Constraints.size();
    if (mcr.setComponents(m_params.Components) != 0) {
        return mcr.lastError == beyondRank ? RUNERROR_TOO_MANY_COMPONENTS : RUNERROR_NO_SOLUTION;
    }
    mcr.normalization = m_params.Normalization;
    mcr.maxIterations = m_params.MaxIterations;
    // There are no weights, so a weighting is refused and stays off.
    mcr.setWeightingMode(m_params.WeightingMode);
    mcr.setNonNegMode(0, m_params.NonNegMode);
    mcr.setNonNegMode(1, m_params.NonNegMode);
    mcr.setUnimodTol(m_params.UnimodTol / 100.0 + 1.0);
    mcr.extraPCs = m_params.DenoisePCA;
    XTNT::Matrix<int> topology;
    buildTopology(topology);
    if (mcr.setTopology(topology) != 0) {
        return RUNERROR_TOPOLOGY;
    }
    // Before the known spectra, which switch both off.
    mcr.forceAF = m_params.ForceAF ? 1 : 0;
    mcr.autoSorting = m_params.AutoSorting ? 1 : 0;
    return RUNERROR_NONE;
}

int CORVSpumKyvo::constrainComponent(MCR& mcr, int i)
{
    const ComponentConstraint& constraint = m_params.Constraints.at(i);
    bool ok = true;
    const XTNT::Vector<double> known = guessSpectrum(constraint.SpectrumType, constraint.InitGuess);
    if (!known.empty()) {
        if (isZero(known)) {
            return RUNERROR_INITIAL_GUESS;
        }
        ok = mcr.setKnownSpectrum(i, known);
    }
    const int nUnimodality = unimodalityNames().indexOf(constraint.Unimodality);
    if (nUnimodality > 0) {
        ok = ok && mcr.setUnimodMode(i, nUnimodality);
    }
    const int nHighPass = m_primaryKeys.indexOf(constraint.HighPass);
    if (nHighPass >= 0) {
        ok = ok && mcr.setBandCutoff(0, i, nHighPass);
    }
    const int nLowPass = m_primaryKeys.indexOf(constraint.LowPass);
    if (nLowPass >= 0) {
        ok = ok && mcr.setBandCutoff(1, i, nLowPass);
    }
    if (ok && constraint.Locked) {
        ok = mcr.setLocked(i, 1);
    }
    return ok ? RUNERROR_NONE : RUNERROR_CONSTRAINTS;
}

int CORVSpumKyvo::iterate(MCR& mcr)
{
    reportProgress("Running MCR...");
    m_scaleRatios.clear();
    for (int i = 0; i < m_params.Components; ++i) {
        m_scaleRatios.append(ScaleRatio());
    }
    const int nResult = mcr.run(std::cout);
    m_runFacts.iterations = iterationsDone(mcr);
    m_runFacts.ending = mcr.ending();
    m_runFacts.lackOfFitDenoised = mcr.lackOfFitPCA;
    m_runFacts.lackOfFitRaw = mcr.lackOfFitRaw;
    m_runFacts.rank = mcr.pca.rank;
    const XTNT::Vector<double> eigenvalues = mcr.pca.eigenvalues();
    m_runFacts.eigenvalues.clear();
    for (long long i = 0; i < eigenvalues.size(); ++i) {
        m_runFacts.eigenvalues.push_back(eigenvalues[i]);
    }
    switch (nResult) {
    case 1:
        reportStatus("Divergence, stop!", CORVLOG_ERROR);
        return RUNERROR_NO_SOLUTION;
    case 2:
        // The last iterate is as good as any.
        reportStatus("Maximum iteration number is reached!", CORVLOG_WARNING);
        return RUNERROR_NONE;
    case 3:
        return RUNERROR_NO_SOLUTION;
    default:
        return RUNERROR_NONE;
    }
}

void CORVSpumKyvo::takeResolvedSpectra(const MCR& mcr)
{
    reportProgress("Updating the Concentration Results...");
    // Memory may still run out here: then nothing of the new run is stored.
    const XTNT::Matrix<double> concentrations = mcr.conc.transpose();
    m_lastParams = m_params;
    m_concentrations = concentrations;
    reportProgress("Updating the Spectrum Unmixing results...");
    m_spectra = mcr.spec;
    createSpectrumPlots();
}

void CORVSpumKyvo::createSpectrumPlots()
{
    reportProgress("Creating plots from spectrum unmixing results...");
    updateSpectrumPlots(m_spectrumPlots, m_spectra, m_selectedKeyPairs, m_eAxis, m_suggestedLabels);
}

void CORVSpumKyvo::runPCA()
{
    m_nError = RUNERROR_NONE;
    m_bRunPCA = false;
    m_nError = errorCodeOf([this] { return analyseSelection(); });
}

// What the user is only told of, by a line, is no error.
int CORVSpumKyvo::analyseSelection()
{
    if (!createImageList()) {
        reportStatus("Unable to createImageList.", CORVLOG_PROGRESS);
        return RUNERROR_NONE;
    }
    if (!setBinningAndSize(m_bAutoBinning)) {
        reportStatus("Unable to setBinningAndSize.", CORVLOG_PROGRESS);
        return RUNERROR_NONE;
    }
    if (!takeDataMask(MaskPixels::NonZeroBytes)) {
        return RUNERROR_NONE;
    }
    const bool bBuilt = buildImageCube();
    if (m_analysisInput.endPcaOfUnfitImages && !m_imageFindings.isFitForPca()) {
        return RUNERROR_NONE;
    }
    if (!bBuilt || m_cube.m_data.empty()) {
        return RUNERROR_DATA;
    }
    reportProgress("Perform PCA on the selected data...");
    constexpr unsigned autoscaled = 1;
    PCA pca;
    if (pca.decompose(m_cube.m_data, autoscaled) == 0) {
        return RUNERROR_MEMORY;
    }
    m_pcaResult = pca.eigenvalues();
    return RUNERROR_NONE;
}
