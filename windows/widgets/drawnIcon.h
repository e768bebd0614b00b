// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QIcon>

enum class DrawnIcon
{
    Photograph,
    XRay,
    Transfer, // a picture into a stack of others
    Copy,
    Export,
    Print
};

// An icon drawn in that colour, so that it is seen on any palette and at any ratio of device pixels.
QIcon drawnIcon(DrawnIcon kind, const QColor& color);
