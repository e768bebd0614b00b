// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVDataset.h"

#include "host/CILImage.h"
#include "host/CROIManager.h"
#include "host/UnitTexts.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/ClickInfoValues.h"
#include "platform/orvapi/HostLog.h"
#include "platform/orvapi/ImageCalibration.h"
#include "platform/orvapi/ImageNames.h"
#include "platform/orvapi/KeptImages.h"
#include "platform/orvapi/SectionIn.h"
#include "platform/orvimage/TiffIo.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include <algorithm>
#include <utility>

namespace {

// Every dataset that lives, in the order of their making. Never destroyed, so that a dataset with static storage finds
// it.
QList<CORVDataset*>& registry()
{
    static auto* const s_pDatasets = new QList<CORVDataset*>;
    return *s_pDatasets;
}

tag_edisplayunit& limit()
{
    static tag_edisplayunit s_eLimit = DISPLAYUNIT_EFFICIENCY;
    return s_eLimit;
}

QString withSeparator(const QString& strFolder)
{
    return strFolder.isEmpty() || strFolder.endsWith(QLatin1Char('/')) ? strFolder : strFolder + QLatin1Char('/');
}

QString cleanPath(const QString& strPath)
{
    return QDir::cleanPath(QFileInfo(strPath).absoluteFilePath());
}

// The file of one of the names in the folder, without regard to case; empty when there is none.
QString findFile(const QStringList& files, const QStringList& names)
{
    for (const QString& name : names) {
        for (const QString& file : files) {
            if (file.compare(name, Qt::CaseInsensitive) == 0) {
                return file;
            }
        }
    }
    return QString();
}

// The header of a file whose pixels can be read, as far as the header tells.
bool readHeader(const QString& strPath, TiffInfo* pInfo, QString* pReason)
{
    if (!readTiffHeader(strPath, 0, pInfo, pReason)) {
        return false;
    }
    if (pInfo->type != ORVTYPE_NONE) {
        return true;
    }
    *pReason = QStringLiteral("%1: holds pixels of a kind that cannot be read").arg(strPath);
    return false;
}

// The time in milliseconds, UTC. No two of a process are the same, and hardly any two of several.
QString newClickNumber()
{
    static qint64 s_nLast = 0;
    QString number;
    do {
        s_nLast = std::max(s_nLast + 1, QDateTime::currentMSecsSinceEpoch());
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(s_nLast, Qt::UTC);
        number = QLatin1String("MADE") + QLocale::c().toString(time, QStringLiteral("yyyyMMddHHmmsszzz"));
    } while (CORVDataset::getDataset(number) != nullptr);
    return number;
}

void tell(QString* pError, const QString& strReason)
{
    if (pError != nullptr) {
        *pError = strReason;
    }
}

} // namespace

CORVDataset::CORVDataset() : m_pCoreImages(std::make_unique<KeptImages>())
{
    registry().append(this);
}

CORVDataset::~CORVDataset()
{
    registry().removeOne(this);
}

CORVDataset* CORVDataset::getDataset(const QString& strClickNumber)
{
    if (strClickNumber.isEmpty()) {
        return nullptr;
    }
    for (CORVDataset* pDataset : registry()) {
        if (pDataset->getClickNumber() == strClickNumber) {
            return pDataset;
        }
    }
    return nullptr;
}

QList<CORVDataset*> CORVDataset::loadedDatasets()
{
    return registry();
}

void CORVDataset::setUnitLimit(tag_edisplayunit eLimit)
{
    limit() = eLimit;
}

tag_edisplayunit CORVDataset::unitLimit()
{
    return limit();
}

void CORVDataset::reset()
{
    clickInfo.clear();
    nativeUnit = DISPLAYUNIT_RADIANCE;
    hasLuminescentImage = false;
    hasXRayImage = false;
    hasTransmissionImage = false;
    m_strFolder.clear();
    m_images.clear();
    m_sizes.clear();
    m_pCoreImages->clear();
    m_givenImages.clear();
    if (m_pROIManager) {
        m_pROIManager->clearAllLists();
    }
    m_bModified = false;
}

ESTATUS CORVDataset::open(const QString& strFolder, QString* pError, QStringList* pWarnings)
{
    return load(strFolder, false, pError, pWarnings);
}

ESTATUS CORVDataset::openMade(const QString& strFolder, QString* pError, QStringList* pWarnings)
{
    return load(strFolder, true, pError, pWarnings);
}

ESTATUS CORVDataset::load(const QString& strFolder, bool bMade, QString* pError, QStringList* pWarnings)
{
    reset();
    const QString file = withSeparator(strFolder) + QLatin1String(SequenceFiles::kClickInfo);
    QStringList lines;
    const bool readable = clickInfo.loadClickInfo(file, &lines) == 0;
    if (readable && bMade && getClickNumber().isEmpty()) {
        sectionIn(clickInfo, QString::fromLatin1(ClickKeys::kClickNumber))
            .setValue(QString::fromLatin1(ClickKeys::kClickNumber), newClickNumber());
    }
    if (!readable || getClickNumber().isEmpty()) {
        tell(pError, readable          ? QStringLiteral("%1: the click number is missing").arg(file)
                     : lines.isEmpty() ? QStringLiteral("%1: cannot be read").arg(file)
                                       : lines.last()); // behind the warnings
        reset();
        return ESTATUS_FILE_UNREADABLE;
    }
    for (const QString& wrong : wrongNumbers(clickInfo)) {
        lines.append(file + QLatin1String(": ") + wrong);
    }
    setFolderPath(strFolder);
    readNativeUnit(&lines);
    readRegions(&lines);
    const ESTATUS status = findImages(pError, &lines);
    if (pWarnings != nullptr) {
        pWarnings->append(lines);
    }
    if (status != ESTATUS_SUCCESS) {
        reset();
    }
    return status;
}

void CORVDataset::readNativeUnit(QStringList* pWarnings)
{
    // Pixels that are stored in a unit are best had in it.
    for (const char* pKey : {ClickKeys::kNativeUnit, ClickKeys::kStoredUnit}) {
        const QString text = clickText(clickInfo, ClickKeys::kLuminescentImage, pKey);
        const int unit = displayUnitOf(text);
        if (unit >= 0) {
            nativeUnit = unit;
        } else if (!text.isEmpty()) {
            pWarnings->append(QStringLiteral("%1%2: section \"%3\": \"%4\" is \"%5\", which is no unit")
                                  .arg(m_strFolder, QLatin1String(SequenceFiles::kClickInfo),
                                       QLatin1String(ClickKeys::kLuminescentImage), QLatin1String(pKey), text));
        }
    }
}

void CORVDataset::readRegions(QStringList* pWarnings)
{
    const QString section = QString::fromLatin1(ClickKeys::kROIs);
    if (clickInfo[section] == nullptr) {
        return;
    }
    roiManager()->readROIData(clickInfo);
    for (const QString& message : roiManager()->messages()) {
        pWarnings->append(QStringLiteral("%1%2: section \"%3\": %4")
                              .arg(m_strFolder, QLatin1String(SequenceFiles::kClickInfo), section, message));
    }
}

bool CORVDataset::hasROIData() const
{
    return m_pROIManager && !m_pROIManager->regions().isEmpty();
}

CROIManager* CORVDataset::roiManager()
{
    if (!m_pROIManager) {
        m_pROIManager = std::make_unique<CROIManager>(this);
    }
    return m_pROIManager.get();
}

ESTATUS CORVDataset::findImages(QString* pError, QStringList* pWarnings)
{
    const QStringList files = QDir(m_strFolder).entryList(QDir::Files);
    for (const tag_eimagetype type : allImageTypes()) {
        const QString file = findFile(files, imageFileNames(type));
        if (file.isEmpty()) {
            continue;
        }
        TiffInfo header;
        QString reason;
        if (readHeader(m_strFolder + file, &header, &reason)) {
            m_images.add(CORVImageDetails(type, file, m_strFolder + file));
            m_sizes.insert(type, QSize(static_cast<int>(header.width), static_cast<int>(header.height)));
        } else if (type == IMAGETYPE_LUMINESCENT || type == IMAGETYPE_MAIN_DATA) {
            tell(pError, reason);
            return ESTATUS_FILE_UNREADABLE;
        } else {
            pWarnings->append(reason);
        }
    }
    hasLuminescentImage = hasImage(IMAGETYPE_LUMINESCENT) || hasImage(IMAGETYPE_MAIN_DATA);
    hasXRayImage = hasImage(IMAGETYPE_XRAY);
    if (const CORVImageDetails* pReference = m_images.getImage(IMAGETYPE_FLUORESCENT_REFERENCE)) {
        hasTransmissionImage = pReference->fileName().compare(imageFileNames(IMAGETYPE_FLUORESCENT_REFERENCE).last(),
                                                              Qt::CaseInsensitive) == 0;
    }
    if (!hasLuminescentImage && clickInfo[QString::fromLatin1(ClickKeys::kLuminescentImage)] != nullptr) {
        tell(pError,
             QStringLiteral("%1%2: is missing").arg(m_strFolder, imageFileNames(IMAGETYPE_LUMINESCENT).first()));
        return ESTATUS_IMAGE_MISSING;
    }
    return ESTATUS_SUCCESS;
}

QString CORVDataset::getClickNumber() const
{
    return clickText(clickInfo, ClickKeys::kClickNumber, ClickKeys::kClickNumber);
}

QString CORVDataset::getExcitationFilter() const
{
    return clickText(clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kExcitationFilter);
}

QString CORVDataset::getEmissionFilter() const
{
    return clickText(clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kEmissionFilter);
}

QString CORVDataset::getFLXspot() const
{
    return clickText(clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kFLXSpot);
}

QString CORVDataset::getFLYspot() const
{
    return clickText(clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kFLYSpot);
}

bool CORVDataset::hasImage(tag_eimagetype eType) const
{
    return m_pCoreImages->image(eType) != nullptr || m_images.getImage(eType) != nullptr;
}

bool CORVDataset::resolveType(tag_eimagetype eType, tag_eimagetype* pResolved) const
{
    *pResolved = eType;
    if (hasImage(eType)) {
        return true;
    }
    if (eType != IMAGETYPE_LUMINESCENT && eType != IMAGETYPE_MAIN_DATA) {
        return false;
    }
    *pResolved = eType == IMAGETYPE_LUMINESCENT ? IMAGETYPE_MAIN_DATA : IMAGETYPE_LUMINESCENT;
    return hasImage(*pResolved);
}

float CORVDataset::binningOf(tag_eimagetype eType) const
{
    const auto pImage = m_pCoreImages->image(eType);
    return pImage == nullptr ? imageBinning(clickInfo, eType) : pImage->m_fBinning;
}

CORVDataset::ImageReader CORVDataset::imageReader(tag_eimagetype eType, const QString& strCaller) const
{
    if (const auto pImage = m_pCoreImages->image(eType)) {
        return [image = *pImage](CILImage* pOut) mutable {
            *pOut = std::move(image);
            return ESTATUS_SUCCESS;
        };
    }
    const CORVImageDetails* pDetails = m_images.getImage(eType);
    if (pDetails == nullptr) {
        return [](CILImage*) { return ESTATUS_IMAGE_MISSING; };
    }
    TiffReadOptions options;
    options.keepColours = eType == IMAGETYPE_PHOTOGRAPH || eType == IMAGETYPE_XRAY_PHOTOGRAPH;
    return [path = pDetails->path(), options, binning = binningOf(eType), strCaller](CILImage* pOut) {
        CILImage image;
        QString reason;
        if (!readTiff(path, 0, options, image, &reason)) {
            logError((strCaller.isEmpty() ? QString() : strCaller + QLatin1String(": ")) + reason);
            return ESTATUS_FILE_UNREADABLE;
        }
        image.m_fBinning = binning;
        *pOut = std::move(image);
        return ESTATUS_SUCCESS;
    };
}

CILImage* CORVDataset::getCoreImage(tag_eimagetype eType)
{
    tag_eimagetype type = eType;
    if (!resolveType(eType, &type)) {
        return nullptr;
    }
    if (const auto pKept = m_pCoreImages->image(type)) {
        return pKept.data();
    }
    const auto pImage = QSharedPointer<CILImage>::create();
    if (imageReader(type, QString())(pImage.data()) != ESTATUS_SUCCESS) {
        return nullptr;
    }
    pImage->RefreshImageStats();
    return m_pCoreImages->keep(type, pImage).data();
}

void CORVDataset::setCoreImage(tag_eimagetype eType, const CILImage& image)
{
    if (const auto pKept = m_pCoreImages->image(eType)) {
        *pKept = image;
    } else {
        m_pCoreImages->keep(eType, QSharedPointer<CILImage>::create(image));
    }
    m_givenImages.insert(eType);
    hasLuminescentImage = hasLuminescentImage || eType == IMAGETYPE_LUMINESCENT || eType == IMAGETYPE_MAIN_DATA;
    hasXRayImage = hasXRayImage || eType == IMAGETYPE_XRAY;
}

bool CORVDataset::takeImagesIntoMemory()
{
    const QList<CORVImageDetails> images = m_images.images();
    for (const CORVImageDetails& details : images) {
        if (getCoreImage(details.imageType()) == nullptr) {
            return false;
        }
        m_givenImages.insert(details.imageType());
    }
    return true;
}

float CORVDataset::getBinningForImage(tag_eimagetype eType)
{
    tag_eimagetype type = eType;
    return resolveType(eType, &type) ? binningOf(type) : 0.0F;
}

bool CORVDataset::getImageSize(tag_eimagetype eType, long* pWidth, long* pHeight)
{
    tag_eimagetype type = eType;
    if (!resolveType(eType, &type)) {
        return false;
    }
    TiffInfo header;
    if (const auto pImage = m_pCoreImages->image(type)) {
        header.width = pImage->m_lWidth;
        header.height = pImage->m_lHeight;
    } else if (m_sizes.contains(type)) {
        header.width = m_sizes.value(type).width();
        header.height = m_sizes.value(type).height();
    } else {
        QString reason;
        if (!readHeader(m_images.getImage(type)->path(), &header, &reason)) {
            logError(reason);
            return false;
        }
    }
    if (pWidth != nullptr) {
        *pWidth = header.width;
    }
    if (pHeight != nullptr) {
        *pHeight = header.height;
    }
    return true;
}

bool CORVDataset::isLuminBackgroundSubtracted() const
{
    return clickFlag(clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kBackgroundCorrected).value_or(false);
}

bool CORVDataset::isLuminFLBkgSubtracted() const
{
    return clickFlag(clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kFLBackgroundCorrected).value_or(false);
}

bool CORVDataset::isLuminFlatFieldCorrected() const
{
    return clickFlag(clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kFlatFieldCorrected).value_or(false);
}

bool CORVDataset::isSLADataset() const
{
    return hasImage(IMAGETYPE_STRUCTURE);
}

bool CORVDataset::getExposureStart(double* pSeconds) const
{
    const QDate date =
        QDate::fromString(clickText(clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kAcquisitionDate), Qt::ISODate);
    const QTime time = QTime::fromString(
        clickText(clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kAcquisitionTime), Qt::ISODateWithMs);
    if (!date.isValid() || !time.isValid()) {
        return false;
    }
    *pSeconds = static_cast<double>(QDateTime(date, time, Qt::UTC).toMSecsSinceEpoch()) / 1000.0;
    return true;
}

bool CORVDataset::getExposureTime(double* pSeconds) const
{
    const std::optional<double> seconds =
        clickNumberValue(clickInfo, acquisitionSections(IMAGETYPE_MAIN_DATA), ClickKeys::kExposureTime);
    if (seconds) {
        *pSeconds = *seconds;
    }
    return seconds.has_value();
}

void CORVDataset::setFolderPath(const QString& strFolder)
{
    m_strFolder = strFolder.isEmpty() ? QString() : withSeparator(cleanPath(strFolder));
}

bool CORVDataset::isLoadedClickInfo(const QString& strPath, bool& bModified, QString* pClickNumber)
{
    const QString wanted = cleanPath(strPath);
    for (const CORVDataset* pDataset : registry()) {
        if (pDataset->m_strFolder.isEmpty() ||
            pDataset->m_strFolder + QLatin1String(SequenceFiles::kClickInfo) != wanted) {
            continue;
        }
        bModified = pDataset->m_bModified;
        if (pClickNumber != nullptr) {
            *pClickNumber = pDataset->getClickNumber();
        }
        return true;
    }
    return false;
}
