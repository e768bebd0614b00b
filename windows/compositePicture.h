// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "windows/CompositeLayer.h"
#include "windows/CompositeMaps.h"

#include "host/CILImage.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPair>
#include <QSize>
#include <QString>

// The false-colour picture of all maps of an analysis, each in its own solid colour, over a photograph or an X-ray
// image. Layers are the components in the order of the rows of the data, and as the last one the background.

// A composite is enlarged within a frame of at least this much along each side.
constexpr int kCompositeSide = 480;

// Whether there is one channel per row of the data and the columns are spots times pixels.
bool compositeSizesMatch(const CompositeMaps& maps, int nChannels);
// The line for the log (level 3) when they are not.
QString compositeSizeMismatchText();

// The layers that a composite starts with, all checked: the channels with the range from 0 to the largest element of
// their row (over all spots; 0 without a number) and brightness 1, or 0.3 for tissue autofluorescence in its own
// colour, so that it does not drown the probes; then the photograph, white, at brightness 0.35, over its own range,
// with the part of it that its palette shows (all of it when the palette has no limits of its own or the photograph is
// constant). The statistics of the photograph must be current; it may be empty. The sizes must match.
QList<CompositeLayer> compositeStartLayers(const CompositeMaps& maps, const QList<CompositeChannel>& channels,
                                           const CILImage& photo);

// Gives the last layer another background: its name and its range. The part that is shown and the brightness stay.
void takeCompositeBackground(QList<CompositeLayer>& layers, const CILImage& background, const QString& strName);

// Sets the upper end of each component's range to the largest element of that spot. False, and nothing changed, with
// one spot or a spot that there is not.
bool takeCompositeSpot(const CompositeMaps& maps, int nSpot, QList<CompositeLayer>& layers);

// The maps alone, without background, width x height pixels of QImage::Format_RGB32: an additive mix of the layers that
// are not unchecked, stretched so that the largest of all colour values is 255, each value truncated. Pixels outside
// the mask are black, and so is every pixel when nothing shines. A value that is its range's only one counts as the
// range's lower end, so an empty map adds nothing; a NaN makes its pixel black while its layer is on. Null without
// pixels. The sizes must match, and there must be a layer for each row of the data and one more. Throws std::bad_alloc.
QImage compositeOfMaps(const CompositeMaps& maps, int nSpot, const QList<CompositeLayer>& layers);

// The frame that a composite is enlarged to fit: at least kCompositeSide, the maps' and the background's sides.
QSize compositeFrame(const CompositeMaps& maps, const CILImage& background);

// The whole composite: compositeOfMaps(), enlarged within compositeFrame(), the aspect ratio kept. When the last layer
// is checked (and there is a background) the background is brought to exactly these sides and blended as grey: value *
// (1 - brightness) + brightness * grey, truncated; the picture then has these sides, and what lies beyond the enlarged
// maps counts as black. The background's colour is not used.
QImage compositePicture(const CompositeMaps& maps, int nSpot, const QList<CompositeLayer>& layers,
                        const CILImage& background);

// Labels with their colours as they stand on the picture: from the last component to the first, without the background.
QList<QPair<QString, QColor>> compositeLabels(const QList<CompositeLayer>& layers);
