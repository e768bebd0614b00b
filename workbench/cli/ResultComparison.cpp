// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/cli/ResultComparison.h"

#include "workbench/cli/CliFailure.h"
#include "workbench/cli/ComponentMatching.h"
#include "workbench/cli/ResultSummary.h"
#include "workbench/cli/SavedResult.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace {

using Results = std::vector<std::unique_ptr<SavedResult>>;

QList<KeyPair> commonPairs(const Results& results)
{
    QList<KeyPair> common;
    const QList<KeyPair> pairs = results.back()->pairs();
    for (const auto& pair : pairs)
        if (std::all_of(results.begin(), results.end(), [&](const auto& result) { return result->hasPair(pair); }))
            common.append(pair);
    if (common.isEmpty())
        throw CliFailure(QStringLiteral("the spectra of %1 and %2 have no image in common")
                             .arg(results.front()->label(), results.back()->label()));
    return common;
}

void checkSizes(const Results& results)
{
    const CILImage& first = results.front()->map(0);
    for (const auto& result : results) {
        const CILImage& map = result->map(0);
        if (map.m_lWidth != first.m_lWidth || map.m_lHeight != first.m_lHeight)
            throw CliFailure(QStringLiteral("the maps of %1 have %2 x %3 pixels, those of %4 %5 x %6")
                                 .arg(result->label())
                                 .arg(map.m_lWidth)
                                 .arg(map.m_lHeight)
                                 .arg(results.front()->label())
                                 .arg(first.m_lWidth)
                                 .arg(first.m_lHeight));
    }
}

// What a spectrum loses when its largest value becomes 1, its map gains.
ComparedComponent componentOf(const SavedResult& result, int n, const QList<KeyPair>& pairs)
{
    ComparedComponent component;
    component.present = true;
    component.name = result.names().at(n);
    component.map = result.map(n);
    component.spectrum = result.spectrum(n, pairs);
    const double top = *std::max_element(component.spectrum.begin(), component.spectrum.end());
    if (!(top > 0.0))
        return component;
    for (double& value : component.spectrum)
        value /= top;
    float* pixels = component.map.floats();
    for (std::size_t i = 0; i < component.map.pixelCount(); ++i)
        pixels[i] = static_cast<float>(pixels[i] * top);
    component.map.RefreshImageStats();
    return component;
}

} // namespace

ResultComparison::ResultComparison(const Results& results)
{
    checkSizes(results);
    findCommonPixels(results);
    const QList<KeyPair> pairs = commonPairs(results);
    m_nImages = pairs.size();
    for (const auto& result : results) {
        m_rowNames.append(result->label());
        Row components;
        for (int n = 0; n < result->count(); ++n)
            components.push_back(componentOf(*result, n, pairs));
        addRow(std::move(components));
    }
    for (Row& row : m_rows) {
        row.resize(static_cast<std::size_t>(m_columnNames.size()));
        for (std::size_t j = 0; j < row.size(); ++j)
            compareWithReference(row[j], m_rows.front()[j]);
    }
}

void ResultComparison::findCommonPixels(const Results& results)
{
    const CILImage& map = results.front()->map(0);
    m_pixels.resize(map.pixelCount());
    std::iota(m_pixels.begin(), m_pixels.end(), 0);
    for (const auto& result : results) {
        if (result->pixels().empty())
            continue;
        std::vector<int> both;
        std::set_intersection(m_pixels.begin(), m_pixels.end(), result->pixels().begin(), result->pixels().end(),
                              std::back_inserter(both));
        m_pixels.swap(both);
    }
    if (m_pixels.empty())
        throw CliFailure(QStringLiteral("there is no pixel that all results analysed"));
}

std::vector<double> ResultComparison::pixelsOf(const CILImage& map) const
{
    std::vector<double> values;
    values.reserve(m_pixels.size());
    for (const int pixel : m_pixels)
        values.push_back(map.value(static_cast<std::size_t>(pixel)));
    return values;
}

// A column of that name in which the row has nothing yet; a new one when there is none.
int ResultComparison::freeColumn(const Row& row, const QString& strName)
{
    for (int j = 0; j < m_columnNames.size(); ++j) {
        const auto i = static_cast<std::size_t>(j);
        if (m_columnNames[j] == strName && (i >= row.size() || !row[i].present))
            return j;
    }
    m_columnNames.append(strName);
    return m_columnNames.size() - 1;
}

void ResultComparison::addRow(Row components)
{
    std::vector<int> partners(components.size(), -1);
    if (!m_rows.empty()) {
        const auto shapesOf = [this](const Row& row) {
            std::vector<ComponentShape> shapes;
            for (const auto& component : row)
                shapes.push_back({component.name, pixelsOf(component.map), component.spectrum});
            return shapes;
        };
        const auto found = shapesOf(components);
        const auto reference = shapesOf(m_rows.front());
        const auto byName = matchByName(found, reference);
        const bool named = std::any_of(byName.begin(), byName.end(), [](int partner) { return partner >= 0; });
        if (!named)
            partners = matchByShape(found, reference);
    }
    Row row(static_cast<std::size_t>(m_columnNames.size()));
    for (std::size_t k = 0; k < components.size(); ++k) {
        const int column = partners[k] >= 0 ? partners[k] : freeColumn(row, components[k].name);
        row.resize(static_cast<std::size_t>(m_columnNames.size()));
        row[static_cast<std::size_t>(column)] = std::move(components[k]);
    }
    m_rows.push_back(std::move(row));
}

void ResultComparison::compareWithReference(ComparedComponent& component, const ComparedComponent& reference) const
{
    if (!component.present || !reference.present)
        return;
    component.cosine = ResultSummary::cosine(component.spectrum, reference.spectrum);
    const auto map = pixelsOf(component.map);
    const auto truth = pixelsOf(reference.map);
    component.correlation = ResultSummary::correlation(map, truth);
    component.relativeError = ResultSummary::relativeError(map, truth);
}

const ComparedComponent& ResultComparison::at(int nRow, int nColumn) const
{
    return m_rows[static_cast<std::size_t>(nRow)][static_cast<std::size_t>(nColumn)];
}
