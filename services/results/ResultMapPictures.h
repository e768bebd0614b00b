// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "XTNT/xtnt_matrix.h"
#include "host/CILImage.h"
#include "services/pictures/PictureStyle.h"

#include <QString>

#include <map>
#include <optional>
#include <utility>

class CORVSpumKyvo;
struct ResultFacts;

namespace orvimage {
class MapPicture;
struct RenderMapOptions;
} // namespace orvimage

// What the numbers of a map are: "Radiance [p/s/cm²/sr]", and "Counts", which is its own unit.
QString mapUnitText(int nUnit);

// A component's row of maps (components x pixels, spot after spot) at a spot as an image of floats, of the shape that
// the images had; pixels outside the mask are `outside`.
CILImage imageOfMap(const CORVSpumKyvo& engine, const XTNT::Matrix<double>& maps, int nComponent, int nSpot,
                    float outside);

// The pictures of a result's maps, in a style. What it is made of must outlive it.
class ResultMapPictures
{
public:
    ResultMapPictures(const CORVSpumKyvo& engine, const ResultFacts& facts, const PictureStyle& style);

    // The component, and the spot where there are several.
    QString title(int nComponent, int nSpot) const;
    orvimage::MapPicture picture(const CILImage& map, int nComponent, int nSpot);
    // Of a map that is none of a component, in a scale of its own.
    orvimage::MapPicture pictureOf(const CILImage& map, const QString& strTitle) const;

private:
    orvimage::RenderMapOptions optionsOf(const QString& strTitle) const;
    QString scaleNote() const;
    using Range = std::pair<double, double>;
    Range rangeOfComponent(int nComponent);
    void takeRange(int nComponent, orvimage::RenderMapOptions& options);

    const CORVSpumKyvo& m_engine;
    const ResultFacts& m_facts;
    const PictureStyle m_style;
    const std::optional<CILImage> m_photograph; // of the shape of the maps
    std::map<int, Range> m_ranges;              // by component, over all spots
};
