// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>

#include <map>
#include <optional>
#include <vector>

namespace orvwidgets {

// Regions that are painted over a picture: for each channel (1 to 255; 0 is none) a set of pixels, a pen and a colour,
// independent of the other channels, so that a pixel may belong to several.
//
// Rectangles that come back are what changed, in pixels of the picture.
class PaintMasks
{
public:
    static constexpr int kHistory = 100; // strokes of a channel that can be taken back

    // Diameter of a pen by its name ("Thin" 1, "Medium" 3, "Thick" 7 pixels); 0 for any other.
    static int penDiameter(const QString& strPen);
    // The next thicker pen, or with bThinner the next thinner one; the thickest and the thinnest have none beyond them.
    static QString penBeside(int nDiameter, bool bThinner);

    // Another size drops all pixels and strokes; channels, pens and colours stay.
    void setSize(const QSize& size);
    QSize size() const { return m_size; }

    // Adds a channel, or gives it another colour; false for 0.
    bool setColor(unsigned char channel, const QColor& color);
    // The channel is shown and painted no more; its pixels stay until reset().
    QRect removeColor(unsigned char channel);
    bool contains(unsigned char channel) const { return m_colors.count(channel) != 0; }
    void setPen(unsigned char channel, int nDiameter);
    int pen(unsigned char channel) const; // 1 until another was set

    // Drops the channel's pixels and its strokes.
    QRect reset(unsigned char channel);
    // Row-major indices, ascending.
    QList<int> pixels(unsigned char channel) const;
    bool isPainted(unsigned char channel, int nIndex) const;
    int count(unsigned char channel) const;
    bool isEmpty(unsigned char channel) const { return count(channel) == 0; }

    // A stroke with the channel's round pen, from point to point without gaps; points may lie beside the picture. It
    // paints or erases that channel alone. False without the channel or a picture.
    bool beginStroke(unsigned char channel, bool bErase);
    QRect strokeTo(const QPoint& pixel);
    // All pixels of the box, or those whose centres lie in the ellipse in it, as part of the stroke. The box may reach
    // beyond the picture.
    QRect fill(const QRect& box, bool bEllipse);
    // Ends the stroke; false when none was begun. One that changed nothing is not remembered.
    bool endStroke();
    bool isStroking() const { return m_stroke.has_value(); }
    // Takes the channel's last stroke back, or the one being drawn. No value when there is none.
    std::optional<QRect> takeBack(unsigned char channel);
    bool canTakeBack(unsigned char channel) const;

    // The mean colour of the channels that are shown at a pixel; no value where nothing is painted.
    std::optional<QRgb> colorAt(int nIndex) const;
    // Bounds of all that is painted.
    QRect all() const { return QRect(QPoint(0, 0), m_size); }

private:
    using Bits = std::vector<bool>;
    struct Stroke
    {
        bool bErase = false;
        std::vector<int> changed;
    };
    struct Region
    {
        Bits bits;
        std::size_t count = 0;
        std::vector<Stroke> history;
    };

    void stamp(const QPoint& centre, QRect& changed);
    void change(int x, int y, QRect& changed);
    void set(Region& region, int nIndex, bool bOn);
    QRect boundsOf(const std::vector<int>& indices) const;

    QSize m_size;
    std::map<unsigned char, QColor> m_colors;
    std::map<unsigned char, int> m_pens;
    std::map<unsigned char, Region> m_regions;
    std::optional<Stroke> m_stroke;
    unsigned char m_nStrokeChannel = 0;
    std::optional<QPoint> m_last; // of the stroke
};

} // namespace orvwidgets
