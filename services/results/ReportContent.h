// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>

class QPainter;

// A picture of a report.
struct ReportFigure
{
    QString title;
    QByteArray png;
    QSize size;     // of the PNG in pixels
    QByteArray svg; // the same drawing for readers that scale, may be empty
    // The same drawing by itself, of `size`, for a file of vectors; may be empty.
    std::function<void(QPainter& painter)> paint;
};

// A table of a report. Where `colors` is not empty, row i begins with a patch of that colour (a name QColor knows).
struct ReportTable
{
    QString title;
    QStringList header;
    QList<QStringList> rows;
    QStringList colors;
};

// What a report of a result says, whatever form it takes. Texts are plain: whoever writes a form escapes them.
struct ReportContent
{
    QString title;
    QString subtitle;
    QString note;                         // the user's, may be empty
    QList<QPair<QString, QString>> facts; // label and value, the most important first
    QStringList warnings;
    QList<ReportFigure> composites; // shown large
    QList<ReportFigure> maps;       // shown side by side
    QList<ReportFigure> plots;      // across the page
    ReportTable components;
    QList<ReportTable> tables; // settings
    QString command;
    QString program; // "spum 1.0, 2026-01-31 12:00"
};
