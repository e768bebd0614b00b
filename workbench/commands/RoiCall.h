// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/tagROIInfo.h"

#include <QString>
#include <QStringList>

class QCommandLineParser;

// What a call of `spum roi` asks for.
struct RoiCall
{
    QString sequence;
    QString action; // add, list, measure, remove, rename
    // add
    tagROIInfo shape; // without a name
    bool imagePixels = false;
    // remove, rename: the region. add: its name, empty for the next free one.
    QString name;
    QString newName; // rename
    // measure
    int unit = -1; // -1: that of an analysis
    QStringList results;
    QString csv;
    bool force = false;
    bool save = false;

    // Throws CallRefusal with all that is wrong, whatever the sequence holds.
    static RoiCall of(const QCommandLineParser& parser);
    // Whether the sequence's files are changed.
    bool changes() const;
};
