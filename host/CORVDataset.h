// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CORVImageList.h"
#include "host/CPLClickInfo.h"
#include "host/orv_types.h"

#include <QList>
#include <QMap>
#include <QSet>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class CILImage;
class CORVSequenceDataset;
class CROIManager;
class DatasetFolder; // the implementation's, as the next
class KeptImages;

// One click of the instrument: a folder with a click info and TIFF images. Known by its click number to every user of
// the process as long as it lives. Datasets come, go and change on the user-interface thread only; other threads may
// look one up and read its images while that thread leaves them alone. Of threads that ask for one image at once each
// is lent the same.
class CORVDataset
{
public:
    CORVDataset();
    CORVDataset(const CORVDataset&) = delete;
    CORVDataset& operator=(const CORVDataset&) = delete;
    virtual ~CORVDataset();

    // The loaded dataset of that click number, or null; of several with one number (in different sequences) the oldest.
    static CORVDataset* getDataset(const QString& strClickNumber);
    static QList<CORVDataset*> loadedDatasets();

    // Reads the folder's "ClickInfo.txt" and the headers of its images, no pixels. Fails on a click info that cannot be
    // read or lacks the click number (ESTATUS_FILE_UNREADABLE), on a broken main data image (the same), and when the
    // click info describes a main data image that is not there (ESTATUS_IMAGE_MISSING): the dataset is then empty and
    // *pError tells file and reason. *pWarnings takes what can be passed over: unreadable lines and numbers, and other
    // broken images, which the dataset then does not have.
    ESTATUS open(const QString& strFolder, QString* pError = nullptr, QStringList* pWarnings = nullptr);
    // As open(), for a folder that a program made and no instrument numbered: when the click info lacks the click
    // number, the dataset gets a new one, in memory.
    ESTATUS openMade(const QString& strFolder, QString* pError = nullptr, QStringList* pWarnings = nullptr);
    // Writes the dataset into that folder (with or without a separator at its end), which comes into being as a whole
    // or not at all; its parent must exist. An image that setCoreImage() gave is written in its own pixel type, with
    // its binning in the click info; any other is a copy of its file. The click info takes in the regions of interest,
    // and goes a second time, without its section "Camera System Info", into an "AnalyzedClickInfo.txt" when the
    // present folder holds one. A folder that is there is replaced when it is empty, or holds a click info and no
    // folders; in the dataset's own folder other files stay. From then on the dataset lives in the folder and is
    // unmodified. ESTATUS_INVALID_ARGUMENT for an empty name or a dataset without a click number,
    // ESTATUS_FILE_UNREADABLE when an image's file cannot be read, ESTATUS_FILE_UNWRITABLE for all else; each is told
    // in the log with file and reason, and folder and dataset are then as they were.
    ESTATUS saveDatasetAs(const QString& strFolder);

    QString getClickNumber() const;
    // Filter texts such as "640nm"; empty when there is none.
    QString getExcitationFilter() const;
    QString getEmissionFilter() const;
    // Scan spot coordinates as text; empty when there is none.
    QString getFLXspot() const;
    QString getFLYspot() const;

    // Whether the dataset has an image of just that type, as far as its header told when the dataset was opened; no
    // file is read.
    bool hasImage(tag_eimagetype eType) const;
    // The image, or null when the dataset has none of that type or its file is broken (told in the log with file and
    // reason). Owned by the dataset and kept from then on. Types 1 and 17 stand for each other when one is missing.
    CILImage* getCoreImage(tag_eimagetype eType);
    // Gives the dataset an image that has no file (or not yet); copied, kept, and used in place of a file of that type.
    // A pointer lent before stays valid and shows the new image.
    void setCoreImage(tag_eimagetype eType, const CILImage& image);
    // Reads every image that has a file and keeps it as if it had been given, so that the dataset stays what it is when
    // other files take their places. False when one cannot be read, which is told in the log.
    bool takeImagesIntoMemory();
    // From the click info, without reading pixels; 1 when it does not say, 0 when there is no such image.
    float getBinningForImage(tag_eimagetype eType);
    // Size from the header, as it was when the dataset was opened; false when there is no such image or its header is
    // broken.
    bool getImageSize(tag_eimagetype eType, long* pWidth, long* pHeight);

    // Fills *pOut with the main data image in that unit, as floats with its binning; what was read is not kept. With p
    // the stored pixel, b the bias a stored pixel (0 when it is taken off already or unknown) and B the binning:
    //     counts             = p - b
    //     radiance           = counts * photons a count / (exposure * (pixel size * B)^2 * solid angle at f/1 / f^2)
    //     radiant efficiency = radiance / excitation irradiance
    //     efficiency         = radiance / radiance of the transmitted reference, by pixel; 0 where that is not above 0
    // The transmitted reference is image 9, brought to this image's size, or else one number for all pixels. With
    // nativeUnit 3 the stored pixels are efficiencies and no other unit can be had. 16 (ESTATUS_UNIT_UNAVAILABLE) when
    // calibration data for the unit are missing or the unit is beyond unitLimit(); another non-zero status, told in the
    // log under the name `strCaller`, when an image cannot be read. *pOut is untouched after any failure.
    ESTATUS getCalibratedLuminImage(tag_edisplayunit eUnit, CILImage* pOut, const QString& strCaller);
    // getCalibratedLuminImage() taken down, to be done once, later, on any thread and whatever becomes of the dataset.
    // What is in memory is copied now, files are read then. Its argument is no null.
    using ImageReader = std::function<ESTATUS(CILImage* pOut)>;
    ImageReader luminImageReader(tag_edisplayunit eUnit, const QString& strCaller) const;
    // As getCalibratedLuminImage decides, without reading pixels; an empty text when the unit can be had, else the
    // reason.
    QString unitUnavailableReason(tag_edisplayunit eUnit) const;
    // What one count is in that unit; *pValue is untouched where none can be told: the unit cannot be had, the pixels
    // are stored in another than counts, or a reference image makes it another for each pixel.
    bool countInUnit(tag_edisplayunit eUnit, double* pValue) const;
    // The host offers no unit that ranks above this one (by number); 3 at the start. For the whole process.
    static void setUnitLimit(tag_edisplayunit eLimit);
    static tag_edisplayunit unitLimit();
    // What ORV_getImageIntensityCalibrationValue (host/orv_calibration.h) answers for this dataset.
    bool intensityCalibration(tag_eimagetype eType, const char* pUnit, double* pValue) const;

    bool isLuminBackgroundSubtracted() const;
    bool isLuminFLBkgSubtracted() const;
    bool isLuminFlatFieldCorrected() const;
    bool isSLADataset() const;

    // Whether the dataset has a region of interest.
    bool hasROIData() const;
    // The dataset's regions, read by open() from the section "ROIs" of the click info (what cannot be read is a
    // warning). Owned by the dataset, never null. A change reaches `clickInfo` by way of CROIManager::saveROIData().
    CROIManager* roiManager();

    // Start of the exposure in seconds since 1970 (UTC) and its length in seconds; false when the click info lacks them
    // or they cannot be read, the output is then untouched.
    bool getExposureStart(double* pSeconds) const;
    bool getExposureTime(double* pSeconds) const;

    CORVImageList& imageList() { return m_images; }
    const CORVImageList& imageList() const { return m_images; }
    // With its separator at the end.
    const QString& folderPath() const { return m_strFolder; }
    void setFolderPath(const QString& strFolder);
    void setModified(bool bModified) { m_bModified = bModified; }
    bool isModified() const { return m_bModified; }
    // Tells the host that pixels or regions of the dataset have changed. It computes again what it keeps of the pixels,
    // minimum and maximum of the images that have been borrowed or given, and draws image windows of the dataset anew.
    void updateActiveImage();
    // Whether a dataset of that click-info path is loaded; *pModified and *pClickNumber (may be null) tell more.
    static bool isLoadedClickInfo(const QString& strPath, bool& bModified, QString* pClickNumber);

    // The sequence that holds the dataset; null for one by itself, such as a map.
    bool belongsToSequence() const { return m_pSequence != nullptr; }
    CORVSequenceDataset* sequence() const { return m_pSequence; }

    // The dataset's info sections.
    CPLClickInfo clickInfo;
    // Unit that the calibration prefers; 3 means that the data are already in efficiency.
    int nativeUnit = DISPLAYUNIT_RADIANCE;
    bool hasLuminescentImage = false;
    bool hasXRayImage = false;
    bool hasTransmissionImage = false;
    // The dataset was opened out of the window of a sequence, as a map of its result is; its regions of interest are
    // kept with that result. Set by whoever opens it so.
    bool isSequenceWindowMember = false;

private:
    friend class CORVSequenceDataset; // names itself
    ESTATUS load(const QString& strFolder, bool bMade, QString* pError, QStringList* pWarnings);
    // The steps of saveDatasetAs(): every image under its name, and what else the click info says of them; the click
    // infos.
    ESTATUS writeImages(DatasetFolder& folder, CPLClickInfo& info, CORVImageList* pImages, QString* pReason) const;
    ESTATUS writeFolder(DatasetFolder& folder, CPLClickInfo& info, CORVImageList* pImages, QString* pReason) const;
    QString imageFileName(tag_eimagetype eType) const;
    // Image `eType` itself, or the one that stands for it.
    bool resolveType(tag_eimagetype eType, tag_eimagetype* pResolved) const;
    // A copy of the core image when there is one, else read from the file; taken down as luminImageReader() is.
    ImageReader imageReader(tag_eimagetype eType, const QString& strCaller) const;
    float binningOf(tag_eimagetype eType) const;
    bool radianceFactor(tag_eimagetype eType, double* pFactor, QString* pReason) const;
    // From counts to the unit, but for a reference that is an image; the unit must be available.
    double unitFactor(tag_edisplayunit eUnit, tag_eimagetype eType) const;
    // Of the transmitted reference in radiance, where the unit divides by one that is an image; else empty.
    ImageReader referenceReader(tag_edisplayunit eUnit, const QString& strCaller) const;
    // Whether there is a transmitted reference with its calibration figures.
    bool hasReferenceImage(QString* pReason) const;
    QString efficiencyUnavailableReason() const;
    ESTATUS findImages(QString* pError, QStringList* pWarnings);
    void readNativeUnit(QStringList* pWarnings);
    void readRegions(QStringList* pWarnings);
    void reset();

    QString m_strFolder;
    CORVImageList m_images;
    QMap<int, QSize> m_sizes; // of the images with files, by type, as their headers told when the dataset was opened
    const std::unique_ptr<KeptImages> m_pCoreImages;
    QSet<int> m_givenImages;                    // types of those that came from setCoreImage() and are not on disk
    std::unique_ptr<CROIManager> m_pROIManager; // made when it is asked for
    bool m_bModified = false;
    CORVSequenceDataset* m_pSequence = nullptr;
};
