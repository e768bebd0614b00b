// SPDX-License-Identifier: GPL-3.0-or-later
#include "SequenceFolders.h"

#include "platform/orvimage/TiffIo.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <thread>
#include <vector>

using namespace sequencefolders;

namespace {

class DatasetTest : public SequenceFolderTest
{
protected:
    // One click "C1" with the given images, opened.
    void makeDataset(const SequenceWriter::Images& images, bool bTransillumination = false)
    {
        SequenceWriter writer;
        SequenceDescription description;
        description.id = "D";
        description.transillumination = bTransillumination;
        ASSERT_TRUE(writer.begin(m_strTarget, description, false, &m_strError)) << m_strError.toStdString();
        ASSERT_TRUE(writer.addDataset(fullClick("C1"), images, &m_strError)) << m_strError.toStdString();
        ASSERT_TRUE(writer.finish(&m_strError)) << m_strError.toStdString();
        open();
    }
    void open()
    {
        m_warnings.clear();
        ASSERT_EQ(m_dataset.open(inTarget("C1"), &m_strError, &m_warnings), ESTATUS_SUCCESS)
            << m_strError.toStdString();
    }

    CORVDataset m_dataset;
    CILImage m_data = flatImage(6, 4, 340.0, 4.0F, ORVTYPE_USHORT);
    CILImage m_other = flatImage(3, 3, 7.0, 8.0F, ORVTYPE_FLOAT);
};

TEST_F(DatasetTest, TellsFiltersSpotsAndTimes)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    EXPECT_EQ(m_dataset.getClickNumber(), "C1");
    EXPECT_EQ(m_dataset.getExcitationFilter(), "570nm");
    EXPECT_EQ(m_dataset.getEmissionFilter(), "620nm");
    EXPECT_EQ(m_dataset.getFLXspot(), QString());
    double value = 0.0;
    ASSERT_TRUE(m_dataset.getExposureStart(&value));
    EXPECT_DOUBLE_EQ(value, 1614834367.25); // 2021-03-04 05:06:07.25 UTC
    ASSERT_TRUE(m_dataset.getExposureTime(&value));
    EXPECT_DOUBLE_EQ(value, 4.0);
    EXPECT_TRUE(m_dataset.hasLuminescentImage);
    EXPECT_FALSE(m_dataset.hasXRayImage);
    EXPECT_FALSE(m_dataset.hasTransmissionImage);
    EXPECT_EQ(m_dataset.folderPath(), inTarget("C1/"));
}

TEST_F(DatasetTest, MissingTimesLeaveTheOutputAlone)
{
    CORVDataset dataset;
    double value = 17.0;
    EXPECT_FALSE(dataset.getExposureStart(&value));
    EXPECT_FALSE(dataset.getExposureTime(&value));
    for (const auto& wrong : {std::pair<const char*, const char*>{"2021-13-04", "05:06:07"},
                              {"2021-03-04", "late"},
                              {"2021-03-04", ""},
                              {"", "05:06:07"}}) {
        setKey(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kAcquisitionDate, wrong.first);
        setKey(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kAcquisitionTime, wrong.second);
        EXPECT_FALSE(dataset.getExposureStart(&value));
    }
    setKey(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kExposureTime, "long");
    EXPECT_FALSE(dataset.getExposureTime(&value));
    EXPECT_EQ(value, 17.0);
    setKey(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kAcquisitionDate, "1970-01-02");
    setKey(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kAcquisitionTime, "00:00:01");
    EXPECT_TRUE(dataset.getExposureStart(&value));
    EXPECT_DOUBLE_EQ(value, 86401.0);
}

TEST_F(DatasetTest, LuminescentAndMainDataImageStandForEachOther)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    CILImage* pImage = m_dataset.getCoreImage(IMAGETYPE_MAIN_DATA);
    ASSERT_NE(pImage, nullptr);
    EXPECT_EQ(pImage, m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT));
    EXPECT_FLOAT_EQ(pImage->m_fBinning, 4.0F);
    EXPECT_EQ(pImage->dataType(), ORVTYPE_USHORT);
}

TEST_F(DatasetTest, MainDataImageAloneIsTheLuminescentFile)
{
    makeDataset({{IMAGETYPE_MAIN_DATA, &m_data}});
    EXPECT_TRUE(QFile::exists(inTarget("C1/luminescent.TIF")));
    EXPECT_FALSE(QFile::exists(inTarget("C1/data.TIF")));
    EXPECT_TRUE(m_dataset.hasLuminescentImage);
    EXPECT_NE(m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT), nullptr);
}

TEST_F(DatasetTest, BothImagesGivenAreKeptApart)
{
    makeDataset({{IMAGETYPE_MAIN_DATA, &m_other}, {IMAGETYPE_LUMINESCENT, &m_data}});
    EXPECT_EQ(m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT)->m_lWidth, 6);
    EXPECT_EQ(m_dataset.getCoreImage(IMAGETYPE_MAIN_DATA)->m_lWidth, 3);
    EXPECT_FLOAT_EQ(m_dataset.getBinningForImage(IMAGETYPE_LUMINESCENT), 4.0F);
    EXPECT_FLOAT_EQ(m_dataset.getBinningForImage(IMAGETYPE_MAIN_DATA), 8.0F);
    CILImage out;
    ASSERT_EQ(m_dataset.getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &out, "test"), ESTATUS_SUCCESS);
    EXPECT_EQ(out.m_lWidth, 3); // the main data image
}

TEST_F(DatasetTest, HoldsEveryTypeOfImageUnderItsFileName)
{
    makeDataset({{IMAGETYPE_PHOTOGRAPH, &m_other},
                 {IMAGETYPE_LUMINESCENT, &m_data},
                 {IMAGETYPE_REFERENCE, &m_other},
                 {IMAGETYPE_STRUCTURE, &m_other},
                 {IMAGETYPE_FLUORESCENT_REFERENCE, &m_other},
                 {IMAGETYPE_XRAY, &m_other},
                 {IMAGETYPE_XRAY_PHOTOGRAPH, &m_other}});
    EXPECT_EQ(entries(inTarget("C1")),
              (QStringList{"ClickInfo.txt", "FluorescentReference.TIF", "X-ray.TIF", "X-rayPhotograph.TIF",
                           "luminescent.TIF", "photograph.TIF", "reference.TIF", "structure.TIF"}));
    for (const tag_eimagetype type : {IMAGETYPE_PHOTOGRAPH, IMAGETYPE_REFERENCE, IMAGETYPE_STRUCTURE,
                                      IMAGETYPE_FLUORESCENT_REFERENCE, IMAGETYPE_XRAY, IMAGETYPE_XRAY_PHOTOGRAPH}) {
        ASSERT_NE(m_dataset.getCoreImage(type), nullptr) << type;
        EXPECT_FLOAT_EQ(m_dataset.getBinningForImage(type), 8.0F) << type;
        ASSERT_NE(m_dataset.imageList().getImage(type), nullptr) << type;
        EXPECT_TRUE(QFile::exists(m_dataset.imageList().getImage(type)->path())) << type;
    }
    EXPECT_EQ(m_dataset.imageList().getImage(IMAGETYPE_XRAY)->fileName(), "X-ray.TIF");
    EXPECT_EQ(m_dataset.imageList().getImage(IMAGETYPE_MAIN_DATA), nullptr);
    EXPECT_TRUE(m_dataset.hasXRayImage);
    EXPECT_TRUE(m_dataset.isSLADataset());
    EXPECT_FALSE(m_dataset.hasTransmissionImage);
}

TEST_F(DatasetTest, TransmissionImageTakesThePlaceOfTheFluorescentReference)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}, {IMAGETYPE_FLUORESCENT_REFERENCE, &m_other}}, true);
    EXPECT_TRUE(QFile::exists(inTarget("C1/transmission.tif")));
    EXPECT_TRUE(m_dataset.hasTransmissionImage);
    EXPECT_NE(m_dataset.getCoreImage(IMAGETYPE_FLUORESCENT_REFERENCE), nullptr);
}

TEST_F(DatasetTest, FileNamesAreFoundWithoutRegardToCase)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    ASSERT_TRUE(QFile::rename(inTarget("C1/luminescent.TIF"), inTarget("C1/Luminescent.tif")));
    open();
    EXPECT_TRUE(m_dataset.hasLuminescentImage);
}

TEST_F(DatasetTest, SizeAndBinningComeWithoutPixels)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    // A whole header in front of a deflated strip that is spoilt: only pixels can tell.
    const QString file = inTarget("C1/luminescent.TIF");
    TiffWriteOptions options;
    options.compression = TiffWriteOptions::Compression::Deflate;
    CILImage noise = flatImage(60, 40, 0.0);
    for (std::size_t i = 0; i < noise.pixelCount(); ++i) {
        noise.setValue(i, static_cast<double>((i * 7919U) % 1009U));
    }
    ASSERT_TRUE(writeTiff(file, noise, options, &m_strError)) << m_strError.toStdString();
    QByteArray bytes = contentOf(file);
    for (int i = 64; i < 1000; ++i) {
        bytes[i] = static_cast<char>(~bytes[i]);
    }
    overwrite(file, bytes);
    open();
    long width = 0;
    long height = 0;
    ASSERT_TRUE(m_dataset.getImageSize(IMAGETYPE_MAIN_DATA, &width, &height));
    EXPECT_EQ(width, 60);
    EXPECT_EQ(height, 40);
    EXPECT_FLOAT_EQ(m_dataset.getBinningForImage(IMAGETYPE_MAIN_DATA), 4.0F);
    EXPECT_EQ(m_dataset.getCoreImage(IMAGETYPE_MAIN_DATA), nullptr);
    CILImage out = flatImage(1, 1, 5.0);
    const ESTATUS status = m_dataset.getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &out, "test");
    EXPECT_NE(status, ESTATUS_SUCCESS);
    EXPECT_NE(status, ESTATUS_UNIT_UNAVAILABLE);
    EXPECT_EQ(out.m_lWidth, 1); // untouched
}

TEST_F(DatasetTest, AbsentImagesHaveNoSizeAndNoBinning)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    long width = 5;
    long height = 6;
    EXPECT_FALSE(m_dataset.getImageSize(IMAGETYPE_XRAY, &width, &height));
    EXPECT_EQ(width, 5);
    EXPECT_EQ(m_dataset.getBinningForImage(IMAGETYPE_XRAY), 0.0F);
    EXPECT_EQ(m_dataset.getCoreImage(IMAGETYPE_XRAY), nullptr);
    EXPECT_EQ(m_dataset.getCoreImage(static_cast<tag_eimagetype>(3)), nullptr);
    CORVDataset empty;
    CILImage out;
    EXPECT_EQ(empty.getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &out, "test"), ESTATUS_IMAGE_MISSING);
    EXPECT_EQ(empty.getCalibratedLuminImage(DISPLAYUNIT_COUNTS, nullptr, "test"), ESTATUS_INVALID_ARGUMENT);
}

TEST_F(DatasetTest, BrokenPhotographIsToldAndTheDatasetOpensWithoutIt)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}, {IMAGETYPE_PHOTOGRAPH, &m_other}});
    overwrite(inTarget("C1/photograph.TIF"), "no picture");
    open();
    EXPECT_TRUE(m_warnings.join("\n").contains(inTarget("C1/photograph.TIF"))) << m_warnings.join("\n").toStdString();
    EXPECT_EQ(m_dataset.getCoreImage(IMAGETYPE_PHOTOGRAPH), nullptr);
}

TEST_F(DatasetTest, GarbledNumbersAreToldWithFileAndPlace)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    CPLClickInfo info;
    ASSERT_EQ(info.loadClickInfo(inTarget("C1/ClickInfo.txt")), 0);
    setKey(info, ClickKeys::kLuminescentImage, ClickKeys::kBinning, "quarter");
    setKey(info, ClickKeys::kCameraSystemInfo, ClickKeys::kPixelSize, "wide");
    setKey(info, ClickKeys::kLuminescentImage, ClickKeys::kNativeUnit, "Furlongs");
    ASSERT_EQ(info.saveClickInfo(inTarget("C1/ClickInfo.txt")), 0);
    open();
    ASSERT_EQ(m_warnings.size(), 3) << m_warnings.join("\n").toStdString();
    for (const QString& warning : m_warnings) {
        EXPECT_TRUE(warning.startsWith(inTarget("C1/ClickInfo.txt"))) << warning.toStdString();
    }
    EXPECT_TRUE(m_warnings.join("\n").contains("quarter"));
    EXPECT_TRUE(m_warnings.join("\n").contains("wide"));
    EXPECT_TRUE(m_warnings.join("\n").contains("Furlongs"));
    EXPECT_FLOAT_EQ(m_dataset.getBinningForImage(IMAGETYPE_MAIN_DATA), 1.0F);
    EXPECT_EQ(m_dataset.nativeUnit, DISPLAYUNIT_RADIANCE);
}

TEST_F(DatasetTest, BinningThatCannotBeOneCountsAsOne)
{
    CORVDataset dataset;
    dataset.setCoreImage(IMAGETYPE_LUMINESCENT, m_data);
    EXPECT_FLOAT_EQ(dataset.getBinningForImage(IMAGETYPE_MAIN_DATA), 4.0F); // the image's own
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    for (const char* pText : {"0", "-2", "1e30", "nan", "inf"}) {
        setKey(m_dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kBinning, pText);
        EXPECT_FLOAT_EQ(m_dataset.getBinningForImage(IMAGETYPE_MAIN_DATA), 1.0F) << pText;
    }
}

TEST_F(DatasetTest, NativeUnitReadsAsNumberAndAsText)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    const std::pair<const char*, int> cases[] = {
        {"0", 0}, {"3", 3}, {"Counts", 0}, {"Radiant Efficiency", 2}, {"Efficiency", 3}};
    for (const auto& [text, unit] : cases) {
        CPLClickInfo info;
        ASSERT_EQ(info.loadClickInfo(inTarget("C1/ClickInfo.txt")), 0);
        setKey(info, ClickKeys::kLuminescentImage, ClickKeys::kNativeUnit, text);
        ASSERT_EQ(info.saveClickInfo(inTarget("C1/ClickInfo.txt")), 0);
        open();
        EXPECT_EQ(m_dataset.nativeUnit, unit) << text;
    }
}

TEST_F(DatasetTest, FlagsOfCorrectionsAreRead)
{
    CORVDataset dataset;
    EXPECT_FALSE(dataset.isLuminBackgroundSubtracted());
    EXPECT_FALSE(dataset.isLuminFLBkgSubtracted());
    EXPECT_FALSE(dataset.isLuminFlatFieldCorrected());
    setKey(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kBackgroundCorrected, "1");
    EXPECT_TRUE(dataset.isLuminBackgroundSubtracted());
    setKey(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kFLBackgroundCorrected, "yes");
    EXPECT_TRUE(dataset.isLuminFLBkgSubtracted());
    setKey(dataset.clickInfo, ClickKeys::kLuminescentImage, ClickKeys::kFlatFieldCorrected, "True");
    EXPECT_TRUE(dataset.isLuminFlatFieldCorrected());
    EXPECT_FALSE(dataset.isSLADataset());
}

TEST_F(DatasetTest, UnknownKeysRoundTrip)
{
    SequenceWriter writer;
    ASSERT_TRUE(writer.begin(m_strTarget, named("D"), false));
    DatasetDescription click = fullClick("C1");
    setKey(click.info, ClickKeys::kLuminescentImage, "Someone's key", "a: b; c=d");
    setKey(click.info, "User Input", "Label", QString::fromUtf8("gr\xC3\xBCn"));
    ASSERT_TRUE(writer.addDataset(click, {{IMAGETYPE_LUMINESCENT, &m_data}}));
    ASSERT_TRUE(writer.finish());
    open();
    const QString copy = m_home.filePath("copy.txt");
    ASSERT_EQ(m_dataset.clickInfo.saveClickInfo(copy), 0);
    EXPECT_EQ(contentOf(copy), contentOf(inTarget("C1/ClickInfo.txt")));
    QString value;
    EXPECT_EQ(m_dataset.clickInfo[ClickKeys::kLuminescentImage]->getValue("Someone's key", &value), 0);
    EXPECT_EQ(value, "a: b; c=d");
}

TEST_F(DatasetTest, CalibratedImagesAreNotKept)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    CILImage out;
    ASSERT_EQ(m_dataset.getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &out, "test"), ESTATUS_SUCCESS);
    EXPECT_FLOAT_EQ(static_cast<float>(out.value(0)), 40.0F);
    // What lies on disk now is read anew, so nothing had been kept.
    ASSERT_TRUE(writeTiff(inTarget("C1/luminescent.TIF"), flatImage(6, 4, 500.0), TiffWriteOptions(), nullptr));
    ASSERT_EQ(m_dataset.getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &out, "test"), ESTATUS_SUCCESS);
    EXPECT_FLOAT_EQ(static_cast<float>(out.value(0)), 200.0F);
}

// As a thread that looks at a result and the one of the windows may.
TEST_F(DatasetTest, ThreadsThatAskForOneImageAtOnceAreLentTheSame)
{
    constexpr std::size_t askers = 4;
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}, {IMAGETYPE_PHOTOGRAPH, &m_other}});
    for (int round = 0; round < 50; ++round) {
        open();
        std::atomic<std::size_t> waiting{askers};
        std::array<CILImage*, askers> lent{};
        std::vector<std::thread> threads;
        for (CILImage*& pLent : lent) {
            threads.emplace_back([&waiting, &pLent, this] {
                --waiting;
                while (waiting > 0) {
                    std::this_thread::yield();
                }
                pLent = m_dataset.getCoreImage(IMAGETYPE_PHOTOGRAPH);
                m_dataset.getBinningForImage(IMAGETYPE_PHOTOGRAPH);
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(lent, (std::array<CILImage*, askers>{lent[0], lent[0], lent[0], lent[0]})) << round;
        ASSERT_EQ(lent[0], m_dataset.getCoreImage(IMAGETYPE_PHOTOGRAPH));
        EXPECT_EQ(lent[0]->value(0), 7.0);
    }
}

TEST_F(DatasetTest, BorrowedImagesAreKeptAtTheirAddress)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}, {IMAGETYPE_PHOTOGRAPH, &m_other}});
    CILImage* pPhoto = m_dataset.getCoreImage(IMAGETYPE_PHOTOGRAPH);
    EXPECT_EQ(pPhoto, m_dataset.getCoreImage(IMAGETYPE_PHOTOGRAPH));
    m_dataset.setCoreImage(IMAGETYPE_PHOTOGRAPH, flatImage(9, 9, 3.0));
    EXPECT_EQ(pPhoto, m_dataset.getCoreImage(IMAGETYPE_PHOTOGRAPH));
    EXPECT_EQ(pPhoto->m_lWidth, 9);
    long width = 0;
    EXPECT_TRUE(m_dataset.getImageSize(IMAGETYPE_PHOTOGRAPH, &width, nullptr));
    EXPECT_EQ(width, 9);
}

TEST_F(DatasetTest, ImagesTakenIntoMemoryStayWhenTheirFilesChange)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}, {IMAGETYPE_PHOTOGRAPH, &m_other}});
    ASSERT_TRUE(m_dataset.takeImagesIntoMemory());
    ASSERT_TRUE(writeTiff(inTarget("C1/luminescent.TIF"), flatImage(6, 4, 500.0), TiffWriteOptions(), nullptr));
    CILImage out;
    ASSERT_EQ(m_dataset.getCalibratedLuminImage(DISPLAYUNIT_COUNTS, &out, "test"), ESTATUS_SUCCESS);
    EXPECT_FLOAT_EQ(static_cast<float>(out.value(0)), 40.0F);
    // They are written from memory, in their own pixel types.
    const QString copy = m_home.filePath("copy");
    ASSERT_EQ(m_dataset.saveDatasetAs(copy), ESTATUS_SUCCESS);
    CORVDataset again;
    ASSERT_EQ(again.open(copy, &m_strError), ESTATUS_SUCCESS) << m_strError.toStdString();
    const CILImage* pImage = again.getCoreImage(IMAGETYPE_LUMINESCENT);
    ASSERT_NE(pImage, nullptr);
    EXPECT_EQ(pImage->value(0), 340.0);
    EXPECT_EQ(pImage->dataType(), ORVTYPE_USHORT);
}

TEST_F(DatasetTest, AnImageThatCannotBeReadIsNotTakenIntoMemory)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}, {IMAGETYPE_PHOTOGRAPH, &m_other}});
    ASSERT_TRUE(QFile::remove(inTarget("C1/luminescent.TIF")));
    EXPECT_FALSE(m_dataset.takeImagesIntoMemory());
}

TEST_F(DatasetTest, LoadedClickInfoIsKnownByItsPath)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    bool modified = true;
    QString clickNumber;
    EXPECT_TRUE(CORVDataset::isLoadedClickInfo(inTarget("C1/../C1/ClickInfo.txt"), modified, &clickNumber));
    EXPECT_FALSE(modified);
    EXPECT_EQ(clickNumber, "C1");
    m_dataset.setModified(true);
    EXPECT_TRUE(CORVDataset::isLoadedClickInfo(inTarget("C1/ClickInfo.txt"), modified, nullptr));
    EXPECT_TRUE(modified);
    EXPECT_FALSE(CORVDataset::isLoadedClickInfo(inTarget("C2/ClickInfo.txt"), modified, nullptr));
    m_dataset.setFolderPath(m_home.path());
    EXPECT_FALSE(CORVDataset::isLoadedClickInfo(inTarget("C1/ClickInfo.txt"), modified, nullptr));
    EXPECT_TRUE(m_dataset.folderPath().endsWith('/'));
}

TEST_F(DatasetTest, FailedOpenLeavesItEmpty)
{
    makeDataset({{IMAGETYPE_LUMINESCENT, &m_data}});
    EXPECT_NE(m_dataset.open(m_home.filePath("nowhere"), &m_strError), ESTATUS_SUCCESS);
    EXPECT_TRUE(m_strError.contains(m_home.filePath("nowhere"))) << m_strError.toStdString();
    EXPECT_TRUE(m_dataset.getClickNumber().isEmpty());
    EXPECT_FALSE(m_dataset.hasLuminescentImage);
    EXPECT_EQ(m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT), nullptr);
    EXPECT_TRUE(m_dataset.folderPath().isEmpty());
}

TEST(ImageListTest, AddingATypeAgainReplacesIt)
{
    CORVImageList list;
    EXPECT_EQ(list.getImage(IMAGETYPE_XRAY), nullptr);
    list.add(CORVImageDetails(IMAGETYPE_XRAY, "a.tif", "/x/a.tif"));
    list.add(CORVImageDetails(IMAGETYPE_XRAY, "b.tif", "/x/b.tif"));
    EXPECT_EQ(list.count(), 1);
    EXPECT_EQ(list.getImage(IMAGETYPE_XRAY)->fileName(), "b.tif");
}

} // namespace
