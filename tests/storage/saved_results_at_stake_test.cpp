// SPDX-License-Identifier: GPL-3.0-or-later
#include "storage/savedResultsAtStake.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class SavedResultsCheckTest : public ::testing::Test
{
protected:
    QString folder() const { return m_folder.path(); }
    void write(const QString& strName, const QByteArray& bytes) const
    {
        QDir(folder()).mkpath(QFileInfo(strName).path());
        QFile file(m_folder.filePath(strName));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    QString sentence(const QString& strIndex) const
    {
        return folder() + " holds saved results (" + strIndex +
               "), which would be lost with it: delete them first, or choose another folder";
    }

    QTemporaryDir m_folder;
};

constexpr const char* entry = "# Orvia sections 1\n\n[SPUM] SPUM\nMenuName: a\nFileName: SpecUnmix/a.xml\n\n# end\n";

} // namespace

TEST_F(SavedResultsCheckTest, NothingIsAtStakeWithoutResults)
{
    EXPECT_EQ(savedResultsAtStake(folder() + "/none"), QString());
    EXPECT_EQ(savedResultsAtStake(folder()), QString());
    write("XML/SPUM.txt", "");
    EXPECT_EQ(savedResultsAtStake(folder()), QString());
    write("XML/SPUM.txt", "\xEF\xBB\xBF# Orvia sections 1\r\n\r\n# end\r\n");
    EXPECT_EQ(savedResultsAtStake(folder()), QString());
    write("SPUM_notes/readme.txt", "[a]\n");
    EXPECT_EQ(savedResultsAtStake(folder()), QString());
}

TEST_F(SavedResultsCheckTest, AnIndexWithAnEntryIsNamed)
{
    write("XML/SPUM.txt", entry);
    EXPECT_EQ(savedResultsAtStake(folder() + "/"), sentence("XML/SPUM.txt"));
}

TEST_F(SavedResultsCheckTest, TheResultsOfABatchCountToo)
{
    write("XML/SPUM.txt", "# Orvia sections 1\n\n# end\n");
    write("SPUM20240131235959/SPUM.txt", entry);
    EXPECT_EQ(savedResultsAtStake(folder()), sentence("SPUM20240131235959/SPUM.txt"));
}

TEST_F(SavedResultsCheckTest, AnIndexThatNamesNoResultAnyMoreIsEmpty)
{
    EXPECT_EQ(emptyResultsIndexes(folder()), QStringList());
    write("XML/SPUM.txt", "# Orvia sections 1\n\n# end\n");
    write("SPUM20240131235959/SPUM.txt", entry);
    write("SPUM20240131235960/SPUM.txt", "");
    EXPECT_EQ(emptyResultsIndexes(folder()), (QStringList{"XML/SPUM.txt", "SPUM20240131235960/SPUM.txt"}));
}

TEST_F(SavedResultsCheckTest, AnIndexThatCannotBeReadCountsAsOneWithResults)
{
    write("XML/SPUM.txt", QByteArray("\0\0broken", 8));
    EXPECT_EQ(emptyResultsIndexes(folder()), QStringList());
    EXPECT_EQ(savedResultsAtStake(folder()), sentence("XML/SPUM.txt"));
    QDir(folder()).remove("XML/SPUM.txt");
    QDir(folder()).mkpath("XML/SPUM.txt");
    EXPECT_EQ(savedResultsAtStake(folder()), sentence("XML/SPUM.txt"));
}
