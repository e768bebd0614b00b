// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CILPalette.h"
#include "platform/orvimage/ColorTables.h"
#include "platform/orvimage/PaletteArithmetic.h"

#include <algorithm>
#include <cmath>

namespace {

// Place of a value in a range, limited to 0 to 1. In an empty range all up to the limit is at its lower end.
double fractionOf(double value, double minimum, double maximum)
{
    if (!(maximum > minimum)) {
        return value > minimum ? 1.0 : 0.0;
    }
    if (value >= maximum) {
        return 1.0;
    }
    if (value <= minimum) {
        return 0.0;
    }
    const double half = minimum * 0.5;
    return orvimage::fractionInside(value, half, orvimage::halfSpan(half, maximum));
}

} // namespace

CILPalette::CILPalette() : m_colors(orvimage::colorTables().front().colors) {}

QStringList CILPalette::colorTableNames()
{
    QStringList names;
    for (const orvimage::ColorTable& table : orvimage::colorTables()) {
        names.append(table.name);
    }
    return names;
}

int CILPalette::colorTableIndex(const QString& name)
{
    const QVector<orvimage::ColorTable>& tables = orvimage::colorTables();
    for (int i = 0; i < tables.size(); ++i) {
        if (tables[i].name.compare(name, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return -1;
}

void CILPalette::setColorTable(int index)
{
    const QVector<orvimage::ColorTable>& tables = orvimage::colorTables();
    if (index < 0 || index >= tables.size()) {
        return;
    }
    m_colors = tables[index].colors;
    m_nTable = index;
}

void CILPalette::setColors(const QVector<QColor>& colors)
{
    if (colors.isEmpty()) {
        return;
    }
    m_colors.clear();
    m_colors.reserve(colors.size());
    for (const QColor& color : colors) {
        m_colors.append(color.rgb());
    }
    m_nTable = -1;
}

void CILPalette::setCLUTinfo(int index, bool reversed, bool logScale)
{
    setColorTable(index);
    m_bReversed = reversed;
    m_bLogScale = logScale;
}

void CILPalette::SetImageMinMax(double minimum, double maximum)
{
    m_dMin = minimum;
    m_dMax = maximum;
    m_bHasRange = true;
}

void CILPalette::clearImageMinMax()
{
    m_dMin = 0.0;
    m_dMax = 1.0;
    m_bHasRange = false;
}

void CILPalette::setAlphaMode(int mode, double factor)
{
    m_nAlphaMode = mode;
    m_dAlpha = factor;
}

QRgb CILPalette::colorAt(double fraction) const
{
    if (m_colors.isEmpty()) { // moved from
        return qRgb(0, 0, 0);
    }
    return m_colors[placeOf(std::isnan(fraction) ? 0.0 : std::clamp(fraction, 0.0, 1.0))];
}

int CILPalette::placeOf(double fraction) const
{
    double f = m_bLogScale ? orvimage::logarithmic(fraction) : fraction;
    if (m_bReversed) {
        f = 1.0 - f;
    }
    const int last = m_colors.size() - 1;
    return std::clamp(static_cast<int>(std::lround(f * last)), 0, last);
}

QRgb CILPalette::map(double value, double minimum, double maximum) const
{
    if (std::isnan(value)) {
        return qRgba(0, 0, 0, 0);
    }
    const double fraction = fractionOf(value, minimum, maximum);
    double alpha = m_dAlpha == 0.0 ? 1.0 : m_dAlpha;
    if (m_nAlphaMode == 1) {
        alpha = value < minimum ? 0.0 : fraction * m_dAlpha;
    }
    const int level = static_cast<int>(std::lround(255.0 * std::clamp(alpha, 0.0, 1.0)));
    return (colorAt(fraction) & 0x00ffffffU) | (static_cast<QRgb>(level) << 24);
}
