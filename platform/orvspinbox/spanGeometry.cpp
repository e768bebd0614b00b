// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvspinbox/spanGeometry.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace orv {

namespace {

// a * b / c, rounded to the nearest; none is negative.
std::int64_t scaled(std::int64_t a, std::int64_t b, std::int64_t c)
{
    return (a * b + c / 2) / c;
}

} // namespace

int SpanGeometry::pixelOf(int nValue) const
{
    if (m_nMaximum <= m_nMinimum || m_nLength <= 0) {
        return 0;
    }
    const auto range = std::int64_t{m_nMaximum} - m_nMinimum;
    const auto place = std::clamp(nValue, m_nMinimum, m_nMaximum) - std::int64_t{m_nMinimum};
    const auto pixel = static_cast<int>(scaled(place, m_nLength, range));
    return m_bReversed ? m_nLength - pixel : pixel;
}

int SpanGeometry::valueAt(int nPixel) const
{
    if (m_nMaximum <= m_nMinimum || m_nLength <= 0) {
        return m_nMinimum;
    }
    const auto range = std::int64_t{m_nMaximum} - m_nMinimum;
    const int inside = std::clamp(nPixel, 0, m_nLength);
    const int along = m_bReversed ? m_nLength - inside : inside;
    return static_cast<int>(m_nMinimum + scaled(along, range, m_nLength));
}

bool isLowerNearer(int nPixel, int nLowerPixel, int nUpperPixel, bool bReversed)
{
    const int toLower = std::abs(nPixel - nLowerPixel);
    const int toUpper = std::abs(nPixel - nUpperPixel);
    if (toLower != toUpper) {
        return toLower < toUpper;
    }
    return bReversed ? nPixel > nLowerPixel : nPixel < nLowerPixel;
}

} // namespace orv
