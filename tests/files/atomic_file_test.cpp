// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/AtomicFile.h"

#include "files/TemporaryTarget.h"
#include "support/ForkedChild.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class FileTest : public ::testing::Test
{
protected:
    void write(const QString& strPath, const QByteArray& bytes)
    {
        QFile file(strPath);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    QByteArray read(const QString& strPath)
    {
        QFile file(strPath);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }
    QStringList entries()
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

    QTemporaryDir m_folder;
    QString m_strPath = m_folder.filePath("a file.txt");
    QString m_strError;
};

class AtomicFileTest : public FileTest
{
};
class TemporaryTargetTest : public FileTest
{
};

TEST_F(AtomicFileTest, NewFileHoldsTheBytes)
{
    const QByteArray bytes("a\0b\r\n", 5);
    ASSERT_TRUE(orv::writeFileAtomically(m_strPath, bytes, &m_strError)) << m_strError.toStdString();
    EXPECT_EQ(read(m_strPath), bytes);
    EXPECT_TRUE(m_strError.isEmpty());
}

TEST_F(AtomicFileTest, NoBytesMakeAnEmptyFile)
{
    write(m_strPath, "old");
    ASSERT_TRUE(orv::writeFileAtomically(m_strPath, QByteArray()));
    EXPECT_EQ(read(m_strPath), QByteArray());
}

TEST_F(AtomicFileTest, EarlierFileIsReplacedAndNothingIsLeftBeside)
{
    write(m_strPath, "a much longer earlier text");
    ASSERT_TRUE(orv::writeFileAtomically(m_strPath, "new"));
    EXPECT_EQ(read(m_strPath), "new");
    EXPECT_EQ(entries(), QStringList{"a file.txt"});
}

TEST_F(AtomicFileTest, MissingFolderIsAnErrorThatNamesTheFile)
{
    const QString path = m_folder.filePath("none/a.txt");
    EXPECT_FALSE(orv::writeFileAtomically(path, "x", &m_strError));
    EXPECT_TRUE(m_strError.startsWith(path + ": cannot be written: ")) << m_strError.toStdString();
    EXPECT_FALSE(m_strError.endsWith(": "));
}

TEST_F(AtomicFileTest, FileInTheFoldersPlaceIsAnError)
{
    write(m_strPath, "old");
    EXPECT_FALSE(orv::writeFileAtomically(m_strPath + "/a.txt", "x", &m_strError));
    EXPECT_EQ(read(m_strPath), "old");
}

TEST_F(AtomicFileTest, FolderInTheFilesPlaceIsAnError)
{
    ASSERT_TRUE(QDir().mkpath(m_strPath));
    EXPECT_FALSE(orv::writeFileAtomically(m_strPath, "x", &m_strError));
    EXPECT_TRUE(QFileInfo(m_strPath).isDir());
    EXPECT_EQ(entries().size(), 1);
}

TEST_F(AtomicFileTest, ReadOnlyFolderKeepsTheEarlierFile)
{
    write(m_strPath, "old");
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()), 0555), 0);
    const int status = inForkedChild([this] {
        if (!becomePlainUser()) {
            return 1;
        }
        const bool written = orv::writeFileAtomically(m_strPath, "new", &m_strError);
        return written || !m_strError.startsWith(m_strPath) ? 2 : 0;
    });
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()), 0755), 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read(m_strPath), "old");
    EXPECT_EQ(entries(), QStringList{"a file.txt"});
}

struct FullDisk
{
    int m_nLimit;
    int m_nBytes;
};

class FullDiskTest : public FileTest, public ::testing::WithParamInterface<FullDisk>
{
};

// Qt collects 16 KB before it writes: below that the failure shows in the last flush only.
INSTANTIATE_TEST_SUITE_P(AroundTheWriteBuffer, FullDiskTest,
                         ::testing::Values(FullDisk{1000, 1001}, FullDisk{1000, 16000}, FullDisk{0, 1},
                                           FullDisk{16384, 16385}, FullDisk{50000, 60000}, FullDisk{20000, 1000000}));

TEST_P(FullDiskTest, EarlierFileStaysAndTheErrorNamesFileAndReason)
{
    write(m_strPath, "old");
    const int status = inForkedChild([this] {
        if (!limitFileSize(static_cast<rlim_t>(GetParam().m_nLimit))) {
            return 1;
        }
        if (orv::writeFileAtomically(m_strPath, QByteArray(GetParam().m_nBytes, 'x'), &m_strError)) {
            return 2;
        }
        const QString text = m_strPath + ": cannot be written: ";
        return m_strError == text + "File too large" || m_strError == text + "no room for all of it" ? 0 : 3;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read(m_strPath), "old");
    EXPECT_EQ(entries(), QStringList{"a file.txt"});
}

TEST_P(FullDiskTest, FileThatJustFitsIsWritten)
{
    const int status = inForkedChild([this] {
        if (!limitFileSize(static_cast<rlim_t>(GetParam().m_nBytes))) {
            return 1;
        }
        return orv::writeFileAtomically(m_strPath, QByteArray(GetParam().m_nBytes, 'x')) ? 0 : 2;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(read(m_strPath).size(), GetParam().m_nBytes);
}

TEST_F(TemporaryTargetTest, CommitGivesTheFileItsNameAndLeavesNothingBeside)
{
    orv::TemporaryTarget target(m_strPath);
    ASSERT_TRUE(target.isValid()) << target.error().toStdString();
    EXPECT_EQ(QFileInfo(target.path()).suffix(), "txt");
    EXPECT_EQ(QFileInfo(target.path()).path(), m_folder.path());
    write(target.path(), "new");
    EXPECT_FALSE(QFile::exists(m_strPath));
    EXPECT_TRUE(target.commit());
    EXPECT_TRUE(target.path().isEmpty());
    EXPECT_EQ(read(m_strPath), "new");
    EXPECT_EQ(entries(), QStringList{"a file.txt"});
}

TEST_F(TemporaryTargetTest, WithoutCommitTheTargetStaysAndTheTemporaryFileGoes)
{
    write(m_strPath, "old");
    {
        orv::TemporaryTarget target(m_strPath);
        write(target.path(), "half");
    }
    EXPECT_EQ(read(m_strPath), "old");
    EXPECT_EQ(entries(), QStringList{"a file.txt"});
}

TEST_F(TemporaryTargetTest, TwoForOneTargetDoNotMeet)
{
    orv::TemporaryTarget first(m_strPath);
    orv::TemporaryTarget second(m_strPath);
    EXPECT_NE(first.path(), second.path());
    write(first.path(), "first");
    write(second.path(), "second");
    EXPECT_TRUE(first.commit());
    EXPECT_TRUE(second.commit());
    EXPECT_EQ(read(m_strPath), "second");
}

TEST_F(TemporaryTargetTest, CommitKeepsThePermissionsOfTheEarlierFile)
{
    write(m_strPath, "old");
    ASSERT_EQ(::chmod(QFile::encodeName(m_strPath), 0640), 0);
    orv::TemporaryTarget target(m_strPath);
    ASSERT_TRUE(target.commit());
    struct stat now = {};
    ASSERT_EQ(::stat(QFile::encodeName(m_strPath), &now), 0);
    EXPECT_EQ(now.st_mode & 0777, 0640U);
}

TEST_F(TemporaryTargetTest, LinkStaysALink)
{
    write(m_strPath, "old");
    const QString link = m_folder.filePath("link.txt");
    ASSERT_TRUE(QFile::link(m_strPath, link));
    orv::TemporaryTarget target(link);
    write(target.path(), "new");
    ASSERT_TRUE(target.commit());
    EXPECT_TRUE(QFileInfo(link).isSymLink());
    EXPECT_EQ(read(m_strPath), "new");
}

TEST_F(TemporaryTargetTest, CommitFailsWhenTheWriterTookTheFileAway)
{
    write(m_strPath, "old");
    orv::TemporaryTarget target(m_strPath);
    ASSERT_TRUE(QFile::remove(target.path()));
    EXPECT_FALSE(target.commit());
    EXPECT_TRUE(target.error().startsWith(m_strPath + ": cannot be written: "));
    EXPECT_FALSE(target.isValid());
    EXPECT_FALSE(target.commit());
    EXPECT_EQ(read(m_strPath), "old");
}

TEST_F(TemporaryTargetTest, FolderInTheFilesPlaceOrAMissingFolderIsAnError)
{
    orv::TemporaryTarget folder(m_folder.path());
    EXPECT_FALSE(folder.isValid());
    EXPECT_TRUE(folder.error().startsWith(m_folder.path() + ": cannot be written: "));
    orv::TemporaryTarget missing(m_folder.filePath("none/a.tif"));
    EXPECT_FALSE(missing.isValid());
    EXPECT_FALSE(missing.error().isEmpty());
    EXPECT_FALSE(missing.commit());
}

TEST_F(TemporaryTargetTest, ReadOnlyFolderIsAnError)
{
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()), 0555), 0);
    const int status = inForkedChild([this] {
        if (!becomePlainUser()) {
            return 1;
        }
        const orv::TemporaryTarget target(m_strPath);
        return target.isValid() || target.error().isEmpty() ? 2 : 0;
    });
    ASSERT_EQ(::chmod(QFile::encodeName(m_folder.path()), 0755), 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(entries().isEmpty());
}

} // namespace
