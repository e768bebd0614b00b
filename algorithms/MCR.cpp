// SPDX-License-Identifier: GPL-3.0-or-later
// Data, first estimate and settings of a resolution.
#include "algorithms/MCR.h"

#include "algorithms/elementBounds.h"
#include "algorithms/rowPasses.h"

#include "host/corrcoef.h"
#include "host/kmeans.h"

#include <algorithm>

using XTNT::Matrix;
using XTNT::Vector;

namespace {

// Settings of the clustering behind the first estimate.
constexpr long long clusteringSweeps = 10000;
constexpr int clusteringOption = 1;

// What a correlation of -1 to 1 never is: marks a row that holds a known spectrum.
constexpr double taken = -2.0;

// Sum of row `row` of the layout over columns first to last, as far as there are such columns.
long long countBands(const Matrix<int>& layout, long long row, long long first, long long last)
{
    long long count = 0;
    for (long long p = std::max(first, 0LL); p <= std::min(last, layout.num_cols() - 1); ++p) {
        count += layout[row][p];
    }
    return count;
}

} // namespace

int MCR::setData(const Matrix<double>& x)
{
    nRows = x.num_rows();
    nCols = x.num_cols();
    rawData = x;
    return pca.decompose(rawData, 0);
}

int MCR::setData(double* buffer, long long rows, long long columns)
{
    return setData(Matrix<double>(buffer, rows, columns));
}

int MCR::setComponents(int k)
{
    if (k > nCols || k > nRows) {
        return 1;
    }
    if (k > pca.rank) {
        lastError = 2;
        return 2;
    }
    if (k < 2) {
        return 3;
    }
    nComponents = k;
    conc.reshape(nRows, nComponents);
    spec.reshape(nComponents, nCols);
    specBoundModes.reshape(nComponents, nCols);
    specBoundValues.reshape(nComponents, nCols);
    specUnimodModes.reshape(nComponents);
    knownSpectrumState.reshape(nComponents);
    computeInitialEstimate(0);
    return lastError;
}

void MCR::computeInitialEstimate(int state)
{
    knownSpectrumState.fill(state);
    if (state != 0) {
        return;
    }
    Vector<long long> labels;
    XTNT::kmeans(rawData, nComponents, labels, clusteringSweeps, XTNT::KMEANS_EUCLIDEAN, clusteringOption);
    spec = rowpass::labelMeans(rawData, labels, nComponents);
    if (normaliseAndSort()) {
        sortComponents();
    }
}

bool MCR::setKnownSpectrum(int component, Vector<double> spectrum)
{
    if (!componentExists(component) || spectrum.size() != nCols) {
        return false;
    }
    autoSorting = 0;
    forceAF = 0;
    Vector<double> r(nComponents);
    for (long long i = 0; i < nComponents; ++i) {
        Vector<double> estimate = spec.row(i);
        r[i] = XTNT::corrcoef(spectrum, estimate);
    }
    for (long long attempt = 0; attempt < nComponents; ++attempt) {
        long long best = 0;
        r.Max(&best);
        if (best != component && knownSpectrumState[best] == -1) {
            r[best] = taken;
            continue;
        }
        if (best != component) {
            spec.setRow(best, spec.row(component));
        }
        spec.setRow(component, spectrum);
        knownSpectrumState[component] = -1;
        return true;
    }
    return false;
}

int MCR::setTopology(const Matrix<int>& layout)
{
    long long bands = 0;
    for (long long i = 0; i < layout.storage.size(); ++i) {
        bands += layout.storage[i];
    }
    if (bands != nCols) {
        return 1;
    }
    topology = layout;
    return 0;
}

int MCR::setNonNegMode(int which, int mode)
{
    if (which != 0 && which != 1) {
        return 1;
    }
    (which == 0 ? concNonNegMode : specNonNegMode) = mode;
    Vector<int>& flags = which == 0 ? concNonNegFlags : specNonNegFlags;
    flags.reshape(nComponents);
    flags.fill(1);
    return 0;
}

int MCR::setUnimodTol(double tolerance)
{
    unimodTol = tolerance;
    return 0;
}

int MCR::setUnimodFlags(int which, const Vector<int>& modes)
{
    if (modes.size() != nComponents) {
        return 1;
    }
    if (which == 0) {
        concUnimodModes = modes;
        return 0;
    }
    if (which == 1) {
        specUnimodModes = modes;
    }
    return 1;
}

bool MCR::setUnimodMode(int component, int mode)
{
    if (!componentExists(component) || mode >= 4) {
        return false;
    }
    if (specUnimodModes.empty()) {
        specUnimodModes.reshape(nComponents);
    }
    specUnimodModes[component] = mode;
    return true;
}

int MCR::setBounds(int which, const Matrix<int>& modes, const Matrix<double>& values)
{
    const long long rows = which == 0 ? nRows : nComponents;
    const long long columns = which == 0 ? nComponents : nCols;
    if ((which != 0 && which != 1) || modes.num_rows() != rows || modes.num_cols() != columns ||
        values.num_rows() != rows || values.num_cols() != columns) {
        return 1;
    }
    (which == 0 ? concBoundModes : specBoundModes) = modes;
    (which == 0 ? concBoundValues : specBoundValues) = values;
    return 0;
}

int MCR::setInitialEstimate(int which, const Matrix<double>& estimate)
{
    const long long rows = which == 0 ? nRows : nComponents;
    const long long columns = which == 0 ? nComponents : nCols;
    if ((which != 0 && which != 1) || estimate.num_rows() != rows || estimate.num_cols() != columns) {
        return 1;
    }
    initialEstimateKind = which + 1;
    (which == 0 ? conc : spec) = estimate;
    return 0;
}

int MCR::setWeights(const Matrix<double>& values)
{
    if (values.num_rows() != nRows || values.num_cols() != nCols) {
        return 1;
    }
    weights = values;
    return 0;
}

int MCR::setWeightingMode(int mode)
{
    if (weights.num_rows() != nRows || weights.num_cols() != nCols) {
        return 1;
    }
    weightingMode = mode;
    return 0;
}

bool MCR::setBandCutoff(unsigned kind, int component, int band)
{
    if (!componentExists(component) || band >= nCols || kind > 1) {
        return false;
    }
    ensureBounds(specBoundModes, specBoundValues, nComponents, nCols);
    long long segment = 0;
    for (long long r = 0; r < topology.num_rows(); ++r) {
        const long long length = countBands(topology, r, 0, topology.num_cols() - 1);
        const long long count =
            kind == 0 ? countBands(topology, r, 0, band) : countBands(topology, r, band, topology.num_cols() - 1);
        const long long first = kind == 0 ? segment : segment + length - count;
        for (long long j = first; j < first + count; ++j) {
            specBoundModes[component][j] = static_cast<int>(BoundMode::Equal);
            specBoundValues[component][j] = 0;
        }
        segment += length;
    }
    return true;
}

bool MCR::setLocked(int component, unsigned char locked)
{
    if (!componentExists(component)) {
        return false;
    }
    if (lockedFlags.empty()) {
        lockedFlags.reshape(nComponents);
    }
    lockedFlags[component] = locked;
    return true;
}

bool MCR::setSolutionMask(int component, const Vector<int>& pixels)
{
    if (!acceptsPixels(component, pixels)) {
        return false;
    }
    ensureBounds(concBoundModes, concBoundValues, nRows, nComponents);
    for (long long i = pixels.size(); i < nRows; ++i) {
        concBoundModes[i][component] = static_cast<int>(BoundMode::Equal);
        concBoundValues[i][component] = 0;
    }
    return true;
}

bool MCR::setPureMask(int component, const Vector<int>& pixels)
{
    if (!acceptsPixels(component, pixels)) {
        return false;
    }
    ensureBounds(concBoundModes, concBoundValues, nRows, nComponents);
    for (long long i = 0; i < pixels.size(); ++i) {
        if (pixels[i] < 0 || pixels[i] >= nRows) {
            continue;
        }
        for (long long c = 0; c < nComponents; ++c) {
            if (c != component) {
                concBoundModes[pixels[i]][c] = static_cast<int>(BoundMode::Equal);
                concBoundValues[pixels[i]][c] = 0;
            }
        }
    }
    return true;
}

bool MCR::acceptsPixels(int component, const Vector<int>& pixels) const
{
    const bool bWrong = !pixels.empty() && pixels.Min() < 0 && pixels.Max() >= nRows;
    return componentExists(component) && !bWrong;
}
