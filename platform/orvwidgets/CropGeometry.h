// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSizeF>

#include <optional>

namespace orvwidgets {

enum class CropPart
{
    Outside,
    Inside,
    TopLeft,
    TopRight,
    BottomLeft,
    BottomRight
};

// The pointer over a part; outside one that draws.
Qt::CursorShape cursorOver(CropPart ePart);

// A crop that is drawn, moved and resized over a displayed picture. It is kept in parts of the picture, so that it
// stays over the same pixels when the view is zoomed or resized. `shown` is where the picture lies in the view, y
// downwards.
class CropGeometry
{
public:
    static constexpr double kHandle = 8.0;     // side of a handle, in view pixels
    static constexpr double kSmallest = 2.0;   // sides of a crop that a drag leaves, in view pixels
    static constexpr double kClickSlack = 2.0; // a press that moves less is no drag

    bool isEmpty() const { return !m_crop; }
    // In the view; empty without a crop.
    QRectF rect(const QRectF& shown) const;
    // Square around a corner.
    static QRectF handle(const QPointF& corner);
    CropPart partAt(const QPointF& point, const QRectF& shown) const;

    // A press, the moves and the release of a drag: from a corner it resizes, from the inside it moves, elsewhere it
    // draws anew. Points beside the picture count as the nearest on it.
    void press(const QPointF& point, const QRectF& shown);
    void dragTo(const QPointF& point, const QRectF& shown);
    // True when the crop is another than before the press. A press without a drag changes nothing, and a drag that
    // leaves less than kSmallest on a side leaves the crop of before.
    bool release(const QRectF& shown);
    bool isDragging() const { return m_bPressed; }

    // During a drag: ends it, the crop is that of before the press. Else gives back the crop before the last change,
    // one change deep. False when there is nothing to take back.
    bool takeBack();
    bool canTakeBack() const { return m_bPressed || m_bChanged; }
    bool clear(); // false when there is none
    void setWhole();
    // A crop in parts of the picture, on it; nothing for none. What could be taken back is forgotten.
    void set(const std::optional<QRectF>& crop);
    // By view pixels, kept on the picture. False without a crop or when nothing changed.
    bool moveBy(const QPointF& delta, const QRectF& shown);
    // Moves the lower right corner.
    bool growBy(const QPointF& delta, const QRectF& shown);
    // Forgets the crop and what could be taken back.
    void reset();

    // The crop as x1, y1, x2, y2 in view pixels: relative to the displayed picture, x from its left edge, y upwards
    // from its lower edge, (x1, y1) its upper left corner. Each is limited to 1 to `side`, the whole view pixels that
    // the displayed picture takes up, because who reads the crop takes a 0 for none. All 0 without a crop.
    QRect reported(const QSizeF& side) const;

private:
    using Crop = std::optional<QRectF>; // in parts of the picture, y downwards

    void change(const Crop& crop);
    static QPointF part(const QPointF& point, const QRectF& shown);

    Crop m_crop;
    Crop m_before; // before the last change, or before the press
    bool m_bChanged = false;
    bool m_bPressed = false;
    bool m_bDragged = false;
    CropPart m_part = CropPart::Outside;
    QPointF m_pressed; // in the view
    QPointF m_anchor;  // in parts of the picture: the corner that stays
    Crop m_atPress;
};

} // namespace orvwidgets
