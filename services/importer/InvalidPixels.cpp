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

void InvalidPixels::take(CILImage& image, std::optional<double> ignore, bool bNotFinite)
{
    if (!ignore && !bNotFinite && m_invalid.empty()) {
        return;
    }
    m_lWidth = image.m_lWidth;
    m_lHeight = image.m_lHeight;
    const bool bIgnoresNaN = ignore && std::isnan(*ignore);
    // What a file of floats holds of -1.1 is another number than the header's.
    const bool bSingle = image.dataType() == ORVTYPE_FLOAT;
    const double marked =
        bSingle ? static_cast<double>(static_cast<float>(ignore.value_or(0.0))) : ignore.value_or(0.0);
    for (std::size_t i = 0; i < image.pixelCount(); ++i) {
        const double value = image.value(i);
        const bool bMarked = ignore && (bIgnoresNaN ? std::isnan(value) : value == marked);
        const bool bInvalid = bMarked || (bNotFinite && !isUsable(value));
        if (bInvalid && m_invalid.empty()) {
            m_invalid.assign(image.pixelCount(), false);
        }
        if (bInvalid) {
            m_invalid[i] = true;
        }
        if (!m_invalid.empty() && m_invalid[i]) {
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
