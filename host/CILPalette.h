// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QString>
#include <QStringList>
#include <QVector>

namespace orvimage {
class PaletteMapper;
}

// A colour table for an image: turns values into colours between a minimum and a maximum.
class CILPalette
{
public:
    CILPalette();

    // The tables by name, in the order of their indices. The list begins with "Grays", "Rainbow" (red at its lower end,
    // so that the usual sense, blue for little, is the reversed one), "Fire" and "Lumen", a table of evenly rising
    // lightness.
    static QStringList colorTableNames();
    // Index of a name, without regard to case; -1 when there is none.
    static int colorTableIndex(const QString& name);

    // An index outside the list leaves the table as it is.
    void setColorTable(int index);
    int colorTable() const { return m_nTable; } // -1 for a custom table
    // A custom table; an empty one leaves the table as it is.
    void setColors(const QVector<QColor>& colors);
    void setCLUTinfo(int index, bool reversed, bool logScale);

    void setReversed(int reversed) { m_bReversed = reversed != 0; }
    bool isReversed() const { return m_bReversed; }
    // Logarithmic: a fraction f of the range is shown at log10(1 + 9 f).
    void setLogScale(int logScale) { m_bLogScale = logScale != 0; }
    bool isLogScale() const { return m_bLogScale; }
    // The values at the two ends of the table. Without a call the image's own range serves.
    void SetImageMinMax(double minimum, double maximum);
    void clearImageMinMax();
    bool hasImageMinMax() const { return m_bHasRange; }
    double imageMin() const { return m_dMin; }
    double imageMax() const { return m_dMax; }
    // Alpha of the colours. Mode 0: all opaque but for the factor (0 counts as 1); mode 1: alpha follows the position
    // in the range (without reversal and logarithm) times the factor, values below the minimum are transparent.
    void setAlphaMode(int mode, double factor);
    int alphaMode() const { return m_nAlphaMode; }

    // Colour of the table at `fraction`, limited to 0 to 1, with reversal and logarithm but without alpha.
    QRgb colorAt(double fraction) const;
    // Colour of a value with alpha, by the range given here or, without one, by SetImageMinMax's. NaN is transparent.
    QRgb map(double value) const { return map(value, m_dMin, m_dMax); }
    QRgb map(double value, double minimum, double maximum) const;

private:
    friend class orvimage::PaletteMapper;

    // Place in the table of a fraction that is no NaN.
    int placeOf(double fraction) const;

    QVector<QRgb> m_colors;
    int m_nTable = 0;
    bool m_bReversed = false;
    bool m_bLogScale = false;
    bool m_bHasRange = false;
    double m_dMin = 0.0;
    double m_dMax = 1.0;
    int m_nAlphaMode = 0;
    double m_dAlpha = 0.0;
};
