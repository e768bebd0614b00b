// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILPalette.h"
#include "platform/orvimage/ColorBar.h"
#include "platform/orvimage/MapRange.h"

#include <QImage>
#include <QString>
#include <QStringList>

class QPainter;

namespace orvimage {

struct RenderMapOptions
{
    int colorTable = 3; // index as in CILPalette::colorTableNames()
    bool reversed = false;
    bool logScale = false;
    bool hasRange = false; // otherwise robustRange() serves
    double minimum = 0.0;
    double maximum = 0.0;
    double opacity = 1.0; // of the map over the photograph, 0 to 1
    bool fade = true;     // the lowest values let the photograph through
    QString title;
    QString unit;  // what the colour bar's numbers are
    QString note;  // a line beneath the picture
    int scale = 0; // screen pixels per pixel of the map along a side; 0: so many that the longer side reaches 512
    double pixelMicrometres = 0.0; // side of the map's pixels in the object; 0: not known, and no scale bar
};

// The picture of a map: its colours over the photograph (null: over black), enlarged by whole pixels, with a title (in
// as many lines as it takes), a note, a colour bar and, where the size of the pixels is known, a scale bar. The
// photograph is brought to the map's extent and stretched between its own extremes; one with colours keeps them. NaNs
// show the photograph. A tip at an end of the colour bar tells that there are values beyond it. Draws on any painter:
// all but the pixels are lines and texts in a file of vectors. An empty map, or one of more than 16384 pixels along a
// side, gives a null picture.
class MapPicture
{
public:
    MapPicture(const CILImage& map, const CILImage* photograph, const RenderMapOptions& options);

    bool isNull() const { return m_picture.isNull(); }
    QSize size() const { return m_size; }
    // What the colour bar shows.
    const ValueRange& range() const { return m_range; }
    const QString& note() const { return m_options.note; }
    // On white, from the painter's origin on.
    void draw(QPainter& painter) const;
    // In QImage::Format_RGB32.
    QImage toImage() const;

private:
    void layOut();
    void drawTexts(QPainter& painter) const;
    void drawScaleBar(QPainter& painter) const;
    VerticalColorBar colorBar() const;

    RenderMapOptions m_options;
    CILPalette m_palette;
    ValueRange m_range;
    QImage m_picture;          // the map over the photograph
    double m_pixels = 1.0;     // of the screen a pixel of the map
    ColorBarOptions m_barLook; // unit, tips
    QStringList m_title;       // in lines
    int m_em = 0;
    int m_top = 0; // of the picture on the page
    QSize m_size;
};

// The length that a scale bar should have: the longest of 1, 2 or 5 times a power of ten that is not above `most`, in
// micrometres; 0 without one. Its text has a unit that keeps the number from 1 to 999: "200 µm", "5 mm", "2 cm".
double scaleBarLength(double most);
QString scaleBarText(double micrometres);

} // namespace orvimage
