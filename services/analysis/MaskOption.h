// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

class QCommandLineParser;

// Which pixels --mask and --threshold ask for.
struct MaskOption
{
    enum class Kind
    {
        None, // every pixel
        Photograph,
        File,
        Rectangle,
        Ellipse
    };
    Kind kind = Kind::None;
    QString file;
    // Of a rectangle and of the rectangle around an ellipse, in pixels of the analysis: x from the left, y from the
    // top.
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    // Percent of the photograph's range; below 0: found automatically.
    double threshold = -1.0;
};

// Declares --mask and --threshold; `strDefaults` tells what serves without --mask.
void declareMaskOptions(QCommandLineParser& parser, const QString& strDefaults);

// The option "none", "auto", "rect:X,Y,W,H", "ellipse:X,Y,W,H" or a file; `eDefault` without one. A file of such a name
// is reached with a folder in front ("./auto"). Throws CliFailure (usage) for numbers that are none, and for a
// threshold without a mask of the photograph.
MaskOption maskOptionOf(const QCommandLineParser& parser, MaskOption::Kind eDefault);
