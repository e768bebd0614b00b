// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>

namespace orvwidgets {

enum class ViewIcon
{
    Copy,
    Save,
    ZoomIn,
    ZoomOut,
    Fit,
    Rectangle,
    Ellipse,
    Whole,
    TakeBack,
    Clear,
    Polygon,
    FreeHand
};

// An icon of the views' menus, drawn in that colour, so that it is seen on any palette.
QIcon viewIcon(ViewIcon kind, const QColor& color);

} // namespace orvwidgets
