// SPDX-License-Identifier: GPL-3.0-or-later
// What a DICOM file says beside its pixels, as dcmdump reads it.
#include "host/CDicomExporter.h"

#include "host/CORVSequenceDataset.h"
#include "platform/orvexport/DicomSubject.h"
#include "platform/orvexport/PictureReaders.h"

#include <QDateTime>

namespace {

class DicomExporterTest : public ::testing::Test
{
protected:
    // One dataset, with what an instrument tells of its subject.
    void describe(const QMap<QString, QString>& luminescent, const QMap<QString, QString>& input)
    {
        auto* pDataset = new CORVDataset;
        add(*pDataset, "ClickNumber", {{"ClickNumber", QStringLiteral("EXP%1").arg(m_sequence.getDatasets().size())}});
        add(*pDataset, "luminescent image", luminescent);
        add(*pDataset, "User Input", input);
        ASSERT_TRUE(m_sequence.addDataset(pDataset));
    }
    // The attributes of a file, by their names.
    QMap<QString, QString> attributesOf(const QString& strFile)
    {
        QMap<QString, QString> attributes;
        static const QRegularExpression line(
            QStringLiteral("^\\([0-9a-f,]+\\) [A-Z]{2} (.*?)\\s+#\\s+\\d+, ?\\d+ (\\w+)$"));
        const QString strDump = QString::fromUtf8(readers::run("dcmdump", {"--print-all", "+L", "+Un", strFile}));
        for (const QString& strLine : strDump.split('\n')) {
            const auto match = line.match(strLine);
            if (match.hasMatch()) {
                QString strValue = match.captured(1);
                if (strValue.startsWith('[')) {
                    strValue = strValue.mid(1, strValue.size() - 2);
                }
                attributes[match.captured(2)] = strValue;
            }
        }
        return attributes;
    }
    QMap<QString, QString> written(const CORVSequenceDataset* pSequence, const QString& strName = "a.dcm")
    {
        const QString strFile = m_folder.filePath(strName);
        QString strError;
        EXPECT_TRUE(CDicomExporter(strFile, pSequence).writeDicomGraphics(readers::testPicture(8, 6), &strError))
            << strError.toStdString();
        return attributesOf(strFile);
    }

    QTemporaryDir m_folder;
    CORVSequenceDataset m_sequence;

private:
    static void add(CORVDataset& dataset, const char* pKey, const QMap<QString, QString>& entries)
    {
        CPLSection section{QString::fromLatin1(pKey)};
        for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
            section.addKeyValue(entry.key(), entry.value());
        }
        dataset.clickInfo.addSection(&section);
    }
};

const char* const nothing = "(no value available)";

TEST_F(DicomExporterTest, IsASecondaryCaptureOfAWorkstation)
{
    const auto attributes = written(nullptr);
    EXPECT_EQ(attributes["TransferSyntaxUID"], "=LittleEndianExplicit");
    EXPECT_EQ(attributes["SOPClassUID"], "=SecondaryCaptureImageStorage");
    EXPECT_EQ(attributes["MediaStorageSOPClassUID"], "=SecondaryCaptureImageStorage");
    EXPECT_EQ(attributes["ConversionType"], "WSD");
    EXPECT_EQ(attributes["Modality"], "OT");
    EXPECT_EQ(attributes["SpecificCharacterSet"], "ISO_IR 192");
    EXPECT_EQ(attributes["PhotometricInterpretation"], "RGB");
    EXPECT_EQ(attributes["SamplesPerPixel"], "3");
    EXPECT_EQ(attributes["PlanarConfiguration"], "0");
    EXPECT_EQ(attributes["Rows"], "6");
    EXPECT_EQ(attributes["Columns"], "8");
    EXPECT_EQ(attributes["BitsAllocated"], "8");
    EXPECT_EQ(attributes["BitsStored"], "8");
    EXPECT_EQ(attributes["HighBit"], "7");
    EXPECT_EQ(attributes["PixelRepresentation"], "0");
}

TEST_F(DicomExporterTest, WithoutASequenceTheSubjectIsUnknown)
{
    const auto attributes = written(nullptr);
    for (const char* pName : {"PatientName", "PatientID", "PatientBirthDate", "PatientSex", "StudyDate", "StudyTime",
                              "ReferringPhysicianName", "StudyID", "AccessionNumber"}) {
        EXPECT_EQ(attributes[pName], nothing) << pName;
    }
    EXPECT_FALSE(attributes.contains("PatientSpeciesDescription"));
    EXPECT_FALSE(attributes.contains("OperatorsName"));
}

TEST_F(DicomExporterTest, TellsTheSubjectOfTheSequence)
{
    m_sequence.setSequenceName(QString::fromUtf8("Nieren größer"));
    describe({{"Subject Type", "Mouse"}}, {{"Animal Number", "A 17"}, {"User", QString::fromUtf8("Jürgen Maß")}});
    describe({{"Subject Type", "Phantom-RFM"}}, {{"Animal Number", "2"}, {"Comment", "first line\nsecond line"}});
    const auto attributes = written(&m_sequence);
    EXPECT_EQ(attributes["PatientName"], "Mouse A 17");
    EXPECT_EQ(attributes["PatientID"], "A 17");
    EXPECT_EQ(attributes["PatientSpeciesDescription"], "Mouse");
    EXPECT_EQ(attributes["StudyDescription"], QString::fromUtf8("Nieren größer"));
    EXPECT_EQ(attributes["OperatorsName"], QString::fromUtf8("Jürgen Maß"));
    EXPECT_EQ(attributes["ImageComments"], "first line second line");
}

TEST_F(DicomExporterTest, TheStudyIsOfTheDayOfTheFirstExposure)
{
    describe({{"Acquisition Date", "2024-03-02"}, {"Acquisition Time", "00:10:00.000"}}, {});
    describe({{"Acquisition Date", "2024-03-01"}, {"Acquisition Time", "23:50:07.400"}}, {});
    const auto attributes = written(&m_sequence);
    EXPECT_EQ(attributes["StudyDate"], "20240301");
    EXPECT_EQ(attributes["StudyTime"], "235007");
    EXPECT_EQ(attributes["TimezoneOffsetFromUTC"], "+0000");
    const QString strToday = QDateTime::currentDateTimeUtc().toString("yyyyMMdd");
    EXPECT_LE(QDateTime::fromString(strToday, "yyyyMMdd")
                  .daysTo(QDateTime::fromString(attributes["ContentDate"], "yyyyMMdd")),
              0);
    EXPECT_EQ(attributes["ContentDate"].size(), 8);
}

TEST_F(DicomExporterTest, EveryFileHasIdentifiersOfItsOwn)
{
    const auto one = written(&m_sequence, "one.dcm");
    const auto other = written(&m_sequence, "other.dcm");
    for (const char* pName : {"SOPInstanceUID", "StudyInstanceUID", "SeriesInstanceUID"}) {
        EXPECT_FALSE(one[pName].isEmpty()) << pName;
        EXPECT_NE(one[pName], other[pName]) << pName;
    }
    EXPECT_EQ(one["SOPInstanceUID"], one["MediaStorageSOPInstanceUID"]);
}

TEST_F(DicomExporterTest, WhatAUserTypedCannotPartAValue)
{
    describe({{"Subject Type", "Mouse^x=y\\z"}}, {{"Animal Number", "C:\\data\\7"}});
    const auto attributes = written(&m_sequence);
    EXPECT_EQ(attributes["PatientName"], "Mouse x y/z C:/data/7");
    EXPECT_EQ(attributes["PatientID"], "C:/data/7");
}

TEST(DicomTextTest, IsAsLongAsTheStandardAllows)
{
    EXPECT_EQ(orvexport::dicomText(QString(70, 'a'), 64), QString(64, 'a'));
    EXPECT_EQ(orvexport::dicomText("  two \n\t words \x01", 64), "two words");
    EXPECT_EQ(orvexport::dicomText("a^b=c", 64), "a^b=c");
    EXPECT_EQ(orvexport::dicomText("a^b=c", 64, true), "a b c");
    // A letter of two UTF-16 units is not cut in half.
    const QString strMouse = QString::fromUtf8("x\xF0\x9F\x90\x81");
    EXPECT_EQ(orvexport::dicomText(strMouse, 3), strMouse);
    EXPECT_EQ(orvexport::dicomText(strMouse, 2), "x");
    EXPECT_EQ(orvexport::dicomText("abc def", 4), "abc");
}

} // namespace
