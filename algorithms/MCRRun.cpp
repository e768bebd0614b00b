// SPDX-License-Identifier: GPL-3.0-or-later
// The loop of a resolution: order of the steps, stop rules, trace. The order is a contract, odd places included.
#include "algorithms/MCR.h"

#include "algorithms/rowPasses.h"

#include "XTNT/least_squares.h"

#include <cmath>
#include <iostream>

namespace {

enum Result
{
    Success = 0,
    Divergence = 1,
    LimitReached = 2,
    DegenerateEstimate = 3
};

// Explained variance, in percent, above which a fit is good enough.
constexpr double goodFit = 99.9;

// Iterations in a row that may fail to improve.
constexpr int patience = 10;

} // namespace

int MCR::run(std::ostream& out)
{
    m_ending = Ending::NotRun;
    deriveSwitches();
    if (forceAF != 0) {
        rowNorms = rowpass::rowNorms(rawData);
    }
    const int savedWarmUp = warmUp;
    if (rowScaling != 0) {
        rowNorms = rowpass::rowNorms(rawData);
        rowpass::divideRows(rawData, rowNorms);
    }
    const int kept = static_cast<int>(nComponents) + extraPCs;
    keepMatrices != 0 ? pca.reconstruct(data, kept) : pca.reconstructInPlace(data, kept);
    const double normOfData = norm(data);
    const double normOfRawData = norm(rawData);
    fitData = weightingMode < 1 ? data : data.deepCopy();
    if (initialEstimateKind == 1) {
        spec = XTNT::solveForLeft(conc, data);
    }
    if (!normaliseAndSort()) {
        return degenerate();
    }
    const auto finishWith = [&](Result result) {
        warmUp = savedWarmUp;
        return finish(out, result, normOfData, normOfRawData);
    };
    if (iteration >= maxIterations) {
        ++iteration;
        return finishWith(Success);
    }
    for (double sigmaOld = normOfData, sigmaNew = 0;; sigmaOld = sigmaNew) {
        if (!iterate(&sigmaNew)) {
            return degenerate();
        }
        switch (judge(out, sigmaOld, sigmaNew, normOfData)) {
        case Verdict::Converged:
            return finishConverged() ? finishWith(Success) : degenerate();
        case Verdict::GoodFit:
        case Verdict::Limit:
            return finishWith(Success);
        case Verdict::Diverged:
            return finishWith(Divergence);
        case Verdict::GoOn:
            break;
        }
    }
}

// One iteration up to the norm of its residual.
bool MCR::iterate(double* sigma)
{
    ++iteration;
    if (warmUp != 0) {
        --warmUp;
    }
    updateDataBySpectra();
    if (!solveConcentrations(true)) {
        return false;
    }
    constrainConcentrations();
    updateDataByConcentrations();
    if (!solveSpectra()) {
        return false;
    }
    makeSpectraNonNegative();
    if (!normaliseAndSort()) {
        return false;
    }
    boundAndShapeSpectra();
    if (!normaliseAndSort()) {
        return false;
    }
    *sigma = m_fit->residualNorm(fitData, spec);
    return true;
}

// A NaN makes every comparison false: such an iteration counts as improving, and only the limit ends the run.
MCR::Verdict MCR::judge(std::ostream& out, double sigmaOld, double sigmaNew, double norm)
{
    out << "Iteration: " << iteration << '\n';
    out << "Residue (PCA) Norm, OLD=" << sigmaOld << ", NEW=" << sigmaNew << '\n';
    const double change = (sigmaOld - sigmaNew) / sigmaNew * 100;
    if (change < 0) {
        out << "......Fitting is not improving!!!" << '\n';
        ++notImprovingCount;
    } else {
        out << "......Fitting is improving!!!" << '\n';
        notImprovingCount = 0;
    }
    const double lackOfFit = sigmaNew / norm * 100;
    out << "Change in sigma(%)" << change << '\n';
    out << "Fitting error (lack of fit) in % (PCA) =" << lackOfFit << '\n';
    out << "Percent of variance explained (r2) =" << 100 - lackOfFit << '\n';
    out << spec;

    if (convergenceTolerance > std::abs(change)) {
        if (warmUp < 1) {
            out << "Convergence is achieved!!!" << '\n';
            m_ending = Ending::Converged;
            return Verdict::Converged;
        }
        // A stalled fit ends the warm-up, not the run.
        warmUp = 0;
    }
    if (100 - lackOfFit > goodFit) {
        if (warmUp < 1) {
            out << "Fit is good enough" << '\n';
            m_ending = Ending::GoodFit;
            return Verdict::GoodFit;
        }
        warmUp = 0;
    }
    if (notImprovingCount > patience) {
        out << "Divergence, stop!!!" << '\n';
        m_ending = Ending::Diverged;
        return Verdict::Diverged;
    }
    if (iteration >= maxIterations) {
        // Beyond the limit, so that the end of the run sees that it was reached here.
        ++iteration;
        return Verdict::Limit;
    }
    return Verdict::GoOn;
}

// The concentrations of the converged spectra. Unimodality comes before the bounds here, the other way round than in an
// iteration: results that users saved were made so.
bool MCR::finishConverged()
{
    updateDataBySpectra();
    if (!solveConcentrations(false)) {
        return false;
    }
    m_fit.reset();
    if (shapeConcentrations()) {
        shapeConcentrationColumns();
    }
    if (boundConcentrations()) {
        applyConcentrationBounds();
    }
    forceAutofluorescence();
    return true;
}

// That the limit was reached overrides how the run ended otherwise.
int MCR::finish(std::ostream& out, int result, double normOfData, double normOfRawData)
{
    m_fit.reset();
    m_reduction.reset();
    if (iteration >= maxIterations) {
        out << "Maximum iteration number is reached!!!" << '\n';
        m_ending = Ending::IterationLimit;
        result = LimitReached;
    }
    if (rowScaling != 0) {
        rowpass::multiplyRows(conc, rowNorms);
        rowpass::multiplyRows(rawData, rowNorms);
    }
    const XTNT::ResidualNorms norms = fillResiduals();
    lackOfFitPCA = norms.fit / normOfData * 100;
    lackOfFitRaw = norms.raw / normOfRawData * 100;
    return result;
}

int MCR::degenerate()
{
    m_fit.reset();
    m_ending = Ending::Degenerate;
    return lastError;
}
