// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/MaskLight.h"

#include <algorithm>
#include <limits>

namespace {

// Pixels a side of a square: their mean has an eighth of a pixel's noise.
constexpr int squareSide = 8;
constexpr double darkest = 0.1;

struct Square
{
    double sum = 0.0;
    double sumInside = 0.0;
    int count = 0;
    int countInside = 0;

    double mean() const { return sum / count; }
};

std::vector<Square> squaresOf(const std::vector<double>& light, int nWidth, const std::vector<char>& inside)
{
    const auto width = static_cast<std::size_t>(nWidth);
    const std::size_t height = light.size() / width;
    const std::size_t across = (width + squareSide - 1) / squareSide;
    std::vector<Square> squares(across * ((height + squareSide - 1) / squareSide));
    for (std::size_t i = 0; i < light.size(); ++i) {
        Square& square = squares[i / width / squareSide * across + i % width / squareSide];
        square.sum += light[i];
        ++square.count;
        if (inside[i] != 0) {
            square.sumInside += light[i];
            ++square.countInside;
        }
    }
    return squares;
}

double darkLevel(const std::vector<Square>& squares)
{
    std::vector<double> means;
    for (const Square& square : squares) {
        means.push_back(square.mean());
    }
    const auto level = means.begin() + static_cast<long>(darkest * static_cast<double>(means.size()));
    std::nth_element(means.begin(), level, means.end());
    return *level;
}

} // namespace

MaskLight MaskLight::of(const std::vector<double>& light, int nWidth, const std::vector<int>& mask)
{
    MaskLight found;
    found.share = std::numeric_limits<double>::quiet_NaN();
    if (light.empty() || nWidth < 1 || light.size() % static_cast<std::size_t>(nWidth) != 0) {
        return found;
    }
    std::vector<char> inside(light.size(), 0);
    for (const int index : mask) {
        if (index >= 0 && static_cast<std::size_t>(index) < inside.size()) {
            inside[static_cast<std::size_t>(index)] = 1;
        }
    }
    found.area = static_cast<double>(std::count(inside.begin(), inside.end(), 1)) / static_cast<double>(light.size());
    const std::vector<Square> squares = squaresOf(light, nWidth, inside);
    const double dark = darkLevel(squares);
    double all = 0.0;
    double within = 0.0;
    for (const Square& square : squares) {
        if (square.mean() > dark) {
            all += square.sum - dark * square.count;
            within += square.sumInside - dark * square.countInside;
        }
    }
    if (all > 0.0) {
        found.share = std::clamp(within / all, 0.0, 1.0);
    }
    return found;
}
