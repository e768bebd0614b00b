// SPDX-License-Identifier: GPL-3.0-or-later
#include "faults/faults.h"

#include "support/ForkedChild.h"

#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <new>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <vector>

namespace {

class FaultsTest : public ::testing::Test
{
protected:
    void TearDown() override { armFaults(nullptr, nullptr, nullptr); }

    QByteArray path(const char* pName) const { return QFile::encodeName(m_folder.filePath(QLatin1String(pName))); }
    QByteArray folder() const { return QFile::encodeName(m_folder.path()); }
    static QByteArray content(const QByteArray& path)
    {
        QFile file(QFile::decodeName(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
    }
    static bool writeFile(const QByteArray& path, const char* pBytes)
    {
        QFile file(QFile::decodeName(path));
        return file.open(QIODevice::WriteOnly) && file.write(pBytes) == static_cast<qint64>(qstrlen(pBytes)) &&
               file.flush();
    }

    QTemporaryDir m_folder;
};

TEST_F(FaultsTest, TheCallWithTheNumberFailsAndNoOther)
{
    ASSERT_TRUE(armFaults("mkdir@2=EDQUOT", folder().constData(), nullptr));
    EXPECT_EQ(::mkdir(path("a").constData(), 0777), 0);
    EXPECT_EQ(::mkdir(path("b").constData(), 0777), -1);
    EXPECT_EQ(errno, EDQUOT);
    EXPECT_EQ(::mkdir(path("b").constData(), 0777), 0);
    EXPECT_EQ(countedCalls(), 3);
}

TEST_F(FaultsTest, WithAPlusEveryLaterCallFailsToo)
{
    ASSERT_TRUE(armFaults("unlink,mkdir@1+=5", folder().constData(), nullptr));
    EXPECT_EQ(::mkdir(path("a").constData(), 0777), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(::mkdir(path("a").constData(), 0777), -1);
}

TEST_F(FaultsTest, CallsElsewhereAreNotMet)
{
    ASSERT_TRUE(armFaults("mkdir@1+=EIO", path("inside").constData(), nullptr));
    EXPECT_EQ(::mkdir(path("insider").constData(), 0777), 0);
    EXPECT_EQ(::mkdir(path("inside").constData(), 0777), -1);
    EXPECT_EQ(::mkdir(path("inside/deeper").constData(), 0777), -1);
    EXPECT_EQ(errno, EIO);
}

TEST_F(FaultsTest, QtAndStreamsGoThroughIt)
{
    ASSERT_TRUE(armFaults("open@1+=EACCES", folder().constData(), nullptr));
    EXPECT_FALSE(writeFile(path("a"), "a"));
    EXPECT_FALSE(std::ofstream(path("b").constData()).is_open());
    ASSERT_TRUE(armFaults("write@1+=ENOSPC", folder().constData(), nullptr));
    EXPECT_FALSE(writeFile(path("a"), "a"));
    EXPECT_FALSE((std::ofstream(path("b").constData()) << "b").flush().good());
}

TEST_F(FaultsTest, ARenameIsMetFromBothItsEnds)
{
    ASSERT_TRUE(writeFile(path("a"), "a"));
    ASSERT_TRUE(armFaults("rename@1+=EXDEV", path("b").constData(), nullptr));
    EXPECT_EQ(std::rename(path("a").constData(), path("b").constData()), -1);
    EXPECT_EQ(errno, EXDEV);
    EXPECT_EQ(::renameat2(AT_FDCWD, path("b").constData(), AT_FDCWD, path("a").constData(), RENAME_EXCHANGE), -1);
    EXPECT_EQ(errno, EXDEV);
}

TEST_F(FaultsTest, AShortWriteIsFollowedByAFullDisk)
{
    ASSERT_TRUE(armFaults("write@1=short", folder().constData(), nullptr));
    EXPECT_FALSE(writeFile(path("a"), "0123456789"));
    armFaults(nullptr, nullptr, nullptr);
    EXPECT_EQ(content(path("a")), "01234");
}

TEST_F(FaultsTest, AProcessDiesBeforeAtAndAfterACall)
{
    for (const char* rule : {"write@1=kill", "write@1=half", "write@1=killafter"}) {
        EXPECT_EQ(inForkedChild([&] {
                      armFaults(rule, folder().constData(), nullptr);
                      writeFile(path(rule), "0123456789");
                      return 0;
                  }),
                  201)
            << rule;
    }
    EXPECT_EQ(content(path("write@1=kill")), "");
    EXPECT_EQ(content(path("write@1=half")), "01234");
    EXPECT_EQ(content(path("write@1=killafter")), "0123456789");
}

TEST_F(FaultsTest, AThreadIsNotMade)
{
    ASSERT_TRUE(armFaults("thread@1=EAGAIN", nullptr, nullptr));
    EXPECT_THROW(std::thread([] {}).join(), std::system_error);
    std::thread([] {}).join();
}

TEST_F(FaultsTest, TheLogHasEachCallWithItsPaths)
{
    ASSERT_TRUE(armFaults(nullptr, folder().constData(), path("log").constData()));
    ASSERT_TRUE(writeFile(path("a"), "a"));
    ASSERT_EQ(std::rename(path("a").constData(), path("b").constData()), 0);
    ASSERT_EQ(::mkdir("/", 0777), -1);
    armFaults(nullptr, nullptr, nullptr);
    EXPECT_EQ(content(path("log")), "open\t" + path("a") + "\nwrite\t" + path("a") + "\nclose\t" + path("a") +
                                        "\nrename\t" + path("a") + "\t" + path("b") + "\n");
}

TEST_F(FaultsTest, RulesThatCannotBeReadAreRefused)
{
    for (const char* rule : {"open", "open@=EIO", "open@0=EIO", "opens@1=EIO", "open@1=EWHAT", "@1=EIO", "open@1="}) {
        EXPECT_FALSE(armFaults(rule, nullptr, nullptr)) << rule;
    }
}

TEST_F(FaultsTest, APreloadedLibraryTakesItsRulesFromTheEnvironment)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LD_PRELOAD", ORV_BINARY_DIR "/lib/libfaults.so");
    environment.insert("FAULTS", "mkdir@2=EDQUOT");
    environment.insert("FAULTS_BELOW", m_folder.path());
    environment.insert("LC_ALL", "C");
    process.setProcessEnvironment(environment);
    process.start("mkdir", {m_folder.filePath("a"), m_folder.filePath("b"), m_folder.filePath("c")});
    ASSERT_TRUE(process.waitForFinished(120000));
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_TRUE(process.readAllStandardError().contains("quota"));
    EXPECT_TRUE(QFile::exists(m_folder.filePath("a")));
    EXPECT_FALSE(QFile::exists(m_folder.filePath("b")));
    EXPECT_TRUE(QFile::exists(m_folder.filePath("c")));
}

// Under a sanitizer the memory is the sanitizer's.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST_F(FaultsTest, ALargeBlockIsRefused)
{
    ASSERT_TRUE(armFaults("memory@1=ENOMEM", nullptr, nullptr));
    EXPECT_THROW(std::vector<char>(3000000), std::bad_alloc);
    EXPECT_EQ(std::vector<char>(3000000).size(), 3000000U);
}

#endif

} // namespace
