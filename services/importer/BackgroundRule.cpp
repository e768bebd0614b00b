// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/importer/BackgroundRule.h"

#include "platform/orvapi/ROIShape.h"
#include "platform/orvutils/NumberText.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace {

const QString percentileWord = QStringLiteral("percentile:");
constexpr double mostPercent = 100.0;

// The value that so many per cent of the numbers, of which there is one at least, lie below. Moves them.
double percentileOf(std::vector<double>& values, double dPercent)
{
    const double place = dPercent / mostPercent * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::ptrdiff_t>(std::floor(place));
    const auto at = values.begin() + below;
    std::nth_element(values.begin(), at, values.end());
    const double share = place - static_cast<double>(below);
    if (!(share > 0.0)) {
        return *at;
    }
    const double next = *std::min_element(at + 1, values.end());
    return *at + share * (next - *at);
}

double meanOf(const std::vector<double>& values)
{
    double sum = 0.0;
    for (const double value : values) {
        sum += value;
    }
    return sum / static_cast<double>(values.size());
}

} // namespace

bool BackgroundRule::parse(const QString& strText, QString* pReason)
{
    const QString text = strText.trimmed();
    if (text.startsWith(percentileWord, Qt::CaseInsensitive)) {
        bool bNumber = false;
        const double percent = text.mid(percentileWord.size()).trimmed().toDouble(&bNumber);
        if (!bNumber || !(percent >= 0.0 && percent <= mostPercent)) {
            *pReason = QStringLiteral("\"%1\" is not a percentile from 0 to 100").arg(strText);
            return false;
        }
        m_eKind = Kind::Percentile;
        m_dPercent = percent;
        return true;
    }
    tagROIInfo region;
    if (!ROIShape::fromText(text, &region, pReason)) {
        *pReason = QStringLiteral("it takes percentile:P, or a region such as rect:X,Y,W,H: %1").arg(*pReason);
        return false;
    }
    m_eKind = Kind::Region;
    m_region = region;
    return true;
}

QString BackgroundRule::text() const
{
    switch (m_eKind) {
    case Kind::Percentile:
        return percentileWord + orv::shortestText(m_dPercent);
    case Kind::Region:
        return ROIShape::toText(m_region);
    case Kind::None:
        break;
    }
    return QString();
}

// Those that count: finite, and not marked.
std::vector<double> BackgroundRule::pixelsOf(const CILImage& image, const std::vector<bool>& invalid) const
{
    std::vector<double> values;
    const auto take = [&](std::size_t i) {
        const double value = image.value(i);
        if ((invalid.empty() || !invalid[i]) && std::isfinite(value)) {
            values.push_back(value);
        }
    };
    if (m_eKind == Kind::Percentile) {
        values.reserve(image.pixelCount());
        for (std::size_t i = 0; i < image.pixelCount(); ++i) {
            take(i);
        }
        return values;
    }
    constexpr double unbinned = 1.0;
    ROIShape::visitRuns(m_region, image.m_lWidth, image.m_lHeight, unbinned, [&](long row, long first, long end) {
        for (long x = first; x < end; ++x) {
            take(static_cast<std::size_t>(row * image.m_lWidth + x));
        }
    });
    return values;
}

bool BackgroundRule::level(const CILImage& image, const std::vector<bool>& invalid, double* pLevel,
                           QString* pReason) const
{
    pReason->clear();
    if (m_eKind == Kind::Region) {
        const ROIShape::Bounds bounds = ROIShape::boundsOf(m_region);
        if (bounds.left < 0.0 || bounds.top < 0.0 || bounds.right > static_cast<double>(image.m_lWidth) ||
            bounds.bottom > static_cast<double>(image.m_lHeight)) {
            *pReason = QStringLiteral("the region of the background, %1, reaches beyond the image of %2 x %3 pixels")
                           .arg(text(), QString::number(image.m_lWidth), QString::number(image.m_lHeight));
            return false;
        }
    }
    try {
        std::vector<double> values = pixelsOf(image, invalid);
        if (values.empty()) {
            *pReason = m_eKind == Kind::Region
                           ? QStringLiteral("no pixel in the region of the background, %1, has a value").arg(text())
                           : QStringLiteral("no pixel has a value, so there is no background");
            return false;
        }
        *pLevel = m_eKind == Kind::Percentile ? percentileOf(values, m_dPercent) : meanOf(values);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}
