// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVImageList.h"
#include "host/CPLClickInfo.h"
#include "host/orv_types.h"

#include <QList>
#include <QMap>
#include <QSharedPointer>
#include <QString>

class CILImage;

// One click of the instrument: a folder with a click info and TIFF images. Known by its click number to every user of the
// process as long as it lives.
class CORVDataset
{
public:
    CORVDataset();
    CORVDataset(const CORVDataset&) = delete;
    CORVDataset& operator=(const CORVDataset&) = delete;
    virtual ~CORVDataset();

    // The loaded dataset of that click number, or null.
    static CORVDataset* getDataset(const QString& strClickNumber);
    static QList<CORVDataset*> loadedDatasets();

    // Reads the folder's "ClickInfo.txt" and finds its images. Images are not read. On failure the dataset is empty and
    // *pError tells file and reason; pWarnings takes what could be passed over.
    ESTATUS open(const QString& strFolder, QString* pError = nullptr, QStringList* pWarnings = nullptr);

    QString getClickNumber() const;
    // Filter texts such as "640nm"; empty when there is none.
    QString getExcitationFilter() const;
    QString getEmissionFilter() const;
    // Scan spot coordinates as text; empty when there is none.
    QString getFLXspot() const;
    QString getFLYspot() const;

    // The image, or null when the dataset has none of that type or its file is broken (told in the log with file and
    // reason). Owned by the dataset and kept from then on. Types 1 and 17 stand for each other when one is missing.
    CILImage* getCoreImage(tag_eimagetype eType);
    // Gives the dataset an image that has no file (or not yet); copied, kept, and used in place of a file of that type.
    void setCoreImage(tag_eimagetype eType, const CILImage& image);
    // From the click info or the file's header, without reading pixels; 0 when there is no such image.
    float getBinningForImage(tag_eimagetype eType);
    // Size from the file's header; false when there is no such image or its header is broken.
    bool getImageSize(tag_eimagetype eType, long* pWidth, long* pHeight);

    // Fills *pOut with the main data image in that unit, as floats with its binning; what was read is not kept. 16
    // (ESTATUS_UNIT_UNAVAILABLE) when calibration data for the unit are missing or the unit is beyond unitLimit();
    // another non-zero status when the image cannot be read. `strCaller` names the asker in the log.
    ESTATUS getCalibratedLuminImage(tag_edisplayunit eUnit, CILImage* pOut, const QString& strCaller);
    // As getCalibratedLuminImage decides, without reading pixels; an empty text when the unit can be had, else the reason.
    QString unitUnavailableReason(tag_edisplayunit eUnit) const;
    // The host offers no unit that ranks above this one (by number); 3 at the start. For the whole process.
    static void setUnitLimit(tag_edisplayunit eLimit);
    static tag_edisplayunit unitLimit();

    bool isLuminBackgroundSubtracted() const;
    bool isLuminFLBkgSubtracted() const;
    bool isLuminFlatFieldCorrected() const;
    bool isSLADataset() const;

    // Start of the exposure in seconds since 1970 (UTC) and its length in seconds; false when the click info lacks them.
    bool getExposureStart(double* pSeconds) const;
    bool getExposureTime(double* pSeconds) const;

    CORVImageList& imageList() { return m_images; }
    const CORVImageList& imageList() const { return m_images; }
    // With its separator at the end.
    const QString& folderPath() const { return m_strFolder; }
    void setFolderPath(const QString& strFolder);
    void setModified(bool bModified) { m_bModified = bModified; }
    bool isModified() const { return m_bModified; }
    // Whether a dataset of that click-info path is loaded; *pModified and *pClickNumber (may be null) tell more.
    static bool isLoadedClickInfo(const QString& strPath, bool& bModified, QString* pClickNumber);

    // The dataset's info sections.
    CPLClickInfo clickInfo;
    // Unit that the calibration prefers; 3 means that the data are already in efficiency.
    int nativeUnit = DISPLAYUNIT_RADIANCE;
    bool hasLuminescentImage = false;
    bool hasXRayImage = false;
    bool hasTransmissionImage = false;

private:
    ESTATUS calibrate(tag_edisplayunit eUnit, CILImage& image) const;
    const CORVImageDetails* detailsOf(tag_eimagetype eType) const;
    void findImages();

    QString m_strFolder;
    CORVImageList m_images;
    QMap<int, QSharedPointer<CILImage>> m_coreImages;
    bool m_bModified = false;
};
