// SPDX-License-Identifier: GPL-3.0-or-later
#include "services/results/ResultMapPictures.h"

#include "engine/CORVSpumKyvo.h"
#include "platform/orvapi/imagePadding.h"
#include "platform/orvimage/MapPicture.h"
#include "services/basis/ImageExtent.h"
#include "services/basis/UnitNames.h"
#include "services/results/ResultFacts.h"

#include <algorithm>
#include <new>

namespace {

// An image of floats; throws std::bad_alloc without memory.
CILImage floatImage(long lWidth, long lHeight)
{
    CILImage image;
    if (image.InitWithType(ORVTYPE_FLOAT, lWidth, lHeight) != EIL_SUCCESS) {
        throw std::bad_alloc();
    }
    return image;
}

// The photograph without what was added to make a square of it; nothing where there is none.
std::optional<CILImage> photographOf(const CORVSpumKyvo& engine)
{
    if (engine.m_pPhoto == nullptr) {
        return std::nullopt;
    }
    const QSize extent = extentOfPicture(engine, engine.m_pPhoto->m_lWidth, engine.m_pPhoto->m_lHeight);
    return croppedImage(*engine.m_pPhoto, extent.width(), extent.height());
}

} // namespace

QString mapUnitText(int nUnit)
{
    const QString text = UnitNames::text(nUnit);
    const QString quantity = UnitNames::quantity(nUnit);
    return quantity == text.toLower() ? text : QStringLiteral("%1 [%2]").arg(text, quantity);
}

CILImage imageOfMap(const CORVSpumKyvo& engine, const XTNT::Matrix<double>& maps, int nComponent, int nSpot,
                    float outside)
{
    CILImage image = floatImage(engine.m_nWidth, engine.m_nHeight);
    image.m_fBinning = static_cast<float>(engine.m_nBinning);
    std::fill_n(image.floats(), image.pixelCount(), outside);
    const long long pixels = engine.m_cube.pixelsPerSpot();
    const double* row = maps[nComponent] + nSpot * pixels;
    float* target = image.floats();
    for (long long j = 0; j < pixels; ++j) {
        const auto place =
            engine.m_cube.m_bHasMask ? engine.m_cube.m_maskIndices[static_cast<std::size_t>(j)] : static_cast<int>(j);
        target[place] = static_cast<float>(row[j]);
    }
    const QSize extent = analysedExtent(engine);
    image = croppedImage(image, extent.width(), extent.height());
    image.RefreshImageStats();
    return image;
}

ResultMapPictures::ResultMapPictures(const CORVSpumKyvo& engine, const ResultFacts& facts, const PictureStyle& style)
    : m_engine(engine), m_facts(facts), m_style(style), m_photograph(photographOf(engine))
{
}

QString ResultMapPictures::title(int nComponent, int nSpot) const
{
    const QString& label = m_facts.components[nComponent].name;
    return m_facts.spots > 1 ? QStringLiteral("%1, spot %2").arg(label, QString::number(nSpot + 1)) : label;
}

orvimage::RenderMapOptions ResultMapPictures::optionsOf(const QString& strTitle) const
{
    orvimage::RenderMapOptions options;
    options.title = strTitle;
    options.unit = mapUnitText(m_engine.m_eUnit);
    options.colorTable = m_style.colorTable;
    options.reversed = m_style.reversed;
    options.logScale = m_engine.m_bLogScale;
    options.pixelMicrometres = m_facts.pixelMicrometres.value_or(0.0);
    return options;
}

orvimage::MapPicture ResultMapPictures::picture(const CILImage& map, int nComponent, int nSpot)
{
    orvimage::RenderMapOptions options = optionsOf(title(nComponent, nSpot));
    options.note = scaleNote();
    takeRange(nComponent, options);
    return orvimage::MapPicture(map, m_photograph ? &*m_photograph : nullptr, options);
}

orvimage::MapPicture ResultMapPictures::pictureOf(const CILImage& map, const QString& strTitle) const
{
    return orvimage::MapPicture(map, m_photograph ? &*m_photograph : nullptr, optionsOf(strTitle));
}

// Nothing to be told of one map alone.
QString ResultMapPictures::scaleNote() const
{
    if (m_facts.components.size() * m_facts.spots < 2) {
        return QString();
    }
    if (m_style.scale == MapScale::All) {
        return QStringLiteral("one scale for all maps");
    }
    const bool spots = m_style.scale == MapScale::Component && m_facts.spots > 1;
    return spots ? QStringLiteral("one scale for all spots") : QStringLiteral("a scale of its own");
}

ResultMapPictures::Range ResultMapPictures::rangeOfComponent(int nComponent)
{
    const auto known = m_ranges.find(nComponent);
    if (known != m_ranges.end()) {
        return known->second;
    }
    // One below the other.
    CILImage maps = floatImage(m_facts.width, static_cast<long>(m_facts.height) * m_facts.spots);
    float* next = maps.floats();
    for (int s = 0; s < m_facts.spots; ++s) {
        const CILImage map = imageOfMap(m_engine, m_engine.m_concentrations, nComponent, s, 0.0F);
        next = std::copy_n(map.floats(), map.pixelCount(), next);
    }
    const orvimage::ValueRange range = orvimage::robustRange(maps);
    return m_ranges.emplace(nComponent, Range(range.minimum, range.maximum)).first->second;
}

void ResultMapPictures::takeRange(int nComponent, orvimage::RenderMapOptions& options)
{
    if (m_style.scale == MapScale::Own) {
        return;
    }
    Range range = rangeOfComponent(nComponent);
    for (int k = 0; k < m_facts.components.size() && m_style.scale == MapScale::All; ++k) {
        const Range other = rangeOfComponent(k);
        range = {std::min(range.first, other.first), std::max(range.second, other.second)};
    }
    options.hasRange = true;
    options.minimum = range.first;
    options.maximum = range.second;
}
