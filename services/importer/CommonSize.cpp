// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/CommonSize.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace {

QString sizeText(const QSize& size)
{
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

} // namespace

bool CommonSize::ruleOf(const QString& strText, SizeRule* pRule)
{
    if (strText == QLatin1String("crop")) {
        *pRule = SizeRule::Crop;
    } else if (strText == QLatin1String("bin")) {
        *pRule = SizeRule::Bin;
    } else if (strText == QLatin1String("pad")) {
        *pRule = SizeRule::Pad;
    } else {
        return false;
    }
    return true;
}

bool CommonSize::choose(const QVector<QSize>& sizes, const QStringList& names, SizeRule eRule, QString* pReason,
                        int* pImage)
{
    m_eRule = eRule;
    m_size = sizes.first();
    m_factors = QVector<int>(sizes.size(), 1);
    const auto other =
        std::find_if(sizes.begin(), sizes.end(), [&](const QSize& size) { return size != sizes.first(); });
    m_bNeeded = other != sizes.end();
    if (!m_bNeeded) {
        return true;
    }
    switch (eRule) {
    case SizeRule::Crop:
        m_size = std::accumulate(sizes.begin(), sizes.end(), m_size,
                                 [](const QSize& a, const QSize& b) { return a.boundedTo(b); });
        return true;
    case SizeRule::Pad:
        m_size = std::accumulate(sizes.begin(), sizes.end(), m_size,
                                 [](const QSize& a, const QSize& b) { return a.expandedTo(b); });
        return true;
    case SizeRule::Bin:
        return chooseSmallest(sizes, names, pReason, pImage);
    case SizeRule::Refuse:
        break;
    }
    *pImage = static_cast<int>(other - sizes.begin());
    *pReason = QStringLiteral("%1 has %2 pixels where %3 has %4; --sizes crop, bin or pad brings them to one size")
                   .arg(names.at(*pImage), sizeText(*other), names.first(), sizeText(sizes.first()));
    return false;
}

// The smallest image is a whole part of all others along both sides.
bool CommonSize::chooseSmallest(const QVector<QSize>& sizes, const QStringList& names, QString* pReason, int* pImage)
{
    const auto smallest = std::min_element(sizes.begin(), sizes.end(), [](const QSize& a, const QSize& b) {
        return static_cast<qint64>(a.width()) * a.height() < static_cast<qint64>(b.width()) * b.height();
    });
    m_size = *smallest;
    for (int i = 0; i < sizes.size(); ++i) {
        const QSize size = sizes.at(i);
        const int factor = size.width() / m_size.width();
        m_factors[i] = factor;
        if (size.width() != factor * m_size.width() || size.height() != static_cast<qint64>(factor) * m_size.height()) {
            *pImage = i;
            *pReason = QStringLiteral("%1 has %2 pixels, which cannot be binned to the %3 of %4 by a whole number, the "
                                      "same along both sides; --sizes crop or pad brings them to one size")
                           .arg(names.at(i), sizeText(size), sizeText(m_size),
                                names.at(static_cast<int>(smallest - sizes.begin())));
            return false;
        }
    }
    return true;
}

QString CommonSize::text() const
{
    if (!m_bNeeded) {
        return QString();
    }
    switch (m_eRule) {
    case SizeRule::Crop:
        return QStringLiteral("cut to the smallest at the right and the bottom");
    case SizeRule::Bin:
        return QStringLiteral("binned to the smallest");
    case SizeRule::Pad:
        return QStringLiteral("filled up to the largest with pixels that have no value");
    case SizeRule::Refuse:
        break;
    }
    return QString();
}

bool CommonSize::fit(int i, bool bDensity, CILImage& image, std::vector<bool>& invalid) const
{
    if (image.m_lWidth == width() && image.m_lHeight == height()) {
        return true;
    }
    return m_eRule == SizeRule::Bin ? bin(m_factors.at(i), bDensity, image, invalid) : place(image, invalid);
}

bool CommonSize::bin(int nFactor, bool bDensity, CILImage& image, std::vector<bool>& invalid) const
{
    if (!invalid.empty()) {
        std::vector<bool> binned(static_cast<std::size_t>(width() * height()), false);
        for (long y = 0; y < image.m_lHeight; ++y) {
            for (long x = 0; x < image.m_lWidth; ++x) {
                if (invalid[static_cast<std::size_t>(y * image.m_lWidth + x)]) {
                    binned[static_cast<std::size_t>(y / nFactor * width() + x / nFactor)] = true;
                }
            }
        }
        invalid = std::move(binned);
    }
    image.m_fBinning = 1.0F;
    if (image.changeBinning(nFactor, image) != EIL_SUCCESS) {
        return false;
    }
    image.m_fBinning = 1.0F;
    if (bDensity) {
        image /= static_cast<double>(nFactor) * nFactor;
    }
    return true;
}

// The upper left corner stays.
bool CommonSize::place(CILImage& image, std::vector<bool>& invalid) const
{
    CILImage placed;
    if (placed.InitWithType(image.dataType(), width(), height()) != EIL_SUCCESS) {
        return false;
    }
    const long columns = std::min(width(), image.m_lWidth);
    const long rows = std::min(height(), image.m_lHeight);
    const bool bGrows = columns < width() || rows < height();
    std::vector<bool> marks(invalid.empty() && !bGrows ? 0 : placed.pixelCount(), bGrows);
    const std::size_t pixel = CILImageBase::bytesPerPixel(image.dataType());
    for (long y = 0; y < rows; ++y) {
        const auto from = static_cast<std::size_t>(y * image.m_lWidth);
        const auto to = static_cast<std::size_t>(y * width());
        std::memcpy(static_cast<char*>(placed.m_pData) + to * pixel,
                    static_cast<const char*>(image.m_pData) + from * pixel, static_cast<std::size_t>(columns) * pixel);
        for (std::size_t x = 0; x < static_cast<std::size_t>(columns) && !marks.empty(); ++x) {
            marks[to + x] = !invalid.empty() && invalid[from + x];
        }
    }
    placed.m_fBinning = image.m_fBinning;
    image = std::move(placed);
    invalid = std::move(marks);
    return true;
}
