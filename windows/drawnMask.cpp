// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/drawnMask.h"

#include "XTNT/xtnt_assert.h"

#include <algorithm>
#include <limits>

namespace {

constexpr double kLegendPixels = 25.0;

// Where a crop lies along one axis of the image.
struct Extent
{
    long long start = 0;
    long long length = 0;
};

// Truncated; 0 for what does not fit into an integer, NaN included.
int truncated(double value)
{
    constexpr double kLimit = std::numeric_limits<int>::max();
    return value > -kLimit && value < kLimit ? static_cast<int>(value) : 0;
}

Extent extentOnImage(int nFirst, int nSecond, long lSide, float fDisplayed, bool bLegend)
{
    int nDivisor = truncated(static_cast<double>(fDisplayed));
    if (bLegend) {
        nDivisor = truncated(static_cast<double>(static_cast<float>(nDivisor)) + kLegendPixels);
    }
    // Nothing is displayed that something could have been drawn on.
    if (nFirst == nSecond || nDivisor == 0) {
        return {};
    }
    const long long a = static_cast<long long>(nFirst) * lSide / nDivisor;
    const long long b = static_cast<long long>(nSecond) * lSide / nDivisor;
    return {std::min(a, b), std::max(a, b) - std::min(a, b)};
}

void fillRows(CILImage& mask, const Extent& across, const Extent& down, bool bEllipse)
{
    const double a = static_cast<double>(across.length) / 2.0;
    const double b = static_cast<double>(down.length) / 2.0;
    const double cx = static_cast<double>(across.start) + a;
    const double cy = static_cast<double>(down.start) + b;
    const long long width = mask.m_lWidth;
    const long long height = mask.m_lHeight;
    // Strict bounds on every side.
    const long long firstColumn = std::max(0LL, across.start + 1);
    const long long endColumn = std::min(width, across.start + across.length);
    const long long firstRow = std::max(0LL, height - down.start - down.length + 1);
    const long long endRow = std::min(height, height - down.start);
    for (long long r = firstRow; r < endRow; ++r) {
        const double dy = static_cast<double>(height - r) - cy;
        unsigned char* row = mask.bytes() + r * width;
        for (long long c = firstColumn; c < endColumn; ++c) {
            const double dx = static_cast<double>(c) - cx;
            row[c] = !bEllipse || dy * dy / (b * b) + dx * dx / (a * a) <= 1.0 ? 1 : 0;
        }
    }
}

} // namespace

bool makeDrawnMask(long lWidth, long lHeight, float fBinning, const DrawnShape& shape, CILImage& mask)
{
    if (mask.InitWithType(ORVTYPE_BYTE, lWidth, lHeight) != EIL_SUCCESS) {
        return false;
    }
    mask.m_fBinning = fBinning;
    // These two and not the others tell that there is a crop.
    if (shape.x2 != 0 && shape.y1 != 0) {
        const Extent across = extentOnImage(shape.x1, shape.x2, lWidth, shape.fImageWidth, shape.bLegend);
        const Extent down = extentOnImage(shape.y1, shape.y2, lHeight, shape.fImageHeight, shape.bLegend);
        fillRows(mask, across, down, shape.bEllipse);
    }
    mask.RefreshImageStats();
    return true;
}

bool makeDrawnMask(const CILImage& photo, const DrawnShape& shape, CILImage& mask)
{
    XTNT_ASSERT(&photo != &mask);
    return makeDrawnMask(photo.m_lWidth, photo.m_lHeight, photo.m_fBinning, shape, mask);
}

DrawnShape shapeOverPixels(int nImageWidth, int nImageHeight, int nLeft, int nTop, int nWidth, int nHeight,
                           bool bEllipse)
{
    DrawnShape shape;
    shape.bEllipse = bEllipse;
    if (nWidth < 1 || nHeight < 1) {
        return shape;
    }
    // Shown pixel by pixel. The crop reaches one pixel further to each side, for the strict bounds, and its larger
    // corner stands where 0 would say that there is no crop.
    shape.fImageWidth = static_cast<float>(nImageWidth);
    shape.fImageHeight = static_cast<float>(nImageHeight);
    shape.x1 = nLeft - 1;
    shape.x2 = nLeft + nWidth;
    shape.y1 = nImageHeight - nTop + 1;
    shape.y2 = nImageHeight - nTop - nHeight;
    return shape;
}
