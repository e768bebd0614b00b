// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>

class QFontMetricsF;

namespace orvwidgets {

// The label of a tile in a room of that width: in one line, elided in its middle where it is too long, or of a spot
// ("name_001") with the number in a line of its own, which is then never cut.
QStringList tileLabelLines(const QString& strLabel, bool bSpot, const QFontMetricsF& metrics, double dWidth);

} // namespace orvwidgets
