// SPDX-License-Identifier: GPL-3.0-or-later
#include "windows/colorBarUnit.h"

#include <algorithm>

namespace {

constexpr int kFractionRoom = 5; // font heights
constexpr int kPlainRoom = 4;
constexpr double kFrame = 3.0;
constexpr int kRangeDigits = 3;

ColorBarUnitLine line(double dOffset, const char* pText)
{
    return {dOffset, QString::fromLatin1(pText)};
}

} // namespace

QList<ColorBarUnitLine> colorBarUnitLines(int nUnit, bool bNTF)
{
    switch (nUnit) {
    case 0:
        return {line(0.0, "Counts")};
    case 1:
        return {line(0.0, "Radiance"), line(1.0, " (p/sec/cm/sr)")};
    case 2:
        // The two bars of the fraction differ in height.
        return {line(0.0, "Radiant Efficiency"), line(1.0, "   p/sec/cm/sr"), line(bNTF ? 1.1 : 1.15, "  __________"),
                line(1.5, " (                    )"), line(2.0, bNTF ? "        W/cm" : "        mW")};
    case 3:
        return {line(0.0, bNTF ? "NTF Efficiency" : "Efficiency")};
    default:
        return {line(0.0, "UnKnown")};
    }
}

double colorBarUnitTop(double dTagY, double dTagHeight, double dFontHeight)
{
    return dTagY + dTagHeight + dFontHeight / 2.0;
}

int colorBarTextLines(const QString& strUnit)
{
    const bool bFraction = strUnit.compare(QLatin1String("Radiant Efficiency"), Qt::CaseInsensitive) == 0;
    return bFraction ? kFractionRoom : kPlainRoom;
}

ColorBarLayout colorBarLayout(const ColorBarSpace& space, const QString& strUnit)
{
    const double gap = space.fontHeight / 2.0;
    ColorBarLayout layout;
    layout.bottomLeft = space.margin + QPointF(gap, gap);
    layout.textRoom = colorBarTextLines(strUnit) * space.fontHeight;
    layout.height = std::max(0.0, space.viewHeight - layout.textRoom - space.topFontHeight - kFrame - gap);
    return layout;
}

QString shownRangeText(double dMin, double dMax, int nUnit, bool bNTF)
{
    return QStringLiteral("%1 to %2 (%3)")
        .arg(QString::number(dMin, 'g', kRangeDigits), QString::number(dMax, 'g', kRangeDigits),
             colorBarUnitLines(nUnit, bNTF).first().text);
}
