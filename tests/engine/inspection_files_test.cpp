// SPDX-License-Identifier: GPL-3.0-or-later
// What the inspection of a sequence on disk reads of it.
#include "engine/CORVSpumKyvo.h"
#include "engine/LogCapture.h"
#include "engine/TestSequence.h"
#include "support/OpenedFiles.h"

#include "host/CILImage.h"
#include "host/CORVDataset.h"
#include "host/CORVSequenceDataset.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr int nImages = 6;

class InspectionFilesTest : public ::testing::Test
{
protected:
    InspectionFilesTest()
    {
        EXPECT_TRUE(m_folder.isValid());
        TestSequence made("made");
        for (int i = 0; i < nImages; ++i) {
            TestImage image;
            image.emission = QString("%1nm").arg(500 + 20 * i);
            EXPECT_EQ(made.add(image)->saveDatasetAs(dataset(i)), ESTATUS_SUCCESS);
        }
        EXPECT_EQ(m_sequence.open(m_folder.path()), ESTATUS_SUCCESS);
        EXPECT_EQ(m_sequence.getDatasets().size(), nImages);
    }

    QString dataset(int i) const { return m_folder.filePath(QString("image%1").arg(i, 2, 10, QChar('0'))); }
    void breakPixelsOfPhotograph(int i)
    {
        QFile file(dataset(i) + "/photograph.TIF");
        ASSERT_TRUE(file.exists());
        ASSERT_TRUE(file.resize(16));
    }

    LogCapture m_log;
    QTemporaryDir m_folder;
    CORVSequenceDataset m_sequence;
};

TEST_F(InspectionFilesTest, OnePhotographIsReadAndNoDataImage)
{
    testsupport::OpenedFiles opened(m_folder.path());
    CORVSpumKyvo engine(m_sequence.getSequenceID());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(opened.counts().keys().join(' ').toStdString(), (dataset(nImages - 1) + "/photograph.TIF").toStdString());
    EXPECT_EQ(opened.count("photograph.TIF"), 1);
    EXPECT_EQ(engine.m_pPhoto, m_sequence.getDatasets().last()->getCoreImage(IMAGETYPE_PHOTOGRAPH));
}

TEST_F(InspectionFilesTest, AnotherPhotographServesWhereThatOfTheLastCannotBeRead)
{
    breakPixelsOfPhotograph(nImages - 1);
    CORVSpumKyvo engine(m_sequence.getSequenceID());
    ASSERT_TRUE(engine.buildDatasetInfo());
    EXPECT_EQ(engine.m_pPhoto, m_sequence.getDatasets().first()->getCoreImage(IMAGETYPE_PHOTOGRAPH));
}

TEST_F(InspectionFilesTest, PhotographsOfWhichNoneCanBeReadAreNone)
{
    for (int i = 0; i < nImages; ++i) {
        breakPixelsOfPhotograph(i);
    }
    CORVSpumKyvo engine(m_sequence.getSequenceID());
    EXPECT_FALSE(engine.buildDatasetInfo());
    EXPECT_TRUE(m_log.has("SpumKyvo: unable to find a valid photo and spumkyvo disabled!", 2));
    EXPECT_EQ(engine.m_pPhoto, nullptr);
}

} // namespace
