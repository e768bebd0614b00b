// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/CORVLog.h"
#include "host/CPLSettingsFileWrapper.h"
#include "platform/orvparser/SectionSupport.h"
#include "platform/orvutils/LogSinks.h"
#include "support/ForkedChild.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class SettingsFileTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        orv::setConsoleLogLevel(orv::ConsoleLog::Nothing);
        m_nSink = orv::addLogSink([this](const orv::LogRecord& record) { m_log.append(record.m_strMessage); });
        ASSERT_TRUE(putBytes(m_strPath, QByteArray()));
        ASSERT_TRUE(m_index.load(m_strPath));
        setTags(m_index);
    }
    void TearDown() override
    {
        orv::removeLogSink(m_nSink);
        orv::setConsoleLogLevel(orv::ConsoleLog::Warnings);
    }
    static void setTags(CPLSettingsFileWrapper& index)
    {
        index.setAutoMenuNameTag("SPUM_");
        index.setMenuNameTag("MenuName");
        index.setFileNameTag("FileName");
    }
    // The index as another program would find it on the disk.
    CPLSettingsFileWrapper reloaded()
    {
        CPLSettingsFileWrapper other;
        EXPECT_TRUE(other.load(m_strPath));
        setTags(other);
        return other;
    }

    QTemporaryDir m_folder;
    QString m_strPath = m_folder.filePath("SPUM.txt");
    CPLSettingsFileWrapper m_index;
    QStringList m_log;
    int m_nSink = 0;
};

TEST_F(SettingsFileTest, EmptyFileIsAnEmptyList)
{
    EXPECT_TRUE(m_index.getMenuNames().isEmpty());
    ASSERT_TRUE(putBytes(m_strPath, "\r\n\n"));
    EXPECT_TRUE(m_index.load(m_strPath));
    EXPECT_TRUE(m_index.getMenuNames().isEmpty());
}

TEST_F(SettingsFileTest, EntriesKeepTheirOrderOnDisk)
{
    EXPECT_TRUE(m_index.addSection("SPUM", "zebra", "SpecUnmix/a.xml"));
    EXPECT_TRUE(m_index.addSection("SPUM", "ant", "SpecUnmix/b.xml"));
    ASSERT_TRUE(m_index.save());
    auto other = reloaded();
    EXPECT_EQ(other.getMenuNames(), QStringList({"zebra", "ant"}));
    EXPECT_EQ(other.getFileNameForMenuName("ant", "-"), "SpecUnmix/b.xml");
}

TEST_F(SettingsFileTest, MenuNamesOfOneSectionTagOnly)
{
    ASSERT_TRUE(m_index.addSection("SPUM", "a", "1"));
    ASSERT_TRUE(m_index.addSection("OTHER", "b", "2"));
    ASSERT_TRUE(m_index.addSection("SPUM", "c", "3"));
    EXPECT_EQ(m_index.getMenuNames("SPUM"), QStringList({"a", "c"}));
    EXPECT_EQ(m_index.getMenuNames("OTHER"), QStringList{"b"});
    EXPECT_EQ(m_index.getMenuNames("NONE"), QStringList());
    EXPECT_EQ(m_index.getMenuNames(), QStringList({"a", "b", "c"}));
}

TEST_F(SettingsFileTest, FileNameOfAnUnknownEntryIsTheDefault)
{
    EXPECT_EQ(m_index.getFileNameForMenuName("none", "-"), "-");
    ASSERT_TRUE(m_index.addSection("SPUM", "a", ""));
    EXPECT_EQ(m_index.getFileNameForMenuName("a", "-"), QString());
    m_index.getSectionByMenuName("a")->removeKey("FileName");
    EXPECT_EQ(m_index.getFileNameForMenuName("a", "-"), "-");
}

TEST_F(SettingsFileTest, FileNameIsReplacedInItsEntry)
{
    ASSERT_TRUE(m_index.addSection("SPUM", "a", "old"));
    EXPECT_TRUE(m_index.setFileNameForMenuName("a", "new"));
    EXPECT_FALSE(m_index.setFileNameForMenuName("none", "new"));
    ASSERT_TRUE(m_index.save());
    auto other = reloaded();
    EXPECT_EQ(other.getFileNameForMenuName("a", "-"), "new");
    EXPECT_EQ(other.getMenuNames().size(), 1);
}

TEST_F(SettingsFileTest, NamesThatDifferInCaseAreTwoEntriesAndTakenOnesAreRefused)
{
    EXPECT_TRUE(m_index.addSection("SPUM", "Liver", "1"));
    EXPECT_TRUE(m_index.addSection("SPUM", "liver", "2"));
    EXPECT_FALSE(m_index.addSection("SPUM", "Liver", "3"));
    EXPECT_FALSE(m_index.addSection("OTHER", "Liver", "3"));
    EXPECT_EQ(m_index.getFileNameForMenuName("Liver", "-"), "1");
    EXPECT_EQ(m_index.getFileNameForMenuName("liver", "-"), "2");
    EXPECT_EQ(m_index.getSectionByMenuName("LIVER"), nullptr);
}

TEST_F(SettingsFileTest, IncompleteEntryIsRefused)
{
    EXPECT_FALSE(m_index.addSection("", "a", "f"));
    EXPECT_FALSE(m_index.addSection("SPUM", "", "f"));
    CPLSettingsFileWrapper withoutTags;
    EXPECT_FALSE(withoutTags.addSection("SPUM", "a", "f"));
    withoutTags.setMenuNameTag("MenuName");
    EXPECT_FALSE(withoutTags.addSection("SPUM", "a", "f"));
    EXPECT_TRUE(m_index.getMenuNames().isEmpty());
}

TEST_F(SettingsFileTest, KeyOfTheSecondEntryRemovesExactlyThatEntry)
{
    for (const char* pName : {"first", "second", "third"}) {
        ASSERT_TRUE(m_index.addSection("SPUM", pName, pName));
    }
    QString key;
    ASSERT_EQ(m_index.getSectionByMenuName("second")->getSectionKey(&key), 0);
    EXPECT_EQ(m_index.removeSection(key), 0);
    ASSERT_TRUE(m_index.save());
    EXPECT_EQ(reloaded().getMenuNames("SPUM"), QStringList({"first", "third"}));
    // The gap is filled, the keys stay unique.
    ASSERT_TRUE(m_index.addSection("SPUM", "fourth", "f"));
    m_index.getSectionByMenuName("fourth")->getSectionKey(&key);
    EXPECT_EQ(m_index.removeSection(key), 0);
    EXPECT_EQ(m_index.getMenuNames(), QStringList({"first", "third"}));
}

TEST_F(SettingsFileTest, RenamedEntryIsFoundUnderItsNewName)
{
    ASSERT_TRUE(m_index.addSection("SPUM", "old", "f"));
    m_index.getSectionByMenuName("old")->setValue("MenuName", "new");
    ASSERT_TRUE(m_index.save());
    auto other = reloaded();
    EXPECT_EQ(other.getMenuNames("SPUM"), QStringList{"new"});
    EXPECT_EQ(other.getFileNameForMenuName("new", "-"), "f");
}

TEST_F(SettingsFileTest, NextAutomaticNameIsTheSmallestFreeNumber)
{
    EXPECT_EQ(m_index.getNextAutoMenuName(), "SPUM_001");
    ASSERT_TRUE(m_index.addSection("SPUM", "SPUM_001", "1"));
    ASSERT_TRUE(m_index.addSection("SPUM", "SPUM_003", "3"));
    EXPECT_EQ(m_index.getNextAutoMenuName(), "SPUM_002");
    ASSERT_TRUE(m_index.addSection("SPUM", "SPUM_002", "2"));
    EXPECT_EQ(m_index.getNextAutoMenuName(), "SPUM_004");
    for (int i = 4; i <= 999; ++i) {
        ASSERT_TRUE(m_index.addSection("SPUM", m_index.getNextAutoMenuName(), "f"));
    }
    EXPECT_EQ(m_index.getNextAutoMenuName(), "SPUM_1000");
}

TEST_F(SettingsFileTest, AwkwardNamesSurvive)
{
    const QStringList names = {"a: b", " blank ", "new\nline", "[x]",
                               "# y",  "\"q\"",   "C:\\a%20",  QString::fromUtf8("\xc3\xa4\xf0\x9f\x90\xad")};
    for (const auto& name : names) {
        ASSERT_TRUE(m_index.addSection("SPUM", name, name));
    }
    ASSERT_TRUE(m_index.save());
    EXPECT_EQ(reloaded().getMenuNames("SPUM"), names);
}

TEST_F(SettingsFileTest, UnknownKeysAndSectionsOfTheFileAreKept)
{
    ASSERT_TRUE(putBytes(m_strPath, "[Else] x\nk: v\n[SPUM] SPUM\nMenuName: a\nColour: red\nFileName: f\n"));
    ASSERT_TRUE(m_index.load(m_strPath));
    ASSERT_TRUE(m_index.addSection("SPUM", "b", "g"));
    ASSERT_TRUE(m_index.save());
    auto other = reloaded();
    EXPECT_EQ(other.getMenuNames(), QStringList({"a", "b"}));
    EXPECT_EQ(valueOf(other["Else"], "k"), "v");
    EXPECT_EQ(valueOf(other["SPUM"], "Colour"), "red");
}

TEST_F(SettingsFileTest, BrokenFileIsRefusedAsAWholeWithItsPlaceInTheLog)
{
    ASSERT_TRUE(putBytes(m_strPath, "[SPUM] SPUM\nMenuName: a\nFileNa\n"));
    EXPECT_FALSE(m_index.load(m_strPath));
    EXPECT_TRUE(m_index.getMenuNames().isEmpty());
    ASSERT_EQ(m_log.size(), 1);
    EXPECT_TRUE(m_log[0].startsWith(m_strPath + ":3: "));
}

TEST_F(SettingsFileTest, FileCutOffIsRefused)
{
    ASSERT_TRUE(m_index.addSection("SPUM", "a", "f"));
    ASSERT_TRUE(m_index.addSection("SPUM", "b", "g"));
    ASSERT_TRUE(m_index.save());
    const QByteArray whole = bytesOf(m_strPath);
    for (int tenth = 1; tenth < 10; ++tenth) {
        ASSERT_TRUE(putBytes(m_strPath, whole.left(whole.size() * tenth / 10)));
        EXPECT_FALSE(m_index.load(m_strPath)) << tenth;
        EXPECT_TRUE(m_index.getMenuNames().isEmpty());
    }
}

TEST_F(SettingsFileTest, MissingFileOrFolderInItsPlaceIsRefused)
{
    EXPECT_FALSE(m_index.load(m_folder.filePath("none.txt")));
    EXPECT_FALSE(m_index.load(m_folder.path()));
    EXPECT_EQ(m_log.size(), 2);
}

TEST_F(SettingsFileTest, SaveWithoutALoadFails)
{
    const CPLSettingsFileWrapper fresh;
    EXPECT_FALSE(fresh.save());
}

TEST_F(SettingsFileTest, FailedSaveLeavesTheFileAndTellsWhy)
{
    ASSERT_TRUE(m_index.addSection("SPUM", "a", "f"));
    ASSERT_TRUE(m_index.save());
    const QByteArray before = bytesOf(m_strPath);
    ASSERT_TRUE(m_index.addSection("SPUM", "b", QString(40000, 'x')));
    EXPECT_EQ(inForkedChild([this] { return !limitFileSize(30000) ? 1 : (m_index.save() || m_log.isEmpty() ? 2 : 0); }),
              0);
    EXPECT_EQ(inForkedChild([this] { return !limitFileSize(10) ? 1 : (m_index.save() ? 2 : 0); }), 0);
    EXPECT_EQ(bytesOf(m_strPath), before);
}

} // namespace
