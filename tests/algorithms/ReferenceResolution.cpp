// SPDX-License-Identifier: GPL-3.0-or-later
#include "ReferenceResolution.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace reference {

namespace {

std::vector<int> copied(const XTNT::Vector<int>& v)
{
    return std::vector<int>(v.data, v.data + v.n_);
}

bool anyPositive(const std::vector<int>& values)
{
    return std::any_of(values.begin(), values.end(), [](int value) { return value > 0; });
}

bool anyPositive(const Table& values)
{
    for (Index i = 0; i < values.rows; ++i) {
        for (Index j = 0; j < values.columns; ++j) {
            if (values(i, j) > 0) {
                return true;
            }
        }
    }
    return false;
}

int flagOf(const std::vector<int>& flags, Index component)
{
    return flags.empty() ? 0 : flags[static_cast<std::size_t>(component)];
}

// The walk towards the low end; the other one walks the mirrored column.
void walkDown(Column& a, Index peakAt, int mode, double tolerance)
{
    const Index last = static_cast<Index>(a.size()) - 1;
    const auto cell = [&a](Index i) -> double& { return a[static_cast<std::size_t>(i)]; };
    double current = cell(peakAt);
    for (Index i = peakAt - 1; i >= 0; --i) {
        const double value = cell(i);
        if (current >= value) {
            current = value;
            continue;
        }
        if (value > current * tolerance) {
            if (mode == 2) {
                cell(i) = cell(i + 1);
            } else if ((mode == 3 || mode == 4) && current >= 0) {
                const double mean = (cell(i) + cell(mode == 3 ? i + 1 : i + 2)) / 2;
                cell(i) = mean;
                cell(i + 1) = mean;
                i = std::min(i + 2, last);
            } else {
                cell(i) = 0;
            }
        }
        current = cell(i);
    }
}

} // namespace

void makeUnimodal(Column& values, int mode, double tolerance)
{
    if (mode < 1 || mode > 4 || values.empty()) {
        return;
    }
    const Index peakAt = std::max_element(values.begin(), values.end()) - values.begin();
    walkDown(values, peakAt, mode, tolerance);
    std::reverse(values.begin(), values.end());
    walkDown(values, static_cast<Index>(values.size()) - 1 - peakAt, mode, tolerance);
    std::reverse(values.begin(), values.end());
}

Resolution::Resolution(const MCR& from)
    : K(from.nComponents), M(from.nRows), N(from.nCols), iteration(from.iteration), maxIterations(from.maxIterations),
      notImprovingCount(from.notImprovingCount), weightingMode(from.weightingMode), concNonNegMode(from.concNonNegMode),
      specNonNegMode(from.specNonNegMode), rowScaling(from.rowScaling), initialEstimateKind(from.initialEstimateKind),
      normalization(from.normalization), warmUp(from.warmUp), extraPCs(from.extraPCs), lastError(from.lastError),
      convergenceTolerance(from.convergenceTolerance), unimodTol(from.unimodTol), lackOfFitPCA(from.lackOfFitPCA),
      lackOfFitRaw(from.lackOfFitRaw), forceAF(from.forceAF != 0), autoSorting(from.autoSorting != 0),
      rawData(from.rawData), originalData(from.rawData), residualPCA(from.residualPCA), residualRaw(from.residualRaw),
      conc(from.conc), spec(from.spec), topology(from.topology), weights(from.weights),
      concBoundValues(from.concBoundValues), specBoundValues(from.specBoundValues), concBoundModes(from.concBoundModes),
      specBoundModes(from.specBoundModes), concNonNegFlags(copied(from.concNonNegFlags)),
      specNonNegFlags(copied(from.specNonNegFlags)), concUnimodModes(copied(from.concUnimodModes)),
      specUnimodModes(copied(from.specUnimodModes)), lockedFlags(copied(from.lockedFlags))
{
}

int Resolution::run()
{
    const int savedWarmUp = warmUp;
    Next next = setUp();
    while (next == Next::Iterate) {
        next = iterate();
    }
    if (next == Next::FinalConcentrations) {
        next = finalConcentrations();
    }
    if (next == Next::Degenerate) {
        return 3;
    }
    warmUp = savedWarmUp;
    return finish();
}

void Resolution::deriveSwitches()
{
    for (Index c = 0; c < K; ++c) {
        if (flagOf(lockedFlags, c) <= 0) {
            continue;
        }
        if (specBoundModes.empty()) {
            specBoundModes = Table(K, N);
        }
        if (specBoundValues.empty()) {
            specBoundValues = Table(K, N);
        }
        for (Index j = 0; j < N; ++j) {
            specBoundModes(c, j) = 1;
            specBoundValues(c, j) = spec(c, j);
        }
        if (!specUnimodModes.empty()) {
            specUnimodModes[static_cast<std::size_t>(c)] = 0;
        }
    }
    m_concUnimod = anyPositive(concUnimodModes);
    m_specUnimod = anyPositive(specUnimodModes);
    m_concBounds = anyPositive(concBoundModes);
    m_specBounds = anyPositive(specBoundModes);
}

void Resolution::computeRowNorms()
{
    rowNorms.clear();
    for (Index i = 0; i < M; ++i) {
        long double squares = 0;
        for (const double value : rawData.row(i)) {
            squares += static_cast<long double>(value) * value;
        }
        rowNorms.push_back(squares > 0 ? static_cast<double>(std::sqrt(squares)) : 0.0);
    }
}

Resolution::Next Resolution::setUp()
{
    deriveSwitches();
    if (forceAF) {
        computeRowNorms();
    }
    // The decomposition was made of the data as they came, before any scaling of rows.
    data = leadingPart(originalData, K + extraPCs);
    if (rowScaling != 0) {
        computeRowNorms();
        for (Index i = 0; i < M; ++i) {
            for (Index j = 0; j < N; ++j) {
                rawData(i, j) = rawData(i, j) / rowNorms[static_cast<std::size_t>(i)];
            }
        }
    }
    m_normData = frobenius(data);
    m_normRaw = frobenius(rawData);
    m_sigmaOld = m_normData;
    fitData = data;
    if (initialEstimateKind == 1) {
        spec = leastSquares(conc, data);
    }
    if (!normaliseAndSort()) {
        return Next::Degenerate;
    }
    if (iteration >= maxIterations) {
        iteration += 1;
        return Next::Finish;
    }
    return Next::Iterate;
}

bool Resolution::degenerate()
{
    lastError = 3;
    return false;
}

bool Resolution::normaliseAndSort()
{
    if (normalization == 1 || normalization == 2) {
        for (Index c = 0; c < K; ++c) {
            const Column row = spec.row(c);
            double factor = *std::max_element(row.begin(), row.end());
            if (normalization == 2) {
                factor = 0;
                for (const double value : row) {
                    factor += std::abs(value);
                }
                factor *= static_cast<double>(N);
            }
            if (std::abs(factor) < 1e-15) {
                return degenerate();
            }
            for (Index j = 0; j < N; ++j) {
                spec(c, j) /= factor;
            }
        }
    }
    sortComponents();
    return true;
}

void Resolution::sortComponents()
{
    if (!autoSorting || topology.rows > 1) {
        return;
    }
    Column centres;
    for (Index c = 0; c < K; ++c) {
        double moment = 0;
        double total = 0;
        for (Index j = 0; j < N; ++j) {
            moment += static_cast<double>(j + 1) * spec(c, j);
            total += spec(c, j);
        }
        centres.push_back(moment / total);
    }
    std::vector<Index> order(static_cast<std::size_t>(K));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&centres](Index a, Index b) {
        return centres[static_cast<std::size_t>(a)] < centres[static_cast<std::size_t>(b)];
    });
    spec = transposed(pickColumns(transposed(spec), order));
    if (!conc.empty()) {
        conc = pickColumns(conc, order);
    }
}

Resolution::Next Resolution::iterate()
{
    iteration += 1;
    if (warmUp != 0) {
        warmUp -= 1;
    }
    if (concentrationHalfStep() == Next::Degenerate || spectrumHalfStep() == Next::Degenerate) {
        return Next::Degenerate;
    }
    return judge();
}

Resolution::Next Resolution::concentrationHalfStep()
{
    weightedUpdateWithSpec();
    conc = leastSquaresFromRight(data, spec);
    if (conc.empty()) {
        degenerate();
        return Next::Degenerate;
    }
    constrainConc();
    boundConc();
    unimodalConc();
    forceAutofluorescence();
    return Next::Iterate;
}

Resolution::Next Resolution::spectrumHalfStep()
{
    weightedUpdateWithConc();
    spec = leastSquares(conc, data);
    if (spec.empty()) {
        degenerate();
        return Next::Degenerate;
    }
    constrainSpecSigns();
    if (!normaliseAndSort()) {
        return Next::Degenerate;
    }
    const Table specBeforeBounds = spec;
    if (m_specBounds && warmUp < 1) {
        applyBounds(spec, specBoundModes, specBoundValues);
    }
    unimodalSpec();
    refitFreeComponents(specBeforeBounds);
    return normaliseAndSort() ? Next::Iterate : Next::Degenerate;
}

Resolution::Next Resolution::judge()
{
    residualPCA = difference(fitData, product(conc, spec));
    const double sigmaNew = frobenius(residualPCA);
    m_trace << "Iteration: " << iteration << '\n';
    m_trace << "Residue (PCA) Norm, OLD=" << m_sigmaOld << ", NEW=" << sigmaNew << '\n';
    const double change = (m_sigmaOld - sigmaNew) / sigmaNew * 100;
    notImprovingCount = change < 0 ? notImprovingCount + 1 : 0;
    m_trace << (change < 0 ? "......Fitting is not improving!!!" : "......Fitting is improving!!!") << '\n';
    const double lackOfFit = sigmaNew / m_normData * 100;
    m_trace << "Change in sigma(%)" << change << '\n';
    m_trace << "Fitting error (lack of fit) in % (PCA) =" << lackOfFit << '\n';
    m_trace << "Percent of variance explained (r2) =" << 100 - lackOfFit << '\n';
    m_trace << K << ' ' << N << '\n';
    for (Index c = 0; c < K; ++c) {
        for (const double value : spec.row(c)) {
            m_trace << value << ' ';
        }
        m_trace << '\n';
    }
    m_sigmaOld = sigmaNew;
    if (convergenceTolerance > std::abs(change)) {
        if (warmUp < 1) {
            m_trace << "Convergence is achieved!!!\n";
            return Next::FinalConcentrations;
        }
        warmUp = 0;
    }
    if (100 - lackOfFit > 99.9) {
        if (warmUp < 1) {
            m_trace << "Fit is good enough\n";
            m_result = 0;
            return Next::Finish;
        }
        warmUp = 0;
    }
    if (notImprovingCount > 10) {
        m_trace << "Divergence, stop!!!\n";
        m_result = 1;
        return Next::Finish;
    }
    if (iteration >= maxIterations) {
        iteration += 1;
        return Next::Finish;
    }
    return Next::Iterate;
}

Resolution::Next Resolution::finalConcentrations()
{
    weightedUpdateWithSpec();
    conc = leastSquaresFromRight(data, spec);
    if (conc.empty()) {
        degenerate();
        return Next::Degenerate;
    }
    constrainConc();
    unimodalConc();
    boundConc();
    forceAutofluorescence();
    m_result = 0;
    return Next::Finish;
}

int Resolution::finish()
{
    if (iteration >= maxIterations) {
        m_trace << "Maximum iteration number is reached!!!\n";
        m_result = 2;
    }
    for (Index i = 0; i < M && rowScaling != 0; ++i) {
        const double norm = rowNorms[static_cast<std::size_t>(i)];
        for (Index c = 0; c < K; ++c) {
            conc(i, c) *= norm;
        }
        for (Index j = 0; j < N; ++j) {
            rawData(i, j) *= norm;
        }
    }
    const Table model = product(conc, spec);
    residualPCA = difference(fitData, model);
    residualRaw = difference(rawData, model);
    lackOfFitPCA = frobenius(residualPCA) / m_normData * 100;
    lackOfFitRaw = frobenius(residualRaw) / m_normRaw * 100;
    return m_result;
}

} // namespace reference
