// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "services/importer/NameFigures.h"

#include <QStringList>
#include <QVector>

// The figures of each page: "ex640 em700", "t2.5", "frame1", pages separated by "|".
inline QString figureTexts(const QVector<QVector<Figure>>& pages)
{
    static const QStringList kinds{"ex", "em", "t", "T", "frame", "int"};
    QStringList texts;
    for (const QVector<Figure>& figures : pages) {
        QStringList parts;
        for (const Figure& figure : figures) {
            parts.append(kinds.value(figure.kind) + QString::number(figure.value));
        }
        texts.append(parts.join(' '));
    }
    return texts.join('|');
}
