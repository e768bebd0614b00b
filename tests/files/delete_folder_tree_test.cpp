// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/deleteFolderTree.h"

#include "faults/faults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

class DeleteFolderTreeTest : public ::testing::Test
{
protected:
    void TearDown() override { armFaults(nullptr, nullptr, nullptr); }

    void put(const QString& strName)
    {
        const QString path = m_home.filePath(strName);
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("x");
    }
    // Enough for several threads: folders side by side and one in the other, hidden ones, an empty one.
    void plant()
    {
        for (int i = 0; i < 8; ++i) {
            for (const char* name : {"a.tif", ".hidden", "below/deeper/b.txt", ".folder/c"}) {
                put(QStringLiteral("tree/%1/%2").arg(i).arg(QLatin1String(name)));
            }
        }
        ASSERT_TRUE(QDir().mkpath(m_home.filePath("tree/empty")));
    }
    QStringList entries(const QString& strFolder) const
    {
        return QDir(m_home.filePath(strFolder)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir m_home;
    QString m_strTree = m_home.filePath("tree");
};

} // namespace

TEST_F(DeleteFolderTreeTest, NothingIsLeftOfTheFolderAndAllBeside)
{
    plant();
    put("beside.txt");
    EXPECT_TRUE(orv::deleteFolderTree(m_strTree + '/'));
    EXPECT_EQ(entries("."), QStringList{"beside.txt"});
}

TEST_F(DeleteFolderTreeTest, NamesThatAreNotUtf8AreRemovedToo)
{
    plant();
    const QByteArray name = QFile::encodeName(m_strTree) + "/3/\xe9t\xe9";
    ASSERT_EQ(::mkdir(name.constData(), 0700), 0);
    EXPECT_TRUE(orv::deleteFolderTree(m_strTree));
    EXPECT_TRUE(entries(".").isEmpty());
}

TEST_F(DeleteFolderTreeTest, LinksGoAndWhatTheyLeadToStays)
{
    plant();
    put("elsewhere/mine.txt");
    ASSERT_TRUE(QFile::link(m_home.filePath("elsewhere"), m_strTree + "/0/link"));
    ASSERT_TRUE(QFile::link(m_home.filePath("nowhere"), m_strTree + "/1/dangling"));
    ASSERT_TRUE(QFile::link(m_home.filePath("elsewhere"), m_home.filePath("link")));
    EXPECT_TRUE(orv::deleteFolderTree(m_strTree));
    EXPECT_TRUE(orv::deleteFolderTree(m_home.filePath("link")));
    EXPECT_EQ(entries("."), QStringList{"elsewhere"});
    EXPECT_EQ(entries("elsewhere"), QStringList{"mine.txt"});
}

TEST_F(DeleteFolderTreeTest, WhatIsNotThereIsRemoved)
{
    EXPECT_TRUE(orv::deleteFolderTree(m_strTree));
}

TEST_F(DeleteFolderTreeTest, ItIsDoneWithoutThreadsToo)
{
    plant();
    ASSERT_TRUE(armFaults("thread@1+=EAGAIN", nullptr, nullptr));
    EXPECT_TRUE(orv::deleteFolderTree(m_strTree));
    EXPECT_GT(countedCalls(), 0) << "it should have tried";
    EXPECT_TRUE(entries(".").isEmpty());
}

TEST_F(DeleteFolderTreeTest, WhatCannotBeRemovedStaysAloneAndIsTold)
{
    plant();
    const QByteArray stuck = QFile::encodeName(m_strTree + "/5/below/deeper");
    ASSERT_TRUE(armFaults("unlink@1+=EACCES", stuck.constData(), nullptr));
    EXPECT_FALSE(orv::deleteFolderTree(m_strTree));
    armFaults(nullptr, nullptr, nullptr);
    EXPECT_EQ(entries("tree"), QStringList{"5"});
    EXPECT_EQ(entries("tree/5"), QStringList{"below"});
    EXPECT_EQ(entries("tree/5/below/deeper"), QStringList{"b.txt"});
    EXPECT_TRUE(orv::deleteFolderTree(m_strTree));
}
