// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ComponentMatching.h"

#include "services/results/FitStatistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

double orNothing(double value)
{
    return std::isfinite(value) ? value : 0.0;
}

using Costs = std::vector<std::vector<double>>;

// The column of each row in the cheapest assignment; as many columns as rows at least. Rows are added one by one, each
// along the shortest path of changes, with potentials that keep all reduced costs from going below 0. Place 0 stands
// for "free".
std::vector<int> cheapestAssignment(const Costs& costs, std::size_t columns)
{
    const std::size_t rows = costs.size();
    std::vector<double> rowPotential(rows + 1, 0.0);
    std::vector<double> columnPotential(columns + 1, 0.0);
    std::vector<std::size_t> rowOf(columns + 1, 0);
    for (std::size_t i = 1; i <= rows; ++i) {
        std::vector<double> slack(columns + 1, std::numeric_limits<double>::infinity());
        std::vector<std::size_t> before(columns + 1, 0);
        std::vector<bool> done(columns + 1, false);
        std::size_t column = 0;
        rowOf[0] = i;
        do {
            done[column] = true;
            const std::size_t row = rowOf[column];
            std::size_t next = 0;
            double step = std::numeric_limits<double>::infinity();
            for (std::size_t j = 1; j <= columns; ++j) {
                if (done[j]) {
                    continue;
                }
                const double reduced = costs[row - 1][j - 1] - rowPotential[row] - columnPotential[j];
                if (reduced < slack[j]) {
                    slack[j] = reduced;
                    before[j] = column;
                }
                if (slack[j] < step) {
                    step = slack[j];
                    next = j;
                }
            }
            for (std::size_t j = 0; j <= columns; ++j) {
                if (done[j]) {
                    rowPotential[rowOf[j]] += step;
                    columnPotential[j] -= step;
                } else {
                    slack[j] -= step;
                }
            }
            column = next;
        } while (rowOf[column] != 0);
        for (; column != 0; column = before[column]) {
            rowOf[column] = rowOf[before[column]];
        }
    }
    std::vector<int> columnOf(rows, -1);
    for (std::size_t j = 1; j <= columns; ++j) {
        if (rowOf[j] != 0) {
            columnOf[rowOf[j] - 1] = static_cast<int>(j) - 1;
        }
    }
    return columnOf;
}

} // namespace

double likeness(const ComponentShape& a, const ComponentShape& b)
{
    return orNothing(FitStatistics::cosine(a.spectrum, b.spectrum)) +
           orNothing(FitStatistics::correlation(a.map, b.map));
}

std::vector<int> matchByName(const std::vector<ComponentShape>& found, const std::vector<ComponentShape>& reference)
{
    std::vector<int> partners;
    for (const auto& shape : found) {
        const auto same = std::find_if(reference.begin(), reference.end(),
                                       [&](const ComponentShape& other) { return other.name == shape.name; });
        partners.push_back(same == reference.end() ? -1 : static_cast<int>(same - reference.begin()));
    }
    return partners;
}

std::vector<int> matchByShape(const std::vector<ComponentShape>& found, const std::vector<ComponentShape>& reference)
{
    // Places that stand for "no partner" make the table square.
    const std::size_t size = std::max(found.size(), reference.size());
    Costs costs(size, std::vector<double>(size, 0.0));
    for (std::size_t i = 0; i < found.size(); ++i) {
        for (std::size_t j = 0; j < reference.size(); ++j) {
            costs[i][j] = -likeness(found[i], reference[j]);
        }
    }
    std::vector<int> partners = cheapestAssignment(costs, size);
    partners.resize(found.size());
    for (int& partner : partners) {
        if (partner >= static_cast<int>(reference.size())) {
            partner = -1;
        }
    }
    return partners;
}
