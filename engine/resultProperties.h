// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QPair>
#include <QString>

// What the properties of a result state.
struct ResultFacts
{
    bool useMask = false;
    int selectedImages = 0;
    int axis = 0;
    int mode = 0;
    int binning = 0;
    int width = 0;
    int height = 0;
    int unit = 0;
    // Either kind of the sequence is transillumination: its efficiency goes by another name.
    bool transillumination = false;
    // False for a result of the first file generation.
    bool current = true;
    QString appVersion; // of a current result
};

// Key and value of each property, in order.
QList<QPair<QString, QString>> resultProperties(const ResultFacts& facts);
