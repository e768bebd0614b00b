// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QPoint>
#include <QString>

#include <optional>

// What lies below the pointer, for a status bar.
struct ReadOut
{
    QString image;                 // which one, where several are shown; empty without
    QPoint pixel;                  // from the upper left, 0 on
    std::optional<double> pixelMm; // side of a pixel
    std::optional<double> value;   // without: there is none, such as of a picture in colours
    QString quantity;              // what the number is: "p/s/cm²/sr"
    int averaged = 1;              // pixels along each side that the value is the mean of

    // "x 512, y 300 (20.5 mm, 12 mm): 1.234e+06 p/s/cm²/sr"; numbers as the locale writes them. The name
    // of the image stands before it, a long one without its middle.
    QString text(const QLocale& locale = QLocale()) const;
};
