// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/ScaleRatio.h"

#include "XTNT/xtnt_matrix.h"
#include "host/CILImage.h"
#include "host/CORVOverlayImage.h"
#include "spectra/CompositeChannel.h"

#include <QColor>
#include <QList>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

struct ValueLimits
{
    double minimum = 0.0;
    double maximum = 0.0;
};

// Of all elements that are numbers; without any, 0 and 0.
ValueLimits valueLimits(const XTNT::Matrix<double>& values);
// minimum + ratio * (maximum - minimum) for the two ratios.
ValueLimits partOf(const ValueLimits& limits, double dLower, double dUpper);

// A component of a result as its pictures show it.
struct UnmixedComponent
{
    QString label;
    QString color;    // a name that QColor::setNamedColor understands
    ScaleRatio ratio; // what is shown of its own range
};

// The colour of a component's layer in a composite. Autofluorescence of tissue in its default colour gets a dark green,
// so that it does not drown the other layers.
QColor layerColor(const UnmixedComponent& component);
// The components as the composite starts from them.
QList<CompositeChannel> compositeChannels(const QList<UnmixedComponent>& components);
// "name" where there is one scan spot, else "name_001" for the first, and so on by the last three digits.
QString tileLabel(const QString& strName, int nSpot, int nSpots);

// How maps are shown.
struct UnmixedDisplay
{
    int colorTable = 1; // index as in CILPalette::colorTableNames()
    bool reversed = true;
    bool logScale = false;
    int overlayOpacity = 100;    // of a map over the photograph, percent
    bool individualScale = true; // each map over its own range, else all over commonRange
    ValueLimits commonRange;
};

// What the pictures of a result are made from.
struct UnmixedSource
{
    XTNT::Matrix<double> concentrations; // a row a component; a column a pixel of a spot, spot after spot
    bool masked = false;     // the columns of a spot are the pixels that `pixels` lists; else those of the map in turn
    std::vector<int> pixels; // places in the map (row-major); without any, a masked map is background alone
    int width = 0;
    int height = 0;
    int spots = 1;
    double background = 0.0; // what a map holds where the columns say nothing
    QList<UnmixedComponent> components;
    UnmixedDisplay display;
    const CILImage* photo = nullptr;        // borrowed; null or empty: the maps stand alone
    const CILImage* photoPicture = nullptr; // borrowed; see pictureOf(), for the layers beneath
    const CORVOverlayImage* hint = nullptr; // borrowed; see hintOf(); null: each spot makes its own

    long long pixelsPerSpot() const;
    // Whether the sizes go together: a component a row, enough columns, all places inside the map.
    bool isConsistent() const;
};

// An image that holds what `image` shows. Overlays that take it as their layer share the one picture.
CILImage pictureOf(const CILImage& image);

// An overlay with a photograph (null or empty: none) in front, as it is hinted at over a composite. What copies of it
// have in front is the same picture.
CORVOverlayImage hintOf(const CILImage* pPhoto);

// Component nComponent at spot nSpot, w x h doubles. Throws std::bad_alloc; so do all that follow.
std::unique_ptr<CILImage> concentrationMap(const UnmixedSource& source, int nComponent, int nSpot);
// Sets how a map is shown: its statistics, colours, format and range.
void showMap(CILImage& map, const UnmixedDisplay& display, const ScaleRatio& ratio);
// Makes a map, whose statistics are known, a layer of one colour: its values become what exceeds the lower limit of the
// shown part of its range, up to the upper one. The statistics stay those of the map.
void makeLayer(CILImage& map, const QColor& color, const ScaleRatio& ratio);

// The pictures of one spot.
struct UnmixedSpot
{
    struct Tile
    {
        CILImage* image = nullptr; // one of `images`
        QString label;
        std::optional<ValueLimits> range{}; // of the values that a map is shown over; a composite has none
    };
    std::vector<std::unique_ptr<CILImage>> images; // all that were made, in that order
    QList<Tile> tiles;                             // the components in their order, then the composite
};

// Each component's map over the photograph, and the composite: the running mean of the components' layers (the first at
// weight 1, the second at 1/2 and so on) with a hint of the photograph over it. The source is consistent.
UnmixedSpot unmixedSpot(const UnmixedSource& source, int nSpot);
