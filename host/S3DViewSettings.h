// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Letters of the views that show images.
struct S3DViewSettings
{
    QString fontFamily;
    int labelFontSize = 0; // points, of the labels of images
    int barFontSize = 0;   // points, of the numbers at a colour bar
};
