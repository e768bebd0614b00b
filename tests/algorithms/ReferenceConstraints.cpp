// SPDX-License-Identifier: GPL-3.0-or-later
#include "ReferenceResolution.h"

#include <algorithm>
#include <cmath>

// The constraints of the reference resolution.
namespace reference {

namespace {

bool hasNegative(const Column& values)
{
    return std::any_of(values.begin(), values.end(), [](double value) { return value < 0; });
}

bool isSet(const std::vector<int>& flags, Index component)
{
    return !flags.empty() && flags[static_cast<std::size_t>(component)] == 1;
}

} // namespace

void Resolution::constrainConc()
{
    for (Index c = 0; c < K && concNonNegMode == 1; ++c) {
        for (Index i = 0; i < M && isSet(concNonNegFlags, c); ++i) {
            conc(i, c) = conc(i, c) < 0 ? 0 : conc(i, c);
        }
    }
    for (Index i = 0; i < M && concNonNegMode == 2; ++i) {
        if (hasNegative(conc.row(i))) {
            const Column x = nonNegativeLeastSquares(transposed(spec), data.row(i));
            for (Index c = 0; c < K; ++c) {
                conc(i, c) = x[static_cast<std::size_t>(c)];
            }
        }
    }
}

void Resolution::constrainSpecSigns()
{
    for (Index c = 0; c < K && specNonNegMode == 1; ++c) {
        for (Index j = 0; j < N && isSet(specNonNegFlags, c); ++j) {
            spec(c, j) = spec(c, j) < 0 ? 0 : spec(c, j);
        }
    }
    for (Index j = 0; j < N && specNonNegMode == 2; ++j) {
        if (hasNegative(spec.column(j))) {
            const Column x = nonNegativeLeastSquares(conc, data.column(j));
            for (Index c = 0; c < K; ++c) {
                spec(c, j) = x[static_cast<std::size_t>(c)];
            }
        }
    }
}

void Resolution::applyBounds(Table& values, const Table& modes, const Table& bounds) const
{
    for (Index i = 0; i < values.rows; ++i) {
        for (Index j = 0; j < values.columns; ++j) {
            const double mode = modes(i, j);
            const double bound = bounds(i, j);
            if (mode == 1 || (mode == 2 && values(i, j) > bound) || (mode == 3 && values(i, j) < bound)) {
                values(i, j) = bound;
            }
        }
    }
}

void Resolution::boundConc()
{
    if (m_concBounds && warmUp < 1) {
        applyBounds(conc, concBoundModes, concBoundValues);
    }
}

void Resolution::unimodalConc()
{
    for (Index c = 0; c < K && m_concUnimod && warmUp == 0; ++c) {
        Column values = conc.column(c);
        makeUnimodal(values, concUnimodModes[static_cast<std::size_t>(c)], unimodTol);
        for (Index i = 0; i < M; ++i) {
            conc(i, c) = values[static_cast<std::size_t>(i)];
        }
    }
}

void Resolution::unimodalSpec()
{
    if (!m_specUnimod || warmUp != 0) {
        return;
    }
    Index first = 0;
    for (Index r = 0; r < topology.rows; ++r) {
        Index length = 0;
        for (const double present : topology.row(r)) {
            length += static_cast<Index>(present);
        }
        for (Index c = 0; c < K; ++c) {
            Column segment;
            for (Index j = first; j < first + length; ++j) {
                segment.push_back(spec(c, j));
            }
            makeUnimodal(segment, specUnimodModes[static_cast<std::size_t>(c)], unimodTol);
            for (Index j = 0; j < length; ++j) {
                spec(c, first + j) = segment[static_cast<std::size_t>(j)];
            }
        }
        first += length;
    }
}

void Resolution::forceAutofluorescence()
{
    if (!forceAF || topology.rows > 1) {
        return;
    }
    double mean = 0;
    for (Index i = 0; i < M; ++i) {
        mean += conc(i, 0);
    }
    mean /= static_cast<double>(M);
    const double largest = *std::max_element(rowNorms.begin(), rowNorms.end());
    for (Index i = 0; i < M; ++i) {
        if (conc(i, 0) == 0 && rowNorms[static_cast<std::size_t>(i)] > largest / 1000) {
            conc(i, 0) = mean;
        }
    }
}

void Resolution::refitFreeComponents(const Table& specBeforeBounds)
{
    std::vector<std::vector<bool>> changed; // a column of the mask for each band
    std::vector<Index> waiting;
    for (Index j = 0; j < N; ++j) {
        std::vector<bool> column;
        for (Index c = 0; c < K; ++c) {
            column.push_back(std::abs(specBeforeBounds(c, j) - spec(c, j)) > 1e-07);
        }
        if (std::find(column.begin(), column.end(), true) != column.end()) {
            waiting.push_back(j);
        }
        changed.push_back(column);
    }
    while (!waiting.empty()) {
        const std::vector<bool> column = changed[static_cast<std::size_t>(waiting[0])];
        std::vector<Index> group;
        std::vector<Index> others;
        for (const Index j : waiting) {
            (changed[static_cast<std::size_t>(j)] == column ? group : others).push_back(j);
        }
        waiting = others;
        std::vector<Index> freeOnes;
        std::vector<Index> fixedOnes;
        for (Index c = 0; c < K; ++c) {
            (column[static_cast<std::size_t>(c)] ? fixedOnes : freeOnes).push_back(c);
        }
        if (!freeOnes.empty()) {
            refitGroup(group, freeOnes, fixedOnes);
        }
    }
}

void Resolution::refitGroup(const std::vector<Index>& bands, const std::vector<Index>& freeOnes,
                            const std::vector<Index>& fixedOnes)
{
    const Table freeConc = pickColumns(conc, freeOnes);
    for (const Index band : bands) {
        Column target = data.column(band);
        for (Index i = 0; i < M; ++i) {
            for (const Index c : fixedOnes) {
                target[static_cast<std::size_t>(i)] -= conc(i, c) * spec(c, band);
            }
        }
        Column solution = leastSquares(freeConc, asColumn(target)).column(0);
        if (hasNegative(solution)) {
            solution = nonNegativeLeastSquares(freeConc, target);
        }
        for (std::size_t f = 0; f < freeOnes.size(); ++f) {
            spec(freeOnes[f], band) = solution[f];
        }
    }
}

void Resolution::weightedUpdateWithSpec()
{
    for (Index i = 0; i < M && weightingMode != 0; ++i) {
        Table weighted = spec; // S W
        for (Index c = 0; c < K; ++c) {
            for (Index j = 0; j < N; ++j) {
                weighted(c, j) *= weights(i, j);
            }
        }
        const Table inverse = leastSquares(product(weighted, transposed(spec)), identity(K));
        const Table amounts = product(transposed(product(weighted, asColumn(fitData.row(i)))), inverse);
        const Table row = product(amounts, spec);
        for (Index j = 0; j < N; ++j) {
            data(i, j) = row(0, j);
        }
    }
}

void Resolution::weightedUpdateWithConc()
{
    for (Index j = 0; j < N && weightingMode != 0; ++j) {
        Table weighted = transposed(conc); // C' W
        for (Index c = 0; c < K; ++c) {
            for (Index i = 0; i < M; ++i) {
                weighted(c, i) *= weights(i, j);
            }
        }
        const Table inverse = leastSquares(product(weighted, conc), identity(K));
        const Table amounts = product(inverse, product(weighted, asColumn(fitData.column(j))));
        const Table column = product(conc, amounts);
        for (Index i = 0; i < M; ++i) {
            data(i, j) = column(i, 0);
        }
    }
}

} // namespace reference
