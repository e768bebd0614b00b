// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QPolygonF>
#include <QRectF>
#include <QSize>
#include <QString>

class QPainter;
class QPalette;

namespace orvwidgets {

// A rectangle or the ellipse in it, in black and white lines that are seen on any picture.
void paintOutline(QPainter& painter, const QRectF& shape, bool bEllipse);

// The same for an outline, which closes by itself.
void paintOutline(QPainter& painter, const QPolygonF& outline);

// The same for a line that stays open.
void paintLine(QPainter& painter, const QPolygonF& line);

// A handle at each of the points.
void paintHandles(QPainter& painter, const QPolygonF& points);

// The faint frame around a shape that is not its own frame.
void paintFrame(QPainter& painter, const QRectF& frame);

// A rectangle or an ellipse with a handle at each corner.
void paintCrop(QPainter& painter, const QRectF& crop, bool bEllipse);

// Pixel numbers in strips of `width` along the right and the lower edge of a displayed picture.
void paintPixelLegend(QPainter& painter, const QRectF& shown, const QSize& picture, double width,
                      const QPalette& palette);

// A circle of that diameter in black and white.
void paintRing(QPainter& painter, const QPointF& centre, double diameter);

// What stands off a text of that colour, on whatever it is drawn: dark around a light one, light around a dark one.
QColor outlineOf(const QColor& text);

// A line of text with its baseline at `at`, outlined so that its colour is read on any picture.
void paintOutlinedText(QPainter& painter, const QPointF& at, const QString& text, const QFont& font,
                       const QColor& color);

} // namespace orvwidgets
