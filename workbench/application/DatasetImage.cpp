// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/application/DatasetImage.h"

#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"
#include "host/UnitTexts.h"
#include "platform/orvimage/TiffIo.h"

#include <algorithm>
#include <new>

namespace {

constexpr unsigned kThreeColours = 0x1907;
constexpr unsigned kFourColours = 0x1908; // clear below the minimum over a photograph

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

bool DatasetImage::load(tag_eimagetype eType, tag_edisplayunit eUnit)
{
    read(eType, eUnit);
    return measure();
}

void DatasetImage::read(tag_eimagetype eType, tag_edisplayunit eUnit)
{
    const QList<tag_eimagetype> all = types();
    const CILPalette palette = *m_image.getPalette();
    m_eType = all.contains(eType) ? eType : all.value(0, IMAGETYPE_MAIN_DATA);
    m_eUnit = eUnit;
    m_strError.clear();
    m_image = CILImage();
    try {
        readPixels();
    } catch (const std::bad_alloc&) {
        m_image = CILImage();
        m_strError = QStringLiteral("there is not enough memory");
    }
    *m_image.getPalette() = palette;
    m_image.AdjustRGBBrightness(0);
}

bool DatasetImage::measure()
{
    m_whole = m_image.isEmpty() ? DisplayRange() : DisplayRange::whole(m_image);
    m_automatic = m_image.isEmpty() ? DisplayRange() : DisplayRange::automatic(m_image);
    setRange(m_automatic);
    return m_strError.isEmpty();
}

void DatasetImage::readPixels()
{
    if (hasUnit()) {
        m_strError = m_pDataset->unitUnavailableReason(m_eUnit);
        if (m_strError.isEmpty() &&
            m_pDataset->getCalibratedLuminImage(m_eUnit, &m_image, QStringLiteral("Image View")) != ESTATUS_SUCCESS) {
            m_strError = QStringLiteral("the image cannot be read");
            const CORVImageDetails* pDetails = m_pDataset->imageList().getImage(IMAGETYPE_MAIN_DATA);
            pDetails = pDetails != nullptr ? pDetails : m_pDataset->imageList().getImage(IMAGETYPE_LUMINESCENT);
            CILImage image;
            QString reason;
            if (pDetails != nullptr && !readTiff(pDetails->path(), 0, image, &reason)) {
                m_strError = reason;
            }
        }
    } else if (const CILImage* pImage =
                   m_eType == IMAGETYPE_PHOTOGRAPH ? photograph() : m_pDataset->getCoreImage(m_eType)) {
        m_image = *pImage;
    } else {
        m_strError = QStringLiteral("%1: the image cannot be read").arg(typeText(m_eType));
    }
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
    CILImage photo(*pPhoto);
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
