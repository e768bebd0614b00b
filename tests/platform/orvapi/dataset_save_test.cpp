// SPDX-License-Identifier: GPL-3.0-or-later
// A dataset saved into a folder.
#include "SequenceFolders.h"

#include "engine/LogCapture.h"
#include "support/ForkedChild.h"

#include "host/CROIManager.h"
#include "platform/orvimage/TiffIo.h"

#include <QFileInfo>

#include <cmath>
#include <limits>
#include <memory>

using namespace sequencefolders;

namespace {

class DatasetSaveTest : public SequenceFolderTest
{
protected:
    void SetUp() override
    {
        writeThreeClicks();
        ASSERT_EQ(m_dataset.open(inTarget("C1"), &m_strError), ESTATUS_SUCCESS) << m_strError.toStdString();
    }
    QString home(const QString& strName) const { return m_home.filePath(strName); }
    // Names in the home beside the sequence; a hidden folder that was left behind shows here.
    QStringList beside() const
    {
        QStringList names = entries(m_home.path());
        names.removeOne(QFileInfo(m_strTarget).fileName());
        return names;
    }
    static QString entryOf(const CPLClickInfo& info, const char* pSection, const char* pKey)
    {
        QString value = "(none)";
        if (const CPLSection* pFound = info[QString(pSection)]) {
            pFound->getValue(QString(pKey), &value);
        }
        return value;
    }
    static CPLClickInfo clickInfoIn(const QString& strFolder, const QString& strName = "ClickInfo.txt")
    {
        CPLClickInfo info;
        EXPECT_EQ(info.loadClickInfo(strFolder + "/" + strName), 0);
        return info;
    }
    static tagROIInfo region(const QString& strName)
    {
        tagROIInfo info;
        info.name = strName;
        info.width = 2.0;
        info.height = 2.0;
        return info;
    }
    // The dataset is where it was, and as it was.
    void expectUntouched()
    {
        EXPECT_EQ(m_dataset.folderPath(), inTarget("C1/"));
        EXPECT_EQ(m_dataset.clickInfo.toText(), contentOf(inTarget("C1/ClickInfo.txt")));
        EXPECT_EQ(m_dataset.imageList().getImage(IMAGETYPE_PHOTOGRAPH)->path(), inTarget("C1/photograph.TIF"));
    }

    CORVDataset m_dataset;
    LogCapture m_log;
};

TEST_F(DatasetSaveTest, ClickInfoAndImagesGoIntoAFolderThatIsMade)
{
    const QString folder = home(QString::fromUtf8("t \xC3\xA4 1"));
    m_dataset.setModified(true);
    ASSERT_EQ(m_dataset.saveDatasetAs(folder + "/"), ESTATUS_SUCCESS) << m_log.reports();
    EXPECT_EQ(entries(folder), QStringList({"ClickInfo.txt", "luminescent.TIF", "photograph.TIF"}));
    for (const char* pName : {"/luminescent.TIF", "/photograph.TIF"}) {
        EXPECT_EQ(contentOf(folder + pName), contentOf(inTarget("C1") + pName));
    }
    // The click info differs in the folder's name alone.
    CPLClickInfo info = clickInfoIn(folder);
    EXPECT_EQ(entryOf(info, "ClickNumber", "Folder On Disk"), QFileInfo(folder).fileName());
    setKey(info, "ClickNumber", "Folder On Disk", "C1");
    EXPECT_EQ(info.toText(), contentOf(inTarget("C1/ClickInfo.txt")));
    EXPECT_EQ(beside(), QStringList(QFileInfo(folder).fileName()));
    EXPECT_EQ(m_log.reports(), "");
    CORVDataset again;
    EXPECT_EQ(again.open(folder), ESTATUS_SUCCESS);
}

TEST_F(DatasetSaveTest, TheDatasetLivesInTheFolderFromThenOn)
{
    m_dataset.setModified(true);
    ASSERT_EQ(m_dataset.saveDatasetAs(home("new")), ESTATUS_SUCCESS);
    EXPECT_EQ(m_dataset.folderPath(), home("new/"));
    EXPECT_FALSE(m_dataset.isModified());
    bool modified = true;
    EXPECT_TRUE(CORVDataset::isLoadedClickInfo(home("new/ClickInfo.txt"), modified, nullptr));
    EXPECT_FALSE(CORVDataset::isLoadedClickInfo(inTarget("C1/ClickInfo.txt"), modified, nullptr));
    EXPECT_EQ(m_dataset.clickInfo.toText(), contentOf(home("new/ClickInfo.txt")));
    // Images are read from there.
    ASSERT_TRUE(QDir(m_strTarget).removeRecursively());
    ASSERT_NE(m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT), nullptr);
    EXPECT_EQ(m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT)->value(0), 340.0);
    EXPECT_EQ(m_dataset.imageList().getImage(IMAGETYPE_PHOTOGRAPH)->path(), home("new/photograph.TIF"));
}

TEST_F(DatasetSaveTest, ImagesWithoutAFileAreWrittenInTheirOwnTypeWithTheirBinning)
{
    for (const ORVDataTypes type : {ORVTYPE_BYTE, ORVTYPE_USHORT, ORVTYPE_INT, ORVTYPE_FLOAT, ORVTYPE_DOUBLE}) {
        CORVDataset made;
        setKey(made.clickInfo, ClickKeys::kClickNumber, ClickKeys::kClickNumber, "M1");
        const CILImage image = flatImage(3, 2, 7.0, 2.5F, type);
        made.setCoreImage(IMAGETYPE_LUMINESCENT, image);
        made.setCoreImage(IMAGETYPE_XRAY, flatImage(2, 2, 1.0, 1.0F, type));
        const QString folder = home(QString("type %1").arg(type));
        ASSERT_EQ(made.saveDatasetAs(folder), ESTATUS_SUCCESS) << m_log.reports();
        EXPECT_EQ(entries(folder), QStringList({"ClickInfo.txt", "X-ray.TIF", "luminescent.TIF"}));
        CORVDataset again;
        ASSERT_EQ(again.open(folder, &m_strError), ESTATUS_SUCCESS) << m_strError.toStdString();
        ASSERT_NE(again.getCoreImage(IMAGETYPE_LUMINESCENT), nullptr);
        EXPECT_EQ(again.getCoreImage(IMAGETYPE_LUMINESCENT)->dataType(), type);
        EXPECT_EQ(again.getCoreImage(IMAGETYPE_LUMINESCENT)->value(5), 7.0);
        EXPECT_EQ(again.getBinningForImage(IMAGETYPE_LUMINESCENT), 2.5F);
        EXPECT_TRUE(again.hasXRayImage);
        // A binning of 1 need not be told.
        EXPECT_EQ(again.clickInfo[QString("x-ray image")], nullptr);
    }
}

TEST_F(DatasetSaveTest, AFloatImageKeepsItsNaNs)
{
    CILImage image = flatImage(2, 1, 0.25);
    image.setValue(1, std::numeric_limits<double>::quiet_NaN());
    m_dataset.setCoreImage(IMAGETYPE_LUMINESCENT, image);
    ASSERT_EQ(m_dataset.saveDatasetAs(home("new")), ESTATUS_SUCCESS);
    CORVDataset again;
    ASSERT_EQ(again.open(home("new")), ESTATUS_SUCCESS);
    EXPECT_EQ(again.getCoreImage(IMAGETYPE_LUMINESCENT)->value(0), 0.25);
    EXPECT_TRUE(std::isnan(again.getCoreImage(IMAGETYPE_LUMINESCENT)->value(1)));
}

TEST_F(DatasetSaveTest, AGivenImageTakesThePlaceOfTheFile)
{
    CILImage* pLent = m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT);
    m_dataset.setCoreImage(IMAGETYPE_LUMINESCENT, flatImage(2, 2, 9.0, 4.0F));
    ASSERT_EQ(m_dataset.saveDatasetAs(home("one")), ESTATUS_SUCCESS);
    EXPECT_EQ(m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT), pLent);
    CORVDataset again;
    ASSERT_EQ(again.open(home("one")), ESTATUS_SUCCESS);
    EXPECT_EQ(again.getCoreImage(IMAGETYPE_LUMINESCENT)->value(0), 9.0);
    // It is a file now like any other.
    ASSERT_EQ(m_dataset.saveDatasetAs(home("two")), ESTATUS_SUCCESS);
    EXPECT_EQ(contentOf(home("two/luminescent.TIF")), contentOf(home("one/luminescent.TIF")));
}

TEST_F(DatasetSaveTest, AnImageGoesUnderTheNameOfItsKind)
{
    for (const bool transmission : {false, true}) {
        CORVDataset made;
        setKey(made.clickInfo, ClickKeys::kClickNumber, ClickKeys::kClickNumber, "M1");
        made.setCoreImage(IMAGETYPE_FLUORESCENT_REFERENCE, flatImage(2, 2, 9.0));
        made.setCoreImage(IMAGETYPE_MAIN_DATA, flatImage(2, 2, 3.0));
        made.hasTransmissionImage = transmission;
        const QString folder = home(transmission ? "below" : "above");
        ASSERT_EQ(made.saveDatasetAs(folder), ESTATUS_SUCCESS);
        QStringList expected{"ClickInfo.txt", "data.TIF",
                             transmission ? "transmission.tif" : "FluorescentReference.TIF"};
        expected.sort();
        EXPECT_EQ(entries(folder), expected);
        CORVDataset again;
        ASSERT_EQ(again.open(folder), ESTATUS_SUCCESS);
        EXPECT_EQ(again.hasTransmissionImage, transmission);
        EXPECT_EQ(again.getCoreImage(IMAGETYPE_LUMINESCENT)->value(0), 3.0);
    }
}

TEST_F(DatasetSaveTest, TheNameThatAFileHasIsKept)
{
    ASSERT_TRUE(QFile::rename(inTarget("C1/luminescent.TIF"), inTarget("C1/Luminescent.tif")));
    ASSERT_EQ(m_dataset.open(inTarget("C1")), ESTATUS_SUCCESS);
    m_dataset.setCoreImage(IMAGETYPE_LUMINESCENT, flatImage(2, 2, 9.0, 4.0F));
    ASSERT_EQ(m_dataset.saveDatasetAs(home("new")), ESTATUS_SUCCESS);
    EXPECT_TRUE(QFileInfo::exists(home("new/Luminescent.tif")));
    EXPECT_FALSE(QFileInfo::exists(home("new/luminescent.TIF")));
}

TEST_F(DatasetSaveTest, RegionsOfInterestAreWrittenAsTheyAre)
{
    ASSERT_TRUE(m_dataset.roiManager()->addRegion(region("left")));
    ASSERT_EQ(m_dataset.roiManager()->measure(DISPLAYUNIT_COUNTS), ESTATUS_SUCCESS);
    ASSERT_EQ(m_dataset.saveDatasetAs(home("one")), ESTATUS_SUCCESS);
    CORVDataset again;
    ASSERT_EQ(again.open(home("one")), ESTATUS_SUCCESS);
    ASSERT_TRUE(again.hasROIData());
    EXPECT_EQ(again.roiManager()->regions().first().name, "left");
    EXPECT_EQ(again.roiManager()->regions().first().statistics.unit, "Counts");
    // A region that was taken away goes from the file too.
    ASSERT_TRUE(again.roiManager()->removeRegion("left"));
    ASSERT_EQ(again.saveDatasetAs(home("two")), ESTATUS_SUCCESS);
    EXPECT_EQ(clickInfoIn(home("two"))[QString("ROIs")], nullptr);
}

TEST_F(DatasetSaveTest, TheSecondClickInfoOfAMapFollowsTheFirst)
{
    overwrite(inTarget("C1/AnalyzedClickInfo.txt"), "of another time");
    ASSERT_TRUE(m_dataset.roiManager()->addRegion(region("left")));
    ASSERT_EQ(m_dataset.saveDatasetAs(home("new")), ESTATUS_SUCCESS);
    CPLClickInfo info = clickInfoIn(home("new"));
    ASSERT_EQ(info.removeSection("Camera System Info"), 0);
    EXPECT_EQ(contentOf(home("new/AnalyzedClickInfo.txt")), info.toText());
    EXPECT_NE(info[QString("ROIs")], nullptr);
}

TEST_F(DatasetSaveTest, AnEmptyFolderAndOneOfADatasetAreReplaced)
{
    ASSERT_TRUE(QDir().mkpath(home("empty")));
    EXPECT_EQ(m_dataset.saveDatasetAs(home("empty")), ESTATUS_SUCCESS);
    overwrite(home("empty/of before"), "x");
    ASSERT_EQ(m_dataset.open(inTarget("C2")), ESTATUS_SUCCESS);
    EXPECT_EQ(m_dataset.saveDatasetAs(home("empty")), ESTATUS_SUCCESS);
    EXPECT_EQ(entries(home("empty")), QStringList({"ClickInfo.txt", "luminescent.TIF"}));
    EXPECT_EQ(entryOf(clickInfoIn(home("empty")), "ClickNumber", "ClickNumber"), "C2");
    EXPECT_EQ(beside(), QStringList("empty"));
}

TEST_F(DatasetSaveTest, WhatElseStandsInTheFoldersPlaceIsKept)
{
    overwrite(home("file"), "x");
    ASSERT_TRUE(QDir().mkpath(home("other")));
    overwrite(home("other/letter"), "dear");
    const QByteArray sequence = contentOf(inTarget("SequenceInfo.txt"));
    overwrite(inTarget("ClickInfo.txt"), "a stray one");
    for (const QString& target : {home("file"), home("other"), m_strTarget, home("no such/folder")}) {
        EXPECT_EQ(m_dataset.saveDatasetAs(target), ESTATUS_FILE_UNWRITABLE) << target.toStdString();
        EXPECT_TRUE(m_log.lines().back().m_strMessage.startsWith(target)) << m_log.reports();
        EXPECT_EQ(m_log.lines().back().m_nLevel, 3);
    }
    EXPECT_EQ(contentOf(home("file")), "x");
    EXPECT_EQ(contentOf(home("other/letter")), "dear");
    EXPECT_EQ(contentOf(inTarget("SequenceInfo.txt")), sequence);
    EXPECT_EQ(beside(), QStringList({"file", "other"}));
    expectUntouched();
}

TEST_F(DatasetSaveTest, InTheDatasetsOwnFolderOtherFilesStay)
{
    ASSERT_TRUE(QDir().mkpath(inTarget("C1/deep/er")));
    for (const char* pName : {"C1/Note.txt", "C1/note.txt", "C1/.hidden", "C1/deep/er/ClickInfo.txt"}) {
        overwrite(inTarget(pName), pName);
    }
    m_dataset.setCoreImage(IMAGETYPE_LUMINESCENT, flatImage(2, 2, 9.0, 4.0F));
    ASSERT_EQ(m_dataset.saveDatasetAs(m_dataset.folderPath()), ESTATUS_SUCCESS) << m_log.reports();
    for (const char* pName : {"C1/Note.txt", "C1/note.txt", "C1/.hidden", "C1/deep/er/ClickInfo.txt"}) {
        EXPECT_EQ(contentOf(inTarget(pName)), pName);
    }
    EXPECT_EQ(entries(inTarget("C1")).size(), 7);
    CORVDataset again;
    ASSERT_EQ(again.open(inTarget("C1")), ESTATUS_SUCCESS);
    EXPECT_EQ(again.getCoreImage(IMAGETYPE_LUMINESCENT)->value(0), 9.0);
    EXPECT_NE(again.getCoreImage(IMAGETYPE_PHOTOGRAPH), nullptr);
}

TEST_F(DatasetSaveTest, WithoutAFolderOrAClickNumberNothingIsSaved)
{
    EXPECT_EQ(m_dataset.saveDatasetAs(QString()), ESTATUS_INVALID_ARGUMENT);
    expectUntouched();
    CORVDataset made;
    made.setCoreImage(IMAGETYPE_LUMINESCENT, flatImage(2, 2, 9.0));
    EXPECT_EQ(made.saveDatasetAs(home("new")), ESTATUS_INVALID_ARGUMENT);
    EXPECT_TRUE(m_log.has(home("new") + ": a dataset without a click number is not saved", 3)) << m_log.reports();
    EXPECT_EQ(beside(), QStringList());
}

TEST_F(DatasetSaveTest, AnImageThatHasGoneIsToldAndNothingIsLeft)
{
    ASSERT_TRUE(QFile::remove(inTarget("C1/luminescent.TIF"))); // the photograph is written before it
    EXPECT_EQ(m_dataset.saveDatasetAs(home("new")), ESTATUS_FILE_UNREADABLE);
    EXPECT_TRUE(m_log.lines().back().m_strMessage.startsWith(inTarget("C1/luminescent.TIF: cannot be read: ")));
    EXPECT_EQ(beside(), QStringList());
    ASSERT_TRUE(QDir().mkpath(inTarget("C1/luminescent.TIF")));
    EXPECT_EQ(m_dataset.saveDatasetAs(home("new")), ESTATUS_FILE_UNREADABLE);
    EXPECT_EQ(beside(), QStringList());
    expectUntouched();
}

TEST_F(DatasetSaveTest, AnEmptyImageIsNotWritten)
{
    m_dataset.setCoreImage(IMAGETYPE_XRAY, CILImage());
    EXPECT_EQ(m_dataset.saveDatasetAs(home("new")), ESTATUS_FILE_UNWRITABLE);
    EXPECT_TRUE(m_log.lines().back().m_strMessage.startsWith(home("new/X-ray.TIF"))) << m_log.reports();
    EXPECT_EQ(beside(), QStringList());
}

TEST_F(DatasetSaveTest, AFullDiskLeavesNothingBehindAtWhateverFileItStrikes)
{
    m_dataset.setCoreImage(IMAGETYPE_XRAY, flatImage(9, 9, 1.0));
    ASSERT_EQ(m_dataset.saveDatasetAs(home("earlier")), ESTATUS_SUCCESS);
    ASSERT_EQ(m_dataset.open(inTarget("C1")), ESTATUS_SUCCESS);
    m_dataset.setCoreImage(IMAGETYPE_XRAY, flatImage(9, 9, 2.0));
    for (const QString& name : entries(home("earlier"))) {
        const auto size = static_cast<rlim_t>(QFileInfo(home("earlier/" + name)).size());
        for (const rlim_t bytes : {rlim_t{0}, size - 1}) {
            for (const QString& target : {home("new"), home("earlier")}) {
                const QByteArray before = contentOf(home("earlier/X-ray.TIF"));
                const int answer = inForkedChild([&] {
                    if (!limitFileSize(bytes)) {
                        return 99;
                    }
                    const bool failed = m_dataset.saveDatasetAs(target) == ESTATUS_FILE_UNWRITABLE;
                    const bool told =
                        m_log.lines().size() == 1 && m_log.lines().back().m_strMessage.startsWith(target + "/");
                    const bool same = m_dataset.folderPath() == inTarget("C1/");
                    return (failed ? 0 : 1) + (told ? 0 : 2) + (same ? 0 : 4);
                });
                // The largest of the files leaves room for the others.
                EXPECT_EQ(answer, 0) << name.toStdString() << " " << bytes;
                EXPECT_EQ(beside(), QStringList("earlier"));
                EXPECT_EQ(contentOf(home("earlier/X-ray.TIF")), before);
            }
        }
    }
    EXPECT_EQ(m_dataset.saveDatasetAs(home("new")), ESTATUS_SUCCESS); // and once there is room, all is well
}

TEST_F(DatasetSaveTest, AFolderThatMayNotBeWrittenToIsTold)
{
    const QString parent = home("locked");
    ASSERT_TRUE(QDir().mkpath(parent));
    for (const QString& place : {m_home.path(), m_strTarget, inTarget("C1")}) {
        ASSERT_EQ(::chmod(QFile::encodeName(place).constData(), 0755), 0);
    }
    ASSERT_EQ(::chmod(QFile::encodeName(parent).constData(), 0555), 0);
    const int answer = inForkedChild([&] {
        if (!becomePlainUser()) {
            return 99;
        }
        const bool failed = m_dataset.saveDatasetAs(parent + "/new") == ESTATUS_FILE_UNWRITABLE;
        const bool told = m_log.lines().size() == 1 && m_log.lines().back().m_strMessage.startsWith(parent + "/new");
        return (failed ? 0 : 1) + (told ? 0 : 2) + (m_dataset.folderPath() == inTarget("C1/") ? 0 : 4);
    });
    ASSERT_EQ(::chmod(QFile::encodeName(parent).constData(), 0755), 0);
    EXPECT_EQ(answer, 0);
    EXPECT_EQ(entries(parent), QStringList());
}

TEST_F(DatasetSaveTest, AnUpdateRefreshesWhatIsKeptOfThePixels)
{
    CILImage* pImage = m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT);
    ASSERT_EQ(pImage->getMax(), 340.0);
    pImage->setValue(3, 900.0);
    pImage->setValue(4, 10.0);
    m_dataset.setCoreImage(IMAGETYPE_XRAY, flatImage(2, 2, 5.0)); // its statistics are nobody's yet
    EXPECT_EQ(pImage->getMax(), 340.0);
    m_dataset.updateActiveImage();
    EXPECT_EQ(pImage->getMax(), 900.0);
    EXPECT_EQ(pImage->getMin(), 10.0);
    EXPECT_EQ(m_dataset.getCoreImage(IMAGETYPE_XRAY)->getMax(), 5.0);
    EXPECT_FALSE(m_dataset.isModified());
    CORVDataset empty;
    empty.updateActiveImage();
    EXPECT_EQ(empty.getCoreImage(IMAGETYPE_LUMINESCENT), nullptr);
}

TEST_F(DatasetSaveTest, AMadeFolderIsOpenedWithAClickNumberOfItsOwn)
{
    CPLClickInfo info = clickInfoIn(inTarget("C1"));
    info[QString("ClickNumber")]->removeKey("ClickNumber");
    ASSERT_EQ(info.saveClickInfo(inTarget("C1/ClickInfo.txt")), 0);
    EXPECT_EQ(m_dataset.open(inTarget("C1"), &m_strError), ESTATUS_FILE_UNREADABLE);
    ASSERT_EQ(m_dataset.openMade(inTarget("C1"), &m_strError), ESTATUS_SUCCESS) << m_strError.toStdString();
    EXPECT_TRUE(m_dataset.getClickNumber().startsWith("MADE"));
    EXPECT_EQ(m_dataset.folderPath(), inTarget("C1/"));
    EXPECT_NE(m_dataset.getCoreImage(IMAGETYPE_LUMINESCENT), nullptr);
    EXPECT_EQ(contentOf(inTarget("C1/ClickInfo.txt")), info.toText());
    QSet<QString> numbers{m_dataset.getClickNumber()};
    for (int i = 0; i < 50; ++i) {
        CORVDataset other;
        ASSERT_EQ(other.openMade(inTarget("C1")), ESTATUS_SUCCESS);
        numbers.insert(other.getClickNumber());
    }
    EXPECT_EQ(numbers.size(), 51);
    // Without the whole section too.
    info.removeSection("ClickNumber");
    ASSERT_EQ(info.saveClickInfo(inTarget("C1/ClickInfo.txt")), 0);
    ASSERT_EQ(m_dataset.openMade(inTarget("C1")), ESTATUS_SUCCESS);
    ASSERT_EQ(m_dataset.saveDatasetAs(home("new")), ESTATUS_SUCCESS);
    EXPECT_EQ(m_dataset.open(home("new")), ESTATUS_SUCCESS);
}

TEST_F(DatasetSaveTest, AClickNumberThatIsThereIsKept)
{
    ASSERT_EQ(m_dataset.openMade(inTarget("C2")), ESTATUS_SUCCESS);
    EXPECT_EQ(m_dataset.getClickNumber(), "C2");
    EXPECT_EQ(m_dataset.openMade(home("nowhere"), &m_strError), ESTATUS_FILE_UNREADABLE);
    EXPECT_TRUE(m_strError.contains(home("nowhere")));
    EXPECT_TRUE(m_dataset.getClickNumber().isEmpty());
}

} // namespace
