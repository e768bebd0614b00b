// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/orvexport/dicomFile.h"

#include "host/CORVPreference.h"
#include "host/CORVUtilityFns.h"

#include <QLocale>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcostrmb.h>
#include <dcmtk/dcmdata/dctk.h>
#include <dcmtk/oflog/oflog.h>

#include <vector>

namespace orvexport {

namespace {

// Longest values of PS3.5, 6.2, in characters.
constexpr int shortString = 16;
constexpr int longString = 64;
constexpr int personName = 64;
constexpr int longText = 10240;

// Sets attributes and keeps the first failure.
class Attributes
{
public:
    explicit Attributes(DcmDataset& dataset) : m_dataset(dataset) {}

    void text(const DcmTagKey& tag, const QString& strValue)
    {
        keep(m_dataset.putAndInsertString(tag, strValue.toUtf8().constData()));
    }
    void text(const DcmTagKey& tag, const char* pValue) { keep(m_dataset.putAndInsertString(tag, pValue)); }
    void number(const DcmTagKey& tag, int nValue)
    {
        keep(m_dataset.putAndInsertUint16(tag, static_cast<Uint16>(nValue)));
    }
    void bytes(const DcmTagKey& tag, const std::vector<Uint8>& values)
    {
        keep(m_dataset.putAndInsertUint8Array(tag, values.data(), static_cast<unsigned long>(values.size())));
    }
    void identifier(const DcmTagKey& tag, const char* pRoot)
    {
        char identifier[100];
        text(tag, dcmGenerateUniqueIdentifier(identifier, pRoot));
    }
    // A date and a time; empty ones when it is not valid.
    void moment(const DcmTagKey& date, const DcmTagKey& time, const QDateTime& moment)
    {
        text(date, QLocale::c().toString(moment.date(), QStringLiteral("yyyyMMdd")));
        text(time, QLocale::c().toString(moment.time(), QStringLiteral("HHmmss")));
    }

    const OFCondition& status() const { return m_status; }

private:
    void keep(const OFCondition& status) { m_status = m_status.good() ? status : m_status; }

    DcmDataset& m_dataset;
    OFCondition m_status;
};

void setSubject(Attributes& attributes, const DicomSubject& subject)
{
    attributes.text(DCM_PatientName, dicomText(subject.name(), personName, true));
    attributes.text(DCM_PatientID, dicomText(subject.m_strNumber, longString));
    attributes.text(DCM_PatientBirthDate, "");
    attributes.text(DCM_PatientSex, "");
    if (!subject.m_strType.isEmpty()) {
        attributes.text(DCM_PatientSpeciesDescription, dicomText(subject.m_strType, longString));
        attributes.text(DCM_PatientBreedDescription, "");
        attributes.text(DCM_ResponsiblePerson, "");
    }
    if (!subject.m_strUser.isEmpty()) {
        attributes.text(DCM_OperatorsName, dicomText(subject.m_strUser, personName, true));
    }
    if (!subject.m_strComment.isEmpty()) {
        attributes.text(DCM_ImageComments, dicomText(subject.m_strComment, longText));
    }
}

void setStudy(Attributes& attributes, const DicomSubject& subject)
{
    attributes.identifier(DCM_StudyInstanceUID, SITE_STUDY_UID_ROOT);
    attributes.identifier(DCM_SeriesInstanceUID, SITE_SERIES_UID_ROOT);
    attributes.moment(DCM_StudyDate, DCM_StudyTime, subject.m_acquired);
    attributes.text(DCM_ReferringPhysicianName, "");
    attributes.text(DCM_StudyID, "");
    attributes.text(DCM_AccessionNumber, "");
    if (!subject.m_strStudy.isEmpty()) {
        attributes.text(DCM_StudyDescription, dicomText(subject.m_strStudy, longString));
    }
    attributes.text(DCM_Modality, "OT");
    attributes.text(DCM_SeriesNumber, "1");
    attributes.text(DCM_InstanceNumber, "1");
    attributes.text(DCM_PatientOrientation, "");
}

void setCapture(Attributes& attributes)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    attributes.text(DCM_SpecificCharacterSet, "ISO_IR 192");
    attributes.text(DCM_TimezoneOffsetFromUTC, "+0000");
    attributes.text(DCM_SOPClassUID, UID_SecondaryCaptureImageStorage);
    attributes.identifier(DCM_SOPInstanceUID, SITE_INSTANCE_UID_ROOT);
    attributes.text(DCM_ConversionType, "WSD");
    attributes.text(DCM_SecondaryCaptureDeviceManufacturerModelName,
                    dicomText(CORVUtilityFns::getAppName(), longString));
    attributes.text(DCM_SecondaryCaptureDeviceSoftwareVersions,
                    dicomText(CORVPreference::getAppVersion(), shortString));
    attributes.moment(DCM_DateOfSecondaryCapture, DCM_TimeOfSecondaryCapture, now);
    attributes.moment(DCM_ContentDate, DCM_ContentTime, now);
}

void setPixels(Attributes& attributes, const QImage& picture)
{
    attributes.number(DCM_SamplesPerPixel, 3);
    attributes.text(DCM_PhotometricInterpretation, "RGB");
    attributes.number(DCM_PlanarConfiguration, 0);
    attributes.number(DCM_Rows, picture.height());
    attributes.number(DCM_Columns, picture.width());
    attributes.number(DCM_BitsAllocated, 8);
    attributes.number(DCM_BitsStored, 8);
    attributes.number(DCM_HighBit, 7);
    attributes.number(DCM_PixelRepresentation, 0);
    std::vector<Uint8> pixels;
    pixels.reserve(static_cast<std::size_t>(picture.width()) * static_cast<std::size_t>(picture.height()) * 3);
    for (int y = 0; y < picture.height(); ++y) {
        const auto* pRow = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            pixels.insert(pixels.end(), {static_cast<Uint8>(qRed(pRow[x])), static_cast<Uint8>(qGreen(pRow[x])),
                                         static_cast<Uint8>(qBlue(pRow[x]))});
        }
    }
    attributes.bytes(DCM_PixelData, pixels);
}

// To memory: the library's own files do not tell of a disk that is full when they are closed.
OFCondition encode(DcmFileFormat& file, QByteArray& bytes)
{
    constexpr E_TransferSyntax syntax = EXS_LittleEndianExplicit;
    constexpr E_EncodingType lengths = EET_ExplicitLength;
    constexpr Uint32 headRoom = 65536; // preamble and meta information
    // The length is even, as every element's is.
    bytes.resize(static_cast<int>(file.getDataset()->getLength(syntax, lengths) + headRoom));
    DcmOutputBufferStream stream(bytes.data(), bytes.size());
    file.transferInit();
    const OFCondition status = file.write(stream, syntax, lengths, nullptr);
    file.transferEnd();
    void* pStart = nullptr;
    offile_off_t nLength = 0;
    stream.flushBuffer(pStart, nLength);
    bytes.resize(static_cast<int>(nLength));
    return status;
}

// Every failure is told by a status; the library would put more on standard error.
void silenceLibrary()
{
    static const bool bOnce = [] {
        OFLog::configure(OFLogger::OFF_LOG_LEVEL);
        return true;
    }();
    Q_UNUSED(bOnce)
}

} // namespace

QByteArray dicomBytes(const QImage& picture, const DicomSubject& subject, QString* pReason)
{
    silenceLibrary();
    if (!dcmDataDict.isDictionaryLoaded()) {
        *pReason = QStringLiteral("the dictionary of DICOM is not installed");
        return QByteArray();
    }
    DcmFileFormat file;
    Attributes attributes(*file.getDataset());
    setCapture(attributes);
    setSubject(attributes, subject);
    setStudy(attributes, subject);
    setPixels(attributes, picture);
    QByteArray bytes;
    const OFCondition status = attributes.status().good() ? encode(file, bytes) : attributes.status();
    if (status.good()) {
        return bytes;
    }
    *pReason = QString::fromLocal8Bit(status.text());
    return QByteArray();
}

} // namespace orvexport
