// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/tileLabel.h"

#include <QFontMetricsF>

namespace orvwidgets {

namespace {

constexpr int kSpotDigits = 3; // behind an underscore

} // namespace

QStringList tileLabelLines(const QString& strLabel, bool bSpot, const QFontMetricsF& metrics, double dWidth)
{
    const QString line = strLabel.simplified();
    const auto elided = [&metrics, dWidth](const QString& text) {
        return metrics.elidedText(text, Qt::ElideMiddle, dWidth);
    };
    if (!bSpot || metrics.horizontalAdvance(line) <= dWidth) {
        return {elided(line)};
    }
    return {elided(line.left(line.size() - kSpotDigits - 1)), elided(line.right(kSpotDigits))};
}

} // namespace orvwidgets
