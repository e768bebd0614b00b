// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/InvalidPixels.h"

#include "services/importer/Photograph.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

bool isUsable(double value)
{
    return std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max()); // not so of NaN
}

} // namespace

std::vector<bool> InvalidPixels::of(const CILImage& image, std::optional<double> ignore, bool bNotFinite)
{
    std::vector<bool> marks;
    if (!ignore && !bNotFinite) {
        return marks;
    }
    const bool bIgnoresNaN = ignore && std::isnan(*ignore);
    // What a file of floats holds of -1.1 is another number than the header's.
    const bool bSingle = image.dataType() == ORVTYPE_FLOAT;
    const double marked =
        bSingle ? static_cast<double>(static_cast<float>(ignore.value_or(0.0))) : ignore.value_or(0.0);
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        const double value = image.value(i);
        const bool bMarked = ignore && (bIgnoresNaN ? std::isnan(value) : value == marked);
        if (!bMarked && !(bNotFinite && !isUsable(value))) {
            continue;
        }
        if (marks.empty()) {
            marks.assign(image.pixelCount(), false);
        }
        marks[i] = true;
    }
    return marks;
}

void InvalidPixels::add(const std::vector<bool>& marks, long w, long h)
{
    m_lWidth = w;
    m_lHeight = h;
    if (m_invalid.empty()) {
        m_invalid = marks;
        return;
    }
    for (std::size_t i = 0; i < marks.size(); ++i) {
        m_invalid[i] = m_invalid[i] || marks[i];
    }
}

void InvalidPixels::clear(CILImage& image) const
{
    for (std::size_t i = 0; i < m_invalid.size(); ++i) {
        if (m_invalid[i]) {
            image.setValue(i, 0.0);
        }
    }
}

long long InvalidPixels::count() const
{
    return std::count(m_invalid.begin(), m_invalid.end(), true);
}

bool InvalidPixels::validSquare(CILImage& out) const
{
    if (out.InitWithType(ORVTYPE_BYTE, m_lWidth, m_lHeight) != EIL_SUCCESS) {
        return false;
    }
    for (std::size_t i = 0; i < out.pixelCount(); ++i) {
        out.bytes()[i] = m_invalid.empty() || !m_invalid[i] ? 1 : 0;
    }
    return padToSquare(out);
}
