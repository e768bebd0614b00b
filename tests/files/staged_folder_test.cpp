// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/StagedFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

const QString marker = QStringLiteral("summary.json");

void writeFile(const QString& strPath, const QByteArray& bytes = "x")
{
    QFile file(strPath);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QStringList entries(const QString& strFolder)
{
    return QDir(strFolder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

class StagedFolderTest : public ::testing::Test
{
protected:
    QTemporaryDir m_home;
    QString m_strTarget = m_home.filePath("out put");
    QString m_strError;
};

TEST_F(StagedFolderTest, CommitPutsTheWholeFolderInPlaceAndLeavesNothingBeside)
{
    StagedFolder folder;
    ASSERT_TRUE(folder.begin(m_strTarget, false, marker, &m_strError)) << m_strError.toStdString();
    writeFile(folder.path() + "a.txt");
    EXPECT_FALSE(QFile::exists(m_strTarget));
    ASSERT_TRUE(folder.commit(&m_strError));
    EXPECT_EQ(entries(m_home.path()), QStringList{"out put"});
    EXPECT_EQ(entries(m_strTarget), QStringList{"a.txt"});
    EXPECT_TRUE(folder.path().isEmpty());
}

TEST_F(StagedFolderTest, WithoutCommitNothingIsLeft)
{
    {
        StagedFolder folder;
        ASSERT_TRUE(folder.begin(m_strTarget, false, marker));
        writeFile(folder.path() + "a.txt");
    }
    EXPECT_TRUE(entries(m_home.path()).isEmpty());
}

TEST_F(StagedFolderTest, AnExistingTargetIsRefusedWithoutForce)
{
    ASSERT_TRUE(QDir().mkdir(m_strTarget));
    StagedFolder folder;
    EXPECT_FALSE(folder.begin(m_strTarget, false, marker, &m_strError));
    EXPECT_TRUE(m_strError.contains("--force"));
    EXPECT_TRUE(m_strError.contains(m_strTarget));
}

TEST_F(StagedFolderTest, ATargetThatAppearsMeanwhileIsNotReplacedWithoutForce)
{
    StagedFolder folder;
    ASSERT_TRUE(folder.begin(m_strTarget, false, marker));
    ASSERT_TRUE(QDir().mkdir(m_strTarget));
    writeFile(m_strTarget + "/other.txt");
    EXPECT_FALSE(folder.commit(&m_strError));
    EXPECT_EQ(entries(m_home.path()), QStringList{"out put"});
    EXPECT_EQ(entries(m_strTarget), QStringList{"other.txt"});
}

TEST_F(StagedFolderTest, ForceReplacesAFolderThatBearsTheMarker)
{
    ASSERT_TRUE(QDir().mkdir(m_strTarget));
    writeFile(m_strTarget + "/summary.json");
    writeFile(m_strTarget + "/old.txt");
    StagedFolder folder;
    ASSERT_TRUE(folder.begin(m_strTarget, true, marker));
    writeFile(folder.path() + "new.txt");
    ASSERT_TRUE(folder.commit());
    EXPECT_EQ(entries(m_strTarget), QStringList{"new.txt"});
    EXPECT_EQ(entries(m_home.path()), QStringList{"out put"});
}

TEST_F(StagedFolderTest, ForceDoesNotReplaceAForeignFolderAFileOrALink)
{
    ASSERT_TRUE(QDir().mkdir(m_strTarget));
    writeFile(m_strTarget + "/thesis.tex");
    StagedFolder folder;
    EXPECT_FALSE(folder.begin(m_strTarget, true, marker, &m_strError));
    EXPECT_TRUE(QFile::exists(m_strTarget + "/thesis.tex"));

    const QString file = m_home.filePath("file");
    writeFile(file);
    EXPECT_FALSE(folder.begin(file, true, marker, &m_strError));
    const QString link = m_home.filePath("link");
    ASSERT_TRUE(QFile::link(m_home.filePath("nowhere"), link));
    EXPECT_FALSE(folder.begin(link, true, marker, &m_strError));
}

TEST_F(StagedFolderTest, AMissingParentAndAFileInItsPlaceAreTold)
{
    StagedFolder folder;
    EXPECT_FALSE(folder.begin(m_home.filePath("no/such/out"), false, marker, &m_strError));
    EXPECT_TRUE(m_strError.contains("is not a folder"));
    writeFile(m_home.filePath("plain"));
    EXPECT_FALSE(folder.begin(m_home.filePath("plain/out"), false, marker, &m_strError));
    EXPECT_FALSE(folder.commit(&m_strError));
}

} // namespace
