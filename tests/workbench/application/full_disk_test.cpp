// SPDX-License-Identifier: GPL-3.0-or-later
// A disk that is full at each write of the application: what was there stays, and the user is told.
#include "MainWindowFixture.h"

#include "faults/fillTheDisk.h"
#include "support/filesWithBytes.h"

#include "host/CORVImageWindow.h"
#include "host/CORVLog.h"
#include "host/CORVMessageBox.h"
#include "host/CORVSequenceDataset.h"
#include "host/CROIManager.h"
#include "platform/orvutils/LogSinks.h"
#include "workbench/application/RegionPanel.h"
#include "workbench/application/Session.h"

#include <QDir>
#include <QFile>

#include <string>

namespace {

class FullDiskTest : public MainWindowFixture
{
protected:
    void SetUp() override
    {
        MainWindowFixture::SetUp();
        m_strFolder = m_folder.filePath("mine");
        simulated::into(m_strFolder, {"--size", "16", "--bands", "3"});
        makeWindowWithTool();
        m_pWindow->open(m_strFolder);
    }
    void TearDown() override
    {
        m_script.m_nAnswer = CORVMessageBox::NoButtonAnswer;
        MainWindowFixture::TearDown();
    }
    CORVSequenceDataset& sequence() { return *m_pWindow->documents().sequences().first(); }

    QMap<QString, QByteArray> files() const { return filesWithBytes(m_folder.path()); }

    QString m_strFolder;
};

TEST_F(FullDiskTest, RegionsThatAreNotSavedKeepTheSequenceOpen)
{
    CORVDataset* pImage = sequence().getDatasets().at(1);
    m_pWindow->documents().showDataset(pImage);
    tagROIInfo region;
    region.width = region.height = 8.0;
    m_pWindow->findChild<RegionPanel*>()->take(-1, region);
    EXPECT_TRUE(m_pWindow->documents().closeCurrent()) << "the image's window";
    settle();
    const auto before = files();
    m_script.m_nAnswer = CORVMessageBox::YesButton;
    const auto work = [this] {
        m_script.m_asked.clear();
        m_pWindow->documents().closeCurrent();
        settle();
    };
    const auto check = [&] {
        ASSERT_EQ(m_script.m_asked.size(), 2);
        EXPECT_TRUE(m_script.m_asked.first().startsWith("The regions of an image of "));
        EXPECT_TRUE(m_script.m_asked.last().endsWith("The log tells why.")) << qPrintable(m_script.m_asked.last());
        EXPECT_EQ(m_pWindow->documents().count(), 1);
        EXPECT_TRUE(pImage->isModified());
        EXPECT_TRUE(files() == before);
    };
    EXPECT_GE(fillTheDisk(m_folder.path(), work, check, true), 3);
    EXPECT_EQ(m_pWindow->documents().count(), 0);
    CORVSequenceDataset again;
    ASSERT_EQ(again.open(m_strFolder), ESTATUS_SUCCESS);
    EXPECT_EQ(again.getDatasets().at(1)->roiManager()->regions().size(), 1);
}

TEST_F(FullDiskTest, AMapThatIsNotSavedKeepsItsWindow)
{
    ESTATUS status = ESTATUS_FAILURE;
    Q_EMIT m_pTool->signalLoadFile(sequence().getDatasets().first()->folderPath() + "ClickInfo.txt", true, &status,
                                   nullptr);
    CORVDataset* pMap = m_pWindow->documents().currentDataset();
    ASSERT_NE(pMap, nullptr);
    pMap->setModified(true);
    const auto before = files();
    m_script.m_file = m_folder.filePath("kept");
    m_script.m_nAnswer = CORVMessageBox::YesButton;
    const auto work = [this] {
        m_script.m_asked.clear();
        m_pWindow->documents().closeCurrent();
        settle();
    };
    const auto check = [&] {
        ASSERT_EQ(m_script.m_asked.size(), 2);
        EXPECT_TRUE(m_script.m_asked.last().contains("could not be saved in " + *m_script.m_file));
        EXPECT_EQ(m_pWindow->documents().count(), 2);
        EXPECT_TRUE(pMap->isModified());
        EXPECT_TRUE(files() == before);
        EXPECT_FALSE(QFileInfo::exists(*m_script.m_file));
    };
    EXPECT_GE(fillTheDisk(m_folder.path(), work, check, true), 3);
    EXPECT_EQ(m_pWindow->documents().count(), 1);
    EXPECT_TRUE(QFile::exists(*m_script.m_file + "/ClickInfo.txt"));
}

TEST_F(FullDiskTest, ASequenceOfMapsIsThereAsAWholeOrNotAtAll)
{
    QStringList clickInfos;
    for (const CORVDataset* pDataset : sequence().getDatasets().mid(0, 2)) {
        clickInfos << pDataset->folderPath() + "ClickInfo.txt";
    }
    const auto before = files();
    m_script.m_file = m_folder.filePath("maps");
    const auto work = [&] {
        m_script.m_asked.clear();
        Q_EMIT m_pTool->createSequence(clickInfos, false);
        settle();
    };
    const auto check = [&] {
        ASSERT_EQ(m_script.m_asked.size(), 1);
        EXPECT_TRUE(m_script.m_asked.first().contains(m_folder.path())) << qPrintable(m_script.m_asked.first());
        EXPECT_EQ(m_pWindow->documents().count(), 1);
        EXPECT_TRUE(files() == before);
        EXPECT_FALSE(QFileInfo::exists(*m_script.m_file));
    };
    EXPECT_GE(fillTheDisk(m_folder.path(), work, check, true), 4);
    EXPECT_TRUE(m_script.m_asked.isEmpty());
    EXPECT_EQ(m_pWindow->documents().currentSequence()->getSequenceName(), "maps");
}

// A settings file of its own: those of the program are marked for good once they could not be written.
TEST(FullDiskOfSettingsTest, ASessionThatCannotBeKeptIsToldOnceAndTheOneOfBeforeStays)
{
    const QTemporaryDir folder;
    CORVSettings settings(folder.filePath("settings.ini"), QSettings::IniFormat);
    settings.setValue("mine", 7);
    settings.sync();
    QStringList warnings;
    const int nSink = orv::addLogSink([&warnings](const orv::LogRecord& record) {
        if (record.m_nLevel == CORVLOG_WARNING) {
            warnings << record.m_strMessage;
        }
    });
    {
        Session session(settings);
        QFile file(settings.fileName());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray before = file.readAll();
        const QByteArray below = QFile::encodeName(QFileInfo(folder.path()).canonicalFilePath());
        ASSERT_TRUE(armFaults("open,write,sync@1+=ENOSPC", below.constData(), nullptr));
        session.keep({{"/data/a", QRect()}});
        session.keep({{"/data/b", QRect()}});
        armFaults(nullptr, nullptr, nullptr);
        file.seek(0);
        EXPECT_TRUE(file.readAll() == before);
        EXPECT_EQ(warnings,
                  QStringList(settings.fileName() + ": cannot be written; the next start will not find what is open"));
        session.keep({{"/data/c", QRect()}});
    }
    orv::removeLogSink(nSink);
    CORVSettings next(folder.filePath("settings.ini"), QSettings::IniFormat);
    EXPECT_EQ(next.value("mine").toInt(), 7);
    EXPECT_EQ(Session(next).takeAbandoned(), Session::Windows({{"/data/c", QRect()}}));
}

} // namespace
