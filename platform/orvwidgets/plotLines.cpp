// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvwidgets/plotLines.h"

#include <QHash>
#include <QLocale>
#include <QPair>

#include <algorithm>
#include <cmath>

namespace orv {

QVector<QVector<QPointF>> plotSegments(const QVector<double>& x, const QVector<double>& y)
{
    QVector<QVector<QPointF>> segments;
    bool bBroken = true;
    const int nCount = std::min(x.size(), y.size());
    for (int i = 0; i < nCount; ++i) {
        if (!std::isfinite(x[i]) || !std::isfinite(y[i])) {
            bBroken = true;
            continue;
        }
        if (bBroken || x[i] < segments.last().last().x()) {
            segments.append(QVector<QPointF>());
        }
        segments.last().append(QPointF(x[i], y[i]));
        bBroken = false;
    }
    return segments;
}

PlotExtent plotExtent(const QVector<PlotLine>& lines)
{
    PlotExtent extent;
    bool bAny = false;
    for (const PlotLine& line : lines) {
        for (int i = 0; i < line.m_x.size(); ++i) {
            const double x = line.m_x[i];
            const double y = line.m_y[i];
            if (!std::isfinite(x) || !std::isfinite(y)) {
                continue;
            }
            if (!bAny) {
                extent = {x, x, y, y};
            }
            bAny = true;
            extent = {std::min(extent.m_dXLow, x), std::max(extent.m_dXHigh, x), std::min(extent.m_dYLow, y),
                      std::max(extent.m_dYHigh, y)};
        }
    }
    return extent;
}

namespace {

QByteArray quoted(const QString& strText, char cSeparator)
{
    QByteArray bytes = strText.toUtf8();
    const bool bNeeded =
        bytes.contains(cSeparator) || bytes.contains('"') || bytes.contains('\n') || bytes.contains('\r');
    return bNeeded ? '"' + bytes.replace("\"", "\"\"") + '"' : bytes;
}

QByteArray number(double dValue)
{
    constexpr int digits = 17; // brings every double back
    return QByteArray::number(dValue, 'g', digits);
}

// A row of the table: an x, and which of its occurrences in a line, as x may come again.
using RowKey = QPair<double, int>;

QVector<RowKey> rowKeys(const PlotLine& line)
{
    QHash<double, int> seen;
    QVector<RowKey> keys;
    for (const double x : line.m_x) {
        keys.append({x, seen[x]++});
    }
    return keys;
}

} // namespace

QByteArray plotTable(const QString& strXLabel, const QVector<PlotLine>& lines, char cSeparator)
{
    QVector<RowKey> rows;
    QHash<RowKey, int> places;
    QVector<QHash<int, double>> columns;
    QByteArray table = quoted(strXLabel, cSeparator);
    for (const PlotLine& line : lines) {
        table += cSeparator + quoted(line.m_strLabel, cSeparator);
        columns.append(QHash<int, double>());
        const QVector<RowKey> keys = rowKeys(line);
        for (int i = 0; i < keys.size(); ++i) {
            // A NaN is not equal to itself and so always has a row of its own.
            const int nRow = places.value(keys[i], rows.size());
            if (nRow == rows.size()) {
                rows.append(keys[i]);
                places.insert(keys[i], nRow);
            }
            columns.last().insert(nRow, line.m_y[i]);
        }
    }
    table += '\n';
    for (int nRow = 0; nRow < rows.size(); ++nRow) {
        table += number(rows[nRow].first);
        for (const auto& column : columns) {
            const auto cell = column.constFind(nRow);
            table += cSeparator + (cell != column.constEnd() ? number(*cell) : QByteArray());
        }
        table += '\n';
    }
    return table;
}

namespace {

// Relative luminance and the ratio of two, after the recommendations for texts on screens (WCAG 2).
double luminance(const QColor& color)
{
    const auto linear = [](double dShare) {
        return dShare <= 0.03928 ? dShare / 12.92 : std::pow((dShare + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other)
{
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

} // namespace

QColor legibleColor(const QColor& color, const QColor& base, const QColor& text)
{
    constexpr double darkBase = 0.2;
    constexpr double enough = 2.5;
    if (luminance(base) >= darkBase) {
        return color;
    }
    for (int nStep = 0; nStep <= 10; ++nStep) {
        const double dText = nStep / 10.0;
        const QColor mixed = QColor::fromRgbF(color.redF() * (1.0 - dText) + text.redF() * dText,
                                              color.greenF() * (1.0 - dText) + text.greenF() * dText,
                                              color.blueF() * (1.0 - dText) + text.blueF() * dText);
        if (contrast(mixed, base) >= enough) {
            return nStep == 0 ? color : mixed;
        }
    }
    return text;
}

} // namespace orv
