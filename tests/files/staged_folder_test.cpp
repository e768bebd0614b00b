// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/StagedFolder.h"

#include "faults/faults.h"
#include "support/ForkedChild.h"

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
    QString m_strTarget = m_home.filePath("out %2 put");
    QString m_strError;
};

TEST_F(StagedFolderTest, CommitPutsTheWholeFolderInPlaceAndLeavesNothingBeside)
{
    StagedFolder folder;
    ASSERT_TRUE(folder.begin(m_strTarget, false, marker, &m_strError)) << m_strError.toStdString();
    writeFile(folder.path() + "a.txt");
    EXPECT_FALSE(QFile::exists(m_strTarget));
    ASSERT_TRUE(folder.commit(&m_strError));
    EXPECT_EQ(entries(m_home.path()), QStringList{"out %2 put"});
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
    EXPECT_EQ(entries(m_home.path()), QStringList{"out %2 put"});
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
    EXPECT_EQ(entries(m_home.path()), QStringList{"out %2 put"});
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

class FaultyFolderTest : public StagedFolderTest
{
protected:
    void SetUp() override { makeOld(); }
    void TearDown() override { armFaults(nullptr, nullptr, nullptr); }

    void arm(const char* pRules)
    {
        ASSERT_TRUE(armFaults(pRules, QFile::encodeName(QDir(m_home.path()).canonicalPath()).constData(), nullptr));
    }
    void makeOld()
    {
        QDir(m_home.path()).removeRecursively();
        ASSERT_TRUE(QDir().mkpath(m_strTarget));
        writeFile(m_strTarget + "/summary.json", "old");
    }
    // Replaces the folder by one whose marker says "new".
    bool replace()
    {
        StagedFolder folder;
        if (!folder.begin(m_strTarget, true, marker, &m_strError)) {
            return false;
        }
        writeFile(folder.path() + marker, "new");
        return folder.commit(&m_strError);
    }
    bool replaceAndDie(const char* pRules)
    {
        return inForkedChild([&] {
                   arm(pRules);
                   replace();
                   return 0;
               }) == 201;
    }
    QByteArray present() const
    {
        QFile file(m_strTarget + "/summary.json");
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    }
};

// In one step, so that nobody ever finds the place empty.
TEST_F(FaultyFolderTest, AKillAtAnyCallLeavesTheOldFolderOrTheNewInItsPlace)
{
    int killed = 0;
    for (const char* when : {"kill", "killafter"}) {
        for (int call = 1; call < 200; ++call) {
            makeOld();
            const std::string rules = "change@" + std::to_string(call) + "=" + when;
            if (!replaceAndDie(rules.c_str())) {
                break;
            }
            ++killed;
            EXPECT_TRUE(present() == "old" || present() == "new") << rules;
            EXPECT_TRUE(replace()) << rules << m_strError.toStdString();
            EXPECT_EQ(present(), "new") << rules;
            EXPECT_EQ(entries(m_home.path()), QStringList{"out %2 put"}) << rules;
        }
    }
    EXPECT_GT(killed, 20);
}

// Of a file system that cannot exchange names the place is empty for a moment.
TEST_F(FaultyFolderTest, AFolderThatAKilledProgramHadMovedAsideIsFoundAndGoesBack)
{
    ASSERT_TRUE(replaceAndDie("rename@1=EINVAL;rename@2=killafter"));
    EXPECT_EQ(present(), "none");
    EXPECT_FALSE(replace());
    EXPECT_TRUE(m_strError.startsWith(m_strTarget + " was left aside by a program that was ended"))
        << m_strError.toStdString();
    EXPECT_EQ(present(), "old");
    EXPECT_EQ(entries(m_home.path()), QStringList{"out %2 put"});
    EXPECT_TRUE(replace());
    EXPECT_EQ(present(), "new");
}

TEST_F(FaultyFolderTest, AReaderFindsAMissingFolderAndTouchesNothingWhereItIsNotMissing)
{
    ASSERT_TRUE(replaceAndDie("rename@1=EINVAL;rename@2=killafter"));
    EXPECT_EQ(StagedFolder::takeBackMissing(m_strTarget + "/"),
              m_strTarget + " was left aside by a program that was ended while it replaced it; it is back in its place "
                            "now, as it was before");
    EXPECT_EQ(present(), "old");
    ASSERT_TRUE(replaceAndDie("sync@1=kill"));
    const QStringList there = entries(m_home.path());
    EXPECT_EQ(there.size(), 2);
    EXPECT_EQ(StagedFolder::takeBackMissing(m_strTarget), QString());
    EXPECT_EQ(entries(m_home.path()), there);
}

TEST_F(FaultyFolderTest, AReaderIsToldWhereAFolderLiesThatCannotGoBack)
{
    ASSERT_TRUE(replaceAndDie("rename@1=EINVAL;rename@2=killafter"));
    arm("rename@1+=EROFS");
    const QString told = StagedFolder::takeBackMissing(m_strTarget);
    ASSERT_TRUE(told.contains(" was ended while it replaced it: it is in ")) << told.toStdString();
    EXPECT_TRUE(QFile::exists(told.section(": it is in ", 1) + "/summary.json")) << told.toStdString();
}

TEST_F(FaultyFolderTest, AFolderThatSomebodyMadeInBetweenIsNotTouched)
{
    ASSERT_TRUE(replaceAndDie("rename@1=EINVAL;rename@2=killafter"));
    ASSERT_TRUE(QDir().mkdir(m_strTarget));
    writeFile(m_strTarget + "/thesis.tex");
    EXPECT_FALSE(replace());
    EXPECT_TRUE(m_strError.contains("the former folder is in ")) << m_strError.toStdString();
    EXPECT_EQ(entries(m_strTarget), QStringList{"thesis.tex"});
    EXPECT_EQ(entries(m_home.path()).size(), 2);
}

TEST_F(FaultyFolderTest, AFailureOfOneRenamePutsTheOldFolderBack)
{
    for (const char* rules : {"rename@1=EIO", "rename@1=EINVAL;rename@2=EIO", "rename@1=EINVAL;rename@3=EIO"}) {
        arm(rules);
        EXPECT_FALSE(replace()) << rules;
        EXPECT_EQ(m_strError, m_strTarget + " cannot be put in place: Input/output error");
        EXPECT_EQ(present(), "old") << rules;
        EXPECT_EQ(entries(m_home.path()), QStringList{"out %2 put"}) << rules;
    }
}

TEST_F(FaultyFolderTest, WhatCouldNotBePutBackIsNotRemovedAndTheMessageSaysWhereItIs)
{
    arm("rename@1=EINVAL;rename@3+=EIO");
    EXPECT_FALSE(replace());
    armFaults(nullptr, nullptr, nullptr);
    ASSERT_TRUE(m_strError.contains("; the former folder is in ")) << m_strError.toStdString();
    const QString place = m_strError.section("; the former folder is in ", 1);
    EXPECT_TRUE(QFile::exists(place + "/summary.json")) << place.toStdString();
    EXPECT_FALSE(replace());
    EXPECT_EQ(present(), "old");
}

TEST_F(FaultyFolderTest, AFolderThatMayNotBeOnTheDiskIsAFailureAndTheOldOneStays)
{
    for (const char* rules : {"sync@1=EIO", "sync@2=EIO", "rename@1=EINVAL;sync@2=EIO"}) {
        arm(rules);
        EXPECT_FALSE(replace()) << rules;
        EXPECT_EQ(present(), "old") << rules;
        EXPECT_EQ(entries(m_home.path()), QStringList{"out %2 put"}) << rules;
    }
}

TEST_F(FaultyFolderTest, TheHiddenFolderOfALivingProgramAndOthersOfThatNameAreLeftAlone)
{
    StagedFolder living;
    ASSERT_TRUE(living.begin(m_strTarget, true, marker));
    writeFile(living.path() + marker, "living");
    const QString foreign = m_home.filePath(".out %2 put-abcdef");
    ASSERT_TRUE(QDir().mkdir(foreign));
    writeFile(foreign + "/thesis.tex");
    EXPECT_TRUE(replace()) << m_strError.toStdString();
    EXPECT_TRUE(QFile::exists(foreign + "/thesis.tex"));
    EXPECT_TRUE(living.commit(&m_strError)) << m_strError.toStdString();
    EXPECT_EQ(present(), "living");
}

} // namespace
