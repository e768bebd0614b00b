// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/Figure.h"

#include <QString>
#include <QStringList>
#include <QVector>

// What the name of a file, page, band or channel tells of its image, in any case:
//   - "ex640", "Exc_640nm", "em700", "emission-700", "EX640EM700": wavelengths of three digits, 200 to 999;
//   - "640-700", "640_700nm", "640nm-700nm": excitation and emission; "700nm" alone: emission;
//   - "t12.5s", "time_12.5", "250ms", "5min", "2h", "t=-5s": times; "t0012" a time without a unit;
//   - "frame12", "img_12", "tp3", or a number at the end where there is nothing else: the number of a frame;
//   - "int2": the interval;
//   - "spot x-0.45 y1.6": the scan spot.
// What could be taken in two ways is a doubt and no figure: two excitations, a range ("ex640-660"), a pair that does
// not ascend, a third number beside a pair.
struct NameFigures
{
    QVector<Figure> figures;
    QStringList doubts; // one sentence each, without the name

    // `strWhat` names what the text is, for the origin: "name", "OME channel name".
    static NameFigures read(const QString& strName, const QString& strWhat);
};
