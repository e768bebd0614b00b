// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultComparison.h"

#include "services/basis/Failure.h"
#include "services/results/ComparedResult.h"
#include "services/results/ComponentMatching.h"
#include "services/results/FitStatistics.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace {

using Results = std::vector<std::unique_ptr<ComparedResult>>;

QList<KeyPair> commonPairs(const Results& results)
{
    QList<KeyPair> common;
    const QList<KeyPair> pairs = results.back()->pairs();
    for (const auto& pair : pairs) {
        if (std::all_of(results.begin(), results.end(), [&](const auto& result) { return result->hasPair(pair); })) {
            common.append(pair);
        }
    }
    if (common.isEmpty()) {
        throw Failure(QStringLiteral("the spectra of %1 and %2 have no image in common")
                          .arg(results.front()->label(), results.back()->label()));
    }
    return common;
}

void checkSizes(const Results& results)
{
    const CILImage& first = results.front()->map(0);
    for (const auto& result : results) {
        const CILImage& map = result->map(0);
        if (map.m_lWidth != first.m_lWidth || map.m_lHeight != first.m_lHeight) {
            throw Failure(QStringLiteral("the maps of %1 have %2 x %3 pixels, those of %4 %5 x %6")
                              .arg(result->label(), QString::number(map.m_lWidth), QString::number(map.m_lHeight),
                                   results.front()->label(), QString::number(first.m_lWidth),
                                   QString::number(first.m_lHeight)));
        }
        if (result->spotCount() != results.front()->spotCount()) {
            throw Failure(QStringLiteral("%1 has maps of %2 spots, %3 of %4")
                              .arg(result->label(), QString::number(result->spotCount()), results.front()->label(),
                                   QString::number(results.front()->spotCount())));
        }
    }
}

// The mean over the spots of a scan.
CILImage meanMap(const ComparedResult& result, int n)
{
    CILImage mean = result.map(n);
    float* pixels = mean.floats();
    for (std::size_t i = 0; i < mean.pixelCount(); ++i) {
        double sum = 0.0;
        for (int spot = 0; spot < result.spotCount(); ++spot) {
            sum += result.map(n, spot).value(i);
        }
        pixels[i] = static_cast<float>(sum / result.spotCount());
    }
    return mean;
}

} // namespace

ResultComparison::ResultComparison(const Results& results)
{
    checkSizes(results);
    findCommonPixels(results);
    findReferences(results);
    m_pairs = commonPairs(results);
    for (const auto& result : results) {
        m_rowNames.append(result->label());
        Row components;
        for (int n = 0; n < result->count(); ++n) {
            components.push_back(componentOf(*result, n));
        }
        addRow(std::move(components));
    }
    for (Row& row : m_rows) {
        row.resize(static_cast<std::size_t>(m_columnNames.size()));
    }
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        for (std::size_t j = 0; j < m_rows[i].size(); ++j) {
            compareWithReference(m_rows[i][j], m_rows[static_cast<std::size_t>(m_references[i])][j]);
        }
    }
}

void ResultComparison::findReferences(const Results& results)
{
    for (const auto& result : results) {
        const auto truth = std::find_if(results.begin(), results.end(), [&result](const auto& other) {
            return other->isTruth() && other->isDecayCorrected() == result->isDecayCorrected();
        });
        m_references.push_back(truth == results.end() ? 0 : static_cast<int>(truth - results.begin()));
    }
}

// What a spectrum loses when its largest value becomes 1, its map gains.
ComparedComponent ResultComparison::componentOf(const ComparedResult& result, int n) const
{
    ComparedComponent component;
    component.present = true;
    component.name = result.names().at(n);
    component.map = meanMap(result, n);
    component.spectrum = result.spectrum(n, m_pairs);
    const double top = *std::max_element(component.spectrum.begin(), component.spectrum.end());
    const double factor = top > 0.0 ? top : 1.0;
    component.values.reserve(m_pixels.size() * static_cast<std::size_t>(result.spotCount()));
    for (int spot = 0; spot < result.spotCount(); ++spot) {
        for (const int pixel : m_pixels) {
            component.values.push_back(factor * result.map(n, spot).value(static_cast<std::size_t>(pixel)));
        }
    }
    for (double& value : component.spectrum) {
        value /= factor;
    }
    float* pixels = component.map.floats();
    for (std::size_t i = 0; i < component.map.pixelCount(); ++i) {
        pixels[i] = static_cast<float>(pixels[i] * factor);
    }
    component.map.RefreshImageStats();
    return component;
}

void ResultComparison::findCommonPixels(const Results& results)
{
    const CILImage& map = results.front()->map(0);
    m_pixels.resize(map.pixelCount());
    std::iota(m_pixels.begin(), m_pixels.end(), 0);
    for (const auto& result : results) {
        if (result->pixels().empty()) {
            continue;
        }
        std::vector<int> both;
        std::set_intersection(m_pixels.begin(), m_pixels.end(), result->pixels().begin(), result->pixels().end(),
                              std::back_inserter(both));
        m_pixels.swap(both);
    }
    if (m_pixels.empty()) {
        throw Failure(QStringLiteral("there is no pixel that all results analysed"));
    }
}

// A column of that name in which the row has nothing yet; a new one when there is none.
int ResultComparison::freeColumn(const Row& row, const QString& strName)
{
    for (int j = 0; j < m_columnNames.size(); ++j) {
        const auto i = static_cast<std::size_t>(j);
        if (m_columnNames[j] == strName && (i >= row.size() || !row[i].present)) {
            return j;
        }
    }
    m_columnNames.append(strName);
    return m_columnNames.size() - 1;
}

void ResultComparison::addRow(Row components)
{
    std::vector<int> partners(components.size(), -1);
    if (!m_rows.empty()) {
        const auto shapesOf = [](const Row& row) {
            std::vector<ComponentShape> shapes;
            for (const auto& component : row) {
                shapes.push_back({component.name, component.values, component.spectrum});
            }
            return shapes;
        };
        const auto found = shapesOf(components);
        // A second truth has the names of the first.
        const auto own = static_cast<std::size_t>(m_references[m_rows.size()]);
        const auto reference = shapesOf(m_rows[own < m_rows.size() ? own : 0]);
        const auto byName = matchByName(found, reference);
        const bool named = std::any_of(byName.begin(), byName.end(), [](int partner) { return partner >= 0; });
        if (!named) {
            partners = matchByShape(found, reference);
        }
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
    if (!component.present || !reference.present) {
        return;
    }
    component.cosine = FitStatistics::cosine(component.spectrum, reference.spectrum);
    component.correlation = FitStatistics::correlation(component.values, reference.values);
    component.relativeError = FitStatistics::relativeError(component.values, reference.values);
}

const ComparedComponent& ResultComparison::at(int nRow, int nColumn) const
{
    return m_rows[static_cast<std::size_t>(nRow)][static_cast<std::size_t>(nColumn)];
}
