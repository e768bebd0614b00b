// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/analysis/FoodLook.h"

#include "XTNT/nnls_row_fit.h"
#include "XTNT/xtnt_matrix.h"
#include "engine/CORVSpumKyvo.h"
#include "services/results/KnownSpectra.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

using Spectrum = std::vector<double>;

constexpr int squaresASide = 12;
constexpr int smallestSide = 4;
// A square at the edge of the body has few pixels, one beside it no light.
constexpr double smallestPart = 0.5;
constexpr double smallestLight = 0.05;
// Curves of the database, measured elsewhere, leave two or three hundredths of a spectrum behind tissue, and more at an
// excitation that they were not measured at, which food does not explain.
constexpr double badly = 0.04;
constexpr double well = 0.5; // of what was left

// The mean spectra of the squares that lie in the mask and have light.
std::vector<Spectrum> spectraOfSquares(const CImageCube& cube)
{
    const int side = std::max(smallestSide, cube.m_nWidth / squaresASide);
    const auto countOf = [side](int nPixels) { return static_cast<std::size_t>((nPixels + side - 1) / side); };
    const std::size_t across = countOf(cube.m_nWidth);
    const auto images = static_cast<std::size_t>(cube.m_nImages);
    const std::size_t squares = across * countOf(cube.m_nHeight);
    std::vector<Spectrum> sums(squares, Spectrum(images, 0.0));
    std::vector<int> counts(squares, 0);
    for (long long p = 0; p < cube.pixelsPerSpot(); ++p) {
        const int place = cube.m_bHasMask ? cube.m_maskIndices[static_cast<std::size_t>(p)] : static_cast<int>(p);
        const auto square = static_cast<std::size_t>(place / cube.m_nWidth / side) * across +
                            static_cast<std::size_t>(place % cube.m_nWidth / side);
        ++counts[square];
        for (std::size_t j = 0; j < images; ++j) {
            sums[square][j] += cube.m_data[p][static_cast<long long>(j)];
        }
    }
    std::vector<Spectrum> spectra;
    double brightest = 0.0;
    for (std::size_t square = 0; square < squares; ++square) {
        if (counts[square] >= smallestPart * side * side) {
            for (double& value : sums[square]) {
                value /= counts[square];
            }
            spectra.push_back(sums[square]);
            brightest = std::max(brightest, std::accumulate(spectra.back().begin(), spectra.back().end(), 0.0));
        }
    }
    spectra.erase(std::remove_if(spectra.begin(), spectra.end(),
                                 [brightest](const Spectrum& spectrum) {
                                     return !(std::accumulate(spectrum.begin(), spectrum.end(), 0.0) >
                                              smallestLight * brightest);
                                 }),
                  spectra.end());
    return spectra;
}

// Parts of the spectrum's norm that non-negative amounts of the sources leave in each group, which is fitted by itself.
Spectrum leftOf(const Spectrum& spectrum, const std::vector<Spectrum>& sources, const std::vector<int>& groups)
{
    const int count = 1 + *std::max_element(groups.begin(), groups.end());
    const double norm = std::sqrt(std::inner_product(spectrum.begin(), spectrum.end(), spectrum.begin(), 0.0));
    Spectrum left;
    for (int group = 0; group < count; ++group) {
        std::vector<std::size_t> images;
        for (std::size_t j = 0; j < groups.size(); ++j) {
            if (groups[j] == group) {
                images.push_back(j);
            }
        }
        XTNT::Matrix<double> design(static_cast<long long>(sources.size()), static_cast<long long>(images.size()));
        Spectrum part;
        for (std::size_t i = 0; i < images.size(); ++i) {
            part.push_back(spectrum[images[i]]);
            for (std::size_t k = 0; k < sources.size(); ++k) {
                design[static_cast<long long>(k)][static_cast<long long>(i)] = sources[k][images[i]];
            }
        }
        Spectrum amounts(sources.size(), 0.0);
        XTNT::NnlsRowFit(design).fit(part.data(), amounts.data());
        double squares = 0.0;
        for (std::size_t i = 0; i < images.size(); ++i) {
            double rest = part[i];
            for (std::size_t k = 0; k < sources.size(); ++k) {
                rest -= amounts[k] * sources[k][images[i]];
            }
            squares += rest * rest;
        }
        left.push_back(std::sqrt(squares) / norm);
    }
    return left;
}

} // namespace

FoodLook FoodLook::of(const CORVSpumKyvo& engine, const QStringList& names)
{
    FoodLook look;
    std::vector<Spectrum> sources;
    for (const QString& name : names) {
        const std::vector<Spectrum> known = sourceSpectra(engine, name);
        if (known.empty()) {
            return look;
        }
        sources.insert(sources.end(), known.begin(), known.end());
    }
    const std::vector<Spectrum> food = sourceSpectra(engine, QStringLiteral("Food"));
    const std::vector<Spectrum> spectra = spectraOfSquares(engine.m_cube);
    look.looked = !food.empty() && !spectra.empty() && !sources.empty();
    if (!look.looked) {
        return look;
    }
    std::vector<Spectrum> withFood = sources;
    withFood.insert(withFood.end(), food.begin(), food.end());
    const std::vector<int> groups = groupsOfImages(engine);
    look.squares = static_cast<int>(spectra.size());
    for (const Spectrum& spectrum : spectra) {
        const Spectrum without = leftOf(spectrum, sources, groups);
        const Spectrum with = leftOf(spectrum, withFood, groups);
        bool fed = false;
        for (std::size_t group = 0; group < without.size(); ++group) {
            if (without[group] > badly && with[group] < well * without[group]) {
                fed = true;
                if (without[group] > look.without) {
                    look.without = without[group];
                    look.with = with[group];
                }
            }
        }
        look.fed += fed ? 1 : 0;
    }
    return look;
}
