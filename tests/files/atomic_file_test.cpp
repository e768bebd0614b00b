// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/AtomicFile.h"

#include "faults/faults.h"
#include "files/TemporaryTarget.h"
#include "support/ForkedChild.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <string>
#include <sys/file.h>

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

class FaultyFileTest : public FileTest
{
protected:
    void TearDown() override { armFaults(nullptr, nullptr, nullptr); }
    bool arm(const std::string& strRules)
    {
        return armFaults(strRules.c_str(), QFile::encodeName(QDir(m_folder.path()).canonicalPath()).constData(),
                         nullptr);
    }
};

TEST_F(FaultyFileTest, ADiskThatRefusesTheBytesAtTheEndIsAFailureAndTheEarlierFileStays)
{
    write(m_strPath, "old");
    ASSERT_TRUE(arm("sync@1=EIO"));
    EXPECT_FALSE(orv::writeFileAtomically(m_strPath, "new", &m_strError));
    EXPECT_EQ(m_strError, m_strPath + ": cannot be written: Input/output error");
    EXPECT_EQ(read(m_strPath), "old");
    EXPECT_EQ(entries(), QStringList{"a file.txt"});
}

// After a successful answer both the bytes and the name are on the disk.
TEST_F(FaultyFileTest, AFolderThatCannotBeBroughtToTheDiskIsAFailureAndTheEarlierFileStays)
{
    write(m_strPath, "old");
    ASSERT_TRUE(arm("sync@2=EDQUOT"));
    EXPECT_FALSE(orv::writeFileAtomically(m_strPath, "new", &m_strError));
    EXPECT_EQ(m_strError, m_strPath + ": cannot be written: Disk quota exceeded");
    EXPECT_EQ(read(m_strPath), "old");
    EXPECT_EQ(entries(), QStringList{"a file.txt"});
}

TEST_F(FaultyFileTest, ANewFileThatMayNotBeOnTheDiskGoesAgain)
{
    for (const char* rules : {"sync@1=EIO", "sync@2=EIO"}) {
        ASSERT_TRUE(arm(rules));
        EXPECT_FALSE(orv::writeFileAtomically(m_strPath, "new", &m_strError)) << rules;
        EXPECT_TRUE(entries().isEmpty()) << rules;
    }
}

TEST_F(FaultyFileTest, AFileSystemThatKnowsNoSuchOrderIsNoFailure)
{
    ASSERT_TRUE(arm("sync@1+=EINVAL"));
    EXPECT_TRUE(orv::writeFileAtomically(m_strPath, "new", &m_strError)) << m_strError.toStdString();
    EXPECT_EQ(read(m_strPath), "new");
}

TEST_F(FaultyFileTest, AFileSystemThatCannotExchangeNamesIsRenamedOn)
{
    write(m_strPath, "old");
    ASSERT_TRUE(arm("rename@1=EINVAL"));
    EXPECT_TRUE(orv::writeFileAtomically(m_strPath, "new", &m_strError)) << m_strError.toStdString();
    EXPECT_EQ(read(m_strPath), "new");
    EXPECT_EQ(entries(), QStringList{"a file.txt"});
}

TEST_F(FaultyFileTest, AnyFailingCallLeavesTheWholeOldFileOrTheWholeNewOneAndTheAnswerIsTrue)
{
    int failed = 0;
    for (int call = 1; call < 100; ++call) {
        write(m_strPath, "old");
        ASSERT_TRUE(arm("change@" + std::to_string(call) + "=EIO"));
        const bool written = orv::writeFileAtomically(m_strPath, "new", &m_strError);
        const bool met = countedCalls() >= call;
        armFaults(nullptr, nullptr, nullptr);
        EXPECT_EQ(read(m_strPath), written ? "new" : "old") << call;
        if (!met) {
            break;
        }
        failed += written ? 0 : 1;
    }
    // Opened, written, synced, put in place, the folder synced; not the permissions nor what is removed afterwards.
    EXPECT_EQ(failed, 5);
}

TEST_F(FaultyFileTest, WhatAKilledProgramLeftIsGoneWithTheNextWriteOfTheSameFile)
{
    write(m_strPath, "old");
    write(m_folder.filePath("another.txt"), "another");
    int left = 0;
    for (const char* rules : {"write@1=kill", "write@1=half", "sync@1=kill", "rename@1=kill", "rename@1=killafter"}) {
        ASSERT_EQ(inForkedChild([&] {
                      arm(rules);
                      orv::writeFileAtomically(m_strPath, "new");
                      return 0;
                  }),
                  201);
        left += entries().size() - 2;
        ASSERT_TRUE(orv::writeFileAtomically(m_strPath, "newer", &m_strError)) << m_strError.toStdString();
        EXPECT_EQ(entries(), (QStringList{"a file.txt", "another.txt"})) << rules;
        EXPECT_EQ(read(m_strPath), "newer");
    }
    EXPECT_EQ(left, 5);
}

TEST_F(FaultyFileTest, WhatKilledProgramsLeftOfAnyTargetCanBeRemovedFromAFolder)
{
    const QStringList others{".a file-orv12.txt", ".hidden", "a file-orv0123456789abc.txt"};
    for (const QString& name : others) {
        write(m_folder.filePath(name), "of somebody else");
    }
    for (const char* name : {"b.c.txt", "no suffix"}) {
        ASSERT_EQ(inForkedChild([&] {
                      arm("write@1=half");
                      orv::writeFileAtomically(m_folder.filePath(name), "new");
                      return 0;
                  }),
                  201);
    }
    EXPECT_EQ(entries().size(), others.size() + 2);
    {
        orv::TemporaryTarget living(m_strPath);
        ASSERT_TRUE(living.write("living"));
        orv::removeAbandonedTargets(m_folder.path());
        EXPECT_EQ(entries().size(), others.size() + 1);
        EXPECT_TRUE(QFile::exists(living.path()));
    }
    EXPECT_EQ(entries(), others);
    orv::removeAbandonedTargets(m_folder.filePath("no such folder"));
    EXPECT_EQ(entries(), others);
}

TEST_F(FaultyFileTest, WhatALivingProgramWritesIsLeftAlone)
{
    orv::TemporaryTarget living(m_strPath);
    ASSERT_TRUE(living.write("living"));
    EXPECT_TRUE(orv::writeFileAtomically(m_strPath, "other"));
    EXPECT_TRUE(QFile::exists(living.path()));
    EXPECT_TRUE(living.commit());
    EXPECT_EQ(read(m_strPath), "living");
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
