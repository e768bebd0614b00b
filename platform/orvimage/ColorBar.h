// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"
#include "platform/orvimage/TickMarks.h"

#include <QColor>
#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

#include <vector>

class QPainter;

namespace orvimage {

struct ColorBarOptions
{
    Qt::Orientation orientation = Qt::Vertical; // vertical: beside a picture, the maximum on top; horizontal: under it
    int fontPixels = 14;
    QStringList unitLines; // what the numbers are, such as "Radiance" and "p/s/cm²/sr"
    QColor text = Qt::black;
    QColor background = Qt::white;
    // Whether there are values beyond an end: a tip in that end's colour says so.
    bool above = false;
    bool below = false;
};

// Part of the bar, 0 to 1 from its lower end, at which a value stands. The bar shows the whole table evenly, so a
// logarithmic palette bends the scale instead of the colours.
double colorBarPosition(const CILPalette& palette, double value, double minimum, double maximum);

// A colour bar of that length in pixels from minimum to maximum, with ticks at round values, a common power of ten and
// the unit's lines; in QImage::Format_ARGB32. Text needs a QGuiApplication, which may be the "offscreen" one; without
// it the bar comes without text.
QImage drawColorBar(const CILPalette& palette, double minimum, double maximum, int length,
                    const ColorBarOptions& options);

// The same bar, vertical, for any painter: lines and texts stay such in a file of vectors.
class VerticalColorBar
{
public:
    VerticalColorBar(const CILPalette& palette, double minimum, double maximum, int length,
                     const ColorBarOptions& options);

    QSize size() const { return m_size; }
    // From the painter's origin on; what lies below is not painted over.
    void draw(QPainter& painter) const;

private:
    void drawTips(QPainter& painter) const;
    void drawTicks(QPainter& painter) const;

    CILPalette m_palette;
    double m_minimum, m_maximum;
    int m_length;
    ColorBarOptions m_options;
    int m_em;
    std::vector<double> m_values; // of the ticks
    TickLabels m_labels;
    int m_top = 0;  // of the bar itself
    int m_text = 0; // left end of the ticks' texts
    int m_widest = 0;
    int m_unit = 0; // left end of the unit
    QSize m_size;
};

// The picture with the bar beside or under it.
QImage withColorBar(const QImage& picture, const CILPalette& palette, double minimum, double maximum,
                    const ColorBarOptions& options);

} // namespace orvimage
