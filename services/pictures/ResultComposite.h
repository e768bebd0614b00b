// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QPair>
#include <QString>

class CORVSpumKyvo;

// A picture with the name of the file that it is for.
struct CompositeFile
{
    QString name;
    QImage picture;
};

// The false-colour composite of a result at a spot (0 the first) over the photograph, as the composite window starts
// with it, from what the engine handed to its own view for it (OwnResultView::composite()); each spot over its own
// range. Null without such data, for a spot that there is not, and, told in the log, for data whose sizes do not match.
// Where there are colours, one for each component, they take the place of the engine's; brightness stays.
QImage compositePictureOf(const CORVSpumKyvo& engine, int nSpot, const QList<QColor>& colors = {});

// The composite with a legend beneath: the labels of the components in their colours. Null as above.
QImage compositeWithLegendOf(const CORVSpumKyvo& engine, int nSpot, const QList<QColor>& colors = {});

// The composites of all spots with their legends: "composite.png", or "composite_spot1.png" and so on.
QList<CompositeFile> compositeFilesOf(const CORVSpumKyvo& engine, const QList<QColor>& colors = {});

// A picture with a dark strip beneath it on which the labels stand, each behind a patch of its colour, in as many rows
// as they need. Colours too dark for text are lightened for the text alone. Without labels, or without a
// QGuiApplication to draw text, the picture as it is.
QImage withLegend(const QImage& picture, const QList<QPair<QString, QColor>>& labels);
