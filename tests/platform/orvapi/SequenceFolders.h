// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/CILImage.h"
#include "host/CORVSequenceDataset.h"
#include "platform/orvapi/ClickInfoKeys.h"
#include "platform/orvapi/SequenceWriter.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// Small sequences on disk for the tests of the folder's readers and writers.
namespace sequencefolders {

inline CILImage flatImage(long width, long height, double value, float binning = 1.0F,
                          ORVDataTypes type = ORVTYPE_FLOAT)
{
    CILImage image;
    EXPECT_EQ(image.InitWithType(type, width, height), EIL_SUCCESS);
    image.setConstData(value);
    image.m_fBinning = binning;
    return image;
}

inline void setKey(CPLClickInfo& info, const char* pSection, const char* pKey, const QString& strValue)
{
    if (info[QString(pSection)] == nullptr) {
        const CPLSection section{QString(pSection)};
        info.addSection(&section);
    }
    info[QString(pSection)]->setValue(QString(pKey), strValue);
}

inline SequenceDescription named(const QString& strId)
{
    SequenceDescription description;
    description.id = strId;
    return description;
}

// A click whose every figure is there. One count is 25 000 p/s/cm^2/sr: 2 photons, over 4 s, over (0.01 cm * 4)^2, over
// 0.05 sr / 2^2.
inline DatasetDescription fullClick(const QString& strClickNumber, const QString& strEmission = "620nm")
{
    using namespace ClickKeys;
    DatasetDescription dataset;
    dataset.clickNumber = strClickNumber;
    CPLClickInfo& info = dataset.info;
    setKey(info, kClickNumber, kClickNumber, strClickNumber);
    setKey(info, kLuminescentImage, kExcitationFilter, "570nm");
    setKey(info, kLuminescentImage, kEmissionFilter, strEmission);
    setKey(info, kLuminescentImage, kExposureTime, "4");
    setKey(info, kLuminescentImage, kBinning, "4");
    setKey(info, kLuminescentImage, kFNumber, "2");
    setKey(info, kLuminescentImage, kReadBiasLevel, "300");
    setKey(info, kLuminescentImage, kBackgroundCorrected, "0");
    setKey(info, kLuminescentImage, kAcquisitionDate, "2021-03-04");
    setKey(info, kLuminescentImage, kAcquisitionTime, "05:06:07.250");
    setKey(info, kLuminescentImage, kExcitationIrradiance, "20");
    setKey(info, kLuminescentImage, kReferenceRadiance, "4e6");
    setKey(info, kCameraSystemInfo, kPhotonsPerCount, "2");
    setKey(info, kCameraSystemInfo, kPixelSize, "0.01");
    setKey(info, kCameraSystemInfo, kLensSolidAngle, "0.05");
    return dataset;
}

inline void overwrite(const QString& strPath, const QByteArray& bytes)
{
    QFile file(strPath);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate)) << strPath.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

inline QByteArray contentOf(const QString& strPath)
{
    QFile file(strPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << strPath.toStdString();
    return file.readAll();
}

inline QStringList entries(const QString& strFolder)
{
    return QDir(strFolder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

class SequenceFolderTest : public ::testing::Test
{
protected:
    // Three clicks C1 to C3 of 6 x 4 pixels of 340 at binning 4, the first with a photograph.
    void writeThreeClicks(SequenceDescription description = SequenceDescription())
    {
        if (description.id.isEmpty()) {
            description.id = "SEQ001";
        }
        SequenceWriter writer;
        QString error;
        ASSERT_TRUE(writer.begin(m_strTarget, description, false, &error)) << error.toStdString();
        const CILImage data = flatImage(6, 4, 340.0, 4.0F, ORVTYPE_USHORT);
        const CILImage photo = flatImage(12, 8, 100.0, 2.0F, ORVTYPE_BYTE);
        for (int click = 1; click <= 3; ++click) {
            SequenceWriter::Images images{{IMAGETYPE_LUMINESCENT, &data}};
            if (click == 1) {
                images.append({IMAGETYPE_PHOTOGRAPH, &photo});
            }
            const DatasetDescription dataset =
                fullClick(QStringLiteral("C%1").arg(click), QStringLiteral("%1nm").arg(600 + 20 * click));
            ASSERT_TRUE(writer.addDataset(dataset, images, &error)) << error.toStdString();
        }
        ASSERT_TRUE(writer.finish(&error)) << error.toStdString();
    }

    QString inTarget(const QString& strPath) const { return m_strTarget + "/" + strPath; }

    static QStringList clickNumbers(const CORVSequenceDataset& sequence)
    {
        QStringList numbers;
        for (const CORVDataset* pDataset : sequence.getDatasets()) {
            numbers.append(pDataset->getClickNumber());
        }
        return numbers;
    }

    QTemporaryDir m_home;
    QString m_strTarget = m_home.filePath(QString::fromUtf8("M\xC3\xA4use und mehr"));
    QString m_strError;
    QStringList m_warnings;
};

} // namespace sequencefolders
