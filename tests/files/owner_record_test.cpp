// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/OwnerRecord.h"

#include "support/ForkedChild.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>

using orv::OwnerRecord;

namespace {

class OwnerRecordTest : public ::testing::Test
{
protected:
    QTemporaryDir m_home;
    QString m_strFile = m_home.filePath("a b.owner");
};

TEST_F(OwnerRecordTest, IsThereAsLongAsItsOwnerAndNobodyElseCanTakeIt)
{
    {
        OwnerRecord living;
        ASSERT_TRUE(living.make(m_strFile));
        OwnerRecord other;
        EXPECT_FALSE(other.make(m_strFile));
        EXPECT_EQ(errno, EEXIST);
        EXPECT_FALSE(other.takeAbandoned(m_strFile));
        EXPECT_TRUE(QFile::exists(m_strFile));
    }
    EXPECT_FALSE(QFile::exists(m_strFile));
    EXPECT_FALSE(OwnerRecord().takeAbandoned(m_strFile));
    EXPECT_FALSE(QFile::exists(m_strFile));
}

TEST_F(OwnerRecordTest, OfAKilledProgramItStaysAndCanBeTaken)
{
    ASSERT_EQ(inForkedChild([this] {
                  OwnerRecord killed;
                  return killed.make(m_strFile) ? std::raise(SIGKILL) : 0;
              }),
              201);
    ASSERT_TRUE(QFile::exists(m_strFile));
    {
        OwnerRecord next;
        EXPECT_TRUE(next.takeAbandoned(m_strFile));
        EXPECT_FALSE(OwnerRecord().takeAbandoned(m_strFile));
    }
    EXPECT_FALSE(QFile::exists(m_strFile));
}

TEST_F(OwnerRecordTest, ALinkIsNoRecord)
{
    const QString mine = m_home.filePath("mine.txt");
    QFile file(mine);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(QFile::link(mine, m_strFile));
    OwnerRecord record;
    EXPECT_FALSE(record.takeAbandoned(m_strFile));
    EXPECT_FALSE(record.make(m_strFile));
    EXPECT_TRUE(QFile::exists(mine));
}

} // namespace
