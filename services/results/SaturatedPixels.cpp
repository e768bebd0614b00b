// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/SaturatedPixels.h"

#include <algorithm>
#include <limits>

namespace {

using XTNT::Matrix;

// One or two pixels may be the brightest by chance.
constexpr long long fewest = 3;
// Against the number at the next smaller value.
constexpr long long timesTheNext = 4;
// The next smaller value lies a count below, far less than this part of the range.
constexpr double largestStep = 0.02;
constexpr double half = 0.5;

// The two largest values of a column's block and how often they come.
struct Top
{
    double first = -std::numeric_limits<double>::infinity();
    double second = -std::numeric_limits<double>::infinity();
    long long firstCount = 0;
    long long secondCount = 0;

    void take(double dValue)
    {
        if (dValue == first) {
            ++firstCount;
        } else if (dValue > first) {
            second = first;
            secondCount = firstCount;
            first = dValue;
            firstCount = 1;
        } else if (dValue == second) {
            ++secondCount;
        } else if (dValue > second) {
            second = dValue;
            secondCount = 1;
        }
    }
    bool isSaturated() const
    {
        return first > 0.0 && firstCount >= fewest && firstCount >= timesTheNext * secondCount && secondCount > 0 &&
               first - second <= largestStep * first;
    }
};

// The component with the largest share of an element; -1 without components.
int brightest(const Matrix<double>& maps, const Matrix<double>& spectra, long long nPixel, long long nImage)
{
    int best = -1;
    double most = 0.0;
    for (long long k = 0; k < spectra.num_rows(); ++k) {
        const double light = maps[k][nPixel] * spectra[k][nImage];
        if (light > most) {
            most = light;
            best = static_cast<int>(k);
        }
    }
    return best;
}

} // namespace

SaturatedPixels SaturatedPixels::of(const Matrix<double>& data, int nSpots, const Matrix<double>& maps,
                                    const Matrix<double>& spectra)
{
    SaturatedPixels found;
    const long long images = data.num_cols();
    const long long rows = nSpots > 0 ? data.num_rows() / nSpots : 0;
    std::vector<bool> touched(static_cast<std::size_t>(images), false);
    std::vector<long long> votes(static_cast<std::size_t>(spectra.num_rows()), 0);
    long long elements = 0;
    for (int spot = 0; spot < nSpots; ++spot) {
        std::vector<Top> tops(static_cast<std::size_t>(images));
        for (long long p = spot * rows; p < (spot + 1) * rows; ++p) {
            for (long long j = 0; j < images; ++j) {
                tops[static_cast<std::size_t>(j)].take(data[p][j]);
            }
        }
        std::vector<long long> columns;
        for (long long j = 0; j < images; ++j) {
            if (tops[static_cast<std::size_t>(j)].isSaturated()) {
                columns.push_back(j);
                touched[static_cast<std::size_t>(j)] = true;
            }
        }
        for (long long p = spot * rows; p < (spot + 1) * rows && !columns.empty(); ++p) {
            bool any = false;
            for (const long long j : columns) {
                if (data[p][j] == tops[static_cast<std::size_t>(j)].first) {
                    any = true;
                    ++elements;
                    const int component = brightest(maps, spectra, p, j);
                    if (component >= 0) {
                        ++votes[static_cast<std::size_t>(component)];
                    }
                }
            }
            found.pixels += any ? 1 : 0;
        }
    }
    for (long long j = 0; j < images; ++j) {
        if (touched[static_cast<std::size_t>(j)]) {
            found.images.push_back(static_cast<int>(j));
        }
    }
    const auto most = std::max_element(votes.begin(), votes.end());
    if (most != votes.end() && static_cast<double>(*most) >= half * static_cast<double>(elements) && *most > 0) {
        found.component = static_cast<int>(most - votes.begin());
    }
    return found;
}
