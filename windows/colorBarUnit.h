// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPointF>
#include <QString>

// A line of text of the unit at the colour bar.
struct ColorBarUnitLine
{
    double offset = 0.0; // from the first line, in font heights
    QString text;
};

// Sizes that the layout of the colour bar starts from, in the units of the view's objects.
struct ColorBarSpace
{
    QPointF margin; // origin of the view's margin
    double viewHeight = 0.0;
    double fontHeight = 0.0;    // of the unit's text
    double topFontHeight = 0.0; // of the text above the bar
};

// The colour bar in its margin, in the units of the view's objects.
struct ColorBarLayout
{
    QPointF bottomLeft;    // of the bar
    double height = 0.0;   // of the bar, not below 0
    double textRoom = 0.0; // left free for the text beneath
};

// The unit under a colour bar, line by line from above: 0 counts, 1 radiance, 2 radiant efficiency, 3 efficiency,
// anything else unknown; bNTF tells the wording of 2 and 3. The lines build a fraction by hand, so blanks, underscores
// and offsets belong together.
QList<ColorBarUnitLine> colorBarUnitLines(int nUnit, bool bNTF);

// Where the first line stands, with y running downwards as the offsets do: half a font height beneath the text tag.
double colorBarUnitTop(double dTagY, double dTagHeight, double dFontHeight);

// Font heights of room that the text beneath the bar takes; strUnit is its first line.
int colorBarTextLines(const QString& strUnit);

// Fits the bar in its margin; strUnit as above.
ColorBarLayout colorBarLayout(const ColorBarSpace& space, const QString& strUnit);

// The values between which an image is shown, in one line: "1.2e+06 to 3.4e+08 (Radiance)".
QString shownRangeText(double dMin, double dMax, int nUnit, bool bNTF);
