// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/unmixedValues.h"

#include <algorithm>
#include <iterator>

QPoint UnmixedValues::place(const QPoint& pixel, const QSize& picture) const
{
    if (picture.isEmpty()) {
        return {};
    }
    // Of the middle of the pixel.
    const auto scaled = [](int nAt, int nFrom, int nTo) {
        return static_cast<int>((2LL * nAt + 1) * nTo / (2LL * nFrom));
    };
    return {scaled(pixel.x(), picture.width(), size.width()), scaled(pixel.y(), picture.height(), size.height())};
}

std::optional<double> UnmixedValues::value(int nTile, const QPoint& place) const
{
    const long long nComponents = data.num_rows();
    const bool bInside = place.x() >= 0 && place.y() >= 0 && place.x() < size.width() && place.y() < size.height();
    if (nTile < 0 || nComponents == 0 || spots < 1 || !bInside) {
        return std::nullopt;
    }
    const long long nComponent = nTile % (nComponents + 1);
    const long long nSpot = nTile / (nComponents + 1);
    long long nColumn = static_cast<long long>(place.y()) * size.width() + place.x();
    if (!pixels.empty()) {
        const auto found = std::lower_bound(pixels.begin(), pixels.end(), nColumn);
        if (found == pixels.end() || *found != nColumn) {
            return std::nullopt;
        }
        nColumn = std::distance(pixels.begin(), found);
    }
    nColumn += nSpot * (data.num_cols() / spots);
    if (nComponent == nComponents || nSpot >= spots || nColumn >= data.num_cols()) {
        return std::nullopt;
    }
    return data.rowTable.data[nComponent][nColumn];
}
