// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DatasetImage.h"
#include "workbench/application/imageFile.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/UnitTexts.h"
#include "platform/orvapi/imagePadding.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace {

constexpr unsigned kThreeColours = 0x1907;
constexpr unsigned kFourColours = 0x1908; // clear below the minimum over a photograph

QString noMemory()
{
    return QStringLiteral("there is not enough memory");
}

bool hasLending(const CORVSequenceDataset& sequence)
{
    const QList<CORVDataset*> datasets = sequence.getDatasets();
    return std::any_of(datasets.cbegin(), datasets.cend(),
                       [](const CORVDataset* p) { return p->hasImage(IMAGETYPE_PHOTOGRAPH); });
}

} // namespace

DatasetImage::DatasetImage(CORVDataset* pDataset) : m_pDataset(pDataset)
{
    const CORVSequenceDataset* pSequence = pDataset->sequence();
    m_bPhotograph = pDataset->hasImage(IMAGETYPE_PHOTOGRAPH) || (pSequence != nullptr && hasLending(*pSequence));
}

QList<tag_eimagetype> DatasetImage::types() const
{
    QList<tag_eimagetype> types;
    if (m_pDataset->hasImage(IMAGETYPE_MAIN_DATA) || m_pDataset->hasImage(IMAGETYPE_LUMINESCENT)) {
        types.append(IMAGETYPE_MAIN_DATA);
    }
    if (m_bPhotograph) {
        types.append(IMAGETYPE_PHOTOGRAPH);
    }
    for (const tag_eimagetype type : {IMAGETYPE_REFERENCE, IMAGETYPE_STRUCTURE, IMAGETYPE_FLUORESCENT_REFERENCE,
                                      IMAGETYPE_XRAY, IMAGETYPE_XRAY_PHOTOGRAPH}) {
        if (m_pDataset->hasImage(type)) {
            types.append(type);
        }
    }
    return types;
}

QString DatasetImage::typeText(tag_eimagetype eType)
{
    switch (eType) {
    case IMAGETYPE_PHOTOGRAPH:
        return QStringLiteral("Photograph");
    case IMAGETYPE_LUMINESCENT:
    case IMAGETYPE_MAIN_DATA:
        return QStringLiteral("Luminescent image");
    case IMAGETYPE_REFERENCE:
        return QStringLiteral("Reference image");
    case IMAGETYPE_STRUCTURE:
        return QStringLiteral("Structure image");
    case IMAGETYPE_FLUORESCENT_REFERENCE:
        return QStringLiteral("Fluorescent reference");
    case IMAGETYPE_XRAY:
        return QStringLiteral("X-ray image");
    case IMAGETYPE_XRAY_PHOTOGRAPH:
        return QStringLiteral("X-ray photograph");
    }
    return QString();
}

QVector<UnitOffer> DatasetImage::offers() const
{
    return unitOffers({m_pDataset});
}

CILImage* DatasetImage::photograph() const
{
    CILImage* pPhoto = m_pDataset->getCoreImage(IMAGETYPE_PHOTOGRAPH);
    const CORVSequenceDataset* pSequence = m_pDataset->sequence();
    if (pPhoto == nullptr && pSequence != nullptr) {
        pPhoto = pSequence->getEquivalentImageFromSequence(m_pDataset, IMAGETYPE_PHOTOGRAPH);
    }
    return pPhoto;
}

std::function<DatasetImage::Loaded()> DatasetImage::reader(tag_eimagetype eType, tag_edisplayunit eUnit) const
{
    const QList<tag_eimagetype> all = types();
    const tag_eimagetype type = all.contains(eType) ? eType : all.value(0, IMAGETYPE_MAIN_DATA);
    Filling fill;
    try {
        fill = type == IMAGETYPE_MAIN_DATA ? unitFilling(eUnit) : coreFilling(type);
    } catch (const std::bad_alloc&) {
        fill = [](Loaded& loaded) { loaded.error = noMemory(); };
    }
    return [type, eUnit, fill = std::move(fill), extent = extentBeforePadding(*m_pDataset).value_or(QSize())] {
        Loaded loaded;
        loaded.type = type;
        loaded.unit = eUnit;
        try {
            fill(loaded);
            loaded.image = ownPart(extent, std::move(loaded.image));
            if (!loaded.image.isEmpty()) {
                loaded.whole = DisplayRange::whole(loaded.image);
                loaded.automatic = DisplayRange::automatic(loaded.image);
            }
        } catch (const std::bad_alloc&) {
            loaded.image = CILImage();
            loaded.error = noMemory();
        }
        return loaded;
    };
}

bool DatasetImage::take(Loaded loaded)
{
    const CILPalette palette = *m_image.getPalette();
    m_eType = loaded.type;
    m_eUnit = loaded.unit;
    m_strError = loaded.error;
    m_image = std::move(loaded.image);
    *m_image.getPalette() = palette;
    m_image.AdjustRGBBrightness(0);
    m_whole = loaded.whole;
    m_automatic = loaded.automatic;
    setRange(m_automatic);
    return m_strError.isEmpty();
}

DatasetImage::Filling DatasetImage::unitFilling(tag_edisplayunit eUnit) const
{
    const QString unavailable = m_pDataset->unitUnavailableReason(eUnit);
    if (!unavailable.isEmpty()) {
        return [unavailable](Loaded& loaded) { loaded.error = unavailable; };
    }
    return [read = m_pDataset->luminImageReader(eUnit, QStringLiteral("Image View")),
            path = imageFile::pathOf(*m_pDataset, IMAGETYPE_MAIN_DATA)](Loaded& loaded) {
        if (read(&loaded.image) != ESTATUS_SUCCESS) {
            loaded.error = imageFile::reasonAgainst(path);
        }
    };
}

// These are borrowed from the dataset, which reads and keeps them now.
DatasetImage::Filling DatasetImage::coreFilling(tag_eimagetype eType) const
{
    const CILImage* pImage = eType == IMAGETYPE_PHOTOGRAPH ? photograph() : m_pDataset->getCoreImage(eType);
    if (pImage == nullptr) {
        return [eType](Loaded& loaded) {
            loaded.error = QStringLiteral("%1: the image cannot be read").arg(typeText(eType));
        };
    }
    return [pCopy = std::make_shared<CILImage>(*pImage)](Loaded& loaded) { loaded.image = std::move(*pCopy); };
}

QString DatasetImage::quantity() const
{
    return hasUnit() ? displayUnitQuantity(m_eUnit) : QStringLiteral("counts");
}

void DatasetImage::setColors(int nTable, bool bReversed, bool bLogScale)
{
    m_image.getPalette()->setCLUTinfo(nTable, bReversed, bLogScale);
}

void DatasetImage::setRange(const DisplayRange& range)
{
    m_range = range;
    m_image.getPalette()->SetImageMinMax(range.minimum, range.maximum);
}

void DatasetImage::setOverlay(bool bOverlay, double dOpacity)
{
    m_bOverlay = bOverlay;
    m_dOpacity = dOpacity;
}

// Grey, from its darkest to its brightest, whatever the colours of the image.
void DatasetImage::takePhotograph()
{
    if (m_bPhotographTaken) {
        return;
    }
    const CILImage* pPhoto = photograph();
    if (pPhoto == nullptr || pPhoto->isEmpty()) {
        m_bPhotograph = false;
        return;
    }
    CILImage photo = ownPart(extentBeforePadding(*m_pDataset).value_or(QSize()), *pPhoto);
    photo.AdjustRGBBrightness(0);
    if (!photo.isRGB()) {
        const DisplayRange range = DisplayRange::automatic(photo);
        *photo.getPalette() = CILPalette();
        photo.getPalette()->SetImageMinMax(range.minimum, range.maximum);
        photo.setGLFormat(kThreeColours);
    }
    m_overlay.setPhotograph(&photo, IMAGETYPE_PHOTOGRAPH);
    m_bPhotographTaken = true;
}

QImage DatasetImage::picture()
{
    if (m_image.isEmpty()) {
        return {};
    }
    if (isOverlay()) {
        takePhotograph();
    }
    if (!isOverlay() || !m_bPhotographTaken) {
        m_image.setGLFormat(kThreeColours);
        return m_image.toQImage();
    }
    m_image.setGLFormat(kFourColours);
    m_overlay.setLuminescent(&m_image, m_eType);
    m_overlay.blend(static_cast<float>(m_dOpacity), 1);
    return m_overlay.toQImage();
}

std::optional<double> DatasetImage::valueAt(const QPoint& pixel) const
{
    if (m_image.isEmpty() || m_image.isRGB() || pixel.x() < 0 || pixel.y() < 0 || pixel.x() >= m_image.m_lWidth ||
        pixel.y() >= m_image.m_lHeight) {
        return std::nullopt;
    }
    return m_image.value(static_cast<std::size_t>(pixel.y()) * static_cast<std::size_t>(m_image.m_lWidth) +
                         static_cast<std::size_t>(pixel.x()));
}
