// SPDX-License-Identifier: GPL-3.0-or-later
// Half-steps and constraints of a resolution.
#include "algorithms/MCR.h"

#include "algorithms/PlainSpectrumFit.h"
#include "algorithms/ReducedSpectrumFit.h"
#include "algorithms/elementBounds.h"
#include "algorithms/freeComponentRefit.h"
#include "algorithms/plainConcentrations.h"
#include "algorithms/rowPasses.h"
#include "algorithms/unimodality.h"
#include "algorithms/weightedUpdate.h"

#include "XTNT/concentration_pass.h"
#include "XTNT/least_squares.h"
#include "XTNT/xtnt_pages.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <memory>
#include <utility>

using XTNT::Matrix;
using XTNT::Vector;

namespace {

// Non-negativity of a factor.
enum NonNegative
{
    Clamp = 1,
    LeastSquares = 2
};

// A spectrum whose factor is smaller cannot be normalised.
constexpr double smallestFactor = 1e-15;

// Components do without autofluorescence only where the signal is weaker than this share of the strongest.
constexpr double signalShare = 1000;

bool anyPositive(const Matrix<int>& modes)
{
    const int* values = modes.storage.data;
    return std::any_of(values, values + modes.storage.size(), [](int mode) { return mode > 0; });
}

// A least-squares problem with an element that is not finite has no solution to be had: all of it is NaN.
Matrix<double> undefined(long long rows, long long columns)
{
    return Matrix<double>(rows, columns, std::numeric_limits<double>::quiet_NaN());
}

} // namespace

// The switches are only ever set here, never cleared.
void MCR::deriveSwitches()
{
    for (long long c = 0; c < lockedFlags.size(); ++c) {
        if (lockedFlags[c] > 0) {
            lockSpectrum(static_cast<int>(c));
        }
    }
    if (specUnimodModes.Max() > 0) {
        specUnimodActive = 1;
    }
    if (concUnimodModes.Max() > 0) {
        concUnimodActive = 1;
    }
    if (anyPositive(specBoundModes)) {
        specBoundsActive = 1;
    }
    if (anyPositive(concBoundModes)) {
        concBoundsActive = 1;
    }
}

// Holds a spectrum at what it is now; it takes no unimodality.
void MCR::lockSpectrum(int component)
{
    ensureBounds(specBoundModes, specBoundValues, nComponents, nCols);
    for (long long j = 0; j < nCols; ++j) {
        specBoundModes[component][j] = static_cast<int>(BoundMode::Equal);
        specBoundValues[component][j] = spec[component][j];
    }
    if (!specUnimodModes.empty()) {
        specUnimodModes[component] = 0;
    }
}

double MCR::norm(const Matrix<double>& a) const
{
    return isPlain() ? a.norm(2) : rowpass::frobeniusNorm(a);
}

// conc from spec, its non-negativity included.
bool MCR::solveConcentrations(bool bSpectraFollow)
{
    m_fit.reset();
    m_reduction.reset();
    if (!rowpass::allFinite(spec)) {
        conc = undefined(nRows, nComponents);
        return true;
    }
    if (!(isPlain() ? solveConcentrationsPlainly() : solveConcentrationsInOnePass(bSpectraFollow))) {
        conc = Matrix<double>();
        lastError = 3;
        return false;
    }
    return true;
}

bool MCR::solveConcentrationsPlainly()
{
    conc = plainConcentrations(data, spec, debugTrace != 0);
    if (concNonNegMode == Clamp) {
        rowpass::clampColumns(conc, concNonNegFlags, 0, conc.num_rows());
    }
    if (concNonNegMode == LeastSquares) {
        makeRowsNonNegative(data, spec, conc, debugTrace != 0);
    }
    return !conc.empty();
}

// Fits, corrects and, where nothing else changes the concentrations before the spectra are solved, reduces each block
// of rows while it is in the cache.
bool MCR::solveConcentrationsInOnePass(bool bSpectraFollow)
{
    const Matrix<double> solution = XTNT::rightSolutionOperator(spec);
    if (solution.empty()) {
        return false;
    }
    ownConcentrations();
    const bool bReduce = bSpectraFollow && !updatesAreWeighted() && !boundConcentrations() && !shapeConcentrations() &&
                         !forcesAutofluorescence();
    if (bReduce) {
        m_reduction = std::make_unique<XTNT::LeftReduction>(data, nComponents);
    }
    const bool bClamp = concNonNegMode == Clamp;
    XTNT::ConcentrationPass::BlockStep step;
    if (bClamp || bReduce) {
        step = [this, bClamp](long long begin, long long end) {
            if (bClamp) {
                rowpass::clampColumns(conc, concNonNegFlags, begin, end);
            }
            if (m_reduction) {
                m_reduction->add(conc, begin, end);
            }
        };
    }
    using Negative = XTNT::ConcentrationPass::Negative;
    XTNT::ConcentrationPass(data, spec, solution, concNonNegMode == LeastSquares ? Negative::Solve : Negative::Keep)
        .run(conc, step);
    if (bReduce) {
        m_reduction->finish();
    }
    return true;
}

// The elements of conc are overwritten in place, unless somebody else shares them.
void MCR::ownConcentrations()
{
    const bool bOwn = conc.storage.refCount != nullptr && *conc.storage.refCount == 1;
    if (!bOwn || conc.num_rows() != nRows || conc.num_cols() != nComponents) {
        conc.reshape(nRows, nComponents);
        XTNT::preferLargePages(conc);
    }
}

void MCR::constrainConcentrations()
{
    if (boundConcentrations()) {
        applyConcentrationBounds();
    }
    if (shapeConcentrations()) {
        shapeConcentrationColumns();
    }
    forceAutofluorescence();
}

void MCR::applyConcentrationBounds()
{
    applyBounds(conc, concBoundModes, concBoundValues);
}

void MCR::shapeConcentrationColumns()
{
    makeUnimodal(conc, concUnimodModes, unimodTol);
}

// Background fluorescence can't vanish from a pixel with real signal.
void MCR::forceAutofluorescence()
{
    if (!forcesAutofluorescence() || rowNorms.size() < conc.num_rows()) {
        return;
    }
    double total = 0;
    for (long long i = 0; i < conc.num_rows(); ++i) {
        total += conc[i][0];
    }
    const double mean = total / static_cast<double>(conc.num_rows());
    const double limit = rowNorms.Max() / signalShare;
    for (long long i = 0; i < conc.num_rows(); ++i) {
        if (conc[i][0] == 0 && rowNorms[i] > limit) {
            conc[i][0] = mean;
        }
    }
}

// spec from conc; m_fit is made here.
bool MCR::solveSpectra()
{
    if (isPlain()) {
        m_fit = std::make_unique<PlainSpectrumFit>(conc, data, debugTrace != 0);
    } else {
        m_fit = std::make_unique<ReducedSpectrumFit>(conc, data, std::move(m_reduction));
    }
    spec = m_fit->solve();
    if (spec.empty() && !(rowpass::allFinite(conc) && rowpass::allFinite(data))) {
        spec = undefined(nComponents, nCols);
    }
    if (spec.empty()) {
        lastError = 3;
        return false;
    }
    if (debugTrace != 0) {
        std::cout << "SPEC\n" << spec;
    }
    return true;
}

void MCR::makeSpectraNonNegative()
{
    if (specNonNegMode == Clamp) {
        const long long rows = std::min(spec.num_rows(), specNonNegFlags.size());
        for (long long c = 0; c < rows; ++c) {
            for (long long j = 0; j < spec.num_cols() && specNonNegFlags[c] == 1; ++j) {
                spec[c][j] = spec[c][j] < 0 ? 0 : spec[c][j];
            }
        }
    }
    if (specNonNegMode != LeastSquares) {
        return;
    }
    for (long long j = 0; j < spec.num_cols(); ++j) {
        if (!hasNegative(spec, j)) {
            continue;
        }
        const Vector<double>& x = m_fit->nonNegative(j);
        for (long long c = 0; c < spec.num_rows(); ++c) {
            spec[c][j] = x[c];
        }
    }
}

void MCR::boundAndShapeSpectra()
{
    const bool bBound = specBoundsActive != 0 && warmUp < 1;
    const bool bShape = specUnimodActive != 0 && warmUp == 0;
    if (!bBound && !bShape) {
        return;
    }
    const Matrix<double> specBeforeBounds = spec.deepCopy();
    if (bBound) {
        applyBounds(spec, specBoundModes, specBoundValues);
    }
    if (bShape) {
        shapeSpectraBySegments();
    }
    refitFreeComponents(specBeforeBounds, spec, *m_fit);
}

// Each row of the topology is a segment of the bands with a peak of its own.
void MCR::shapeSpectraBySegments()
{
    long long first = 0;
    for (long long r = 0; r < topology.num_rows(); ++r) {
        long long length = 0;
        for (long long p = 0; p < topology.num_cols(); ++p) {
            length += topology[r][p];
        }
        Matrix<double> segment = spec.subMatrix(0, spec.num_rows() - 1, first, first + length - 1).transpose();
        makeUnimodal(segment, specUnimodModes, unimodTol);
        for (long long j = 0; j < segment.num_rows(); ++j) {
            for (long long c = 0; c < segment.num_cols(); ++c) {
                spec[c][first + j] = segment[j][c];
            }
        }
        first += length;
    }
}

// The concentrations are not scaled in return: the next half-step restores the balance.
bool MCR::normaliseAndSort()
{
    if (normalization == 1 || normalization == 2) {
        for (long long c = 0; c < spec.num_rows(); ++c) {
            double factor = 0;
            if (normalization == 1) {
                factor = spec.row(c).Max();
            } else {
                for (long long j = 0; j < spec.num_cols(); ++j) {
                    factor += std::abs(spec[c][j]);
                }
                // The number of bands is part of the factor on purpose.
                factor *= static_cast<double>(nCols);
            }
            if (std::abs(factor) < smallestFactor) {
                lastError = 3;
                return false;
            }
            for (long long j = 0; j < spec.num_cols(); ++j) {
                spec[c][j] /= factor;
            }
        }
    }
    sortComponents();
    return true;
}

// By the centre of mass of the spectra over the band numbers, in which a grid of several rows has no order.
void MCR::sortComponents()
{
    if (autoSorting == 0 || topology.num_rows() > 1 || spec.empty()) {
        return;
    }
    const Vector<long long> order = rowpass::orderByCentre(spec);
    bool bSorted = true;
    for (long long i = 0; i < order.size(); ++i) {
        bSorted = bSorted && order[i] == i;
    }
    if (bSorted) {
        return;
    }
    const Matrix<double> former = spec.deepCopy();
    for (long long i = 0; i < order.size(); ++i) {
        spec.setRow(i, former.row(order[i]));
    }
    if (conc.num_cols() == order.size()) {
        rowpass::reorderColumns(conc, order);
    }
    if (m_fit) {
        m_fit->reorder(order);
    }
}

bool MCR::updatesAreWeighted() const
{
    return weightingMode != 0 && weights.num_rows() == nRows && weights.num_cols() == nCols;
}

void MCR::updateDataBySpectra()
{
    if (updatesAreWeighted()) {
        projectOnSpectra(fitData, weights, spec, data);
    }
}

void MCR::updateDataByConcentrations()
{
    if (updatesAreWeighted()) {
        projectOnConcentrations(fitData, weights, conc, data);
    }
}

XTNT::ResidualNorms MCR::fillResiduals()
{
    if (!isPlain() && keepMatrices == 0) {
        return XTNT::residualNorms(fitData, rawData, conc, spec);
    }
    if (!isPlain()) {
        return XTNT::residuals(fitData, rawData, conc, spec, residualPCA, residualRaw);
    }
    residualPCA = fitData - conc * spec;
    residualRaw = (residualPCA - fitData) + rawData;
    return {residualPCA.norm(2), residualRaw.norm(2)};
}
